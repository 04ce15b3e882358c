#include "monitor/panel_update.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::TempStateTest;

constexpr qint16 kDetecting = 0x109;  // message only, device on, silence detection enabled

using PanelTexts = TempStateTest;

// Every detector reports silence, so a panel whose channel can be read shows a red lamp.
TEST_F(PanelTexts, FollowTheDisplayOptionAndReadUknownOutsideTheTables) {
  s.Outputs.assign(1, OutputEntry());
  s.Outputs[0].MonitoringEnabled = true;
  s.Outputs[0].CustomLabel = QStringLiteral("Studio A    ");
  s.InputNames[4] = QStringLiteral("Mic 5");
  for (SilenceStatusEntry& detector : s.SilenceStatus) {
    detector = {1, kDetecting, 0, 0, 0, 0, 0, 0};
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
    const OutputPanelModel& panel = s.panels.outputs[0];
    EXPECT_EQ(panel.toolTip, QString::fromLatin1(c.toolTip));
    EXPECT_EQ(panel.nameLine, QString::fromLatin1(c.nameLine));
    EXPECT_EQ(panel.channelLine, QString::fromLatin1(c.channelLine));
    EXPECT_EQ(panel.lamp, c.output == 12 ? kLampRed : kLampGrey);
  }
  s.Outputs[0].Output = 12;
  s.SwitcherOutputCount = 256;
  EXPECT_EQ(PanelName(s, s.Outputs[0]), QStringLiteral("Out 0012"));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

}  // namespace
}  // namespace zrn
