#include "core/watched_outputs.h"

#include <vector>

namespace zrn {

namespace {

// Builds the channel index of the watched entries: a counting sort, so each channel's entries
// keep table order.
void IndexWatched(State& s) {
  PanelPassState& pass = s.panelPass;
  const int watched = WatchedCount(s);
  int highest = 0;
  for (int i = 0; i < watched; ++i) {
    highest = std::max<int>(highest, s.Outputs[i].Output);
  }
  pass.firstOf.assign(highest + 2, 0);
  int indexed = 0;
  for (int i = 0; i < watched; ++i) {
    const int channel = s.Outputs[i].Output;
    if (channel >= 0) {
      ++pass.firstOf[channel + 1];
      ++indexed;
    }
  }
  for (int c = 1; c <= highest + 1; ++c) {
    pass.firstOf[c] += pass.firstOf[c - 1];
  }
  std::vector<int> next(pass.firstOf.begin(), pass.firstOf.end() - 1);
  pass.byChannel.resize(indexed);
  for (int i = 0; i < watched; ++i) {
    const int channel = s.Outputs[i].Output;
    if (channel >= 0) {
      pass.byChannel[next[channel]++] = i;
    }
  }
}

}  // namespace

int WatchedCount(const State& s) {
  return std::clamp<int>(s.OutputCount, 0, static_cast<int>(s.Outputs.size()));
}

bool IndexedWatching(State& s, int channel, std::span<const int>& entries) {
  PanelPassState& pass = s.panelPass;
  if (!pass.lampsCurrent && !pass.textsCurrent) {
    return false;
  }
  if (pass.firstOf.empty()) {
    IndexWatched(s);
  }
  entries = {};
  if (channel >= 0 && channel + 1 < static_cast<int>(pass.firstOf.size())) {
    entries =
        std::span<const int>(pass.byChannel)
            .subspan(pass.firstOf[channel], pass.firstOf[channel + 1] - pass.firstOf[channel]);
  }
  return true;
}

}  // namespace zrn
