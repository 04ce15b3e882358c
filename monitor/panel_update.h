#pragma once

#include <QString>

#include "core/state.h"

namespace zrn {

// The name a watched output goes by, on its panel and in log lines, by its display option:
// the output's name, the name of the source routed to it ("-Off-" when none), or its custom
// label. A channel or source the name tables do not hold reads "Uknown".
QString PanelName(const State& s, const OutputEntry& entry);

// "0012" for 12.
QString ChannelDigits(int channel);

// Brings the panels to the watched outputs, rewrites their texts, then recolours the lamps.
void UpdateOutputs(State& s);

// Recolours every lamp from the silence reports, keeps the alarm states, then decides the
// alarm relay. Does nothing while the silence-detect requests are unanswered.
void UpdateStatus(State& s);

}  // namespace zrn
