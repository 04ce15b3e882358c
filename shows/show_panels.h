#pragma once

#include <algorithm>

#include "core/state.h"

namespace zrn {

// Active shows that are listed: ActiveShowCount, bounded by the ActiveShows table.
int ActiveShowsListed(const State& s);

// Calls visit(position, index) for each listed active show that names a show of the table.
template <class Visit>
void ForEachActiveShow(const State& s, Visit&& visit) {
  const int shows = std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()));
  const int active = ActiveShowsListed(s);
  for (int p = 0; p < active; ++p) {
    const qint16 index = s.ActiveShows[p];
    if (index >= 0 && index < shows) {
      visit(p, index);
    }
  }
}

// Creates show panels from the present number up to count - 1 and sizes the window.
void LoadShowStatus(State& s, int count);
// Removes the show panels beyond the active shows (panel 0 stays, hidden).
void UnloadShowDisplays(State& s);
// Brings the show panels to the active shows and fills their texts.
void UpdateShows(State& s);
// Shows the show view: the show panels instead of the output panels and the message list.
void DisplayShows(State& s);

}  // namespace zrn
