#pragma once

#include "core/state.h"

namespace zrn {

// Source argument meaning "no source"; it travels as 16383.
inline constexpr int kNoSource = 16384;

inline constexpr int kCommandClear = 0;
inline constexpr int kCommandConnect = 4;
inline constexpr int kCommandRelayRelease = 64;
inline constexpr int kCommandRelayLatch = 68;

// Crosspoint change or relay operation (target and source 1-based; 1 as source for relays).
// False when nothing was sent, so the caller does not report the command as done.
bool SendSwitcherCommand(State& s, int target, int source, int command);

// Silence-detect configuration of outputs first..first+count-1 (0-based) from SilenceStatus;
// only kind 0 sends.
bool SendSilenceDetectConfig(State& s, int kind, int first, int count);

// The fixed silence-detect configuration of the output of SilenceOuts[index].
bool SendShowSilenceConfig(State& s, int index);

}  // namespace zrn
