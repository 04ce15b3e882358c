#include "history/next_day.h"

#include <QTableWidget>

#include "monitor/monitor.h"
#include "schedule/schedule_fixture.h"
#include "window/next_day_window.h"

namespace zrn {
namespace {

using test::Event;
using test::kEveryDay;

constexpr qint16 kMonday = 1, kSaturday = 32, kSunday = 64;

// Watched outputs 12 "Studio A", 13 and 14 on a live link, and a fourth without events.
class NextDay : public test::ScheduleTest {
 protected:
  void SetUp() override {
    ScheduleTest::SetUp();
    s.Outputs.resize(4);
    s.OutputCount = 4;
    s.PanelsLoaded = 4;
    s.Outputs[1].Output = 13;
    s.Outputs[2].Output = 14;
    s.Outputs[3].Output = 15;
  }
  // When, and which output's which event.
  static QString Ran(const QDateTime& when, int output, int event) {
    return when.toLocalTime().toString(Qt::ISODate) +
           QStringLiteral(" %1/%2").arg(output).arg(event);
  }
};

// The list worked out at noon on Sunday is what the scheduler then runs, tick by tick, until
// noon on Monday: across midnight and into the next week.
TEST_F(NextDay, EqualsWhatTheSchedulerRunsOverTheDay) {
  ScheduledEvent night = Event("00:00:30", kMonday);
  night.Connect = true;
  night.Source = 5;
  night.DisplayOption = 2;
  night.Label = QStringLiteral("Night, late ");
  SetEvents({Event("06:00:00", kEveryDay), Event("18:00:00", kEveryDay, false)}, 0);
  SetEvents({night, Event("23:59:50", kSunday, false)}, 1);
  SetEvents({Event("09:00:00", kSaturday), Event("11:59:59", kSunday), Event("12:00:00", kMonday),
             Event("18:00:00", kSunday, false)},
            2);
  StartAt(6, "12:00:00");

  const std::vector<UpcomingEvent> listed = NextDayEvents(s, clock.Now());
  QStringList expected;
  for (const UpcomingEvent& e : listed) {
    expected << Ran(e.when, e.output, e.event);
  }
  // Fields with a comma are quoted.
  EXPECT_EQ(UpcomingCsv(listed), QStringLiteral("Time,Output,Monitoring,Label,Source\r\n"
                                                "2026-11-22 18:00:00,0012,off,Studio A,\r\n"
                                                "2026-11-22 18:00:00,0014,off,Out 0014,\r\n"
                                                "2026-11-22 23:59:50,0013,off,Out 0013,\r\n"
                                                "2026-11-23 00:00:30,0013,on,\"Night, late \","
                                                "Sat 1 [0005]\r\n"
                                                "2026-11-23 06:00:00,0012,on,Studio A,\r\n"
                                                "2026-11-23 12:00:00,0014,on,Out 0014,\r\n"));

  QStringList ran;
  std::vector<std::vector<QDateTime>> lastRun(3);
  while (clock.Now() < At(7, "12:00:00")) {
    Ticks(1);
    for (int i = 0; i < 3; ++i) {
      const std::vector<QDateTime>& now = s.Outputs[static_cast<size_t>(i)].LastRun;
      for (std::size_t j = 0; j < now.size(); ++j) {
        if (now[j].isValid() && (j >= lastRun[i].size() || lastRun[i][j] != now[j])) {
          ran << Ran(now[j], i, static_cast<int>(j));
        }
      }
      lastRun[i] = now;
    }
  }
  ran.sort();  // by time, then output
  EXPECT_EQ(ran, expected);
}

// The open window follows a schedule edited meanwhile.
TEST(NextDayWindowTest, FollowsAChangedSchedule) {
  ManualClock clock(QDateTime(QDate(2026, 11, 18), QTime(9, 0, 0)));
  Monitor monitor(QString(), &clock);
  State& s = monitor.state();
  s.Outputs[0].Output = 12;
  s.Outputs[0].Events = {Event("10:00:00", kEveryDay)};
  s.Outputs[0].EventCount = 1;
  NextDayWindow window(monitor);
  window.show();
  EXPECT_EQ(window.Table()->rowCount(), 1);

  s.Outputs[0].Events.push_back(Event("08:30:00", kEveryDay, false));
  s.Outputs[0].EventCount = 2;
  emit monitor.changed();
  ASSERT_EQ(window.Table()->rowCount(), 2);
  EXPECT_EQ(window.Table()->item(0, 0)->text(), QStringLiteral("10:00:00"));
  EXPECT_EQ(window.Table()->item(1, 0)->text(), QStringLiteral("Thu 08:30:00"));
  EXPECT_EQ(window.Table()->item(1, 2)->text(), QStringLiteral("off"));
}

}  // namespace
}  // namespace zrn
