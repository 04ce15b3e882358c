#pragma once

#include "core/state.h"

namespace zrn {

// Fills the state's dispatch table: the one place where each received message type is given
// its handler.
void InstallMessageHandlers(State& s);

}  // namespace zrn
