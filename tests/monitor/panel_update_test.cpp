#include "monitor/panel_update.h"

#include "monitor/loss_alarm.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::TempStateTest;

constexpr qint16 kDetecting = 0x109;  // message only, device on, silence detection enabled

class PanelTexts : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.Outputs.assign(1, OutputEntry());
    s.Outputs[0].Output = 12;
  }
  const OutputPanelModel& Show(qint16 option) {
    s.Outputs[0].DisplayOption = option;
    UpdateOutputs(s);
    return s.panels.outputs[0];
  }
  void Route(int output, qint16 source) {
    s.CrosspointMap[output].SourceCount = 1;
    s.CrosspointMap[output].Sources[0] = source;
  }
};

TEST_F(PanelTexts, OutputNameWithItsNumber) {
  const OutputPanelModel& panel = Show(0);
  EXPECT_EQ(panel.toolTip, QStringLiteral("Out 0012    [0012]"));
  EXPECT_EQ(panel.nameLine, QStringLiteral("Out 0012"));
  EXPECT_EQ(panel.channelLine, QStringLiteral("Ch. 0012"));
  EXPECT_EQ(PanelName(s, s.Outputs[0]), QStringLiteral("Out 0012"));
}

TEST_F(PanelTexts, RoutedSourceOrOffOrUnknown) {
  s.InputNames[4] = QStringLiteral("Mic 5");
  Route(11, 4);
  const OutputPanelModel& panel = Show(1);
  EXPECT_EQ(panel.toolTip, QStringLiteral("Mic 5    [0005]"));
  EXPECT_EQ(panel.nameLine, QStringLiteral("Mic 5"));
  EXPECT_EQ(panel.channelLine, QStringLiteral("Ch. 0005"));

  s.CrosspointMap[11].SourceCount = 0;
  Show(1);
  EXPECT_EQ(panel.toolTip, QStringLiteral("-Off-"));
  EXPECT_EQ(panel.nameLine, QStringLiteral("-Off-"));
  EXPECT_EQ(panel.channelLine, QString());

  Route(11, 300);
  Show(1);
  EXPECT_EQ(panel.nameLine, QStringLiteral("Uknown"));
  EXPECT_EQ(panel.channelLine, QString());

  // A source inside the name table but beyond the switcher's inputs is unknown too.
  s.SwitcherInputCount = 4;
  Route(11, 4);
  EXPECT_EQ(Show(1).toolTip, QStringLiteral("Uknown"));
}

TEST_F(PanelTexts, CustomLabelTakesTheSecondLine) {
  s.Outputs[0].CustomLabel = QStringLiteral("Studio A    ");
  const OutputPanelModel& panel = Show(2);
  EXPECT_EQ(panel.nameLine, QString());
  EXPECT_EQ(panel.channelLine, QStringLiteral("Studio A    "));
  EXPECT_EQ(panel.toolTip, QStringLiteral("Studio A    "));
}

TEST_F(PanelTexts, ChannelsOutsideTheTablesReadUknown) {
  s.Outputs[0].MonitoringEnabled = true;
  for (SilenceStatusEntry& detector : s.SilenceStatus) {
    detector = {1, kDetecting, 0, 0, 0, 0, 0, 0};
  }
  for (qint16 channel : {qint16(kNone), qint16(300), qint16(0), qint16(-4)}) {
    s.Outputs[0].Output = channel;
    EXPECT_EQ(Show(0).toolTip, QStringLiteral("Uknown")) << channel;
    EXPECT_EQ(Show(1).nameLine, QStringLiteral("Uknown")) << channel;
    EXPECT_EQ(s.panels.outputs[0].lamp, kLampGrey);
  }
  // The switcher's count bounds the table, not the table's size.
  s.SwitcherOutputCount = 8;
  s.Outputs[0].Output = 9;
  EXPECT_EQ(Show(0).toolTip, QStringLiteral("Uknown"));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

class Lamps : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.Outputs.assign(2, OutputEntry());
    s.OutputCount = 2;
    for (int i = 0; i < 2; ++i) {
      s.Outputs[i].Output = static_cast<qint16>(i + 1);
      s.Outputs[i].MonitoringEnabled = true;
      s.SilenceStatus[i].Mode = kDetecting;
    }
    UpdateOutputs(s);
  }
  Rgb Pass(quint8 silence) {
    s.SilenceStatus[0].Status = silence;
    UpdateStatus(s);
    return s.panels.outputs[0].lamp;
  }
  // What the lamp pass decides for the relay.
  bool Alarms() const { return AlarmRelayWanted(s); }
};

