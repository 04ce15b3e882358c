#include "monitor/panel_update.h"
#include "show_fixture.h"

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
  ResendShowMonitors(s);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10 + kRoute7To11 + kConfig11)
      << "each borrowed output once, shared or not";
  // Until the detectors have looked at their sources again, their old reports count for nothing.
  s.SilenceStatus[10].Status = 1;
  ShowsPass(s);
  EXPECT_EQ(Indicator(0), kLampGrey);
  EXPECT_TRUE(Wire().isEmpty());

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
  EXPECT_EQ(Activity(), QStringList{kOn});

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
  EXPECT_EQ(Activity(), (QStringList{kOn, kCanceled, kOn, kOff}));
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
