#include "shows/show_panels.h"
#include "monitor/output_panels.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::TempStateTest;

// Show mode with a table of shows named "Show A", "Show B" ...
class ShowPanels : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.ProgramMode = 1;
    s.Shows.clear();
    for (int i = 0; i < 30; ++i) {
      ShowRecord show;
      show.Name = QStringLiteral("Show %1").arg(QChar('A' + i));
      show.OutputCount = 1;
      show.OutputLeft = {static_cast<qint16>(i)};
      show.DownlinkSource = static_cast<qint16>(i);
      s.Shows.push_back(show);
      s.InputNames[i] = QStringLiteral("Sat %1").arg(i + 1);
    }
    s.ShowCount = 30;
  }
  void Activate(int count) {
    s.ActiveShows.clear();
    for (int i = 0; i < count; ++i) {
      s.ActiveShows.push_back(static_cast<qint16>(i));
    }
    s.ActiveShowCount = static_cast<qint16>(count);
    UpdateShows(s);
  }
  const ShowPanelModel& Panel(int i) const { return s.panels.shows.at(i); }
};

TEST_F(ShowPanels, ThreeShowsStandInOneRow) {
  Activate(3);
  EXPECT_EQ(s.ShowPanelsLoaded, 3);
  ASSERT_EQ(s.panels.shows.size(), 3u);
  EXPECT_EQ(Panel(0).frame, (Rect{1080, 240, 1740, 1680}));
  EXPECT_EQ(Panel(1).frame, (Rect{2920, 240, 1740, 1680}));
  EXPECT_EQ(Panel(2).frame, (Rect{4760, 240, 1740, 1680}));
  EXPECT_EQ(Panel(2).nameText, QStringLiteral("Show C"));
  EXPECT_EQ(Panel(2).outputsText, QStringLiteral("Out 0003"));
  EXPECT_EQ(Panel(2).sourceText, QStringLiteral("Sat 3"));
  EXPECT_TRUE(Panel(2).visible);
}

TEST_F(ShowPanels, SevenThenTwo) {
  Activate(7);
  EXPECT_EQ(Panel(6).frame, (Rect{1080, 1920, 1740, 1680})) << "below the first";
  EXPECT_EQ(Panel(6).name.left, 120);
  Activate(2);
  EXPECT_EQ(s.ShowPanelsLoaded, 2);
  ASSERT_EQ(s.panels.shows.size(), 2u);
  EXPECT_EQ(Panel(1).frame, (Rect{2920, 240, 1740, 1680}));

  Activate(0);
  EXPECT_EQ(s.ShowPanelsLoaded, 0);
  ASSERT_EQ(s.panels.shows.size(), 1u);
  EXPECT_FALSE(Panel(0).visible);
}

TEST_F(ShowPanels, PanelsGoOnPastTheFourthRow) {
  LoadShowStatus(s, 10);
  EXPECT_EQ(Panel(9).nameText, QStringLiteral("Show 10"));
  EXPECT_EQ(Panel(9).name.left, 80);
  EXPECT_EQ(Panel(8).name.left, 120);

  Activate(26);
  ASSERT_EQ(s.panels.shows.size(), 26u);
  EXPECT_EQ(Panel(24).frame, (Rect{1080, 6960, 1740, 1680}));
  EXPECT_EQ(Panel(25).frame, (Rect{2920, 6960, 1740, 1680}));
  EXPECT_EQ(Panel(25).nameText, QStringLiteral("Show Z"));
  EXPECT_TRUE(Panel(25).visible);
}

TEST_F(ShowPanels, OutputAndSourceTexts) {
  s.OutputNames[1] = QStringLiteral("OUT2");
  s.Shows[0].OutputCount = 2;
  s.Shows[0].OutputLeft = {kNone, 1};
  s.Shows[1].OutputCount = 0;  // no outputs at all
  s.Shows[2].OutputCount = 3;
  s.Shows[2].OutputLeft = {0, 300, 1};
  s.Shows[2].DownlinkSource = kNone;
  s.Shows[3].OutputCount = 4;  // more than the show holds
  s.Shows[3].DownlinkSource = 400;
  Activate(4);
  EXPECT_EQ(Panel(0).outputsText, QStringLiteral("Not Defined, OUT2"));
  EXPECT_EQ(Panel(1).outputsText, QStringLiteral("Not Defined"));
  EXPECT_EQ(Panel(2).outputsText, QStringLiteral("Out 0001, Not Defined, OUT2"));
  EXPECT_EQ(Panel(2).sourceText, QStringLiteral("Not Defined"));
  EXPECT_EQ(Panel(3).outputsText, QStringLiteral("Out 0004"));
  EXPECT_EQ(Panel(3).sourceText, QStringLiteral("Not Defined"));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

TEST_F(ShowPanels, ABadListEntryCostsOnlyItsPanel) {
  s.ActiveShows = {1, 57, 2};
  s.ActiveShowCount = 3;
  UpdateShows(s);
  EXPECT_EQ(Panel(0).nameText, QStringLiteral("Show B"));
  EXPECT_EQ(Panel(1).outputsText, QStringLiteral("Not Defined"));
  EXPECT_EQ(Panel(2).nameText, QStringLiteral("Show C"));
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Show Status")));

  // A count beyond the list is held to the list.
  s.ActiveShowCount = 9;
  UpdateShows(s);
  EXPECT_EQ(s.ShowPanelsLoaded, 3);
}

TEST_F(ShowPanels, ShownOnlyInTheShowView) {
  Activate(2);
  EXPECT_FALSE(s.panels.outputs[0].normal.visible);
  EXPECT_FALSE(s.panels.window.messageListVisible);
  s.ProgramMode = 0;
  DisplayShows(s);
  EXPECT_FALSE(Panel(0).visible);
  EXPECT_TRUE(s.panels.outputs[0].normal.visible);
  s.ProgramMode = 1;
  mnuToggle_Click(s);
  EXPECT_TRUE(Panel(1).visible) << "the view toggle keeps the show panels";
  EXPECT_FALSE(s.panels.outputs[0].large.visible);
}

}  // namespace
}  // namespace zrn
