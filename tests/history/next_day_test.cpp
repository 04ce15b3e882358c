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

ScheduledEvent Routing(const char* time, qint16 days, qint16 source, const char* label) {
  ScheduledEvent e = Event(time, days);
  e.Connect = true;
  e.Source = source;
  e.DisplayOption = 2;
  e.Label = QString::fromLatin1(label);
  return e;
}

struct Ran {
  QDateTime when;
  int output;
  int event;
  friend bool operator==(const Ran&, const Ran&) = default;
};

void PrintTo(const Ran& r, std::ostream* os) {
  *os << r.when.toString(Qt::ISODate).toStdString() << " output " << r.output << " event "
      << r.event;
}

class NextDay : public test::ScheduleTest {
 protected:
  void SetUp() override {
    ScheduleTest::SetUp();
    s.Outputs.resize(3);
    s.OutputCount = 3;
    s.PanelsLoaded = 3;
    s.Outputs[1].Output = 13;
    s.Outputs[2].Output = 14;
    s.InputNames[4] = QStringLiteral("Sat 1");
  }
};

// The list worked out at noon on Sunday is what the scheduler then runs, tick by tick, until
// noon on Monday: across midnight and into the next week.
TEST_F(NextDay, EqualsWhatTheSchedulerRunsOverTheDay) {
  SetEvents({Event("06:00:00", kEveryDay), Event("18:00:00", kEveryDay, false)}, 0);
  SetEvents({Routing("00:00:30", kMonday, 5, "Night       "), Event("23:59:50", kSunday, false)},
            1);
  SetEvents({Event("09:00:00", kSaturday), Event("11:59:59", kSunday), Event("12:00:00", kMonday),
             Event("18:00:00", kSunday, false)},
            2);
  StartAt(6, "12:00:00");

  const std::vector<UpcomingEvent> listed = NextDayEvents(s, clock.Now());
  std::vector<Ran> expected;
  for (const UpcomingEvent& e : listed) {
    expected.push_back({e.when, e.output, e.event});
  }
  ASSERT_EQ(expected, (std::vector<Ran>{{At(6, "18:00:00"), 0, 1},
                                        {At(6, "18:00:00"), 2, 3},
                                        {At(6, "23:59:50"), 1, 1},
                                        {At(7, "00:00:30"), 1, 0},
                                        {At(7, "06:00:00"), 0, 0},
                                        {At(7, "12:00:00"), 2, 2}}));
  EXPECT_EQ(listed[3].label, QStringLiteral("Night       "));
  EXPECT_EQ(listed[3].source, QStringLiteral("Sat 1 [0005]"));
  EXPECT_TRUE(listed[3].monitoring);
  EXPECT_FALSE(listed[0].monitoring);
  EXPECT_EQ(listed[4].label, QStringLiteral("Studio A"));

  std::vector<Ran> ran;
  std::vector<std::vector<QDateTime>> lastRun(3);
  while (clock.Now() < At(7, "12:00:00")) {
    Ticks(1);
    for (int i = 0; i < 3; ++i) {
      const std::vector<QDateTime>& now = s.Outputs[static_cast<size_t>(i)].LastRun;
      for (std::size_t j = 0; j < now.size(); ++j) {
        if (now[j].isValid() && (j >= lastRun[i].size() || lastRun[i][j] != now[j])) {
          ran.push_back({now[j], i, static_cast<int>(j)});
        }
      }
      lastRun[i] = now;
    }
  }
  std::stable_sort(ran.begin(), ran.end(),
                   [](const Ran& a, const Ran& b) { return a.when < b.when; });
  EXPECT_EQ(ran, expected);
}

TEST_F(NextDay, CsvHasOneLinePerEventWithItsFieldsQuotedWhenNeeded) {
  SetEvents({Routing("23:00:00", kEveryDay, 5, "News, late  ")}, 0);
  StartAt(2, "22:00:00");
  EXPECT_EQ(UpcomingCsv(NextDayEvents(s, clock.Now())),
            QStringLiteral("Time,Output,Monitoring,Label,Source\r\n"
                           "2026-11-18 23:00:00,0012,on,\"News, late  \",Sat 1 [0005]\r\n"));
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
  EXPECT_EQ(window.Table()->item(0, 0)->text(), QStringLiteral("10:00:00"));

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
