#pragma once

#include <QString>
#include <algorithm>
#include <span>

#include "core/state.h"

namespace zrn {

// The name a watched output goes by, on its panel and in log lines, by its display option:
// the output's name, the name of the source routed to it ("-Off-" when none), or its custom
// label. A channel or source the name tables do not hold reads "Uknown".
QString PanelName(const State& s, const OutputEntry& entry);

// "0012" for 12.
QString ChannelDigits(int channel);

// Brings the panels to the watched outputs, rewrites their texts, then recolours the lamps.
void UpdateOutputs(State& s);

// Recolours every lamp from the silence reports, keeps the alarm states, then decides the
// alarm relay. Does nothing while the silence-detect requests are unanswered.
void UpdateStatus(State& s);

// The same outcomes for a few outputs, at their cost rather than every panel's, while a decode
// batch keeps what the last full pass found; otherwise they make a full pass.
// After a crosspoint map of switcher outputs first .. first + count - 1 (0-based):
void UpdateRoutedOutputs(State& s, int first, int count);
// After a change-of-state report, for the channels in panelPass.changedChannels:
void UpdateChangedLamps(State& s);

// The watched entries (indexes into Outputs, in table order) whose Output is channel. From
// the batch's index when it keeps one (true), else false: the caller walks the table.
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
  const int watched = std::clamp<int>(s.OutputCount, 0, static_cast<int>(s.Outputs.size()));
  for (int i = 0; i < watched; ++i) {
    if (s.Outputs[static_cast<size_t>(i)].Output == channel) {
      visit(i);
    }
  }
}

}  // namespace zrn
