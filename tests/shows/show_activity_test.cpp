#include "shows/show_activity.h"
#include "show_fixture.h"

namespace zrn::test {
namespace {

using ShowActivity = ShowsTest;

TEST_F(ShowActivity, AShowIsOnAirWhenEveryTestPasses) {
  const QDate monday(2025, 11, 17);
  const QDate newYear(2025, 1, 1);
  const QDate lastDay(2025, 12, 31);
  struct Case {
    const char *start, *end;
    qint16 days;
    QDate day;
    QTime at;
    bool onAir;
  } cases[] = {
      {"08:00:00", "10:00:00", 127, monday, QTime(8, 0, 0), true},
      {"08:00:00", "10:00:00", 127, monday, QTime(10, 0, 0), true},
      {"23:00:00", "01:00:00", 127, monday, QTime(23, 30, 0), false},
      {"24:00:00", "10:00:00", 127, monday, QTime(9, 0, 0), false},
      {"08:00:00", "24:00:00", 127, monday, QTime(9, 0, 0), false},
      {"08:00:00", "10:00:00", 1, monday, QTime(9, 0, 0), true},
      {"08:00:00", "10:00:00", 64, monday.addDays(6), QTime(9, 0, 0), true},
      {"08:00:00", "10:00:00", 0, monday, QTime(9, 0, 0), false},
      {"00:00:00", "23:59:59", 127, newYear, QTime(0, 0, 0), true},
      {"00:00:00", "23:59:59", 127, lastDay, QTime(23, 59, 59), true},
      {"00:00:00", "23:59:59", 127, newYear.addDays(-1), QTime(23, 59, 59), false},
      {"00:00:00", "23:59:59", 127, lastDay.addDays(1), QTime(0, 0, 0), false},
  };
  for (const Case& c : cases) {
    EndActiveShows(s);
    s.Shows.clear();
    AddShow(QStringLiteral("Solo"), kNone, {}, QLatin1String(c.start), QLatin1String(c.end));
    s.Shows[0].Days = c.days;
    s.Shows[0].StartDate = QStringLiteral("01/01/2025");
    s.Shows[0].EndDate = QStringLiteral("12/31/2025");
    At(c.at, c.day);
    GetActiveShows(s);
    EXPECT_EQ(s.ActiveShows, c.onAir ? std::vector<qint16>{0} : std::vector<qint16>{})
        << c.start << "-" << c.end << " days " << c.days << " "
        << qPrintable(QDateTime(c.day, c.at).toString());
    EXPECT_EQ(s.Shows[0].ActivityState, c.onAir ? 1 : 0);
  }
  EXPECT_TRUE(ErrorLines().isEmpty());
}

TEST_F(ShowActivity, UnreadableTimesAndDatesAreReported) {
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

TEST_F(ShowActivity, EndsComeBeforeStartsAndClearTheCancel) {
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
  EXPECT_EQ(s.ActiveShows, std::vector<qint16>{1});
  EXPECT_EQ(s.SilenceOuts[0].Show, 1);
  EXPECT_FALSE(s.Shows[0].AlarmCanceled);
  EXPECT_TRUE(ErrorLines().isEmpty());
}

}  // namespace
}  // namespace zrn::test
