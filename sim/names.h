#pragma once

#include <QStringList>

namespace zrn::sim {

// The name tables the switcher keeps, by their number on the wire.
enum class NameTable { kInputs = 10, kOutputs = 20, kOptos = 30, kRelays = 40 };

// A few studio, network and satellite names first, then numbered ones ("IN 11").
QStringList DefaultNames(NameTable table, int count);

}  // namespace zrn::sim
