#pragma once

#include <QString>

#include "core/channel_texts.h"
#include "core/state.h"
#include "core/watched_outputs.h"

namespace zrn {

// Brings the panels to the watched outputs, rewrites their texts, then recolours the lamps.
void UpdateOutputs(State& s);

// Recolours every lamp from the silence reports, keeps the alarm states, then decides the
// alarm relay. Does nothing while the silence-detect requests are unanswered.
void UpdateStatus(State& s);

// The same outcomes for a few outputs, at their cost rather than every panel's, while a decode
// batch keeps what the last full pass found; otherwise they make a full pass.
// After a crosspoint map of switcher outputs first .. first + count - 1 (0-based):
void UpdateRoutedOutputs(State& s, int first, int count);
// After a change-of-state report, for the channels in panelPass.changedChannels:
void UpdateChangedLamps(State& s);

}  // namespace zrn
