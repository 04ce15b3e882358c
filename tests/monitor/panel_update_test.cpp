#include "monitor_fixture.h"

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
      {"no channel, routed", 1, kNone, 4, 256, 256, "Uknown", "Uknown", ""},
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

// Two watched outputs with audio on a live link.
class Lamps : public test::LinkedStateTest {
 protected:
  void SetUp() override {
    LinkedStateTest::SetUp();
    Watch(2, kDetecting);
  }
  Rgb Pass(quint8 silence) {
    s.SilenceStatus[0].Status = silence;
    UpdateStatus(s);
    return s.panels.outputs[0].lamp;
  }
  // What the lamp pass decides for the relay.
  bool Alarms() const { return AlarmRelayWanted(s); }
};

// A silence report after a pass with audio, under conditions that decide whether it counts.
TEST_F(Lamps, SilenceCountsOnlyWhenDetectedInOutputModeWithNothingOutstanding) {
  const struct {
    const char* why;
    qint16 mode;
    quint8 req4;
    qint16 programMode;
    Rgb lamp;
    bool alarms;
  } cases[] = {
      {"detecting", kDetecting, 0, 0, kLampRed, true},
      {"a device configured, detection switched off", 0x009, 0, 0, kLampGrey, false},
      {"the enable bit alone", 0x100, 0, 0, kLampRed, true},
      {"detector requests outstanding: nothing changes", kDetecting, 0x40, 0, kLampGreen, false},
      {"show mode raises no output alarm", kDetecting, 0, 1, kLampGrey, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    s.ProgramMode = 0;
    s.requests.Req4 = 0;
    s.SilenceStatus[0].Mode = kDetecting;
    ASSERT_EQ(Pass(0), kLampGreen);
    s.SilenceStatus[0].Mode = c.mode;
    s.requests.Req4 = c.req4;
    s.ProgramMode = c.programMode;
    EXPECT_EQ(Pass(1), c.lamp);
    EXPECT_EQ(Alarms(), c.alarms);
  }
}

TEST_F(Lamps, OwnRouteChangeHoldsTheLampGreyUntilTheGraceEnds) {
  Pass(1);
  s.Outputs[0].AlarmState = 1;
  Pass(1);
  s.SilenceStatus[0].DetectTime = 4;
  s.SilenceStatus[0].ReturnTime = 2;
  StartSilenceGrace(s, 0, 7);
  EXPECT_EQ(Pass(1), kLampGrey);
  EXPECT_FALSE(Alarms());
  EXPECT_TRUE(s.panels.outputs[0].lampInGrace);
  EXPECT_EQ(s.Outputs[0].AlarmState, 0) << "the new source's silence is a new silence";
  clock.AdvanceSeconds(6);
  EXPECT_EQ(Pass(1), kLampRed);
  EXPECT_TRUE(Alarms());
  EXPECT_FALSE(s.panels.outputs[0].lampInGrace);

  // A route to the source that is already routed is no change: no grace, the alarm stays.
  s.CrosspointMap[0].SourceCount = 1;
  s.CrosspointMap[0].Sources[0] = 6;
  StartSilenceGrace(s, 0, 6);
  EXPECT_EQ(Pass(1), kLampRed);
  EXPECT_TRUE(Alarms());
}

}  // namespace
}  // namespace zrn
