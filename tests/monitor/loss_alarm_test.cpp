#include "monitor_fixture.h"

namespace zrn {
namespace {

using test::Bytes;
using test::kLatch3;
using test::kRelease3;

const QByteArray kLatch2 = Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x01, 0x00, 0x45, 0xFF});

const QString kOn = QStringLiteral("Loss Alarm Report On");
const QString kOff = QStringLiteral("Loss Alarm Report Off");
const QString kCanceled = QStringLiteral("Loss Alarm Report Canceled");

// Three watched outputs with audio, relay 3 of four as the alarm relay, on a live link.
class LossAlarm : public test::LinkedStateTest {
 protected:
  void SetUp() override {
    LinkedStateTest::SetUp();
    // The outputs are laid out before the exchange completes, as at start-up.
    s.linkState.ExchangeComplete = false;
    Watch(3, 0x100);
    s.linkState.ExchangeComplete = true;
    Wire();
  }
  // A poll tick as far as the relay is concerned.
  void Tick() {
    BeginRelayTick(s);
    LossAlarmTick(s);
  }
  void Silence(int output, quint8 status) {
    s.SilenceStatus[output].Status = status;
    UpdateStatus(s);
  }
  // Output 1 silent and the latch carried out.
  void AlarmOnRelay() {
    Silence(0, 1);
    ReportRelay(1);
    Wire();
  }
  Rgb Lamp(int output) const { return s.panels.outputs[output].lamp; }
  QStringList Alarms() const { return Activity(QStringLiteral("Loss Alarm")); }
};

TEST_F(LossAlarm, TwoSilentInOnePassLatchOnce) {
  s.SilenceStatus[0].Status = 1;
  s.SilenceStatus[1].Status = 1;
  UpdateStatus(s);
  EXPECT_EQ(Wire(), kLatch3);
  EXPECT_EQ(Alarms(), QStringList{kOn});
  EXPECT_TRUE(s.MessageRows.last().endsWith(QStringLiteral(" - Loss Alarm Report On")));

  ReportRelay(1);
  Silence(2, 1);
  EXPECT_TRUE(Wire().isEmpty()) << "already reported on";
  EXPECT_EQ(Alarms(), QStringList{kOn});
}

TEST_F(LossAlarm, LatchIsRepeatedEachTickUntilTheSwitcherReportsIt) {
  Silence(0, 1);
  EXPECT_EQ(Wire(), kLatch3);
  Silence(1, 1);
  EXPECT_TRUE(Wire().isEmpty()) << "not again before the next tick";
  for (int tick = 0; tick < 3; ++tick) {
    Tick();
    EXPECT_EQ(Wire(), kLatch3) << tick;
  }
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampGrey) << "the lamp shows the report";
  ReportRelay(1);
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampRed);
  for (int tick = 0; tick < 20; ++tick) {
    Tick();
  }
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(Lamp(0), kLampRed);
  EXPECT_EQ(Alarms(), QStringList{kOn});
}

TEST_F(LossAlarm, ReleasedOnlyWhenTheLastSilentOutputRecovers) {
  Silence(0, 1);
  Silence(1, 1);
  ReportRelay(1);
  Wire();
  Silence(0, 0);
  EXPECT_TRUE(Wire().isEmpty());
  Silence(1, 0);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_EQ(Alarms(), (QStringList{kOn, kOff}));
  ReportRelay(0);
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampGrey);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
}

TEST_F(LossAlarm, AcknowledgingTheOnlySilentOutputReleases) {
  AlarmOnRelay();
  EXPECT_FALSE(AcknowledgeLossAlarm(s, 1)) << "a green lamp has nothing to acknowledge";
  EXPECT_EQ(s.Outputs[1].AlarmState, 0);

  EXPECT_TRUE(AcknowledgeLossAlarm(s, 0));
  EXPECT_EQ(Lamp(0), kLampYellow);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_EQ(Alarms(),
            (QStringList{kOn, QStringLiteral("Out 0001 [0001] Loss Alarm Canceled - User"), kOff}));
  EXPECT_FALSE(AcknowledgeLossAlarm(s, 0)) << "already acknowledged";
  EXPECT_FALSE(AcknowledgeLossAlarm(s, 3));
  EXPECT_FALSE(AcknowledgeLossAlarm(s, -1));

  Silence(1, 1);
  s.Outputs[1].MonitoringEnabled = false;
  EXPECT_FALSE(AcknowledgeLossAlarm(s, 1)) << "red until the next pass, but not monitored";
  EXPECT_EQ(Alarms().size(), 4);
}

TEST_F(LossAlarm, CancelWithoutAUsableRelayDoesNothing) {
  Silence(0, 1);
  Wire();
  for (qint16 relay : {kNone, qint16(5), qint16(0)}) {
    s.AlarmRelay = relay;
    cmdCancel_Click(s);
    EXPECT_TRUE(Wire().isEmpty()) << relay;
    EXPECT_FALSE(s.Outputs[0].AlarmCanceled);
  }
  EXPECT_FALSE(Alarms().contains(kCanceled));
}

TEST_F(LossAlarm, CancelWithNoAlarmStillReleases) {
  cmdCancel_Click(s);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_EQ(Alarms(), QStringList{kCanceled});
}

