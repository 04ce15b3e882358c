#pragma once

#include <QFile>
#include <algorithm>

#include "support/temp_state.h"

namespace zrn::test {

// A state in a temporary folder, with what the data-file tests ask of its error log.
class StorageTest : public TempStateTest {
 protected:
  // A state as start-up prepares it, sharing the fixture's folder and clock.
  State Fresh() {
    State t;
    t.AppPath = s.AppPath;
    t.clock = &clock;
    return t;
  }
  bool HasErrorLine(const QString& location, const QString& text) const {
    return std::ranges::any_of(ErrorLines(), [&](const QString& line) {
      return line.mid(24).startsWith(location) && line.contains(text);
    });
  }
  // A fresh error log and no set-aside copies, so each damaged file is judged on its own.
  void ForgetErrors(const QString& keep) {
    s.logs = LogState{};
    for (const QString& name : Files()) {
      if (name != keep) {
        QFile::remove(PathOf(name));
      }
    }
  }
};

}  // namespace zrn::test
