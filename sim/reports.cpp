#include "sim/reports.h"

#include <algorithm>
#include <functional>

namespace zrn::sim {

namespace {

// Level 1 without entry markers: one source and one value per entry.
constexpr int kCrosspointFormat = 1;
constexpr int kRelayTable = 40;

// Cuts first..first+count-1 into report-sized pieces; each piece is framed by build.
QList<QByteArray> Chunked(int first, int count,
                          const std::function<QByteArray(int first, int count)>& build) {
  QList<QByteArray> out;
  for (int start = first; start < first + count; start += kChannelsPerReport) {
    out << build(start, std::min(kChannelsPerReport, first + count - start));
  }
  return out;
}

// The start of a report about channels start..start+n-1: its subtype, count and first channel.
QByteArray BlockPayload(int subtype, int n, int start) {
  QByteArray payload;
  payload.append(static_cast<char>(subtype));
  Append14(payload, n);
  Append14(payload, start);
  return payload;
}

// Reports about outputs first..first+count-1, in blocks; append writes one output's entry.
QList<QByteArray> OutputBlocks(int first, int count, int subtype, quint8 type,
                               const std::function<void(QByteArray&, int output)>& append) {
  return Chunked(first, count, [&](int start, int n) {
    QByteArray payload = BlockPayload(subtype, n, start);
    for (int o = start; o < start + n; ++o) {
      append(payload, o);
    }
    return Frame(type, payload);
  });
}

}  // namespace

QByteArray TypeRequest() {
  return Frame(kTypeRequest, QByteArray(1, 'd'));
}

QByteArray PasswordReport(const QByteArray& text) {
  QByteArray payload;
  payload.append('\0');
  payload.append(static_cast<char>(text.size()));
  payload.append(text);
  return Frame(kPassword, payload);
}

QByteArray NameTableReport(NameTable table, const QStringList& names) {
  qsizetype width = 8;
  for (const QString& name : names) {
    width = std::max(width, name.size());
  }
  QByteArray payload;
  payload.append(static_cast<char>(table));
  payload.append(static_cast<char>(width));
  Append14(payload, static_cast<int>(names.size()));
  Append14(payload, 0);
  for (int i = 0; i < names.size(); ++i) {
    QByteArray name = names[i].toLatin1().leftJustified(width, ' ');
    for (char& c : name) {
      c = static_cast<char>(c & 127);
    }
    payload.append(name);
    Append14(payload, i);
  }
  return Frame(kNameTable, payload);
}

QList<QByteArray> CrosspointReports(const SwitchState& state, int first, int count) {
  return OutputBlocks(first, count, kCrosspointFormat, kCrosspointMap,
                      [&](QByteArray& payload, int o) {
                        const int source = state.outputs[o].source;
                        Append14(payload, source == kNone ? 0 : 1);
                        payload.append('\0');  // output byte
                        if (source != kNone) {
                          Append14(payload, source);
                          Append14(payload, 0);
                        }
                      });
}

QList<QByteArray> RelayReports(const SwitchState& state, int first, int count) {
  return Chunked(first, count, [&](int start, int n) {
    QByteArray payload;
    payload.append(static_cast<char>(kRelayTable));
    Append14(payload, n);
    for (int r = start; r < start + n; ++r) {
      Append14(payload, r);
      payload.append(static_cast<char>(state.relays[r]));
    }
    return Frame(kRelayStates, payload);
  });
}

QList<QByteArray> SilenceConfigReports(const SwitchState& state, int first, int count) {
  return OutputBlocks(first, count, kSilenceConfig, kSilenceDetect,
                      [&](QByteArray& payload, int o) {
                        const SilenceConfig& c = state.outputs[o].config;
                        for (int value : {c.mode, c.device, c.silenceThreshold, c.detectTime,
                                          c.returnTime, c.peakThreshold, c.holdTime}) {
                          Append14(payload, value);
                        }
                      });
}

QList<QByteArray> SilenceStatusReports(const SwitchState& state, int first, int count) {
  return OutputBlocks(first, count, kSilenceStatus, kSilenceDetect,
                      [&](QByteArray& payload, int o) {
                        payload.append(static_cast<char>(state.outputs[o].status));
                      });
}

QList<QByteArray> SilenceChangeReports(const std::vector<std::pair<int, quint8>>& items) {
  return Chunked(0, static_cast<int>(items.size()), [&](int start, int n) {
    QByteArray payload;
    payload.append(static_cast<char>(kSilenceChange));
    Append14(payload, n);
    for (int i = start; i < start + n; ++i) {
      Append14(payload, items[i].first);
      payload.append(static_cast<char>(items[i].second));
    }
    return Frame(kSilenceDetect, payload);
  });
}

}  // namespace zrn::sim
