#pragma once

#include <QString>
#include <QStringList>

#include "core/state.h"

namespace zrn {

// "0012" for 12.
QString ChannelDigits(int channel);

// Entry index (0-based) of a name table; an index beyond it reads "Uknown".
QString NameAt(const QStringList& names, long long index);

// "[0005] name" for channel 5 (1-based) of a name table; a channel beyond it reads "Uknown".
QString ChannelItemText(int channel, const QStringList& names);

// What a watched output's panel says: its label and, when there is one, the number beside it.
struct PanelTexts {
  QString label;
  QString number;  // empty when there is no number to show
};

// By the output's display option: the output's name and number, the name and number of the
// source routed to it ("-Off-" when none), or its custom label. A channel or source the name
// tables do not hold reads "Uknown".
PanelTexts PanelTextsOf(const State& s, const OutputEntry& entry);

// The name a watched output goes by, on its panel and in log lines.
QString PanelName(const State& s, const OutputEntry& entry);

}  // namespace zrn
