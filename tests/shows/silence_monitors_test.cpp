#include "shows/silence_monitors.h"
#include "show_fixture.h"
#include "shows/show_activity.h"

namespace zrn::test {
namespace {

using SilenceMonitors = ShowsTest;

TEST_F(SilenceMonitors, AShowBorrowsTheFirstFreeOutputsAndGivesThemBack) {
  Steps("HMorning/5/14:00:00/12:00:00/7 G =C10C11 @14:00:01 G =P10P11");
  EXPECT_EQ(s.Shows[0].DownlinkMonitor, kNone);
  EXPECT_EQ(s.Shows[0].StudioLeft[0].Monitor, kNone);
  EXPECT_TRUE(std::ranges::all_of(
      s.SilenceOuts, [](const SilenceOut& e) { return e.Source == kNone && e.Show == kNone; }));
}

TEST_F(SilenceMonitors, MissingAndUndefinedMonitorsAreSkipped) {
  SetSilenceOuts({10, 11});
  EXPECT_EQ(FindSilenceDetectMonitorOutput(s, kNone), kNone);
  AddShow(QStringLiteral("Morning"), 5, {kNone, 7, 8});
  GetActiveShows(s);
  // The undefined studio source borrows nothing; the third finds no output left.
  EXPECT_EQ(s.Shows[0].StudioLeft[0].Monitor, kNone);
  EXPECT_EQ(s.Shows[0].StudioLeft[1].Monitor, 11);
  EXPECT_EQ(s.Shows[0].StudioLeft[2].Monitor, kNone);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].endsWith(
      QStringLiteral("Unable to locate output to monitor studio source for show: Morning")));

  AddShow(QStringLiteral("Evening"), 6, {5});
  GetActiveShows(s);
  EXPECT_EQ(s.Shows[1].DownlinkMonitor, kNone);
  EXPECT_EQ(s.Shows[1].StudioLeft[0].Monitor, kNone) << "no studio source after a downlink failed";
  ASSERT_EQ(ErrorLines().size(), 2);
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

TEST_F(SilenceMonitors, IndicatorsFollowTheWholeStatusByteOutsideIgnoreWindows) {
  const int show = AddShow(QStringLiteral("Morning"), 5);
  s.Shows[show].IgnoreCount = 1;
  s.Shows[show].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")}};
  ShowsPass(s);
  Wire();
  struct Case {
    QTime at;
    quint8 status;
    Rgb indicator;
    bool alarms;
  } cases[] = {{QTime(12, 15, 0), 1, kLampGrey, false}, {QTime(12, 0, 0), 1, kLampRed, true},
               {QTime(12, 30, 0), 1, kLampRed, true},   {QTime(12, 40, 0), 0, kLampGreen, false},
               {QTime(12, 40, 0), 2, kLampGrey, false}, {QTime(12, 40, 0), 3, kLampGrey, false}};
  for (const Case& c : cases) {
    Report(10, c.status);
    At(c.at);
    ShowsPass(s);
    EXPECT_EQ(Indicator(0), c.indicator) << qPrintable(c.at.toString()) << " " << int(c.status);
    EXPECT_EQ(AlarmRelayWanted(s), c.alarms) << qPrintable(c.at.toString()) << " " << int(c.status);
  }
  // A window that cannot be read is reported and does not apply.
  Report(10, 1);
  s.Shows[show].IgnoreWindows[0].EndTime = QStringLiteral("twelve");
  At(QTime(12, 15, 0));
  ShowsPass(s);
  EXPECT_EQ(Indicator(0), kLampRed);
  ASSERT_FALSE(ErrorLines().isEmpty());
  EXPECT_TRUE(ErrorLines().last().contains(
      QStringLiteral("Error updating show display (silence) Show:Morning")));
  // Not connected: the indicator keeps its colour.
  Report(10, 0);
  CloseSwitcherLink(s);
  UpdateShowSilenceDisplay(s, show);
  EXPECT_EQ(Indicator(0), kLampRed);
}

// The borrowed output was parked, so its detector still reports silence: grey until the
// silence outlasts the detect and return times, or at once when the detector reports on the new
// source.
TEST_F(SilenceMonitors, TheOldSourcesSilenceRaisesNoAlarmAtTheStart) {
  Steps("D1 HMorning/5/14:00:00 t =C10 #i- >12 #i- >1 #ir =L r1 HSecond/6/14:00:00 E1 t E0 t");
  EXPECT_EQ(Indicator(1), kLampGreen);
}

}  // namespace
}  // namespace zrn::test