TEST_F(Lamps, SilenceAcknowledgementAndReturn) {
  EXPECT_EQ(Pass(0), kLampGreen);
  EXPECT_FALSE(Alarms());
  EXPECT_EQ(Pass(1), kLampRed);
  EXPECT_TRUE(Alarms());

  s.Outputs[0].AlarmState = 1;
  EXPECT_EQ(Pass(1), kLampYellow);
  EXPECT_FALSE(Alarms());

  // The acknowledgement ends with its silence, so the next silence alarms again.
  EXPECT_EQ(Pass(0), kLampGreen);
  EXPECT_EQ(s.Outputs[0].AlarmState, 0);
  EXPECT_EQ(Pass(1), kLampRed);
  EXPECT_TRUE(Alarms());

  EXPECT_EQ(Pass(3), kLampCyan) << "silent with a peak is neither state";
  EXPECT_FALSE(Alarms());
  EXPECT_EQ(Pass(2), kLampCyan);
}

// A peak appearing or fading on a silent output leaves the acknowledgement and the cancel in
// force; only the silence bit clearing ends them, whichever report brings it.
TEST_F(Lamps, OnlyTheSilenceBitEndsAnAcknowledgementOrCancel) {
  struct Case {
    const char* what;
    bool acknowledged;  // else cancelled
    std::vector<quint8> reports;
    Rgb lamp;
    bool alarms;
  };
  const Case cases[] = {
      {"peak on, peak off, acknowledged", true, {3, 1}, kLampYellow, false},
      {"peak flicker, acknowledged", true, {3, 1, 3, 1, 3}, kLampYellow, false},
      {"peak on, peak off, cancelled", false, {3, 1}, kLampRed, false},
      {"audio back then silent, acknowledged", true, {0, 1}, kLampRed, true},
      {"audio back with a peak then silent, cancelled", false, {2, 1}, kLampRed, true},
  };
  for (const Case& c : cases) {
    s.Outputs[0].AlarmState = 0;
    s.Outputs[0].AlarmCanceled = false;
    Pass(0);
    ASSERT_EQ(Pass(1), kLampRed) << c.what;
    if (c.acknowledged) {
      ASSERT_TRUE(AcknowledgeLossAlarm(s, 0)) << c.what;
    } else {
      s.Outputs[0].AlarmCanceled = true;
    }
    Rgb lamp = kLampGrey;
    for (quint8 report : c.reports) {
      lamp = Pass(report);
    }
    EXPECT_EQ(lamp, c.lamp) << c.what;
    EXPECT_EQ(Alarms(), c.alarms) << c.what;
  }
}

TEST_F(Lamps, DetectionCountsOnlyWithItsEnableBit) {
  s.SilenceStatus[0].Mode = 0x009;  // a device configured, detection switched off
  EXPECT_EQ(Pass(1), kLampGrey);
  EXPECT_FALSE(Alarms());
  s.SilenceStatus[0].Mode = 0x100;
  EXPECT_EQ(Pass(1), kLampRed);
}

// An off period ends whatever was acknowledged or cancelled: a silence still there when
// monitoring comes back is a new alarm.
TEST_F(Lamps, MonitoringOffForgetsTheAcknowledgementAndTheCancel) {
  for (const bool cancel : {false, true}) {
    Pass(0);
    Pass(1);
    if (cancel) {
      s.Outputs[0].AlarmCanceled = true;
    } else {
      s.Outputs[0].AlarmState = 1;
    }
    EXPECT_FALSE(Alarms());
    s.Outputs[0].MonitoringEnabled = false;
    EXPECT_EQ(Pass(1), kLampGrey);
    EXPECT_EQ(s.Outputs[0].AlarmState, 0);
    EXPECT_FALSE(s.Outputs[0].AlarmCanceled);
    s.Outputs[0].MonitoringEnabled = true;
    EXPECT_EQ(Pass(1), kLampRed) << (cancel ? "cancelled" : "acknowledged");
    EXPECT_TRUE(Alarms());
  }
}

TEST_F(Lamps, NothingChangesWhileTheDetectorRequestsAreOutstanding) {
  Pass(0);
  s.requests.Req4 = 0x40;
  EXPECT_EQ(Pass(1), kLampGreen);
  s.requests.Req4 = 0;
  EXPECT_EQ(Pass(1), kLampRed);
}

TEST_F(Lamps, ShowModeRaisesNoOutputAlarm) {
  s.ProgramMode = 1;
  EXPECT_EQ(Pass(1), kLampGrey);
  EXPECT_FALSE(Alarms());
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
