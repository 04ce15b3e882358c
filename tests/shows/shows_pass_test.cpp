#include "monitor/panel_update.h"
#include "show_fixture.h"
#include "shows/show_editor_rules.h"

namespace zrn {
namespace {

using test::kConfig10;
using test::kConfig11;
using test::kLatch3;
using test::kPark10;
using test::kRelease3;
using test::kRoute5To10;
using test::kRoute7To11;

const QString kOn = QStringLiteral("Loss Alarm Report On");
const QString kOff = QStringLiteral("Loss Alarm Report Off");
const QString kCanceled = QStringLiteral("Loss Alarm Report Canceled");

class ShowsPassTest : public test::ShowsTest {
 protected:
  // The show on air with its monitor past its grace, the downlink reporting audio.
  void StartMorning() {
    AddShow(QStringLiteral("Morning"), 5);
    Tick();
    Report(10, 0);
    Tick();
    Wire();
  }
  // One watched output (switcher output 1) with detection on, for the output alarm.
  void WatchOutputOne() {
    s.Outputs.assign(1, OutputEntry());
    s.OutputCount = 1;
    s.Outputs[0].Output = 1;
    s.Outputs[0].MonitoringEnabled = true;
    s.SilenceStatus[0].Mode = 0x109;
    UpdateOutputs(s);
  }
};

TEST_F(ShowsPassTest, ShowsWaitForALiveCompleteLink) {
  AddShow(QStringLiteral("Morning"), 5);
  struct Case {
    const char* what;
    std::function<void(State&)> spoil;
  } cases[] = {
      {"not connected", [](State& st) { st.Connected = false; }},
      {"exchange incomplete", [](State& st) { st.linkState.ExchangeComplete = false; }},
      {"a request unanswered", [](State& st) { st.requests.Req3 = 4; }},
      {"a further request unanswered", [](State& st) { st.requests.Req4 = 1; }},
      {"output mode", [](State& st) { st.ProgramMode = 0; }},
  };
  for (const Case& c : cases) {
    State saved = s;
    c.spoil(s);
    ShowsPass(s);
    EXPECT_EQ(s.ActiveShowCount, 0) << c.what;
    EXPECT_TRUE(Wire().isEmpty()) << c.what;
    s = saved;
  }
  ShowsPass(s);
  EXPECT_EQ(s.ActiveShowCount, 1);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10);
}

TEST_F(ShowsPassTest, MonitorsAreSentAgainAfterEachCompletedExchange) {
  AddShow(QStringLiteral("Morning"), 5, {7});
  AddShow(QStringLiteral("Sharing"), 5);
  ShowsPass(s);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10 + kRoute7To11 + kConfig11);
  Report(10, 0);
  Report(11, 0);

  // The switcher restarts: nothing is sent while the link is down or incomplete.
  CloseSwitcherLink(s);
  ShowsPass(s);
  OnConnected(s);
  ShowsPass(s);
  EXPECT_TRUE(Wire().isEmpty());
  s.linkState.ExchangeComplete = true;
  // The new exchange's crosspoint map: output 10 still carries the downlink, output 11 lost its
  // studio source in the restart.
  s.CrosspointMap[10].SourceCount = 1;
  s.CrosspointMap[10].Sources[0] = 5;
  ResendShowMonitors(s);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10 + kRoute7To11 + kConfig11)
      << "each borrowed output once, shared or not";
  // A monitor routed again to what it carries keeps its report; one routed anew waits until
  // its detector has looked at the new source.
  EXPECT_FALSE(InSilenceGrace(s, 10));
  EXPECT_TRUE(InSilenceGrace(s, 11));
  s.SilenceStatus[10].Status = 1;
  ShowsPass(s);
  EXPECT_EQ(Indicator(0), kLampRed);
  EXPECT_EQ(Wire(), kLatch3) << "nothing routed again, the alarm on the relay";

  s.ProgramMode = 0;
  ResendShowMonitors(s);
  EXPECT_TRUE(Wire().isEmpty());
}

