#pragma once

#include "core/state.h"

namespace zrn {

// A show with the defaults of a new show.
ShowRecord MakeNewShow();

// Fills EditShows[index] with the defaults of a new show.
void NewShow(State& s, int index);

// Sets Shows, ShowCount, SilenceOuts and SilenceOutCount from ZRNShows.dat; false after an error.
bool ReadShows(State& s);

// Writes Shows and SilenceOuts; false after an error (the previous file stays whole), with
// the file and the reason for the operator in *failure when given.
bool SaveShows(State& s, QString* failure = nullptr);

// Writes the show-list export "ZRNShows<MMddyy HHmm>.txt"; false after an error.
bool PrintShows(State& s);

}  // namespace zrn
