#include "schedule_fixture.h"

namespace zrn::test {
namespace {

using NextEvent = ScheduleTest;

TEST_F(NextEvent, IsTheNearestFollowingOccurrenceRoundTheWeek) {
  const std::vector<ScheduledEvent> twiceADay = {Event("06:00:00", kEveryDay),
                                                 Event("18:00:00", kEveryDay)};
  const std::vector<ScheduledEvent> eveningFirst = {Event("18:00:00", kEveryDay),
                                                    Event("06:00:00", kEveryDay)};
  const std::vector<ScheduledEvent> tueFri = {Event("09:00:00", kTuesday),
                                              Event("08:00:00", kFriday)};
  const struct {
    const char* why;
    std::vector<ScheduledEvent> events;
    int day;
    const char* time;
    int next;
  } cases[] = {
      {"midday", twiceADay, 2, "12:00:00", 1},
      {"a second before", twiceADay, 2, "17:59:59", 1},
      {"an event at the current second is not next", twiceADay, 2, "18:00:00", 0},
      {"Sunday evening continues into Monday", twiceADay, 6, "18:00:00", 0},
      {"Monday evening: Tuesday's", tueFri, 0, "20:00:00", 0},
      {"Tuesday just after: Friday's", tueFri, 1, "09:00:01", 1},
      {"Friday a second before", tueFri, 4, "07:59:59", 1},
      {"Friday at its second: next Tuesday's", tueFri, 4, "08:00:00", 0},
      {"Saturday: Tuesday's", tueFri, 5, "12:00:00", 0},
      {"a weekly event past today is next week's",
       {Event("06:00:00", kWednesday)},
       2,
       "12:00:00",
       0},
      {"no events", {}, 2, "12:00:00", kNone},
      {"no day bit among the seven",
       {Event("06:00:00", 0), Event("07:00:00", 0x80)},
       2,
       "12:00:00",
       kNone},
      {"earliest wins whatever the order, morning", eveningFirst, 2, "05:00:00", 1},
      {"earliest wins whatever the order, evening", eveningFirst, 2, "19:00:00", 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.why);
    SetEvents(c.events);
    StartAt(c.day, c.time);
    EXPECT_EQ(s.Outputs[0].NextEvent, c.next);
  }
}

TEST_F(NextEvent, OnlyLoadedPanelsAndUnreadableEntriesAreSafe) {
  s.Outputs.resize(3);
  s.PanelsLoaded = 2;
  for (int o = 0; o < 3; ++o) {
    SetEvents({Event("10:00:00", kEveryDay)}, o);
    s.Outputs[static_cast<size_t>(o)].NextEvent = 7;
  }
  // An unreadable time is left out; a count beyond the array uses the events that exist.
  SetEvents({Event("25:00:00", kEveryDay), Event("11:00:00", kEveryDay)}, 1);
  s.Outputs[1].EventCount = 5;
  StartAt(2, "09:00:00");
  EXPECT_EQ(s.Outputs[0].NextEvent, 0);
  EXPECT_EQ(s.Outputs[1].NextEvent, 1);
  EXPECT_EQ(s.Outputs[2].NextEvent, 7) << "beyond the loaded panels";
  GetNextEvent(s, 2);
  EXPECT_EQ(s.Outputs[2].NextEvent, 0);
  clock.AdvanceSeconds(61);
  GetNextEvent(s, 40);

  const QStringList errors = ErrorLines();
  ASSERT_EQ(errors.size(), 3);
  for (const QString& line : errors) {
    EXPECT_TRUE(line.contains(QStringLiteral("Error determining next event"))) << qPrintable(line);
  }
  EXPECT_TRUE(errors.join('\n').contains(QStringLiteral("Type mismatch")));
  EXPECT_TRUE(errors.join('\n').contains(QStringLiteral("Subscript out of range")));
}

class StartUp : public ScheduleTest {
 protected:
  void SetUp() override {
    ScheduleTest::SetUp();
    ScheduledEvent morning = Event("06:00:00", kWeekdays, true);
    ScheduledEvent night = Event("22:00:00", kWeekdays, false);
    night.DisplayOption = 2;
    night.Label = QStringLiteral("Off Air     ");
    night.Connect = true;
    night.Source = 5;
    SetEvents({morning, night});
  }
  // Restart at a time: what the output takes over from its schedule.
  std::pair<bool, qint16> RestartAt(int day, const char* time) {
    s.Outputs[0].MonitoringEnabled = !s.Outputs[0].MonitoringEnabled;
    StartAt(day, time);
    ApplyMostRecentPastEvents(s);
    return {s.Outputs[0].MonitoringEnabled, s.Outputs[0].DisplayOption};
  }
};

TEST_F(StartUp, TakesTheMostRecentPastEventOfTheWeek) {
  EXPECT_EQ(RestartAt(1, "23:30:00"), std::make_pair(false, qint16{2}));
  EXPECT_EQ(s.Outputs[0].CustomLabel, QStringLiteral("Off Air     "));
  EXPECT_EQ(RestartAt(2, "05:59:59"), std::make_pair(false, qint16{2}));
  EXPECT_EQ(RestartAt(2, "06:00:00"), std::make_pair(true, qint16{0})) << "at its second";
  EXPECT_EQ(RestartAt(6, "12:00:00"), std::make_pair(false, qint16{2})) << "from Friday night";
  EXPECT_EQ(RestartAt(0, "03:00:00"), std::make_pair(false, qint16{2}));
  EXPECT_TRUE(s.OutputsDirty);
  EXPECT_TRUE(link.wire.isEmpty()) << "no routing";
  EXPECT_TRUE(s.MessageRows.isEmpty()) << "no report";
  EXPECT_EQ(s.Outputs[0].NextEvent, 0);

  SetEvents({});
  EXPECT_EQ(RestartAt(2, "12:00:00"), std::make_pair(true, qint16{2})) << "nothing to take";
}

}  // namespace
}  // namespace zrn::test