TEST_F(ShowsPassTest, TheLatchIsRepeatedUntilReportedAndACancelLastsUntilTheNextChange) {
  StartMorning();
  Report(10, 1);
  for (int tick = 0; tick < 3; ++tick) {
    Tick();
    EXPECT_EQ(Wire(), kLatch3) << tick;
  }
  EXPECT_EQ(Indicator(0), kLampRed);
  ReportRelay(1);
  Tick();
  Tick();
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(Activity().last(), kOn);

  cmdCancel_Click(s);
  EXPECT_EQ(Wire(), kRelease3);
  EXPECT_TRUE(s.Shows[0].AlarmCanceled);
  ReportRelay(0);
  Tick();
  Tick();
  EXPECT_TRUE(Wire().isEmpty()) << "a cancelled show stays off the relay";
  EXPECT_EQ(Indicator(0), kLampRed);

  // Audio comes back and goes again: the cancel is over.
  Report(10, 0);
  Tick();
  EXPECT_FALSE(s.Shows[0].AlarmCanceled);
  Report(10, 1);
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  Report(10, 0);
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
  // The log names the show whose downlink went silent.
  const QString on = QStringLiteral("Morning Silence Alarm Status ON!");
  const QString off = QStringLiteral("Morning Silence Alarm Status OFF!");
  EXPECT_EQ(Activity(), (QStringList{on, kOn, kCanceled, off, on, kOn, off, kOff}));
}

// A show monitor routed again to the source it already carries (a re-send after a drop, Show
// Setup OK, the next show on the same downlink) is no change: no grace, no park, and the live
// alarm holds the relay throughout.
TEST_F(ShowsPassTest, ALiveShowAlarmStandsWhenItsMonitorIsRoutedAgainToTheSameSource) {
  AddShow(QStringLiteral("Morning"), 5);
  const int evening = AddShow(QStringLiteral("Evening"), 5, {}, QStringLiteral("14:00:01"),
                              QStringLiteral("16:00:00"));
  Tick();
  Report(10, 0);
  s.CrosspointMap[10].SourceCount = 1;
  s.CrosspointMap[10].Sources[0] = 5;
  Report(10, 1);
  Tick();
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10 + kLatch3);
  ReportRelay(1);

  auto holds = [&](const char* what) {
    for (int tick = 0; tick < 3; ++tick) {
      Tick();
    }
    EXPECT_FALSE(Wire().contains(kRelease3)) << what;
    EXPECT_FALSE(Activity().contains(kOff)) << what;
    EXPECT_EQ(Indicator(0), kLampRed) << what;
  };
  CloseSwitcherLink(s);
  Tick();
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  ResendShowMonitors(s);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10);
  holds("after a reconnection");

  ReplaceShows(s, s.Shows);
  EXPECT_FALSE(Wire().contains(kPark10));
  holds("after Show Setup OK");

  At(QTime(14, 0, 1));
  Tick();
  EXPECT_FALSE(Wire().contains(kPark10)) << "handed over, not parked";
  EXPECT_EQ(s.ActiveShows, std::vector<qint16>{static_cast<qint16>(evening)});
  holds("after the handover");
  EXPECT_EQ(Activity().count(kOn), 1);
  EXPECT_EQ(Activity().filter(QStringLiteral("Silence Alarm Status ON!")),
            (QStringList{"Morning Silence Alarm Status ON!", "Evening Silence Alarm Status ON!"}));
}

// What the switcher must still be told after an outage: a show that ended meanwhile is parked,
// not routed again; a park refused on the dead link goes out once the link is back.
TEST_F(ShowsPassTest, ParksOwedDuringAnOutageGoOutOnTheNextExchange) {
  AddShow(QStringLiteral("Morning"), 5);
  Tick();
  Wire();
  CloseSwitcherLink(s);
  At(QTime(14, 0, 30));
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  ResendShowMonitors(s);
  EXPECT_EQ(Wire(), kPark10);
  EXPECT_EQ(s.ActiveShowCount, 0);

  At(QTime(12, 15, 0));
  Tick();
  Wire();
  CloseSwitcherLink(s);
  ReplaceShows(s, {});
  EXPECT_TRUE(Wire().isEmpty());
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  ResendShowMonitors(s);
  EXPECT_EQ(Wire(), kPark10);
  ResendShowMonitors(s);
  EXPECT_TRUE(Wire().isEmpty()) << "owed once";
}

