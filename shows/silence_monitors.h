#pragma once

#include "core/state.h"

namespace zrn {

// The SilenceOuts entry that lends switcher output (0-based), or kNone: the output is not a
// switcher output, no entry names it, or a later entry with the same output shadows it.
qint16 MonitorEntryOf(const State& s, int output);

// The first entry that already watches input for a show, or that is free; kNone when there is
// none or input is kNone (a source that is not defined borrows nothing).
qint16 FindSilenceDetectMonitorOutput(const State& s, int input);

// Borrows an output for the show's downlink source and for each of its studio sources
// (left channel), routes and configures them, and takes their present status.
void CreateSilenceMonitors(State& s, int show);

// Gives back the outputs the show borrowed: each is freed and owed a park (SendPendingParks)
// unless another show still watches it. Monitor fields that were never assigned are skipped.
void FreeSilenceOuts(State& s, int show);

// Parks the outputs given back that no show took over meanwhile; those refused on a dead link
// stay owed until a later pass.
void SendPendingParks(State& s);
// Routes the entry's source to its output, sends the show's detector settings and holds off
// the output's silence state until the detector had time to see the new source.
void SendSilenceMonitor(State& s, int entry);

// Once per tick per active show: the downlink status, the ignore windows, the alarm flag and
// the colour of the show's indicator.
void UpdateShowSilenceDisplay(State& s, int show);

// Once per tick: each active show that is not suppressed takes its alarm from its downlink,
// then the relay is decided.
void CheckSilenceAlarm(State& s);

// Colour of a whole silence status byte: red silent, green audio, grey anything else.
Rgb SilenceColour(int status);

// The status byte the switcher last reported for output, for a monitor that is usable now;
// false when there is no such monitor or its state is not known yet after a route.
bool MonitorStatus(const State& s, int output, quint8& status);

}  // namespace zrn
