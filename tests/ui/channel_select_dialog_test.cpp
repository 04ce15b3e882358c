#include "ui/channel_select_dialog.h"

#include "shows/show_activity.h"
#include "switcher/name_tables.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

SilenceOut Lent(int output, int detectLevel) {
  SilenceOut entry;
  entry.Output = static_cast<qint16>(output);
  entry.DetectTime1 = 8;
  entry.DetectTime2 = 5;
  entry.DetectLevel = static_cast<qint16>(detectLevel);
  return entry;
}

// Outputs 10 and 11 (0-based 9 and 10) may be borrowed for silence detection.
class ChannelSelectTest : public test::DialogTest {
 protected:
  // The list of every output, and the list of those that may be borrowed.
  static constexpr int kAll = 0;
  static constexpr int kChosen = 1;
  void SetUp() override {
    DialogTest::SetUp();
    s.SilenceOuts = {Lent(9, 824), Lent(10, 904)};
    s.SilenceOutCount = 2;
    UpdateSilenceOutTable(s);
  }
  // Clicks the rows of a list, the first alone and the others with Ctrl.
  void Select(int list, std::initializer_list<int> rows) {
    Qt::KeyboardModifiers modifiers;
    for (int row : rows) {
      person.ClickRow(person.Lists().value(list), row, modifiers);
      modifiers = Qt::ControlModifier;
    }
  }
  // Takes a borrowed output out, output 13 in, and confirms.
  void SwapFor13(int row) {
    Select(kChosen, {row});
    person.Click(QStringLiteral("<< Remove"));
    Select(kAll, {12});
    person.Click(QStringLiteral("Add >>"));
    person.Click(QStringLiteral("OK"));
  }
};

TEST_F(ChannelSelectTest, ListsEveryOutputAndAddsWithoutDuplicatesUntilCancel) {
  ShowRecord show = MakeNewShow();
  show.StudioCount = 2;
  s.Shows = {show};
  s.ShowCount = 1;
  s.ActiveShows = {0};
  s.ActiveShowCount = 1;
  s.RequiredSilenceOutputs = 5;
  Open<ChannelSelectDialog>();
  EXPECT_EQ(Rows(kAll).value(2), QStringLiteral("TX 3 (Ch.0003)"));
  EXPECT_EQ(Rows(kChosen, 1), (QStringList{"Ch.0010", "Ch.0011"}));
  EXPECT_EQ(Words(), (QStringList{"Selected: 2", "Currently Required: 3", "Max Required: 5"}));

  Select(kAll, {11, 2, 9});  // outputs 12, 3 and 10, picked out of order
  person.Click(QStringLiteral("Add >>"));
  EXPECT_EQ(Rows(kChosen, 1), (QStringList{"Ch.0010", "Ch.0011", "Ch.0003", "Ch.0012"}));
  Select(kChosen, {1});
  person.Click(QStringLiteral("<< Remove"));
  person.Click(QStringLiteral("<< Remove All"));
  EXPECT_EQ(Words().front(), QStringLiteral("Selected: 0")) << "the count follows at once";
  person.Click(QStringLiteral("Cancel"));
  EXPECT_EQ(s.SilenceOutCount, 2) << "Cancel writes nothing";
}

TEST_F(ChannelSelectTest, ReplacingTheTableWhileAShowIsOnAirStrandsNoOutput) {
  s.Shows = {MakeNewShow()};
  s.ShowCount = 1;
  PutShowOnAir();
  GetActiveShows(s);
  ASSERT_EQ(s.Shows[0].DownlinkMonitor, 9);
  ASSERT_EQ(s.Shows[0].StudioLeft[0].Monitor, 10);

  link.wire.clear();
  Open<ChannelSelectDialog>();
  SwapFor13(0);
  // The show starts again at once on the new table; the output taken out of the table is
  // parked, the one it keeps using is not.
  EXPECT_TRUE(link.wire.contains(QByteArray::fromHex("fe00007f7f090007ff")));
  EXPECT_FALSE(link.wire.contains(QByteArray::fromHex("fe00007f7f0a0008ff")));
  EXPECT_EQ(s.Shows[0].DownlinkMonitor, 10);
  EXPECT_EQ(s.SilenceOuts[1].Output, 12);
  EXPECT_EQ(s.SilenceOutIndex[12], 1);
  EXPECT_EQ(s.SilenceOutIndex[9], kNone);
  GetActiveShows(s);
  ExpectHeldThenFreed({{4, 1}, {6, 1}}, GetActiveShows);
}

}  // namespace
}  // namespace zrn
