#pragma once

#include "core/state.h"

namespace zrn {

// Fills the Events arrays and EventCount of Outputs from ZRNEvents.dat; false after an error.
bool ReadEvents(State& s);

// Writes the events of the first PanelsLoaded outputs; false after an error (the previous
// file stays whole), with the file and the reason for the operator in *failure when given.
bool SaveEvents(State& s, QString* failure = nullptr);

}  // namespace zrn
