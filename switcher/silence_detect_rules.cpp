#include "switcher/silence_detect_rules.h"

#include <algorithm>

#include "core/channel_texts.h"

namespace zrn {

namespace {

const QString kUnknown = QStringLiteral("Uknown");

constexpr int kModeDevice = 0x3;
constexpr int kModeActionOn = 0x8;
constexpr int kModeFollowsPeak = 0x80;
constexpr int kModeSilence = 0x100;
constexpr int kModePeak = 0x200;

constexpr int kLongestTime = 500;
constexpr int kLoudestCode = 1224;
constexpr int kQuietestCode = 514;
constexpr int kCodeStep = 10;
constexpr int kZeroDbCode = 1024;

QString NameAt(const QStringList& names, int count, int index) {
  const int known = std::min<int>(count, static_cast<int>(names.size()));
  return index >= 0 && index < known ? names[index] : kUnknown;
}

}  // namespace

DetectMode SplitMode(int mode) {
  return {mode & kModeDevice, (mode & kModeActionOn) != 0, (mode & kModeFollowsPeak) != 0,
          (mode & kModeSilence) != 0, (mode & kModePeak) != 0};
}

int ComposeMode(const DetectMode& mode) {
  return (mode.peakEnabled ? kModePeak : 0) + (mode.silenceEnabled ? kModeSilence : 0) +
         (mode.followsPeak ? kModeFollowsPeak : 0) + (mode.actionOn ? kModeActionOn : 0) +
         (mode.deviceType & kModeDevice);
}

QStringList TimeListTexts() {
  QStringList texts;
  texts.reserve(kLongestTime + 1);
  for (int seconds = 0; seconds <= kLongestTime; ++seconds) {
    texts << QString::number(seconds) + QStringLiteral(" Seconds");
  }
  return texts;
}

int TimePosition(int seconds) {
  return std::clamp(seconds, 0, kLongestTime);
}

QStringList ThresholdListTexts() {
  QStringList texts{QStringLiteral("Undefined")};
  for (int code = kLoudestCode; code >= kQuietestCode; code -= kCodeStep) {
    texts << QString::number((code - kZeroDbCode) / kCodeStep) + QStringLiteral(" dB");
  }
  return texts;
}

int ThresholdPosition(int code) {
  if (code > kLoudestCode || code < kQuietestCode || (kLoudestCode - code) % kCodeStep != 0) {
    return 0;
  }
  return (kLoudestCode - code) / kCodeStep + 1;
}

int ThresholdCode(int position) {
  const int last = (kLoudestCode - kQuietestCode) / kCodeStep + 1;
  return position >= 1 && position <= last ? kLoudestCode - kCodeStep * (position - 1) : kNone;
}

std::vector<DeviceItem> DeviceListItems(const State& s, int deviceType, int device) {
  std::vector<DeviceItem> items{{QStringLiteral("Undefined"), kNone}};
  if (deviceType != 2 && deviceType != 3) {
    return items;
  }
  const bool relay = deviceType == 2;
  const QStringList& names = relay ? s.RelayNames : s.OptoNames;
  const int count =
      std::clamp<int>(relay ? s.SwitcherRelayCount : s.SwitcherOptoCount, 0, kNone - 1);
  // The opto entries have always carried their blank inside the bracket.
  const QString open = relay ? QStringLiteral(" [") : QStringLiteral("[ ");
  const auto itemOf = [&](int k) {
    return DeviceItem{NameAt(names, count, k - 1) + open + ChannelDigits(k) + QLatin1Char(']'),
                      k - 1};
  };
  for (int k = 1; k <= count; ++k) {
    items.push_back(itemOf(k));
  }
  if (device >= count && device < kNone) {
    items.push_back(itemOf(device + 1));
  }
  return items;
}

int DevicePosition(const std::vector<DeviceItem>& items, int device) {
  for (size_t i = 0; i < items.size(); ++i) {
    if (items[i].device == device) {
      return static_cast<int>(i);
    }
  }
  return 0;
}

QString DetectStatusText(int status) {
  QString text;
  if ((status & 1) != 0) {
    text = QStringLiteral("Channel is Silent.  ");
  }
  if ((status & 2) != 0) {
    text += QStringLiteral("Peak Detected");
  }
  return text;
}

QString SilenceDetectTitle(const State& s, int output) {
  return QStringLiteral("Configure Silence Detect for ") +
         NameAt(s.OutputNames, s.SwitcherOutputCount, output) + QStringLiteral(" [") +
         ChannelDigits(output + 1) + QLatin1Char(']');
}

QString SilenceConfigSentLine(const State& s, int output) {
  return NameAt(s.OutputNames, s.SwitcherOutputCount, output) + QStringLiteral(" [") +
         ChannelDigits(output + 1) + QStringLiteral("] Silence Detect Configuration Sent - User");
}

}  // namespace zrn