TEST_F(LossAlarm, CancelTakesWhatAlarmsNowOffTheRelayUntilItsSilenceChanges) {
  AlarmOnRelay();
  cmdCancel_Click(s);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_TRUE(s.Outputs[0].AlarmCanceled);
  EXPECT_EQ(Lamp(0), kLampRed) << "still silent, still shown";
  EXPECT_EQ(s.Outputs[0].AlarmState, 0) << "cancel is no acknowledgement";

  // Released each tick until the switcher agrees, and never latched again for this silence.
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(0);
  Silence(0, 1);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(Alarms(), (QStringList{kOn, kCanceled}));

  // Another output's silence alarms as usual; so does this one's next silence.
  Silence(1, 1);
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  Silence(1, 0);
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(0);
  Silence(0, 0);
  Silence(0, 1);
  EXPECT_EQ(Wire(), kLatch3);
  EXPECT_EQ(Alarms(), (QStringList{kOn, kCanceled, kOn, kOff, kOn}));
}

TEST_F(LossAlarm, InShowModeOnlyShowsAlarm) {
  s.ProgramMode = 1;
  s.Shows.assign(2, ShowRecord());
  s.ShowCount = 2;
  s.ActiveShows = {0, 1};
  s.ActiveShowCount = 2;
  Silence(0, 1);
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_FALSE(AcknowledgeLossAlarm(s, 0));

  s.Shows[1].Alarm = 1;
  s.Shows[1].DownlinkMonitor = 5;
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  s.Shows[1].AlarmSuppressed = true;
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(0);
  s.Shows[1].AlarmSuppressed = false;
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);

  cmdCancel_Click(s);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_TRUE(s.Shows[1].AlarmCanceled);
  EXPECT_FALSE(s.Shows[0].AlarmCanceled);
  EXPECT_EQ(Alarms(), (QStringList{kOn, kOff, kOn, kCanceled}));

  // A show out of the table is skipped, not read.
  s.ActiveShows = {7};
  s.ActiveShowCount = 3;
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
}

// A relay found latched when this monitor first decides (left so before a restart) is released
// once; after that only a relay this monitor latched itself is released, so a second monitor
// (or a panel) holding the same relay is left alone and no command storm arises.
TEST_F(LossAlarm, OnlyOwnLatchesAreReleasedAfterTheFirstDecision) {
  ReportRelay(1);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_TRUE(Alarms().isEmpty()) << "the decision did not change";
  ReportRelay(1);
  Tick();
  EXPECT_TRUE(Wire().isEmpty()) << "someone else holds it now";

  // Our own latch is released when the silence ends, repeated each tick until carried out.
  ReportRelay(0);
  Silence(0, 1);
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  Tick();
  Silence(0, 0);
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(1);
  EXPECT_TRUE(Wire().isEmpty()) << "a report never triggers a second command in one tick";
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(0);
  ReportRelay(1);
  Tick();
  EXPECT_TRUE(Wire().isEmpty()) << "latched again by another controller: not ours to release";

  // Wanted while someone else flips it: at most one latch per tick, however many reports.
  ReportRelay(0);
  Silence(1, 1);
  EXPECT_EQ(Wire(), kLatch3);
  for (int i = 0; i < 10; ++i) {
    ReportRelay((i + 1) % 2);
  }
  EXPECT_TRUE(Wire().isEmpty());
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
}

// A scheduled event that changes a lamp in the same tick as the tick's own decision sends the
// relay command once.
TEST_F(LossAlarm, OneCommandPerTickWhateverDecidesInIt) {
  BeginRelayTick(s);
  Silence(0, 1);
  UpdateOutputs(s);
  LossAlarmTick(s);
  EXPECT_EQ(Wire(), kLatch3);
}

// On a new connection nothing is commanded from the previous connection's relay states until
// this connection's exchange has completed.
TEST_F(LossAlarm, NoRelayCommandBeforeTheExchangeCompletes) {
  AlarmOnRelay();
  OnClosed(s);
  OnConnected(s);
  Silence(0, 0);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  s.linkState.ExchangeComplete = true;
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
}

TEST_F(LossAlarm, ARelayBeyondTheTableCountsAsNone) {
  s.SwitcherRelayCount = 2;
  s.RelayStates.assign(2, 1);
  AlarmRelayTableArrived(s);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Alarm Relay 0003")));
  Silence(0, 1);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_TRUE(Alarms().isEmpty());
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampGrey);

  // Until the relay names arrive no relay is known at all.
  State fresh;
  fresh.AlarmRelay = 3;
  EXPECT_FALSE(AlarmRelayUsable(fresh));
}

TEST_F(LossAlarm, AChangedAlarmRelayLeavesNothingLatched) {
  AlarmOnRelay();
  s.AlarmRelay = 2;
  Tick();
  EXPECT_EQ(Wire(), kRelease3 + kLatch2);
  s.RelayStates = {0, 1, 0, 0};
  RelayStatesReported(s);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(Alarms(), QStringList{kOn}) << "still one alarm";

  s.AlarmRelay = kNone;
  Tick();
  EXPECT_EQ(Wire(), Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x01, 0x00, 0x41, 0xFF}));
  EXPECT_EQ(Alarms(), (QStringList{kOn, kOff}));
}

TEST_F(LossAlarm, ADeadLinkDefersTheCommandNotTheDecision) {
  OnClosed(s);
  Silence(0, 1);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(Alarms(), QStringList{kOn});
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
}

TEST_F(LossAlarm, TheTickLooksAgainWhenTheGraceEnds) {
  StartSilenceGrace(s, 0, 7);
  Silence(0, 1);
  EXPECT_EQ(Lamp(0), kLampGrey);
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  clock.AdvanceSeconds(13);
  Tick();
  EXPECT_EQ(Lamp(0), kLampRed);
  EXPECT_EQ(Wire(), kLatch3);
}

}  // namespace
}  // namespace zrn
