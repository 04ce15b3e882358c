#pragma once

#include "core/state.h"
#include "core/watched_outputs.h"

namespace zrn {

// Panel i as it is first created: its specified places in both views and its position text.
OutputPanelModel DesignedOutputPanel(int i);

// Creates the output panels from the present number up to count - 1, in both views, and sizes
// the window. Panels that exist keep their places.
void LoadOutputPanels(State& s, int count);
// Removes the panels beyond the watched outputs (panel 0 stays, unused).
void UnloadOutputs(State& s);
// Switches between the normal and the large view.
void mnuToggle_Click(State& s);
// Sizes the window and places the alarm controls and the message list for the view.
void SetFormSize(State& s);

// Shows the view the configuration asks for: the large view when "Default View" is large,
// else the normal one; in show mode the normal view with the show panels.
void ShowConfiguredView(State& s);

// Sets what is visible in the window from the view, the program mode and the panel counts.
void ApplyViewVisibility(State& s);

}  // namespace zrn
