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

TEST_F(SilenceMonitors, IndicatorsFollowTheWholeStatusByteOutsideIgnoreWindows) {
  const int show = AddShow(QStringLiteral("Morning"), 5);
  s.Shows[show].IgnoreCount = 1;
  s.Shows[show].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")}};
  Steps(
      "Q _ @12:15:00 D1 Q #i- w0 @12:00:00 Q #ir w1 @12:30:00 Q #ir w1 @12:40:00 D0 Q #ig w0 "
      "D2 Q #i- w0 D3 Q #i- w0");
  // A window that cannot be read is reported and does not apply.
  s.Shows[show].IgnoreWindows[0].EndTime = QStringLiteral("twelve");
  Steps("D1 @12:15:00 Q #ir");
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
