#include "schedule/due_events.h"

#include <algorithm>

#include "core/failure.h"
#include "schedule/event_scheduler.h"
#include "schedule/event_time.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kLocation = QStringLiteral("Error determining next event");
const QString kTitle = QStringLiteral("Timer Error");

constexpr int kMinutesPerDay = 1440;
constexpr int kMinutesPerWeek = 7 * kMinutesPerDay;
constexpr int kSecondsPerWeek = 7 * 86400;
// An event missed by less than this many minutes still runs.
constexpr int kCatchUpMinutes = 3;
// A clock moved on by this much leaves the catch-up window behind, so the schedules are looked
// at afresh.
constexpr int kJumpMinutes = 3;

void ExamineOutput(State& s, int index, int minuteNow, const QDateTime& wallNow) {
  OutputEntry& output = At(s.Outputs, index);
  bool guarded = false;
  if (output.HoldOffTicks > 0) {
    --output.HoldOffTicks;
    guarded = output.HoldOffEvent == kNone || output.HoldOffEvent == output.NextEvent;
    if (output.HoldOffTicks == 0) {
      output.HoldOffEvent = kNone;
    }
  }
  if (output.NextEvent == kNone || guarded) {
    return;
  }
  if (output.NextEvent < 0 || output.NextEvent >= UsableEventCount(output)) {
    // The schedule changed under the pointer: look again rather than skip forever.
    LogError(s, kLocation, kTitle, Failure::SubscriptOutOfRange());
    GetNextEvent(s, index);
    return;
  }
  const ScheduledEvent& event = output.Events[static_cast<size_t>(output.NextEvent)];
  const int today = DayNow(s);
  if (!RunsOn(event, today)) {
    return;
  }
  int at = 0;
  try {
    at = EventTimeSeconds(event.Time);
  } catch (const Failure& failure) {
    // The next search leaves the unreadable event out.
    LogError(s, kLocation, kTitle, failure);
    GetNextEvent(s, index);
    return;
  }
  const int now = SecondsNow(s);
  const bool onTime = at == now;
  const bool late = at < now && minuteNow < today * kMinutesPerDay + at / 60 + kCatchUpMinutes;
  if (!onTime && !late) {
    return;
  }
  if (s.ProgramMode != 1 && OccurrenceRan(output, output.NextEvent, at, wallNow)) {
    GetNextEvent(s, index);
    return;
  }
  ExecuteEvent(s, index);
}

// The event to take over at start-up: the one whose latest occurrence at or before now is the
// most recent, lowest index on a tie; -1 when no event runs.
int MostRecentPastEvent(State& s, const OutputEntry& output) {
  const int nowInWeek = DayNow(s) * 86400 + SecondsNow(s);
  int best = -1;
  int bestAgo = kSecondsPerWeek;
  for (int j = 0; j < UsableEventCount(output); ++j) {
    const ScheduledEvent& event = output.Events[static_cast<size_t>(j)];
    int at = 0;
    try {
      at = EventTimeSeconds(event.Time);
    } catch (const Failure& failure) {
      LogError(s, kLocation, kTitle, failure);
      continue;
    }
    for (int day = 0; day < 7; ++day) {
      if (!RunsOn(event, day)) {
        continue;
      }
      const int ago =
          ((nowInWeek - (day * 86400 + at)) % kSecondsPerWeek + kSecondsPerWeek) % kSecondsPerWeek;
      if (ago < bestAgo) {
        bestAgo = ago;
        best = j;
      }
    }
  }
  return best;
}

}  // namespace

void RunDueEvents(State& s, int minuteNow) {
  const QDateTime wallNow = WallClockNow(s);
  const int count = std::min<int>(s.OutputCount, static_cast<int>(s.Outputs.size()));
  for (int i = 0; i < count; ++i) {
    Trap(s, kLocation, kTitle, [&] { ExamineOutput(s, i, minuteNow, wallNow); });
  }
}

void FollowClockJump(State& s, int minuteBefore, int minuteNow) {
  // Measured round the week, so Sunday 23:59 to Monday 00:00 is one minute forward and a clock
  // set back reads as a long way forward.
  const int forward =
      ((minuteNow - minuteBefore) % kMinutesPerWeek + kMinutesPerWeek) % kMinutesPerWeek;
  if (forward < kJumpMinutes) {
    return;
  }
  // Set back: the shorter way round the week is backwards.
  if (kMinutesPerWeek - forward < forward) {
    GetNextEvent(s, kNone);
    return;
  }
  // Stepped forward: what the step left less than 3 minutes behind is still caught up, so the
  // search of today starts at the first minute of the catch-up window rather than now.
  const int windowStart = (SecondsNow(s) / 60 - (kCatchUpMinutes - 1)) * 60;
  GetNextEventAfter(s, kNone, std::max(windowStart, 0) - 1);
}

void ApplyMostRecentPastEvents(State& s) {
  const int count = std::min<int>(s.PanelsLoaded, static_cast<int>(s.Outputs.size()));
  for (int i = 0; i < count; ++i) {
    Trap(s, kLocation, kTitle, [&] {
      OutputEntry& output = s.Outputs[static_cast<size_t>(i)];
      const int j = MostRecentPastEvent(s, output);
      if (j < 0) {
        return;
      }
      const ScheduledEvent& event = output.Events[static_cast<size_t>(j)];
      output.MonitoringEnabled = event.Active;
      output.DisplayOption = event.DisplayOption;
      if (event.DisplayOption == 2) {
        output.CustomLabel = event.Label;
      }
      s.OutputsDirty = true;
    });
  }
}

}  // namespace zrn
