#pragma once

#include <QDate>
#include <QDateTime>

#include "core/state.h"
#include "monitor/poll_tick.h"
#include "schedule/due_events.h"
#include "schedule/event_scheduler.h"
#include "support/connected_state.h"
#include "support/person.h"

namespace zrn::test {

inline constexpr qint16 kTuesday = 2, kFriday = 16, kEveryDay = 0x7F;

inline ScheduledEvent Event(const char* time, qint16 days, bool active = true) {
  ScheduledEvent e;
  e.Time = QString::fromLatin1(time);
  e.Days = days;
  e.Active = active;
  return e;
}

// One watched output (switcher output 12, "Studio A") on a live fake link; the clock is driven
// the way the poll timer drives it, one 500 ms tick at a time.
class ScheduleTest : public ConnectedStateTest {
 protected:
  void SetUp() override {
    ConnectedStateTest::SetUp();
    s.linkState.ExchangeComplete = true;
    s.OutputNames[11] = QStringLiteral("Studio A");
    s.InputNames[4] = QStringLiteral("Sat 1");
    s.Outputs[0].Output = 12;
  }

  void SetEvents(std::vector<ScheduledEvent> events, int output = 0) {
    OutputEntry& o = s.Outputs[static_cast<size_t>(output)];
    o.EventCount = static_cast<qint16>(events.size());
    o.Events = std::move(events);
  }

  // Day 0 is Monday 16 November 2026; 7 is the Monday after.
  static QDateTime At(int day, const char* time) {
    return QDateTime(QDate(2026, 11, 16).addDays(day), QTime::fromString(time, "HH:mm:ss"));
  }
  // Start-up at a time: the clock is read and every next event computed.
  void StartAt(int day, const char* time) {
    clock.Set(At(day, time));
    RefreshClock(s);
    GetNextEvent(s, kNone);
  }
  // One poll tick at the given moment: clock, clock jump, scheduled events.
  void TickAt(const QDateTime& when) {
    const int before = MinuteOfWeek(s.CurrentTime, s.Today);
    clock.Set(when);
    RefreshClock(s);
    const int now = MinuteOfWeek(s.CurrentTime, s.Today);
    FollowClockJump(s, before, now);
    RunDueEvents(s, now);
  }
  void Ticks(int n) {
    for (int k = 0; k < n; ++k) {
      TickAt(clock.Now().addMSecs(500));
    }
  }
};

}  // namespace zrn::test
