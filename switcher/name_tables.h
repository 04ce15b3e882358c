#pragma once

#include <QByteArray>

#include "core/state.h"

namespace zrn {

// Table numbers of the name (alpha) table message.
inline constexpr int kInputTable = 10;
inline constexpr int kOutputTable = 20;
inline constexpr int kOptoTable = 30;
inline constexpr int kRelayTable = 40;

// A received name table (0xFC), whole. A table starting at entry 0 replaces the names and
// sets the switcher's count; one starting further on updates those entries in place and keeps
// the table's size. Output and opto names are also kept sorted, apart from the tables.
void ProcessAlphaTable(State& s, const QByteArray& message);

// Rebuilds SilenceOutIndex from SilenceOuts; a later entry with the same output wins.
void UpdateSilenceOutTable(State& s);

}  // namespace zrn
