#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "monitor/poll_tick.h"
#include "shows/show_activity.h"
#include "storage/shows_file.h"
#include "support/fake_link.h"
#include "support/temp_state.h"
#include "switcher/name_tables.h"
#include "ui/channel_select_dialog.h"

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

// A switcher with 16 outputs; outputs 10 and 11 (0-based 9 and 10) may be borrowed.
class ChannelSelectTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    s.Connected = true;
    s.linkState.ExchangeComplete = true;
    s.SwitcherOutputCount = 16;
    s.OutputNames.clear();
    for (int k = 1; k <= 16; ++k) {
      s.OutputNames << QStringLiteral("SD %1").arg(k);
    }
    s.SilenceOuts = {Lent(9, 824), Lent(10, 904)};
    s.SilenceOutCount = 2;
    UpdateSilenceOutTable(s);
  }

  void Open() {
    dialog = std::make_unique<ChannelSelectDialog>(s);
    dialog->show();
  }
  template <class T>
  T* Get(const char* name) {
    T* widget = dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  void Click(const char* name) { QTest::mouseClick(Get<QPushButton>(name), Qt::LeftButton); }
  QStringList Keys(const char* list) {
    QStringList keys;
    auto* tree = Get<QTreeWidget>(list);
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
      keys << tree->topLevelItem(i)->text(1);
    }
    return keys;
  }
  void Select(const char* list, std::initializer_list<int> rows) {
    auto* tree = Get<QTreeWidget>(list);
    tree->clearSelection();
    for (int row : rows) {
      tree->topLevelItem(row)->setSelected(true);
    }
  }
  QString Label(const char* name) { return Get<QLabel>(name)->text(); }

  test::FakeLink link;
  std::unique_ptr<ChannelSelectDialog> dialog;
};

TEST_F(ChannelSelectTest, ListsEveryOutputAndAddsWithoutDuplicates) {
  ShowRecord show = MakeNewShow();
  show.StudioCount = 2;
  s.Shows = {show};
  s.ShowCount = 1;
  s.ActiveShows = {0};
  s.ActiveShowCount = 1;
  s.RequiredSilenceOutputs = 5;
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Available Silence Detect Outputs"));
  auto* all = Get<QTreeWidget>("lvChannel");
  ASSERT_EQ(all->topLevelItemCount(), 16);
  EXPECT_EQ(all->topLevelItem(2)->text(0), QStringLiteral("SD 3 (Ch.0003)"));
  EXPECT_EQ(Keys("lvList"), (QStringList{QStringLiteral("Ch.0010"), QStringLiteral("Ch.0011")}));
  EXPECT_EQ(Label("lblOutCount"), QStringLiteral("Selected: 2"));
  EXPECT_EQ(Label("lblRequired"), QStringLiteral("Currently Required: 3"));
  EXPECT_EQ(Label("lblMax"), QStringLiteral("Max Required: 5"));

  Select("lvChannel", {11, 2, 9});  // outputs 12, 3 and 10, picked out of order
  Click("cmdAdd");
  EXPECT_EQ(Keys("lvList"), (QStringList{QStringLiteral("Ch.0010"), QStringLiteral("Ch.0011"),
                                         QStringLiteral("Ch.0003"), QStringLiteral("Ch.0012")}));
  Select("lvList", {1});
  Click("cmdRemove");
  EXPECT_EQ(Label("lblOutCount"), QStringLiteral("Selected: 3"));
  Click("cmdRemoveAll");
  EXPECT_TRUE(Keys("lvList").isEmpty());
  EXPECT_EQ(Label("lblOutCount"), QStringLiteral("Selected: 0")) << "the count follows at once";
  Click("cmdCancel");
  EXPECT_EQ(s.SilenceOutCount, 2) << "Cancel writes nothing";
}

TEST_F(ChannelSelectTest, OkKeepsTheSettingsOfOutputsThatStay) {
  Open();
  Select("lvList", {1});
  Click("cmdRemove");
  Select("lvChannel", {12});
  Click("cmdAdd");
  Click("cmdOk");

  ASSERT_EQ(s.SilenceOutCount, 2);
  ASSERT_EQ(s.SilenceOuts.size(), 2u);
  EXPECT_EQ(s.SilenceOuts[0].Output, 9);
  EXPECT_EQ(s.SilenceOuts[0].DetectLevel, 824);
  EXPECT_EQ(s.SilenceOuts[0].DetectTime1, 8);
  EXPECT_EQ(s.SilenceOuts[1].Output, 12);
  EXPECT_EQ(s.SilenceOuts[1].DetectLevel, 0) << "a new output starts cleared";
  EXPECT_EQ(s.SilenceOuts[1].Source, kNone) << "and free";
  EXPECT_EQ(s.SilenceOutIndex[12], 1);
  EXPECT_EQ(s.SilenceOutIndex[10], kNone);

  Open();
  Click("cmdRemoveAll");
  Click("cmdOk");
  EXPECT_EQ(s.SilenceOutCount, 0);
  EXPECT_TRUE(s.SilenceOuts.empty());
  EXPECT_EQ(s.SilenceOutIndex[9], kNone);
}

TEST_F(ChannelSelectTest, ReplacingTheTableWhileAShowIsOnAirStrandsNoOutput) {
  ShowRecord show = MakeNewShow();
  show.Name = QStringLiteral("Breakfast");
  show.StartTime = QStringLiteral("00:00:00");
  show.EndTime = QStringLiteral("23:59:59");
  show.StartDate = QStringLiteral("01/01/2026");
  show.EndDate = QStringLiteral("12/31/2026");
  show.Days = 0x7F;
  show.DownlinkSource = 4;
  show.StudioLeft[0].Channel = 6;
  s.Shows = {show};
  s.ShowCount = 1;
  s.ProgramMode = 1;
  RefreshClock(s);
  GetActiveShows(s);
  ASSERT_EQ(s.ActiveShowCount, 1);
  ASSERT_EQ(s.Shows[0].DownlinkMonitor, 9);
  ASSERT_EQ(s.Shows[0].StudioLeft[0].Monitor, 10);

  link.wire.clear();
  Open();
  Select("lvList", {0});
  Click("cmdRemove");
  Select("lvChannel", {12});
  Click("cmdAdd");
  Click("cmdOk");

  // The show starts again at once on the new table; the output taken out of the table is
  // parked, the one it keeps using is not.
  EXPECT_TRUE(link.wire.contains(QByteArray::fromHex("fe00007f7f090007ff")));
  EXPECT_FALSE(link.wire.contains(QByteArray::fromHex("fe00007f7f0a0008ff")));
  ASSERT_EQ(s.ActiveShowCount, 1);
  EXPECT_EQ(s.Shows[0].DownlinkMonitor, 10);
  GetActiveShows(s);
  ASSERT_EQ(s.ActiveShowCount, 1);
  for (int source : {4, 6}) {
    EXPECT_EQ(std::count_if(s.SilenceOuts.begin(), s.SilenceOuts.end(),
                            [&](const SilenceOut& e) { return e.Source == source; }),
              1)
        << "source " << source;
  }
  s.Shows[0].Days = 0;
  GetActiveShows(s);
  for (const SilenceOut& e : s.SilenceOuts) {
    EXPECT_EQ(e.Source, kNone) << "output " << e.Output << " still held";
    EXPECT_EQ(e.Show, kNone);
  }
}
}  // namespace
}  // namespace zrn
