#pragma once

#include "core/state.h"

namespace zrn {

// Whether today's date (from the clock) lies within the show's StartDate..EndDate, both days
// counted in full. A date that cannot be read is reported and counts as within the range.
bool CheckDate(State& s, int show);

// Decides which shows are on air at CurrentTime on Today: ends the shows that went off air,
// then starts those that came on, rebuilds the show panels when anything changed, and keeps
// RequiredSilenceOutputs.
void GetActiveShows(State& s);

// Ends every show: gives back all borrowed outputs, empties the active list and clears the
// activity flags, so the next evaluation starts whatever is on air afresh.
void EndActiveShows(State& s);

// Position of show in the active list, or -1 when it is not listed or not in the table.
int ActiveShowPosition(const State& s, int show);

}  // namespace zrn
