#pragma once

#include "support/fake_link.h"
#include "support/switcher_bytes.h"
#include "support/temp_state.h"
#include "switcher/link.h"

namespace zrn::test {

// A connected switcher link over a recording fake; bytes arrive through the real decoder.
class SwitcherTest : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    OnConnected(s);
    s.MessageRows.clear();
  }
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
  // The message list without its stamps.
  QStringList Reports() const {
    QStringList out;
    for (const QString& row : s.MessageRows) {
      out << row.section(QStringLiteral(" - "), 2);
    }
    return out;
  }

  FakeLink link;
};

}  // namespace zrn::test
