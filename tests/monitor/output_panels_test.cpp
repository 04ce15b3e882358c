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
  std::vector<bool> HeadingsShown() const {
    std::vector<bool> shown;
    for (const LabelModel& h : s.panels.headings) {
      shown.push_back(h.visible);
    }
    return shown;
  }
};

// Normal view: 32 a row, 400 apart, rows 960 apart; large view: 12 a row, 1600 apart, rows
// 1200 apart; rows go on past the grid so every output has a panel. Growing and shrinking the
// count leaves the panels that stay where they were. The number moves left as it grows a digit.
TEST_F(OutputPanels, FramesFollowTheGridInBothViews) {
  const struct {
    int watched, panel;
    bool large;
    std::pair<int, int> at;
    int numberLeft;
  } cases[] = {
      {40, 1, false, {1480, 240}, 80},     {40, 32, false, {1080, 1200}, 80},
      {40, 11, true, {18680, 240}, 80},    {40, 12, true, {1080, 1440}, 80},
      {40, 39, true, {5880, 3840}, 80},    {10, 9, true, {15480, 240}, 80},
      {10, 8, true, {13880, 240}, 120},    {65, 64, false, {1080, 2160}, 80},
      {102, 100, false, {2680, 3120}, 80}, {102, 101, false, {3080, 3120}, 20},
      {140, 139, false, {5480, 4080}, 20}, {140, 132, true, {1080, 13440}, 80},
  };
  Watch(1);
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.watched << " watched, panel " << c.panel);
    Watch(c.watched);
    ASSERT_EQ(s.panels.outputs.size(), static_cast<size_t>(c.watched));
    EXPECT_EQ(s.PanelsLoaded, c.watched);
    const OutputPanelModel& p = Panel(c.panel);
    const Rect& frame = c.large ? p.large.frame : p.normal.frame;
    EXPECT_EQ(std::pair(frame.left, frame.top), c.at);
    EXPECT_EQ(c.large ? p.large.number.left : p.normal.number.left, c.numberLeft);
  }
  EXPECT_EQ(Panel(39).position, QStringLiteral("40"));
  EXPECT_EQ(Panel(101).position, QStringLiteral("102"));
  EXPECT_EQ(Panel(39).normal.frame, (Rect{3880, 1200, 375, 615}));
  EXPECT_EQ(Panel(39).large.frame, (Rect{5880, 3840, 1500, 1200}));
  EXPECT_EQ(Panel(39).normal.number, (Rect{80, 120, 360, 255}));
  EXPECT_EQ(Panel(39).normal.lamp, (Rect{75, 405, 195, 135}));
  EXPECT_EQ(Panel(39).large.nameLine, (Rect{120, 600, 1305, 255}));
}

// The window widens at 65 outputs and gets a heading for each row in use; shrunk in the large
// view and back, no heading stands over an emptied row and the normal window is as before.
TEST_F(OutputPanels, WindowHeadingsAndPanelsFollowTheCount) {
  Watch(40);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, true, false, false}));
  EXPECT_EQ(s.panels.headings[1].rect, (Rect{240, 1560, 615, 240}));

  Watch(65);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, true, true, true}));
  const WindowModel& w = s.panels.window;
  EXPECT_EQ(std::pair(w.width, w.height), std::pair(21675, 14630));
  EXPECT_EQ((std::vector<Rect>{w.alarmCaption, w.cancelButton, w.messageList}),
            (std::vector<Rect>{
                {20430, 360, 855, 255}, {20290, 1200, 735, 375}, {120, 4036, 21165, 9295}}));

  Watch(140);
  ASSERT_EQ(HeadingsShown(), std::vector<bool>(5, true));
  EXPECT_EQ(s.panels.headings[4].rect, (Rect{240, 4440, 615, 240}));

  mnuToggle_Click(s);
  Watch(10);
  EXPECT_TRUE(Panel(9).large.visible);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{false, false, false, false}));
  EXPECT_EQ(w.width, 21675) << "the large view uses the wide window";
  mnuToggle_Click(s);
  EXPECT_EQ(HeadingsShown(), (std::vector<bool>{true, false, false, false}));
  EXPECT_EQ(s.ManyOutputs, 0);
  EXPECT_EQ(std::pair(w.width, w.height), std::pair(15525, 11055));
  EXPECT_TRUE(w.messageListVisible);
  EXPECT_FALSE(Panel(9).large.visible);

  // In show mode the toggle leaves the output panels and their headings hidden.
  s.ProgramMode = 1;
  mnuToggle_Click(s);
  EXPECT_EQ(HeadingsShown(), std::vector<bool>(4, false));
  EXPECT_FALSE(Panel(0).large.visible || Panel(0).normal.visible);
  s.ProgramMode = 0;

  // With no output left, panel 0 stays, hidden and without its old lamp.
  Watch(2);
  s.SilenceStatus[0] = {1, 0x100, 0, 0, 0, 0, 0, 0};
  s.Outputs[0].MonitoringEnabled = true;
  UpdateStatus(s);
  ASSERT_EQ(Panel(0).lamp, kLampRed);
  Watch(0);
  ASSERT_EQ(s.panels.outputs.size(), 1u);
  EXPECT_FALSE(Panel(0).normal.visible);
  EXPECT_EQ(Panel(0).lamp, kLampGrey);

  // A count the table cannot back draws what there is and says so.
  s.OutputCount = 5;
  UpdateOutputs(s);
  EXPECT_EQ(s.PanelsLoaded, 0);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Outputs")));
}

