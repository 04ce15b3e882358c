#include "monitor/setup_rules.h"

#include <algorithm>
#include <limits>

#include "monitor/output_panels.h"
#include "schedule/event_scheduler.h"
#include "storage/config_file.h"
#include "switcher/link.h"

namespace zrn {

namespace {

constexpr int kMaxPort = 65535;
constexpr int kMaxDisplayLines = 32767;

std::optional<SetupRefusal> CheckSettings(const State& s, const SetupSettings& settings,
                                          QString& address, qint32& port) {
  address = s.ServerAddress;
  if (settings.address != s.ServerAddress && !NormalizeServerAddress(settings.address, &address)) {
    return SetupRefusal{SetupRefusal::Field::Address, QStringLiteral("Data Format Error"),
                        QStringLiteral("Please Enter IP Address In The Following Format: "
                                       "192.168.1.1")};
  }
  const qint64 typedPort = FieldNumber(settings.port);
  if (typedPort < 1 || typedPort > kMaxPort) {
    return SetupRefusal{
        SetupRefusal::Field::Port, QStringLiteral("Port Error"),
        QStringLiteral("Invalid IP Port #. Please reenter a number between 1 and 65535")};
  }
  port = static_cast<qint32>(typedPort);
  const qint64 lines = FieldNumber(settings.maxDisplay);
  if (lines < 1 || lines > kMaxDisplayLines) {
    return SetupRefusal{
        SetupRefusal::Field::MaxDisplay, QStringLiteral("Maximum Display Error"),
        QStringLiteral("Invalid Maximum Display #. Please reenter a number between 1 and 32767")};
  }
  return std::nullopt;
}

// The live entry with the operator's changes laid over it.
OutputEntry Merge(const OutputEntry& live, const SetupEntry& entry) {
  OutputEntry merged = live;
  const OutputEntry& was = entry.original;
  const OutputEntry& now = entry.edited;
  if (now.Output != was.Output) {
    merged.Output = now.Output;
    if (now.Output != kNone) {
      merged.MonitoringEnabled = true;
    }
    // An acknowledgement or a held-back route belonged to the old channel.
    merged.AlarmState = 0;
    merged.AlarmCanceled = false;
    merged.PendingRouteSource = kNone;
  }
  if (now.DisplayOption != was.DisplayOption) {
    merged.DisplayOption = now.DisplayOption;
  }
  if (now.CustomLabel != was.CustomLabel) {
    merged.CustomLabel = now.CustomLabel;
  }
  return merged;
}

}  // namespace

QStringList OutputChoiceItems(const State& s) {
  QStringList items{QStringLiteral("Undefined")};
  for (int k = 1; k <= s.SwitcherOutputCount; ++k) {
    items << ChannelItemText(k, s.OutputNames);
  }
  return items;
}

int OutputChoiceIndex(const State& s, int output) {
  return output >= 1 && output <= s.SwitcherOutputCount ? output : 0;
}

RelayChoices MakeRelayChoices(const State& s) {
  RelayChoices choices;
  choices.items << QStringLiteral("Undefined");
  choices.relays.push_back(kNone);
  for (int k = 1; k <= s.SwitcherRelayCount; ++k) {
    choices.items << ChannelItemText(k, s.RelayNames);
    choices.relays.push_back(static_cast<qint16>(k));
  }
  if (s.AlarmRelay == kNone) {
    choices.current = 0;
  } else if (s.AlarmRelay >= 1 && s.AlarmRelay <= s.SwitcherRelayCount) {
    choices.current = s.AlarmRelay;
  } else {
    // Not (yet) reported by the switcher: still the operator's choice, so it stays on offer.
    choices.items << QLatin1Char('[') + ChannelDigits(s.AlarmRelay) +
                         QStringLiteral("] (not reported)");
    choices.relays.push_back(s.AlarmRelay);
    choices.current = static_cast<int>(choices.relays.size()) - 1;
  }
  return choices;
}

qint64 FieldNumber(const QString& text) {
  constexpr qint64 kCeiling = 1'000'000'000'000LL;
  qint64 value = 0;
  for (const QChar c : text) {
    if (!c.isDigit()) {
      break;
    }
    value = std::min(kCeiling, value * 10 + c.digitValue());
  }
  return value;
}

std::vector<SetupEntry> CopySetupEntries(const State& s) {
  std::vector<SetupEntry> entries;
  const int count = WatchedCount(s);
  entries.reserve(static_cast<std::size_t>(std::max(count, 1)));
  for (int i = 0; i < count; ++i) {
    entries.push_back({i, s.Outputs[i], s.Outputs[i]});
  }
  if (entries.empty()) {
    entries.push_back(NewSetupEntry());
  }
  return entries;
}

SetupEntry NewSetupEntry() {
  SetupEntry entry;
  entry.edited.Output = kNone;
  entry.edited.DisplayOption = 0;
  entry.edited.CustomLabel = QStringLiteral("None");
  entry.edited.Events.assign(1, ScheduledEvent());
  entry.edited.EventCount = 0;
  entry.edited.NextEvent = kNone;
  entry.original = entry.edited;
  return entry;
}

void ChooseEntryOutput(SetupEntry& entry, qint16 output) {
  entry.edited.Output = output;
  if (output != kNone) {
    entry.edited.MonitoringEnabled = true;
  }
}

void ApplySetupEntries(State& s, const std::vector<SetupEntry>& entries) {
  std::vector<OutputEntry> outputs;
  outputs.reserve(entries.size());
  const int live = WatchedCount(s);
  for (const SetupEntry& entry : entries) {
    if (entry.origin >= 0 && entry.origin < live) {
      outputs.push_back(Merge(s.Outputs[entry.origin], entry));
    } else {
      outputs.push_back(entry.edited);
    }
  }
  s.Outputs = std::move(outputs);
  s.OutputCount = static_cast<qint16>(s.Outputs.size());
}

std::vector<int> FollowSetupEntries(const std::vector<int>& before,
                                    const std::vector<SetupEntry>& entries) {
  std::vector<int> after;
  after.reserve(entries.size());
  for (const SetupEntry& entry : entries) {
    const bool known = entry.origin >= 0 && entry.origin < static_cast<int>(before.size());
    after.push_back(known ? before[static_cast<std::size_t>(entry.origin)] : -1);
  }
  return after;
}

void RestoreOpenedEntries(State& s, const std::vector<OutputEntry>& opened, qint16 count,
                          const std::vector<int>& liveOrigin) {
  const int live = WatchedCount(s);
  std::vector<OutputEntry> outputs = opened;
  for (int j = 0; j < live && j < static_cast<int>(liveOrigin.size()); ++j) {
    const int k = liveOrigin[static_cast<std::size_t>(j)];
    if (k < 0 || k >= static_cast<int>(outputs.size())) {
      continue;
    }
    const OutputEntry& was = opened[static_cast<std::size_t>(k)];
    OutputEntry restored = s.Outputs[static_cast<std::size_t>(j)];
    if (restored.Output != was.Output) {
      // The alarm state belonged to the channel Setup had put there.
      restored.Output = was.Output;
      restored.MonitoringEnabled = was.MonitoringEnabled;
      restored.AlarmState = was.AlarmState;
      restored.AlarmCanceled = was.AlarmCanceled;
      restored.PendingRouteSource = was.PendingRouteSource;
    }
    restored.DisplayOption = was.DisplayOption;
    restored.CustomLabel = was.CustomLabel;
    if (restored.EventCount != was.EventCount || restored.Events.size() != was.Events.size()) {
      restored.LastRun = was.LastRun;
      restored.HoldOffTicks = was.HoldOffTicks;
      restored.HoldOffEvent = was.HoldOffEvent;
    }
    restored.Events = was.Events;
    restored.EventCount = was.EventCount;
    outputs[static_cast<std::size_t>(k)] = std::move(restored);
  }
  s.Outputs = std::move(outputs);
  s.OutputCount = count;
}

std::optional<SetupRefusal> ApplySetup(State& s, const SetupSettings& settings,
                                       const std::vector<SetupEntry>& entries) {
  QString address;
  qint32 port = 0;
  if (auto refusal = CheckSettings(s, settings, address, port)) {
    return refusal;
  }
  ApplySetupEntries(s, entries);
  s.AlarmRelay = settings.alarmRelay;
  s.MaxLogFileSize = static_cast<qint32>(
      std::min<qint64>(FieldNumber(settings.maxLogSize), std::numeric_limits<qint32>::max()));
  s.MaxDisplay = static_cast<qint16>(FieldNumber(settings.maxDisplay));

  const bool linkChanged = address != s.ServerAddress || port != s.ServerPort;
  s.ServerAddress = address;
  s.ServerPort = port;
  if (linkChanged) {
    CloseSwitcherLink(s);
  }

  s.DefaultViewLarge = settings.largeView ? 1 : 0;
  if (settings.programMode != s.ProgramMode) {
    s.ProgramMode = settings.programMode;
    ShowConfiguredView(s);
    GetNextEvent(s, kNone);
  }
  return std::nullopt;
}

}  // namespace zrn
