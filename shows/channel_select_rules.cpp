#include "shows/channel_select_rules.h"

#include <algorithm>

#include "shows/show_activity.h"
#include "shows/shows_pass.h"
#include "storage/logs.h"
#include "switcher/name_tables.h"

namespace zrn {

namespace {

const QString kKeyPrefix = QStringLiteral("Ch.");

}  // namespace

QString SilenceOutKey(int channel) {
  return kKeyPrefix + QStringLiteral("%1").arg(channel, 4, 10, QLatin1Char('0'));
}

int ChannelOfKey(const QString& key) {
  if (!key.startsWith(kKeyPrefix)) {
    return 0;
  }
  bool ok = false;
  const int channel = key.mid(kKeyPrefix.size()).toInt(&ok);
  return ok && channel > 0 ? channel : 0;
}

QString SilenceOutItemText(const State& s, int channel) {
  const bool known = channel >= 1 && channel <= s.OutputNames.size();
  return (known ? s.OutputNames[channel - 1] : QStringLiteral("Uknown")) + QStringLiteral(" (") +
         SilenceOutKey(channel) + QLatin1Char(')');
}

std::vector<int> SilenceOutChannels(State& s) {
  std::vector<int> channels;
  const int count = std::clamp<int>(s.SilenceOutCount, 0, static_cast<int>(s.SilenceOuts.size()));
  for (int k = 0; k < count; ++k) {
    const int output = s.SilenceOuts[k].Output;
    if (output < 0 || output >= kNone) {
      WriteErrorLog(
          s, QStringLiteral("Silence output entry %1 names output %2; left out").arg(k).arg(output),
          QStringLiteral("Error Loading Channel Selection"));
      continue;
    }
    if (std::find(channels.begin(), channels.end(), output + 1) == channels.end()) {
      channels.push_back(output + 1);
    }
  }
  return channels;
}

int CurrentlyRequired(const State& s) {
  const int listed = std::clamp<int>(s.ActiveShowCount, 0, static_cast<int>(s.ActiveShows.size()));
  int required = 0;
  for (int p = 0; p < listed; ++p) {
    const int show = s.ActiveShows[p];
    if (show >= 0 && show < static_cast<int>(s.Shows.size())) {
      required += 1 + std::max<int>(0, s.Shows[show].StudioCount);
    }
  }
  return required;
}

std::vector<SilenceOut> BuildSilenceOutTable(const std::vector<SilenceOut>& old,
                                             const std::vector<int>& channels) {
  std::vector<SilenceOut> table;
  table.reserve(channels.size());
  for (int channel : channels) {
    SilenceOut entry;
    entry.Output = static_cast<qint16>(channel - 1);
    const auto kept = std::find_if(old.begin(), old.end(),
                                   [&](const SilenceOut& e) { return e.Output == entry.Output; });
    if (kept != old.end()) {
      entry.Status = kept->Status;
      entry.DetectTime1 = kept->DetectTime1;
      entry.DetectTime2 = kept->DetectTime2;
      entry.DetectLevel = kept->DetectLevel;
    }
    entry.Source = kNone;
    entry.Show = kNone;
    entry.Role = 0;
    table.push_back(entry);
  }
  return table;
}

void ReplaceSilenceOuts(State& s, const std::vector<int>& channels) {
  EndActiveShows(s);
  s.SilenceOuts = BuildSilenceOutTable(s.SilenceOuts, channels);
  s.SilenceOutCount = static_cast<qint16>(s.SilenceOuts.size());
  UpdateSilenceOutTable(s);
  // What is on air takes its outputs again at once; those left out of the table are parked.
  ShowsPass(s);
}

}  // namespace zrn
