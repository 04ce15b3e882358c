#pragma once

#include "core/state.h"

namespace zrn {

// Active shows that are listed: ActiveShowCount, bounded by the ActiveShows table.
int ActiveShowsListed(const State& s);

// Creates show panels from the present number up to count - 1 and sizes the window.
void LoadShowStatus(State& s, int count);
// Removes the show panels beyond the active shows (panel 0 stays, hidden).
void UnloadShowDisplays(State& s);
// Brings the show panels to the active shows and fills their texts.
void UpdateShows(State& s);
// Shows the show view: the show panels instead of the output panels and the message list.
void DisplayShows(State& s);

}  // namespace zrn
