#pragma once

#include <QString>
#include <vector>

#include "core/state.h"

namespace zrn {

// "Ch.0005" for switcher output 5 (1-based): the identity of a list item.
QString SilenceOutKey(int channel);
// The channel a key names, or 0 when it names none.
int ChannelOfKey(const QString& key);
// "name (Ch.0005)"; an output beyond the name table reads "Uknown".
QString SilenceOutItemText(const State& s, int channel);

// The channels (1-based) of the silence-output table in table order, each once; an entry that
// names no output is left out with an error-log line.
std::vector<int> SilenceOutChannels(State& s);
// Outputs the active shows need now: one for each downlink and one for each studio source.
int CurrentlyRequired(const State& s);

// The table for the chosen channels, in their order. An output that was in the old table keeps
// its detector settings and last status; every entry starts free.
std::vector<SilenceOut> BuildSilenceOutTable(const std::vector<SilenceOut>& old,
                                             const std::vector<int>& channels);

// Replaces the silence-output table without stranding a borrowed output: every show is ended
// first (its outputs parked and given back), so the next poll tick starts what is on air with
// the new table.
void ReplaceSilenceOuts(State& s, const std::vector<int>& channels);

}  // namespace zrn
