#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::TempStateTest;

class OutputPanels : public TempStateTest {
 protected:
  // Watches outputs 1..count and lays the panels out as a confirmed setup would.
  void Watch(int count) {
    s.Outputs.resize(count);
    for (int i = 0; i < count; ++i) {
      s.Outputs[i].Output = static_cast<qint16>(i + 1);
    }
    s.OutputCount = static_cast<qint16>(count);
    UpdateOutputs(s);
  }
  const OutputPanelModel& Panel(int i) const { return s.panels.outputs.at(i); }
  Rect Normal(int i) const { return Panel(i).normal.frame; }
  Rect Large(int i) const { return Panel(i).large.frame; }
  std::vector<bool> HeadingsShown() const {
    std::vector<bool> shown;
    for (const LabelModel& h : s.panels.headings) {
      shown.push_back(h.visible);
    }
    return shown;
  }
};

TEST_F(OutputPanels, GrowingFromOneToFortyPlacesEveryPanelInBothViews) {
  Watch(1);
  Watch(40);
  EXPECT_EQ(s.PanelsLoaded, 40);
  ASSERT_EQ(s.panels.outputs.size(), 40u);

  // Normal view: 32 a row, 400 apart, rows 960 apart.
  EXPECT_EQ(Normal(1), (Rect{1480, 240, 375, 615}));
  EXPECT_EQ(Normal(31), (Rect{13480, 240, 375, 615}));
  EXPECT_EQ(Normal(32), (Rect{1080, 1200, 375, 615}));
  EXPECT_EQ(Normal(39), (Rect{3880, 1200, 375, 615}));
  EXPECT_EQ(Panel(39).normal.number, (Rect{80, 120, 360, 255}));
  EXPECT_EQ(Panel(39).normal.lamp, (Rect{75, 405, 195, 135}));

  // Large view: 12 a row, 1600 apart, rows 1200 apart.
  EXPECT_EQ(Large(11), (Rect{18680, 240, 1500, 1200}));
  EXPECT_EQ(Large(12), (Rect{1080, 1440, 1500, 1200}));
  EXPECT_EQ(Large(24), (Rect{1080, 2640, 1500, 1200}));
  EXPECT_EQ(Large(36), (Rect{1080, 3840, 1500, 1200}));
  EXPECT_EQ(Large(39), (Rect{5880, 3840, 1500, 1200}));
  EXPECT_EQ(Panel(8).large.number.left, 120);
  EXPECT_EQ(Panel(9).large.number.left, 80);
  EXPECT_EQ(Panel(39).large.nameLine, (Rect{120, 600, 1305, 255}));

  EXPECT_EQ(Panel(39).position, QStringLiteral("40"));
  EXPECT_TRUE(Panel(39).normal.visible);
  EXPECT_FALSE(Panel(39).large.visible);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, true, false, false}));
  EXPECT_EQ(s.panels.headings[1].rect, (Rect{240, 1560, 615, 240}));
  EXPECT_EQ(s.panels.window.width, 15525);
  EXPECT_EQ(s.panels.window.height, 11055);
}

TEST_F(OutputPanels, ShrinkingToTenKeepsTheFirstTenInPlaceInBothViews) {
  Watch(40);
  const OutputPanelModel ninth = Panel(9);
  mnuToggle_Click(s);
  Watch(10);
  ASSERT_EQ(s.panels.outputs.size(), 10u);
  EXPECT_EQ(s.PanelsLoaded, 10);
  EXPECT_EQ(Normal(9), ninth.normal.frame);
  EXPECT_EQ(Large(9), (Rect{15480, 240, 1500, 1200}));
  EXPECT_TRUE(Panel(9).large.visible);
  EXPECT_FALSE(Panel(9).normal.visible);

  mnuToggle_Click(s);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, false, false, false}))
      << "no heading over an emptied row";
}

TEST_F(OutputPanels, SixtyFiveOutputsUseTheWideWindowAndFourHeadings) {
  Watch(65);
  EXPECT_EQ(s.ManyOutputs, 1);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, true, true, true}));
  EXPECT_EQ(s.panels.headings[3].rect, (Rect{240, 3480, 615, 240}));
  const WindowModel& w = s.panels.window;
  EXPECT_EQ(w.width, 21675);
  EXPECT_EQ(w.height, 14630);
  EXPECT_EQ(w.alarmCaption, (Rect{20430, 360, 855, 255}));
  EXPECT_EQ(w.cancelButton, (Rect{20290, 1200, 735, 375}));
  EXPECT_EQ(w.messageList, (Rect{120, 4036, 21165, 9295}));
  EXPECT_EQ(Normal(64), (Rect{1080, 2160, 375, 615}));

  Watch(102);
  EXPECT_EQ(Normal(100), (Rect{2680, 3120, 375, 615}));
  EXPECT_EQ(Panel(100).normal.number.left, 80);
  EXPECT_EQ(Panel(101).normal.number.left, 20);
  EXPECT_EQ(Panel(101).position, QStringLiteral("102"));
}

