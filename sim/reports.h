#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

#include <utility>
#include <vector>

#include "sim/names.h"
#include "sim/switch_state.h"

namespace zrn::sim {

// Per-output and per-relay tables go out in messages of at most this many channels, so a
// large switcher never sends one huge report.
inline constexpr int kChannelsPerReport = 64;

// Message types the switcher sends.
inline constexpr quint8 kTypeRequest = 0x81;
inline constexpr quint8 kPassword = 0x80;
inline constexpr quint8 kNameTable = 0xFC;
inline constexpr quint8 kCrosspointMap = 0xF6;
inline constexpr quint8 kRelayStates = 0xF7;
inline constexpr quint8 kSilenceDetect = 0xCB;

// Silence-detect subtypes.
inline constexpr int kSilenceConfig = 0;
inline constexpr int kSilenceChange = 10;
inline constexpr int kSilenceStatus = 11;
inline constexpr quint8 kPeakItem = 0x40;

QByteArray TypeRequest();
QByteArray PasswordReport(const QByteArray& text);
// The whole table in one message: the monitor rebuilds its table from every copy it gets.
QByteArray NameTableReport(NameTable table, const QStringList& names);

QList<QByteArray> CrosspointReports(const SwitchState& state, int first, int count);
QList<QByteArray> RelayReports(const SwitchState& state, int first, int count);
QList<QByteArray> SilenceConfigReports(const SwitchState& state, int first, int count);
QList<QByteArray> SilenceStatusReports(const SwitchState& state, int first, int count);
// Items of (0-based output, state byte): bit 0 silent or peak on, kPeakItem for a peak item.
QList<QByteArray> SilenceChangeReports(const std::vector<std::pair<int, quint8>>& items);

}  // namespace zrn::sim
