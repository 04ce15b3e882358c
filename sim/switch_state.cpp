#include "sim/switch_state.h"

namespace zrn::sim {

SwitchState::SwitchState(int inputs, int outputs, int relays, const SilenceConfig& defaults)
    : inputAudio(inputs, true), outputs(outputs), relays(relays, 0) {
  for (int o = 0; o < outputs; ++o) {
    this->outputs[o].config = defaults;
    if (o < inputs) {
      this->outputs[o].source = o;
    }
  }
}

bool SwitchState::Audible(int output) const {
  const OutputState& out = outputs[output];
  if (out.forcedAudio) {
    return *out.forcedAudio;
  }
  return out.source >= 0 && out.source < static_cast<int>(inputAudio.size()) &&
         inputAudio[out.source];
}

bool SwitchState::Reconsider(int output, qint64 nowMs) {
  OutputState& out = outputs[output];
  if ((out.config.mode & kModeSilenceDetection) == 0) {
    // A detector switched off must not leave a silence standing that nothing will clear.
    out.dueMs = -1;
    const bool wasSilent = (out.status & kStatusSilent) != 0;
    out.status &= ~kStatusSilent;
    return wasSilent;
  }
  const bool silent = !Audible(output);
  if (silent == ((out.status & kStatusSilent) != 0)) {
    out.dueMs = -1;
  } else if (out.dueMs < 0) {
    const int seconds = silent ? out.config.detectTime : out.config.returnTime;
    out.dueMs = nowMs + 1000LL * seconds;
  }
  return false;
}

std::vector<int> SwitchState::TakeDue(qint64 nowMs) {
  std::vector<int> due;
  for (int o = 0; o < static_cast<int>(outputs.size()); ++o) {
    OutputState& out = outputs[o];
    if (out.dueMs >= 0 && out.dueMs <= nowMs) {
      out.dueMs = -1;
      out.status ^= kStatusSilent;
      due.push_back(o);
    }
  }
  return due;
}

qint64 SwitchState::NextDue() const {
  qint64 next = -1;
  for (const OutputState& out : outputs) {
    if (out.dueMs >= 0 && (next < 0 || out.dueMs < next)) {
      next = out.dueMs;
    }
  }
  return next;
}

}  // namespace zrn::sim
