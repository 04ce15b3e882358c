#include "core/channel_texts.h"

#include <algorithm>
#include <vector>

namespace zrn {

namespace {

// Spelled as operators have always seen it.
const QString kUnknown = QStringLiteral("Uknown");
const QString kNothingRouted = QStringLiteral("-Off-");

}  // namespace

QString ChannelDigits(int channel) {
  // Made once per channel: panel texts and activity lines ask for them all the time.
  thread_local std::vector<QString> made(kNone + 1);
  if (channel < 0 || channel > kNone) {
    return QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
  }
  QString& digits = made[static_cast<size_t>(channel)];
  if (digits.isNull()) {
    digits = QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
  }
  return digits;
}

QString NameAt(const QStringList& names, long long index) {
  return index >= 0 && index < names.size() ? names[static_cast<qsizetype>(index)] : kUnknown;
}

QString ChannelItemText(int channel, const QStringList& names) {
  return QLatin1Char('[') + ChannelDigits(channel) + QStringLiteral("] ") +
         NameAt(names, channel - 1);
}

PanelTexts PanelTextsOf(const State& s, const OutputEntry& entry) {
  if (entry.DisplayOption == 2) {
    return {entry.CustomLabel, QString()};
  }
  const int channel = entry.Output;
  if (entry.DisplayOption == 1) {
    const int routed =
        std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.CrosspointMap.size()));
    if (channel < 1 || channel > routed) {
      return {kUnknown, QString()};
    }
    const CrosspointEntry& route = s.CrosspointMap[channel - 1];
    if (route.SourceCount == 0) {
      return {kNothingRouted, QString()};
    }
    const int source = route.Sources[0];
    const int inputs = std::min<int>(s.SwitcherInputCount, static_cast<int>(s.InputNames.size()));
    if (source < 0 || source >= inputs) {
      return {kUnknown, QString()};
    }
    return {s.InputNames[source], ChannelDigits(source + 1)};
  }
  const int outputs = std::min<int>(s.SwitcherOutputCount, static_cast<int>(s.OutputNames.size()));
  if (channel < 1 || channel > outputs) {
    return {kUnknown, QString()};
  }
  return {s.OutputNames[channel - 1], ChannelDigits(channel)};
}

QString PanelName(const State& s, const OutputEntry& entry) {
  return PanelTextsOf(s, entry).label;
}

}  // namespace zrn
