#pragma once

#include <QString>
#include <QStringList>

#include "core/state.h"

namespace zrn {

// The switcher channel of entry SelectedOutput; kNone when there is no such entry. The panel
// menu's commands act only when it is not kNone.
int SelectedChannel(const State& s);

// The first item of the panel menu: "Enable" while monitoring of entry SelectedOutput is off,
// "Disable" while it is on.
QString EnableMenuCaption(const State& s);

// Switches monitoring of entry SelectedOutput on or off, writes the activity line naming the
// operator, and recolours the lamps.
void mnuEnable_Click(State& s);

// After the schedule editor closed: when it saved anything, writes the events file (telling
// the operator when it cannot) and recomputes the next event of entry SelectedOutput. Clears
// DialogAccepted.
void ScheduleAccepted(State& s);

// The about box: title, version, server and the start-up requests still unanswered.
QStringList AboutLines(const State& s);

}  // namespace zrn
