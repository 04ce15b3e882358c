#pragma once

#include "support/connected_state.h"
#include "support/switcher_bytes.h"

namespace zrn::test {

// A connected switcher link over a recording fake; bytes arrive through the real decoder.
class SwitcherTest : public ConnectedStateTest {
 protected:
  void Receive(const QByteArray& bytes) { OnDataAvailable(s, bytes); }
  // What one call put on the wire.
  template <class Call>
  QByteArray Sent(Call call) {
    link.wire.clear();
    call();
    return link.wire;
  }
  // Error-log lines without their date column.
  QStringList Errors() const {
    QStringList out;
    for (const QString& line : ErrorLines()) {
      out << line.mid(24).simplified();
    }
    return out;
  }
};

}  // namespace zrn::test
