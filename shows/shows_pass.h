#pragma once

#include "core/state.h"

namespace zrn {

// The show work of a poll tick: which shows are on air, their indicators, the status window's
// state while it is open, and the show alarm with the relay decision. Runs only in show mode
// on a live link whose start-up exchange is complete; outside show mode it gives back any
// output still borrowed.
void ShowsPass(State& s);

// After a start-up exchange completes: the switcher may have lost what it was told, so every
// active show's monitors are routed and configured again.
void ResendShowMonitors(State& s);

}  // namespace zrn
