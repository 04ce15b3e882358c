#pragma once

#include <QStringList>

#include "support/fake_link.h"
#include "support/temp_state.h"
#include "switcher/link.h"

namespace zrn::test {

// A state connected over a recording fake link, its message list empty.
class ConnectedStateTest : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.link = &link;
    OnConnected(s);
    s.MessageRows.clear();
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
