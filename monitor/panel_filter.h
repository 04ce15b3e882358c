#pragma once

#include <QString>

#include "core/state.h"

namespace zrn {

// Whether watched output index passes the filter: a number is the panel's position or the
// switcher output it watches; other text is looked for in the output's name, its panel label
// and the name of the source routed to it, ignoring case. Only alarms keeps the outputs whose
// lamp is red or yellow.
bool PanelMatches(const State& s, int index, const QString& text, bool onlyAlarms);

// Sets the operator's filter and lays the panels out for it.
void SetPanelFilter(State& s, const QString& text, bool onlyAlarms);

// Lays the panels out for the filter in force: the matching ones close up from the first
// place in grid order, the others are hidden; with no filter every panel stands in its
// specified place. Runs after every change of the views' visibility.
void ApplyPanelFilter(State& s);

}  // namespace zrn
