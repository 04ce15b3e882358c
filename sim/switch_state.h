#pragma once

#include <QtGlobal>

#include <optional>
#include <vector>

#include "sim/codec.h"

namespace zrn::sim {

// Mode bits of an output's silence detector.
inline constexpr int kModeMessageOnly = 1;
inline constexpr int kModeDeviceOn = 0x08;
inline constexpr int kModeSilenceDetection = 0x100;

// Status bits of an output as reported.
inline constexpr quint8 kStatusSilent = 1;
inline constexpr quint8 kStatusPeak = 2;

// One output's detector configuration, the seven values in their wire order.
struct SilenceConfig {
  int mode = kModeMessageOnly | kModeDeviceOn | kModeSilenceDetection;
  int device = kNone;
  int silenceThreshold = 824;  // -20 dB
  int detectTime = 2;
  int returnTime = 1;
  int peakThreshold = 1024;  // 0 dB
  int holdTime = 0;
};

struct OutputState {
  int source = kNone;  // 0-based input, or kNone when nothing is routed
  std::optional<bool> forcedAudio;
  quint8 status = 0;  // what the monitor has been told
  SilenceConfig config;
  qint64 dueMs = -1;  // when a pending silence change gets reported; -1 none
};

// What the switcher knows: crosspoints, audio on every input, detector state and relays.
// Channel numbers are 0-based; times are milliseconds on a monotonic clock.
struct SwitchState {
  SwitchState(int inputs, int outputs, int relays, const SilenceConfig& defaults);

  // Whether the output carries audio right now (not what has been reported).
  bool Audible(int output) const;
  // Starts, keeps or cancels the output's pending change after anything that may alter its
  // audio or its detector. Returns true when its silent status was cleared at once because
  // detection is off.
  bool Reconsider(int output, qint64 nowMs);
  // Outputs whose pending change is due; their silent status is flipped.
  std::vector<int> TakeDue(qint64 nowMs);
  // The earliest pending change, or -1.
  qint64 NextDue() const;

  std::vector<bool> inputAudio;
  std::vector<OutputState> outputs;
  std::vector<quint8> relays;  // 1 latched, 0 released
};

}  // namespace zrn::sim
