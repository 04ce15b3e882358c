#pragma once

#include <QString>

#include "core/state.h"

namespace zrn {

// Reads zrnconfig.ini from AppPath (defaults when absent); false after an error, in which
// case the file is set aside so the next start begins from the defaults, and *problem (when
// given) tells the operator what failed: the entry it stopped at, or why the file could not
// be opened, and where the file went.
bool ReadConfiguration(State& s, QString* problem = nullptr);

// Writes zrnconfig.ini; false after an error (the previous file stays whole), with the file
// and the reason for the operator in *failure when given.
bool WriteConfiguration(State& s, QString* failure = nullptr);

// Four dot-separated numbers clamped to 0..255, without leading zeros; false when the text
// has fewer than three dots or nothing after the third.
bool NormalizeServerAddress(const QString& address, QString* normalized);

}  // namespace zrn
