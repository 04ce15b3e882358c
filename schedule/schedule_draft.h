#pragma once

#include <vector>

#include "core/state.h"

namespace zrn {

// The schedule editor's working copy of one output's events. The poll timer keeps running
// while the editor is open, so the editor never holds a reference into Outputs: it edits this
// copy and writes it back by index.
struct ScheduleDraft {
  // Events 0..count-1; at least one element, the blank placeholder when count is 0.
  std::vector<ScheduledEvent> events;
  // Per event, its index in the output's array when the copy was taken or last stored; -1 for
  // an event not stored yet. Lets the scheduler's per-event memory follow a re-sort.
  std::vector<int> origins;
  int count = 0;
  // The event shown; count means a new event that is not stored yet.
  int current = 0;
};

// The events of output, bounded by its array.
ScheduleDraft DraftOf(const OutputEntry& output);

// Stores event at draft.current, appending it when current is count, then sorts by time as the
// events file reader does; current follows the event.
void PutEvent(ScheduleDraft& draft, const ScheduledEvent& event);

// Removes event current; false when there is none. current stays on the same place, or the
// last event when it was the last.
bool RemoveCurrentEvent(ScheduleDraft& draft);

// Writes the draft into Outputs[index] (the array only grows), moves the scheduler's memory of
// runs with the events, and recomputes the output's next event. False, with an error-log line,
// when the output is no longer there.
bool StoreDraft(State& s, int index, ScheduleDraft& draft);

}  // namespace zrn