TEST_F(OutputPanels, TogglingTwiceReturnsToTheSameViewAndSize) {
  Watch(10);
  const WindowModel before = s.panels.window;
  mnuToggle_Click(s);
  EXPECT_TRUE(s.LargeViewActive);
  EXPECT_EQ(s.panels.window.width, 21675) << "the large view uses the wide window";
  EXPECT_EQ(s.panels.window.height, 14630);
  EXPECT_FALSE(s.panels.window.messageListVisible);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{false, false, false, false}));
  EXPECT_TRUE(Panel(0).large.visible);
  EXPECT_FALSE(Panel(0).normal.visible);

  mnuToggle_Click(s);
  EXPECT_FALSE(s.LargeViewActive);
  EXPECT_EQ(s.ManyOutputs, 0);
  EXPECT_EQ(s.panels.window.width, before.width);
  EXPECT_EQ(s.panels.window.height, before.height);
  EXPECT_EQ(s.panels.window.messageList, before.messageList);
  EXPECT_TRUE(s.panels.window.messageListVisible);
  EXPECT_TRUE(Panel(9).normal.visible);
  EXPECT_FALSE(Panel(9).large.visible);
}

TEST_F(OutputPanels, RowsGoOnPastTheGridSoEveryOutputHasAPanel) {
  Watch(140);
  ASSERT_EQ(s.panels.outputs.size(), 140u);
  EXPECT_EQ(Normal(128), (Rect{1080, 4080, 375, 615}));
  EXPECT_EQ(Normal(139), (Rect{5480, 4080, 375, 615}));
  EXPECT_EQ(Panel(139).normal.number.left, 20);
  EXPECT_TRUE(Panel(139).normal.visible);
  EXPECT_EQ(Large(132), (Rect{1080, 13440, 1500, 1200}));
  ASSERT_EQ(s.panels.headings.size(), 5u);
  EXPECT_EQ(s.panels.headings[4].rect, (Rect{240, 4440, 615, 240}));
  EXPECT_TRUE(s.panels.headings[4].visible);
  EXPECT_EQ(s.panels.window.width, 21675) << "the window keeps its wide size";

  // Every panel keeps its lamp, past the grid too.
  s.SilenceStatus[139].Mode = 0x100;
  s.SilenceStatus[139].Status = 1;
  s.Outputs[139].MonitoringEnabled = true;
  UpdateStatus(s);
  EXPECT_EQ(Panel(139).lamp, kLampRed);
}

TEST_F(OutputPanels, TheConfiguredViewIsTheOneNamedAndShowModeUsesTheNormalOne) {
  Watch(3);
  s.DefaultViewLarge = 1;
  ShowConfiguredView(s);
  EXPECT_TRUE(s.LargeViewActive);
  EXPECT_TRUE(Panel(2).large.visible);

  s.ProgramMode = 1;
  ShowConfiguredView(s);
  EXPECT_FALSE(s.LargeViewActive);
  EXPECT_EQ(s.DefaultViewLarge, 1) << "the stored default is left alone";
  EXPECT_EQ(s.panels.window.width, 15525);
  for (const OutputPanelModel& panel : s.panels.outputs) {
    EXPECT_FALSE(panel.normal.visible || panel.large.visible);
  }
  EXPECT_FALSE(s.panels.window.messageListVisible);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{false, false, false, false}));

  s.ProgramMode = 0;
  s.DefaultViewLarge = 0;
  ShowConfiguredView(s);
  EXPECT_TRUE(Panel(2).normal.visible);
  EXPECT_TRUE(s.panels.window.messageListVisible);
}

TEST_F(OutputPanels, NoWatchedOutputsLeavesPanelZeroHiddenAndClean) {
  Watch(2);
  s.SilenceStatus[0] = {1, 0x100, 0, 0, 0, 0, 0, 0};
  s.Outputs[0].MonitoringEnabled = true;
  UpdateStatus(s);
  ASSERT_EQ(Panel(0).lamp, kLampRed);
  Watch(0);
  EXPECT_EQ(s.PanelsLoaded, 0);
  ASSERT_EQ(s.panels.outputs.size(), 1u);
  EXPECT_FALSE(Panel(0).normal.visible);
  EXPECT_EQ(Panel(0).lamp, kLampGrey);

  // A count the table cannot back draws what there is and says so.
  s.OutputCount = 5;
  UpdateOutputs(s);
  EXPECT_EQ(s.panels.outputs.size(), 1u);
  EXPECT_EQ(s.PanelsLoaded, 0);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Outputs")));
}

}  // namespace
}  // namespace zrn