// Every detector reports silence, so a panel whose channel can be read shows a red lamp.
TEST_F(OutputPanels, TextsFollowTheDisplayOptionAndReadUknownOutsideTheTables) {
  s.Outputs.assign(1, OutputEntry());
  s.Outputs[0].MonitoringEnabled = true;
  s.Outputs[0].CustomLabel = QStringLiteral("Studio A    ");
  s.InputNames[4] = QStringLiteral("Mic 5");
  for (SilenceStatusEntry& detector : s.SilenceStatus) {
    detector = {1, 0x109, 0, 0, 0, 0, 0, 0};  // silent, detection enabled
  }
  const struct {
    const char* why;
    qint16 option, output, source, inputs, outputs;
    const char *toolTip, *nameLine, *channelLine;
  } cases[] = {
      {"output name", 0, 12, 4, 256, 256, "Out 0012    [0012]", "Out 0012", "Ch. 0012"},
      {"routed source", 1, 12, 4, 256, 256, "Mic 5    [0005]", "Mic 5", "Ch. 0005"},
      {"nothing routed", 1, 12, kNone, 256, 256, "-Off-", "-Off-", ""},
      {"source beyond the name table", 1, 12, 300, 256, 256, "Uknown", "Uknown", ""},
      {"source beyond the switcher's inputs", 1, 12, 4, 4, 256, "Uknown", "Uknown", ""},
      {"custom label on the second line", 2, 12, 4, 256, 256, "Studio A    ", "", "Studio A    "},
      {"no channel", 0, kNone, 4, 256, 256, "Uknown", "Uknown", ""},
      {"channel beyond the table", 0, 300, 4, 256, 256, "Uknown", "Uknown", ""},
      {"channel beyond the table, routed", 1, 300, 4, 256, 256, "Uknown", "Uknown", ""},
      {"channel zero", 0, 0, 4, 256, 256, "Uknown", "Uknown", ""},
      {"negative channel, routed", 1, -4, 4, 256, 256, "Uknown", "Uknown", ""},
      {"the switcher's count bounds the table", 0, 9, 4, 256, 8, "Uknown", "Uknown", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    OutputEntry& o = s.Outputs[0];
    o.DisplayOption = c.option;
    o.Output = c.output;
    s.SwitcherInputCount = c.inputs;
    s.SwitcherOutputCount = c.outputs;
    s.CrosspointMap[11].SourceCount = c.source == kNone ? 0 : 1;
    s.CrosspointMap[11].Sources[0] = c.source;
    UpdateOutputs(s);
    const OutputPanelModel& p = Panel(0);
    EXPECT_EQ((QStringList{p.toolTip, p.nameLine, p.channelLine}),
              (QStringList{c.toolTip, c.nameLine, c.channelLine}));
    EXPECT_EQ(p.lamp, c.output == 12 ? kLampRed : kLampGrey);
  }
  EXPECT_TRUE(ErrorLines().isEmpty());
}

}  // namespace
}  // namespace zrn
