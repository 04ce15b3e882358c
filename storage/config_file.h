#pragma once

#include <QString>

#include "core/state.h"

namespace zrn {

// Reads zrnconfig.ini from AppPath (defaults when absent); false after an error, in which
// case the file is set aside so the next start begins from the defaults.
bool ReadConfiguration(State& s);

// Writes zrnconfig.ini; false after an error (the previous file stays whole).
bool WriteConfiguration(State& s);

// Four dot-separated numbers clamped to 0..255, without leading zeros; false when the text
// has fewer than three dots or nothing after the third.
bool NormalizeServerAddress(const QString& address, QString* normalized);

}  // namespace zrn
