#include "monitor/panel_update.h"
#include "show_fixture.h"
#include "shows/show_activity.h"
#include "shows/show_editor_rules.h"
#include "shows/silence_monitors.h"

namespace zrn::test {
namespace {

const QString kMorningOn = QStringLiteral("Morning Silence Alarm Status ON!");
const QString kMorningOff = QStringLiteral("Morning Silence Alarm Status OFF!");

const Scenario kScenarios[] = {
    // Not connected, the exchange incomplete, a request of either kind unanswered, output mode.
    {"shows wait for a live complete link",
     "HMorning/5/14:00:00 X Q =- o Q =- e V4 Q =- V0 q1 Q =- q0 h0 Q =- h1 Q =C10",
     {}},
    {"the latch is repeated until reported and a cancel lasts until the next change",
     "N D1 t =L t =L t =L #ir r1 t t =- c =R r0 t t =- #ir D0 t D1 t =L r1 D0 t =R",
     {kMorningOn, kOn, kCanceled, kMorningOff, kMorningOn, kOn, kMorningOff, kOff}},
    {"a peak on a silent downlink keeps the cancel",
     "N D1 t r1 c r0 _ D3 t D1 t D3 t D1 t =-",
     {kMorningOn, kOn, kCanceled, kMorningOff, kMorningOn, kMorningOff, kMorningOn}},
    // Show mode: the show alarm holds the relay while a watched output's silence comes and goes,
    // and a silent watched output does not hold it once the show's alarm is over. Output mode:
    // the shows give back their outputs, none starts, and the show pass leaves the output
    // alarm's relay alone.
    {"each mode keeps its own alarm on the relay",
     "W N D1 t =L r1 s0 t a0 t s0 t =- D0 t =R r0 a0 h0 u t =P10 s0 =L r1 D1 t t t =- a0 =R",
     {kMorningOn, kOn, kMorningOff, kOff, kOn, kOff}},
    // Re-sent after a drop, Show Setup OK, the next show on the same downlink: no grace, no
    // park, and the live alarm holds the relay throughout.
    {"a monitor routed again to the source it carries is no change",
     "HMorning/5/14:00:00 HEvening/5/16:00:00/14:00:01 t D0 K D1 t =C10L r1 t t t =- #ir X t Y "
     "=C10 t t t =- #ir U =C10 t t t =- #ir @14:00:01 t =C10 t t =- #ir",
     {kMorningOn, kOn, "Evening Silence Alarm Status ON!"}},
    // A show that ended meanwhile is parked, not routed again; a park refused on the dead link
    // goes out once the link is back, once.
    {"parks owed during an outage go out on the next exchange",
     "HMorning/5/14:00:00 t _ X @14:00:30 Y =P10 @12:15:00 t _ X Z =- Y =P10 Y =-",
     {}},
    // The second show joins the monitor the first set up, its detector not restarted; the
    // output is not parked while another show watches it, and the alarm then is that show's.
    {"shows sharing a downlink keep it watched until the last ends",
     "HShort/5/12:30:00 HLong/5/13:00:00 G =C10 @12:30:01 G =- D1 Q #ir =L @13:00:01 G =P10",
     {"Long Silence Alarm Status ON!", kOn}},
    // When the show that set the monitor up ends, the one that keeps it sends its own settings.
    {"a shared monitor takes the settings of the show that keeps it",
     "HMorning/5/12:30:00 HBrunch/5/14:00:00 L804 t =C10 @12:30:01 t =S10",
     {}},
    // Nothing while the link is down or its exchange incomplete; then each borrowed output once,
    // shared or not, the studio's newly routed one waiting for its detector; none in output mode.
    {"monitors are sent again after each completed exchange",
     "HMorning/5/14:00:00/12:00:00/7 HSharing/5/14:00:00 Q =C10C11 D0 E0 X Q o Q =- e K R =C10C11 "
     "I11 D1 Q #ir =L h0 R =-",
     {kMorningOn, "Sharing Silence Alarm Status ON!", kOn}},
    {"a show borrows the first free outputs and gives them back",
     "HMorning/5/14:00:00/12:00:00/7 G =C10C11 @14:00:01 G =P10P11 G =-",
     {}},
    // The borrowed output was parked, so its detector still reports silence: grey until the
    // silence outlasts the detect and return times, or at once when the detector reports on the
    // new source.
    {"the old source's silence raises no alarm at the start",
     "D1 HMorning/5/14:00:00 t =C10 #i- >12 #i- >1 #ir =L r1 HSecond/6/14:00:00 E1 t E0 t J",
     {kMorningOn, kOn}},
};

class ShowsPassTest : public ShowsTest, public testing::WithParamInterface<Scenario> {};

TEST_P(ShowsPassTest, Scenario) {
  Steps(GetParam().steps);
  EXPECT_EQ(Activity(), GetParam().log);
}

INSTANTIATE_TEST_SUITE_P(Steps, ShowsPassTest, testing::ValuesIn(kScenarios), ScenarioName);

TEST_F(ShowsPassTest, MissingAndUndefinedMonitorsAreSkipped) {
  SetSilenceOuts({10, 11});
  EXPECT_EQ(FindSilenceDetectMonitorOutput(s, kNone), kNone);
  // The undefined studio source borrows nothing and the third finds no output left; the evening's
  // studio is not looked for once its downlink found none.
  AddShow(QStringLiteral("Morning"), 5, {kNone, 7, 8});
  AddShow(QStringLiteral("Evening"), 6, {5});
  GetActiveShows(s);
  const std::vector<qint16> monitors = {
      s.Shows[0].StudioLeft[0].Monitor, s.Shows[0].StudioLeft[1].Monitor,
      s.Shows[0].StudioLeft[2].Monitor, s.Shows[1].DownlinkMonitor,
      s.Shows[1].StudioLeft[0].Monitor};
  EXPECT_EQ(monitors, (std::vector<qint16>{kNone, 11, kNone, kNone, kNone}));
  ASSERT_EQ(ErrorLines().size(), 2);
  EXPECT_TRUE(ErrorLines()[0].endsWith(
      QStringLiteral("Unable to locate output to monitor studio source for show: Morning")));
  EXPECT_TRUE(ErrorLines()[1].endsWith(
      QStringLiteral("Unable to locate output to monitor downlink source for show: Evening")));
  Wire();

  // Without a monitor the indicator is grey and the show stays out of the alarm.
  s.Shows[1].DownlinkStatus = 1;
  s.Shows[1].Alarm = 1;
  ShowsPass(s);
  EXPECT_EQ(Indicator(1), kLampGrey);
  EXPECT_TRUE(Wire().isEmpty());
  // Its release parks nothing, least of all the output the other show holds.
  FreeSilenceOuts(s, 1);
  EXPECT_TRUE(Wire().isEmpty());
  EXPECT_EQ(s.SilenceOuts[0].Show, 0);
}

TEST_F(ShowsPassTest, IndicatorsFollowTheWholeStatusByteOutsideIgnoreWindows) {
  const int show = AddShow(QStringLiteral("Morning"), 5);
  s.Shows[show].IgnoreCount = 1;
  s.Shows[show].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")}};
  Steps(
      "Q _ @12:15:00 D1 Q #i- w0 @12:00:00 Q #ir w1 @12:30:00 Q #ir w1 @12:40:00 D0 Q #ig w0 "
      "D2 Q #i- w0 D3 Q #i- w0");
  // A window that cannot be read is reported and does not apply.
  s.Shows[show].IgnoreWindows[0].EndTime = QStringLiteral("twelve");
  Steps("D1 @12:15:00 Q #ir");
  EXPECT_EQ(ErrorLines().filter("Error updating show display (silence) Show:Morning").size(), 1);
  // Not connected: the indicator keeps its colour.
  Report(10, 0);
  CloseSwitcherLink(s);
  UpdateShowSilenceDisplay(s, show);
  EXPECT_EQ(Indicator(0), kLampRed);
}

TEST_F(ShowsPassTest, AShowIsOnAirWhenEveryTestPasses) {
  const QDate monday(2025, 11, 17);
  // From, to, on which days; when it is asked; on air or not.
  const std::tuple<const char*, const char*, qint16, QDate, QTime, bool> cases[] = {
      {"08:00:00", "10:00:00", 127, monday, QTime(8, 0, 0), true},
      {"08:00:00", "10:00:00", 127, monday, QTime(10, 0, 0), true},
      {"23:00:00", "01:00:00", 127, monday, QTime(23, 30, 0), false},
      {"24:00:00", "10:00:00", 127, monday, QTime(9, 0, 0), false},
      {"08:00:00", "24:00:00", 127, monday, QTime(9, 0, 0), false},
      {"08:00:00", "10:00:00", 1, monday, QTime(9, 0, 0), true},
      {"08:00:00", "10:00:00", 64, monday.addDays(6), QTime(9, 0, 0), true},
      {"08:00:00", "10:00:00", 0, monday, QTime(9, 0, 0), false},
      {"00:00:00", "23:59:59", 127, QDate(2025, 1, 1), QTime(0, 0, 0), true},
      {"00:00:00", "23:59:59", 127, QDate(2025, 12, 31), QTime(23, 59, 59), true},
      {"00:00:00", "23:59:59", 127, QDate(2024, 12, 31), QTime(23, 59, 59), false},
      {"00:00:00", "23:59:59", 127, QDate(2026, 1, 1), QTime(0, 0, 0), false},
  };
  for (const auto& [start, end, days, day, at, onAir] : cases) {
    EndActiveShows(s);
    s.Shows.clear();
    AddShow(QStringLiteral("Solo"), kNone, {}, QLatin1String(start), QLatin1String(end));
    s.Shows[0].Days = days;
    s.Shows[0].StartDate = QStringLiteral("01/01/2025");
    s.Shows[0].EndDate = QStringLiteral("12/31/2025");
    At(at, day);
    GetActiveShows(s);
    EXPECT_EQ(s.ActiveShows, onAir ? std::vector<qint16>{0} : std::vector<qint16>{})
        << start << "-" << end << " days " << days << " "
        << qPrintable(QDateTime(day, at).toString());
    EXPECT_EQ(s.Shows[0].ActivityState, onAir ? 1 : 0);
  }
  EXPECT_TRUE(ErrorLines().isEmpty());
}

TEST_F(ShowsPassTest, UnreadableTimesAndDatesAreReported) {
  AddShow(QStringLiteral("Bad time"), 6, {}, QStringLiteral("12:xx:00"));
  AddShow(QStringLiteral("Bad date"), 5);
  s.Shows[1].StartDate = QStringLiteral("1x/01/2026");
  GetActiveShows(s);
  // The bad time keeps its own show off the air; the bad date does not.
  EXPECT_EQ(s.ActiveShows, std::vector<qint16>{1});
  ASSERT_EQ(ErrorLines().size(), 2);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error determining active shows")));
  EXPECT_TRUE(ErrorLines()[1].contains(QStringLiteral("Error checking show date")));
}

TEST_F(ShowsPassTest, EndsComeBeforeStartsAndClearTheCancel) {
  SetSilenceOuts({10});
  AddShow(QStringLiteral("Early"), 5, {}, QStringLiteral("12:00:00"), QStringLiteral("12:15:00"));
  AddShow(QStringLiteral("Late"), 6, {}, QStringLiteral("12:15:01"), QStringLiteral("13:00:00"));
  GetActiveShows(s);
  EXPECT_EQ(Wire(), kRoute5To10 + kConfig10);
  s.Shows[0].AlarmCanceled = true;
  At(QTime(12, 15, 1));
  GetActiveShows(s);
  // The only output goes back first, so the show that starts can have it; routed at once to
  // the new source, it needs no park in between.
  EXPECT_EQ(Wire(), Bytes({0xFE, 0x04, 0x00, 0x06, 0x00, 0x0A, 0x00, 0x14, 0xFF}) + kConfig10);
  EXPECT_FALSE(s.Shows[0].AlarmCanceled);
}

}  // namespace
}  // namespace zrn::test
