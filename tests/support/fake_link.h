#pragma once

#include <QByteArray>
#include <QString>

#include "core/ports.h"

namespace zrn::test {

// A link that records what is written; it can accept only part of each write, or refuse.
class FakeLink final : public Link {
 public:
  void Open(const QString& address, quint16 port) override {
    ++opens;
    lastAddress = address;
    lastPort = port;
  }
  void Close() override { ++closes; }
  qint64 Write(const QByteArray& bytes) override {
    ++writes;
    if (failWrites) {
      return -1;
    }
    const qint64 n =
        acceptPerWrite > 0 ? std::min<qint64>(acceptPerWrite, bytes.size()) : bytes.size();
    wire += bytes.left(n);
    pieces.push_back(static_cast<int>(n));
    return n;
  }
  bool CanWrite() const override { return writable; }

  QByteArray wire;
  std::vector<int> pieces;
  int opens = 0;
  int closes = 0;
  int writes = 0;
  qint64 acceptPerWrite = 0;
  bool writable = true;
  bool failWrites = false;
  QString lastAddress;
  quint16 lastPort = 0;
};

}  // namespace zrn::test
