#pragma once

#include <QByteArray>
#include <QTcpSocket>
#include <QTest>

#include "support/bytes.h"

namespace zrn::sim::test {

using zrn::test::Bytes;

// The monitor's end of the wire, cut into messages by the end byte (or one byte for the
// keep-alive and acknowledgement bytes).
class MonitorClient {
 public:
  bool Connect(quint16 port) {
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(5000);
  }
  void Write(const QByteArray& bytes) {
    socket.write(bytes);
    socket.flush();
  }
  // The next message, or empty when none arrives within the time.
  QByteArray Next(int timeoutMs = 5000) {
    QByteArray message;
    (void)QTest::qWaitFor(
        [&] {
          buffer += socket.readAll();
          message = Cut();
          return !message.isEmpty();
        },
        timeoutMs);
    return message;
  }
  // True when nothing at all arrives for the given time.
  bool Quiet(int ms) {
    QTest::qWait(ms);
    buffer += socket.readAll();
    return buffer.isEmpty();
  }

  QTcpSocket socket;
  QByteArray buffer;

 private:
  QByteArray Cut() {
    if (buffer.isEmpty()) {
      return {};
    }
    const auto first = static_cast<quint8>(buffer[0]);
    const bool single = first == 0xF1 || first == 0xF3 || first == 0xF4 || first == 0xF5;
    const qsizetype end = single ? 0 : buffer.indexOf(static_cast<char>(0xFF));
    if (end < 0) {
      return {};
    }
    QByteArray message = buffer.left(end + 1);
    buffer.remove(0, end + 1);
    return message;
  }
};

}  // namespace zrn::sim::test