// Two shows share a monitor; when the one that set it up ends, the other's own detector
// settings are sent to it.
TEST_F(ShowsPassTest, ASharedMonitorTakesTheSettingsOfTheShowThatKeepsIt) {
  AddShow(QStringLiteral("Morning"), 5, {}, QStringLiteral("12:00:00"), QStringLiteral("12:30:00"));
  const int brunch = AddShow(QStringLiteral("Brunch"), 5);
  s.Shows[brunch].DetectLevel = 804;
  Tick();
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10);
  At(QTime(12, 30, 1));
  Tick();
  const QByteArray sent = Wire();
  EXPECT_TRUE(sent.startsWith(char(0xCB))) << sent.toHex().toStdString();
  EXPECT_FALSE(sent.contains(kPark10));
  EXPECT_EQ(s.SilenceOuts[0].Show, brunch);
  EXPECT_EQ(s.SilenceOuts[0].DetectLevel, 804);
}

// A peak appearing or fading on a silent downlink keeps the show's cancel in force.
TEST_F(ShowsPassTest, APeakOnASilentDownlinkKeepsTheCancel) {
  StartMorning();
  Report(10, 1);
  Tick();
  ReportRelay(1);
  cmdCancel_Click(s);
  ReportRelay(0);
  Wire();
  for (quint8 status : {3, 1, 3, 1}) {
    Report(10, status);
    Tick();
  }
  EXPECT_TRUE(s.Shows[0].AlarmCanceled);
  EXPECT_FALSE(Wire().contains(kLatch3));
}

TEST_F(ShowsPassTest, EachModeKeepsItsOwnAlarmOnTheRelay) {
  WatchOutputOne();
  StartMorning();

  // Show mode: the show alarm holds the relay while a watched output's silence comes and goes,
  // and a silent watched output does not hold it once the show's alarm is over.
  Report(10, 1);
  Tick();
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  for (quint8 status : {1, 0, 1}) {
    s.SilenceStatus[0].Status = status;
    UpdateStatus(s);
    Tick();
  }
  EXPECT_TRUE(Wire().isEmpty());
  Report(10, 0);
  Tick();
  EXPECT_EQ(Wire(), kRelease3);
  ReportRelay(0);
  s.SilenceStatus[0].Status = 0;
  UpdateStatus(s);

  // Output mode: the shows give back their outputs, and the show pass leaves the output alarm's
  // relay alone.
  s.ProgramMode = 0;
  UpdateOutputs(s);
  Tick();
  EXPECT_EQ(Wire(), kPark10);
  EXPECT_EQ(s.ActiveShowCount, 0);
  s.SilenceStatus[0].Status = 1;
  UpdateStatus(s);
  EXPECT_EQ(Wire(), kLatch3);
  ReportRelay(1);
  Report(10, 1);
  for (int tick = 0; tick < 3; ++tick) {
    Tick();
  }
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(s.ActiveShowCount, 0) << "no show is started outside show mode";
  s.SilenceStatus[0].Status = 0;
  UpdateStatus(s);
  EXPECT_EQ(Wire(), kRelease3);
}

TEST_F(ShowsPassTest, TheOpenStatusWindowsSourcesAreRefreshedEachTick) {
  AddShow(QStringLiteral("Morning"), 5, {7});
  Tick();
  Report(11, 1);
  s.SelectedShow = 0;
  Tick();
  EXPECT_EQ(s.Shows[0].StudioLeft[0].Status, 0) << "only while the window is open";
  s.ShowStatusOpen = true;
  Tick();
  EXPECT_EQ(s.Shows[0].StudioLeft[0].Status, 1);
}

}  // namespace
}  // namespace zrn
