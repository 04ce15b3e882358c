#pragma once

#include "core/state.h"

namespace zrn {

// Sets NextEvent of Outputs[index], or of outputs 0..PanelsLoaded-1 when index is kNone: the
// earliest event later than CurrentTime today, else the earliest on the nearest following day,
// continuing into next week up to and including today (an event at or before now today then
// counts as next week's). kNone when no event runs on any day. An event whose time cannot be
// read is left out with an error-log line.
void GetNextEvent(State& s, int index);
// GetNextEvent with today's search starting after afterSeconds (seconds after midnight, -1 for
// the whole day) instead of after CurrentTime.
void GetNextEventAfter(State& s, int index, int afterSeconds);

// Carries out event NextEvent of Outputs[index]: monitoring, display option and label, the
// route of its source (held as PendingRouteSource while the link is down), hold-off, a report
// line, and the next event. Does nothing in show mode.
//
// It does not redraw the panels itself: it sets s.OutputsDirty, which the caller (the poll
// timer) turns into UpdateOutputs and clears.
void ExecuteEvent(State& s, int index);

// Sends the routes held back while the link was down, with a report line each; called when the
// start-up exchange of a new connection completes. A route that still cannot be sent stays.
void SendPendingRoutes(State& s);

// The report line of an output: its label by DisplayOption, " [nnnn]" and the monitoring
// state, e.g. "Studio A [0012] Monitoring enabled.". Names outside their tables read "Uknown".
QString EventReportLine(const State& s, const OutputEntry& output);

}  // namespace zrn
