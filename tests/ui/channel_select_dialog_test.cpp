#include "ui/channel_select_dialog.h"

#include "shows/show_activity.h"
#include "switcher/name_tables.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// Outputs 10 and 11 (0-based 9 and 10) may be borrowed for silence detection; a show on air all
// day watches its downlink on the first and its studio source on the second.
class ChannelSelectTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    s.SilenceOuts.resize(2);
    s.SilenceOuts[0].Output = 9;
    s.SilenceOuts[1].Output = 10;
    s.SilenceOutCount = 2;
    UpdateSilenceOutTable(s);
    s.Shows = {MakeNewShow()};
    s.ShowCount = 1;
    PutShowOnAir();
    GetActiveShows(s);
  }
  // Clicks the rows of a list (0: every output, 1: those that may be borrowed), the first
  // alone and the others with Ctrl.
  void Select(int list, std::initializer_list<int> rows) {
    Qt::KeyboardModifiers modifiers;
    for (int row : rows) {
      person.ClickRow(person.Lists().value(list), row, modifiers);
      modifiers = Qt::ControlModifier;
    }
  }
};

TEST_F(ChannelSelectTest, ReplacingTheTableWhileAShowIsOnAirStrandsNoOutput) {
  link.wire.clear();
  Open<ChannelSelectDialog>();
  EXPECT_EQ(Rows(0).value(2), QStringLiteral("TX 3 (Ch.0003)"));
  // Output 10 out, then both; 13 and 11 in, and 11 again, which is not listed twice.
  Select(1, {0});
  person.Click(QStringLiteral("<< Remove"));
  person.Click(QStringLiteral("<< Remove All"));
  EXPECT_TRUE(Seen(QStringLiteral("Selected: 0"))) << "the count follows at once";
  Select(0, {12, 10});
  person.Click(QStringLiteral("Add >>"));
  Select(0, {10});
  person.Click(QStringLiteral("Add >>"));
  EXPECT_EQ(Rows(1, 1), (QStringList{"Ch.0011", "Ch.0013"}));
  person.Click(QStringLiteral("OK"));

  // The show starts again at once on the new table; the output taken out of the table is
  // parked, the one it keeps using is not.
  EXPECT_TRUE(link.wire.contains(QByteArray::fromHex("fe00007f7f090007ff")));
  EXPECT_FALSE(link.wire.contains(QByteArray::fromHex("fe00007f7f0a0008ff")));
  EXPECT_EQ((QList<int>{s.Shows[0].DownlinkMonitor, s.SilenceOuts[1].Output, s.SilenceOutIndex[12],
                        s.SilenceOutIndex[9]}),
            (QList<int>{10, 12, 1, kNone}));
  GetActiveShows(s);
  ExpectHeldThenFreed({4, 6}, GetActiveShows);
}

}  // namespace
}  // namespace zrn
