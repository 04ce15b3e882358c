#pragma once

#include <QString>
#include <vector>

#include "core/state.h"

namespace zrn {

// One studio source of the show silence status window.
struct ShowStatusSource {
  QString caption;
  Rgb colour = kLampGrey;
  // A source whose left channel is not defined cannot be taken.
  bool selectable = false;
};

// What the show silence status window draws for one show.
struct ShowStatusModel {
  // The show is still on the active list; the window closes when it leaves.
  bool active = false;
  QString title;
  Rgb titleColour = kLampGrey;
  std::vector<ShowStatusSource> sources;
};

// One crosspoint change of a Take: 1-based destination output and input.
struct TakeCommand {
  int target = 0;
  int source = 0;
  friend bool operator==(const TakeCommand&, const TakeCommand&) = default;
};

// Left click on show panel index: the show there becomes SelectedShow. False when no show
// stands at that position.
bool SelectShowPanel(State& s, int panel);

// The status window's refresh: stores each studio monitor's reported status and returns the
// captions and colours. Light grey where a source has no monitor or its state is not yet known.
ShowStatusModel UpdateSilenceDetectStatus(State& s, int show);

// The routes that put studio source studio on the show's outputs, in output order: left to
// left, right to right, cue to cue, skipping every pair with an undefined side.
std::vector<TakeCommand> TakeCommands(const State& s, int show, int studio);

// Whether studio source studio of the show can be taken at all.
bool CanTakeStudioSource(const State& s, int show, int studio);

// Sends the Take routes, each with its line in the activity log; returns how many were sent.
// Stops at the first route that cannot be sent.
int TakeStudioSource(State& s, int show, int studio);

}  // namespace zrn
