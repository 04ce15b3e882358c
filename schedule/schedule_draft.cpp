#include "schedule/schedule_draft.h"

#include <algorithm>
#include <utility>

#include "core/failure.h"
#include "schedule/event_scheduler.h"
#include "schedule/event_time.h"
#include "schedule/schedule_rules.h"
#include "storage/logs.h"

namespace zrn {

namespace {

void Identity(ScheduleDraft& draft) {
  draft.origins.resize(draft.events.size());
  for (size_t i = 0; i < draft.origins.size(); ++i) {
    draft.origins[i] = i < static_cast<size_t>(draft.count) ? static_cast<int>(i) : -1;
  }
}

// The exchange sort of the events file reader, so equal times end in the same order as after a
// restart.
void SortByTime(ScheduleDraft& draft) {
  for (int i = 0; i + 1 < draft.count; ++i) {
    for (int j = i + 1; j < draft.count; ++j) {
      const auto a = static_cast<size_t>(i);
      const auto b = static_cast<size_t>(j);
      if (draft.events[a].Time > draft.events[b].Time) {
        std::swap(draft.events[a], draft.events[b]);
        std::swap(draft.origins[a], draft.origins[b]);
        if (draft.current == i) {
          draft.current = j;
        } else if (draft.current == j) {
          draft.current = i;
        }
      }
    }
  }
}

}  // namespace

ScheduleDraft DraftOf(const OutputEntry& output) {
  ScheduleDraft draft;
  draft.count = UsableEventCount(output);
  draft.events.assign(output.Events.begin(), output.Events.begin() + draft.count);
  if (draft.events.empty()) {
    draft.events.push_back(BlankEvent());
  }
  Identity(draft);
  return draft;
}

void PutEvent(ScheduleDraft& draft, const ScheduledEvent& event) {
  draft.current = std::clamp(draft.current, 0, draft.count);
  const auto at = static_cast<size_t>(draft.current);
  if (draft.current == draft.count) {
    ++draft.count;
    if (draft.events.size() < static_cast<size_t>(draft.count)) {
      draft.events.resize(static_cast<size_t>(draft.count));
      draft.origins.resize(static_cast<size_t>(draft.count));
    }
    draft.origins[at] = -1;
  }
  draft.events[at] = event;
  SortByTime(draft);
}

bool RemoveCurrentEvent(ScheduleDraft& draft) {
  if (draft.current < 0 || draft.current >= draft.count) {
    return false;
  }
  const auto at = static_cast<std::ptrdiff_t>(draft.current);
  draft.events.erase(draft.events.begin() + at);
  draft.origins.erase(draft.origins.begin() + at);
  --draft.count;
  if (draft.events.empty()) {
    draft.events.push_back(BlankEvent());
    draft.origins.push_back(-1);
  }
  draft.current = std::clamp(draft.current, 0, std::max(draft.count - 1, 0));
  return true;
}

bool StoreDraft(State& s, int index, ScheduleDraft& draft) {
  if (index < 0 || index >= static_cast<int>(s.Outputs.size())) {
    LogError(s, QStringLiteral("Error Saving Schedule"), QStringLiteral("List Error"),
             Failure::SubscriptOutOfRange());
    return false;
  }
  OutputEntry& output = s.Outputs[static_cast<size_t>(index)];
  const auto count = static_cast<size_t>(draft.count);
  if (output.Events.size() < count) {
    output.Events.resize(count);
  }
  std::copy(draft.events.begin(), draft.events.begin() + draft.count, output.Events.begin());
  output.EventCount = static_cast<qint16>(draft.count);

  // When each event last ran (and which one is held off) moves with the event, so a re-sort
  // neither runs an event twice nor skips one.
  std::vector<QDateTime> lastRun(count);
  qint16 holdOff = output.HoldOffEvent == kNone ? kNone : static_cast<qint16>(-1);
  for (size_t i = 0; i < count; ++i) {
    const int from = draft.origins[i];
    if (from >= 0 && static_cast<size_t>(from) < output.LastRun.size()) {
      lastRun[i] = output.LastRun[static_cast<size_t>(from)];
    }
    if (from >= 0 && from == output.HoldOffEvent) {
      holdOff = static_cast<qint16>(i);
    }
  }
  output.LastRun = std::move(lastRun);
  if (holdOff < 0) {
    // The held-off event is gone: nothing is left to hold off.
    output.HoldOffTicks = 0;
    holdOff = kNone;
  }
  output.HoldOffEvent = holdOff;
  Identity(draft);

  GetNextEvent(s, index);
  return true;
}

}  // namespace zrn
