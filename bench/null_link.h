// A switcher link that takes every write and sends nothing, for timing the core on its own.
#pragma once

#include "core/ports.h"

namespace zrn::bench {

class NullLink final : public Link {
 public:
  void Open(const QString&, quint16) override {}
  void Close() override {}
  qint64 Write(const QByteArray& bytes) override { return bytes.size(); }
  bool CanWrite() const override { return true; }
};

}  // namespace zrn::bench
