#include "schedule_fixture.h"

namespace zrn::test {
namespace {

using NextEvent = ScheduleTest;

TEST_F(NextEvent, IsTheNearestFollowingOccurrenceRoundTheWeek) {
  const std::vector<ScheduledEvent> twice = {Event("06:00:00", kEveryDay),
                                             Event("18:00:00", kEveryDay)};
  const std::vector<ScheduledEvent> eveningFirst = {twice[1], twice[0]};
  const std::vector<ScheduledEvent> tueFri = {Event("09:00:00", kTuesday),
                                              Event("08:00:00", kFriday)};
  const std::vector<ScheduledEvent> noDay = {Event("06:00:00", 0), Event("07:00:00", 0x80)};
  const struct {
    const char* why;
    std::vector<ScheduledEvent> events;
    int day;
    const char* time;
    int next;
  } cases[] = {
      {"an event at the current second is not next", twice, 2, "18:00:00", 0},
      {"Sunday evening continues into Monday", twice, 6, "18:00:00", 0},
      {"Friday at its second: next Tuesday's", tueFri, 4, "08:00:00", 0},
      {"no day bit among the seven", noDay, 2, "12:00:00", kNone},
      {"earliest wins whatever the order", eveningFirst, 2, "19:00:00", 1},
  };
  for (const auto& c : cases) {
    SetEvents(c.events);
    StartAt(c.day, c.time);
    EXPECT_EQ(s.Outputs[0].NextEvent, c.next) << c.why;
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
  clock.AdvanceSeconds(61);  // past the minute in which a repeated error line is folded
  GetNextEvent(s, 40);

  const QString errors = ErrorLines().join('\n');
  EXPECT_EQ(ErrorLines().filter(QStringLiteral("Error determining next event")).size(), 3);
  EXPECT_TRUE(errors.contains(QStringLiteral("Type mismatch")));
  EXPECT_TRUE(errors.contains(QStringLiteral("Subscript out of range")));
}

}  // namespace
}  // namespace zrn::test
