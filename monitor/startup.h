#pragma once

#include "core/state.h"

namespace zrn {

// Start-up: reads the configuration and data files from appPath, builds the panels, opens the
// switcher connection, finds every next event and chooses the view.
void Form_Load(State& s, const QString& appPath);

// Shut-down: closes the switcher connection. Nothing is saved.
void Form_Unload(State& s);

}  // namespace zrn
