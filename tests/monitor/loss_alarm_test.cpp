#include "monitor_fixture.h"

namespace zrn {
namespace {

using namespace test;

const QString kUserAck = QStringLiteral("Out 0001 [0001] Loss Alarm Canceled - User");

const Scenario kScenarios[] = {
    {"two silent in one pass latch once", "s01 =L r1 s2 =-", {kOn}},
    {"the latch is repeated each tick until the switcher reports it",
     "s0 =L s1 =- t =L t =L t =L #w- r1 #wr t20 =- #0r",
     {kOn}},
    {"released only when the last silent output recovers",
     "s0 s1 r1 _ a0 =- a1 =R r0 #w- t =-",
     {kOn, kOff}},
    {"acknowledging the only silent output releases",
     "s0 r1 _ n1 k0 #0y =R n0 n3 n-1 s1 d1 n1",
     {kOn, kUserAck, kOff, kOn}},
    {"cancel without a usable relay does nothing, and cancels nothing",
     "s0 _ A- c =- A5 c =- A0 c =- A3 t =L",
     {kOn}},
    {"cancel with no alarm still releases", "c =R", {kCanceled}},
    // Cancel takes what alarms now off the relay until its silence changes; another output's
    // silence alarms as usual, and so does this one's next silence.
    {"cancel lasts until the silence changes",
     "s0 r1 _ c =R #0r t =R r0 s0 t =- s1 =L r1 a1 =R r0 a0 s0 =L",
     {kOn, kCanceled, kOn, kOff, kOn}},
    // Found latched at the first decision (left so before a restart): released once. After
    // that only a latch of our own is released, so a second monitor (or a panel) holding the
    // same relay is left alone, and reports never storm it: one command per tick at most.
    {"only own latches are released after the first decision",
     "r1 =R r1 t =- r0 s0 =L r1 t a0 =R r1 =- t =R r0 r1 t =- r0 s1 =L r1 r0 r1 r0 r1 r0 =- t =L",
     {kOn, kOff, kOn}},
    {"one command per tick whatever decides in it", "b s0 u l =L", {kOn}},
    {"no relay command before the exchange of a new connection completes",
     "s0 r1 _ x o a0 t =- e t =R",
     {kOn, kOff}},
    {"a changed alarm relay leaves nothing latched",
     "s0 r1 _ A2 t =RL2 r0100 t =- A- t =R2",
     {kOn, kOff}},
    {"a dead link defers the command, not the decision", "x s0 t =- o e t =L", {kOn}},
    {"the tick looks again when the grace ends", "g0 s0 #0- t =- +13 t #0r =L", {kOn}},
    {"acknowledged, back to audio, the next silence alarms again",
     "a0 #0g w0 s0 #0r w1 k0 #0y w0 a0 #0g s0 #0r w1 p0 #0c w0 P0 #0c",
     {kOn, kUserAck, kOff, kOn, kOff}},
    // A peak appearing or fading on a silent output leaves the acknowledgement and the cancel
    // in force; only the silence bit clearing ends them.
    {"a peak keeps the acknowledgement", "s0 k0 p0 s0 p0 s0 p0 #0y w0", {kOn, kUserAck, kOff}},
    {"a peak keeps the cancel", "s0 c p0 s0 #0r w0", {kOn, kCanceled}},
    {"audio ends the acknowledgement", "s0 k0 a0 s0 #0r w1", {kOn, kUserAck, kOff, kOn}},
    {"audio with a peak ends the cancel", "s0 c P0 s0 #0r w1", {kOn, kCanceled, kOn}},
    // An off period ends whatever was acknowledged or cancelled.
    {"monitoring off forgets the acknowledgement",
     "s0 k0 d0 s0 #0- m0 s0 #0r w1",
     {kOn, kUserAck, kOff, kOn}},
    {"monitoring off forgets the cancel", "s0 c d0 s0 #0- m0 s0 #0r w1", {kOn, kCanceled, kOn}},
    // The new source's silence is a new silence, looked at once the detector could tell.
    {"a route change holds the lamp grey, then alarms anew",
     "s0 k0 g0 s0 #0- w0 +13 s0 #0r w1",
     {kOn, kUserAck, kOff, kOn}},
    // Output 1 already carries source 7: routing it there again is no change, the alarm stays.
    {"a route to the source already there is no change", "s1 g1 s1 #1r w1", {kOn}},
    // A silence counts only when detected, in output mode, with no detector request outstanding.
    {"silence counts while detecting", "f109 s0 #0r w1", {kOn}},
    {"a device configured with detection off raises nothing", "f009 s0 #0- w0", {}},
    {"outstanding detector requests change nothing", "q40 s0 #0g w0", {}},
    {"show mode raises no output alarm", "h1 s0 #0- w0", {}},
};

// Three watched outputs with audio, relay 3 of four as the alarm relay, on a live link.
class LossAlarm : public test::LinkedStateTest, public testing::WithParamInterface<Scenario> {
 protected:
  void SetUp() override {
    LinkedStateTest::SetUp();
    // The outputs are laid out before the exchange completes, as at start-up.
    s.linkState.ExchangeComplete = false;
    Watch(3, 0x100);
    s.CrosspointMap[1].SourceCount = 1;
    s.CrosspointMap[1].Sources[0] = 7;
    s.linkState.ExchangeComplete = true;
    Wire();
  }
  QStringList Alarms() const { return Activity(QStringLiteral("Loss Alarm")); }
};

TEST_P(LossAlarm, Scenario) {
  Steps(GetParam().steps);
  EXPECT_EQ(Alarms(), GetParam().log);
}

// The log of a scenario holds only its alarm lines.
INSTANTIATE_TEST_SUITE_P(Steps, LossAlarm, testing::ValuesIn(kScenarios), test::ScenarioName);

using LossAlarmCases = LossAlarm;

// In show mode only shows alarm; a suppressed show's alarm is off the relay, and a show out of
// the table is skipped, not read.
TEST_F(LossAlarmCases, InShowModeOnlyShowsAlarm) {
  s.Shows.assign(2, ShowRecord());
  s.ShowCount = 2;
  s.ActiveShows = {0, 1};
  s.ActiveShowCount = 2;
  Steps("h1 s0 =- n0");
  s.Shows[1].Alarm = 1;
  s.Shows[1].DownlinkMonitor = 5;
  Steps("t =L r1");
  s.Shows[1].AlarmSuppressed = true;
  Steps("t =R r0");
  s.Shows[1].AlarmSuppressed = false;
  Steps("t =L r1 c =R");
  EXPECT_EQ(std::pair(s.Shows[0].AlarmCanceled, s.Shows[1].AlarmCanceled), std::pair(false, true));
  EXPECT_EQ(Alarms(), (QStringList{kOn, kOff, kOn, kCanceled}));

  s.ActiveShows = {7};
  s.ActiveShowCount = 3;
  Steps("t =R");
}

TEST_F(LossAlarmCases, ARelayBeyondTheTableCountsAsNone) {
  s.SwitcherRelayCount = 2;
  s.RelayStates.assign(2, 1);
  AlarmRelayTableArrived(s);
  Steps("s0 t =- #w-");
  EXPECT_TRUE(Alarms().isEmpty());

  // Until the relay names arrive no relay is known at all.
  State fresh;
  fresh.AlarmRelay = 3;
  EXPECT_FALSE(AlarmRelayUsable(fresh));
}

}  // namespace
}  // namespace zrn
