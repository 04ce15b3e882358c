#pragma once

#include "core/state.h"

namespace zrn {

// The scheduled-events step of a poll tick, after CurrentTime and Today were refreshed;
// minuteNow is the minute of the week (Monday 00:00 = 0) of CurrentTime. For each configured
// output: counts its hold-off down, and runs its next event when that is due today at this
// second or was missed by less than 3 minutes. The hold-off keeps only the event it was set
// for from running again; an occurrence that already ran (the clock was set back) is passed
// over. One output's failure is logged and does not stop the others.
//
// Executed events set s.OutputsDirty: the caller redraws the panels (UpdateOutputs).
void RunDueEvents(State& s, int minuteNow);

// The clock-jump step of a poll tick, with the minutes of the week before and after the clock
// was read: recomputes every next event when the clock moved forward by 3 minutes or more or
// went back. Sunday night running into Monday is ordinary progress, not a jump. After a step
// forward the events it left less than 3 minutes behind stay due, to be caught up.
void FollowClockJump(State& s, int minuteBefore, int minuteNow);

// Start-up, after the next events were computed: each output takes the monitoring state,
// display option and label of its most recent past event in week order (at or before now), so
// a restart within a scheduled "off" period stays off. No routing, no report line.
void ApplyMostRecentPastEvents(State& s);

}  // namespace zrn
