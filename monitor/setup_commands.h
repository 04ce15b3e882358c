#pragma once

#include "core/state.h"

namespace zrn {

// After Setup was confirmed: the panels follow the edited list, the configuration and then the
// shows file are written, and the events file with them, so each schedule stays with its
// output at the next start however the list was rearranged; every next event is recomputed
// and DialogAccepted is cleared. A save that fails is reported in the error log and to the
// operator (prompt port), naming the file and the reason; the others still run.
void SetupAccepted(State& s);

}  // namespace zrn
