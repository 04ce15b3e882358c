#include "switcher/commands.h"

#include "core/failure.h"
#include "storage/logs.h"
#include "switcher/frame.h"
#include "switcher/link.h"

namespace zrn {

namespace {

const QString kConfigError = QStringLiteral("Error Sending Silence Detect Configuration");
const QString kCategory = QStringLiteral("Switcher Message Error");

struct DetectValues {
  int mode, device, silenceThreshold, detectTime, returnTime, peakThreshold, holdTime;
};

QByteArray SilenceConfigFrame(int first, const std::vector<DetectValues>& outputs) {
  QByteArray payload;
  payload.append('\0');  // subtype 0: configuration
  AppendInt14(payload, static_cast<int>(outputs.size()));
  AppendInt14(payload, first);
  for (const DetectValues& v : outputs) {
    for (int value : {v.mode, v.device, v.silenceThreshold, v.detectTime, v.returnTime,
                      v.peakThreshold, v.holdTime}) {
      AppendInt14(payload, value);
    }
  }
  return BuildFrame(0xCB, payload);
}

}  // namespace

bool SendSwitcherCommand(State& s, int target, int source, int command) {
  bool sent = false;
  Trap(s, QStringLiteral("Error Sending Crosspoint Change"), kCategory, [&] {
    QByteArray payload;
    AppendInt14(payload, command);
    AppendInt14(payload, source - 1);
    AppendInt14(payload, target - 1);
    sent = SendToSwitcher(s, BuildFrame(0xFE, payload));
  });
  return sent;
}

bool SendSilenceDetectConfig(State& s, int kind, int first, int count) {
  if (kind != 0) {
    return false;
  }
  bool sent = false;
  Trap(s, kConfigError, kCategory, [&] {
    if (count < 1) {
      throw Failure::InvalidArgument();
    }
    std::vector<DetectValues> outputs;
    for (int o = first; o < first + count; ++o) {
      const SilenceStatusEntry& e = At(s.SilenceStatus, o);
      outputs.push_back({e.Mode, e.Device, e.SilenceThreshold, e.DetectTime, e.ReturnTime,
                         e.PeakThreshold, e.HoldTime});
    }
    sent = SendToSwitcher(s, SilenceConfigFrame(first, outputs));
  });
  return sent;
}

bool SendShowSilenceConfig(State& s, int index) {
  bool sent = false;
  Trap(s, kConfigError, kCategory, [&] {
    const SilenceOut& entry = At(s.SilenceOuts, index);
    // Message only, device on, following silence, silence detection enabled.
    constexpr int kShowMonitorMode = 265;
    constexpr int kZeroDb = 1024;
    sent = SendToSwitcher(
        s, SilenceConfigFrame(entry.Output, {{kShowMonitorMode, kNone, entry.DetectLevel,
                                              entry.DetectTime1, entry.DetectTime2, kZeroDb, 0}}));
  });
  return sent;
}

}  // namespace zrn
