#include "switcher/status_reports.h"

#include <algorithm>
#include <utility>

#include "core/channel_texts.h"
#include "core/watched_outputs.h"
#include "storage/logs.h"
#include "switcher/message_reader.h"
#include "switcher/startup_exchange.h"

namespace zrn {

namespace {

constexpr int kMaxEntries = 64;
constexpr int kMaxMarked = 32;
constexpr int kMarker = 10;
constexpr int kLevelWithSecondValue = 10;
constexpr int kRelayTableNumber = 0x28;
constexpr int kPeakReport = 64;

const QString kSilenceLocation = QStringLiteral("Silence Detect");

void ApplyCrosspointMap(State& s, const QByteArray& message) {
  if (message.size() < 8 || !ChecksumOk(message)) {
    return;
  }
  MessageReader in(s, message);
  const int format = in.Byte();
  const bool markers = (format & 64) != 0;
  const int level = markers ? format & 15 : format;
  const int count = in.Int14();
  const int first = in.Int14();
  if (first > s.SwitcherOutputCount) {
    return;
  }
  const int entrySize = (level == kLevelWithSecondValue ? 6 : 4) + (markers ? 1 : 0);
  // A map stored but not taken leaves panel texts behind the routing until the next full pass.
  const bool textsCurrent = std::exchange(s.panelPass.textsCurrent, false);
  qint64 total = 8;
  for (int output = first; output < first + count; ++output) {
    const int n = in.Int14();
    if (n > kMaxEntries) {
      return;
    }
    CrosspointEntry& map = At(s.CrosspointMap, output);
    map.SourceCount = static_cast<quint8>(n);
    map.OutputFlags = static_cast<quint8>(in.Byte());
    int marked = 0;
    for (int j = 0; j < n; ++j) {
      const bool isMarked = markers && in.Byte() == kMarker;
      const auto source = static_cast<qint16>(in.Int14());
      const auto value1 = static_cast<qint16>(in.Int14());
      const bool second = level == kLevelWithSecondValue;
      const auto value2 = second ? static_cast<qint16>(in.Int14()) : qint16{0};
      if (isMarked) {
        if (++marked > kMaxMarked) {
          return;
        }
        map.MarkedSources[marked - 1] = source;
        map.MarkedValues1[marked - 1] = value1;
        if (second) {
          map.MarkedValues2[marked - 1] = value2;
        }
      } else {
        map.Sources[j - marked] = source;
        map.Values1[j - marked] = value1;
        if (second) {
          map.Values2[j - marked] = value2;
        }
      }
    }
    map.MarkedCount = static_cast<quint8>(marked);
    total += 3 + static_cast<qint64>(n) * entrySize;
  }
  // A report longer or shorter than its blocks keeps what it stored but is not taken as the
  // answer: the map is asked for again.
  if (message.size() == total) {
    ClearRequest(s, kRequestCrosspointMap);
    s.panelPass.textsCurrent = textsCurrent;
    s.reactions.routesReported(s, first, count);
  }
}

void ApplyRelayStates(State& s, const QByteArray& message) {
  if (message.size() < 4 || static_cast<quint8>(message[1]) != kRelayTableNumber ||
      !ChecksumOk(message)) {
    return;
  }
  MessageReader in(s, message, 2);
  const int count = message.size() >= 6 ? in.Int14() : -1;
  if (message.size() != 3 * static_cast<qint64>(count) + 6) {
    WriteErrorLog(s, QStringLiteral("Relay States Length Error"),
                  QStringLiteral("Error Receiving Relay/Opto State"));
    return;
  }
  const int relays = std::min<int>(s.SwitcherRelayCount, static_cast<int>(s.RelayStates.size()));
  for (int k = 0; k < count; ++k) {
    const int relay = in.Int14();
    int state = in.Byte();
    if (state > 2) {
      state = 0;
    }
    if (relay < relays) {
      s.RelayStates[static_cast<size_t>(relay)] = static_cast<qint16>(state);
    }
  }
  ClearRequest(s, kRequestRelayStates);
  s.reactions.relayStatesReported(s);
}

// Applies one change-of-state item of a switcher output (0-based).
void ChangeOfState(State& s, int output, int report) {
  if (output < 0 || output >= s.SwitcherOutputCount ||
      output >= static_cast<int>(s.SilenceStatus.size())) {
    return;
  }
  const bool peak = (report & kPeakReport) != 0;
  if (!peak) {
    // The switcher has spoken about the silence of what is routed now.
    EndSilenceGrace(s, output);
  }
  quint8& status = s.SilenceStatus[static_cast<size_t>(output)].Status;
  const int old = status;
  const int now = peak ? (report & 1) * 2 + (old & 1) : (old & 2) + (report & 1);
  if (now == old) {
    return;
  }
  status = static_cast<quint8>(now);
  s.panelPass.changedChannels.push_back(output + 1);
  const bool silenceChanged = ((now ^ old) & 1) != 0;
  ForEachWatching(s, output + 1, [&](int i) {
    OutputEntry& entry = s.Outputs[static_cast<size_t>(i)];
    // A peak coming or going leaves the acknowledgement of a silence standing.
    if (silenceChanged) {
      entry.AlarmState = 0;
      entry.AlarmCanceled = false;
    }
    // In show mode the watched outputs are hidden and raise no alarm: their lines would only
    // name an output where the operator looks for a show.
    if (s.ProgramMode == 1 || (now != 0 && now != 1)) {
      return;
    }
    const QString line = PanelName(s, entry) + QStringLiteral(" [") + ChannelDigits(output + 1) +
                         (now == 1 ? QStringLiteral("] Silence Alarm Status ON!")
                                   : QStringLiteral("] Silence Alarm Status OFF!"));
    DisplayMessage(s, line);
  });
}

// False when the message was not accepted (its error line is written).
bool ApplySilenceDetect(State& s, const QByteArray& message) {
  if (!ChecksumOk(message)) {
    WriteErrorLog(s, QStringLiteral("Check Sum Error"), kSilenceLocation);
    return false;
  }
  const qsizetype length = message.size();
  const int subtype = length >= 4 ? static_cast<quint8>(message[1]) : -1;
  MessageReader in(s, message, 2);
  int count = 0;
  int first = 0;
  qint64 expected = -1;
  if ((subtype == kSilenceConfiguration || subtype == kSilenceStatusReport) && length >= 8) {
    count = in.Int14();
    first = in.Int14();
    expected = (subtype == kSilenceConfiguration ? 14 * static_cast<qint64>(count) : count) + 8;
  } else if (subtype == kSilenceChangeOfState && length >= 6) {
    count = in.Int14();
    expected = 3 * static_cast<qint64>(count) + 6;
  }
  if (length != expected) {
    WriteErrorLog(s, QStringLiteral("Message Length Error"), kSilenceLocation);
    return false;
  }

  if (subtype == kSilenceChangeOfState) {
    // Read whole: an item for an output beyond the switcher's is skipped on its own, so a
    // burst of peak items cannot push a silence off the end.
    for (int k = 0; k < count; ++k) {
      const int output = in.Int14();
      ChangeOfState(s, output, in.Byte());
    }
    return true;
  }
  // Outputs beyond the switcher's are left out.
  if (first + count > s.SwitcherOutputCount) {
    count = s.SwitcherOutputCount - first;
  }
  const int known = static_cast<int>(s.SilenceStatus.size());
  for (int i = first; i < first + count; ++i) {
    if (subtype == kSilenceStatusReport) {
      const int status = in.Byte();
      if (i < known) {
        s.SilenceStatus[static_cast<size_t>(i)].Status = static_cast<quint8>(status);
      }
      continue;
    }
    SilenceStatusEntry received;
    received.Mode = static_cast<qint16>(in.Int14());
    received.Device = static_cast<qint16>(in.Int14());
    received.SilenceThreshold = static_cast<qint16>(in.Int14());
    received.DetectTime = static_cast<qint16>(in.Int14());
    received.ReturnTime = static_cast<qint16>(in.Int14());
    received.PeakThreshold = static_cast<qint16>(in.Int14());
    received.HoldTime = static_cast<qint16>(in.Int14());
    if (i < known) {
      SilenceStatusEntry& entry = s.SilenceStatus[static_cast<size_t>(i)];
      received.Status = entry.Status;
      entry = received;
    }
  }
  ClearRequest(s, subtype == kSilenceStatusReport ? kRequestSilenceStatus : kRequestSilenceConfig);
  return true;
}

}  // namespace

void ProcessCrosspointMap(State& s, const QByteArray& message) {
  Trap(s, QStringLiteral("Error Processing Crosspoint Map"), QStringLiteral("IP Error"),
       [&] { ApplyCrosspointMap(s, message); });
}

void ProcessRelayStates(State& s, const QByteArray& message) {
  Trap(s, QStringLiteral("Error Receiving Relay/Opto State"),
       QStringLiteral("Switcher Message Error"), [&] { ApplyRelayStates(s, message); });
}

void ProcessSilenceDetect(State& s, const QByteArray& message) {
  bool accepted = false;
  Trap(s, QStringLiteral("Error Receiving Silence Detect"),
       QStringLiteral("Switcher Message Error"),
       [&] { accepted = ApplySilenceDetect(s, message); });
  if (!accepted) {
    // Whatever it changed before it failed is left to the next full pass.
    s.panelPass.Forget();
  } else if (static_cast<quint8>(message[1]) == kSilenceChangeOfState) {
    s.reactions.silenceChanged(s);
  } else {
    s.reactions.silenceReported(s);
  }
}

}  // namespace zrn
