#pragma once

#include <algorithm>
#include <span>

#include "core/state.h"

namespace zrn {

// Watched outputs that have an entry: OutputCount, bounded by the Outputs table.
int WatchedCount(const State& s);

// The watched entries (indexes into Outputs, in table order) whose Output is channel. From
// the decode batch's index when it keeps one (true), else false: the caller walks the table.
bool IndexedWatching(State& s, int channel, std::span<const int>& entries);

template <class Visit>
void ForEachWatching(State& s, int channel, Visit&& visit) {
  std::span<const int> entries;
  if (IndexedWatching(s, channel, entries)) {
    for (const int i : entries) {
      visit(i);
    }
    return;
  }
  const int watched = WatchedCount(s);
  for (int i = 0; i < watched; ++i) {
    if (s.Outputs[static_cast<size_t>(i)].Output == channel) {
      visit(i);
    }
  }
}

}  // namespace zrn
