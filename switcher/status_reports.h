#pragma once

#include <QByteArray>

#include "core/state.h"

namespace zrn {

// Silence-detect message subtypes.
inline constexpr int kSilenceConfiguration = 0;
inline constexpr int kSilenceChangeOfState = 10;
inline constexpr int kSilenceStatusReport = 11;

// Received status reports, each whole (type byte to end byte): the crosspoint map (0xF6), the
// relay states (0xF7) and silence detection (0xCB). Each stores what it reports, clears its
// request and has the window refreshed.
void ProcessCrosspointMap(State& s, const QByteArray& message);
void ProcessRelayStates(State& s, const QByteArray& message);
void ProcessSilenceDetect(State& s, const QByteArray& message);

}  // namespace zrn
