#include <sys/socket.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QThread>

#include "support/switcher_bytes.h"
#include "support/temp_state.h"
#include "switcher/commands.h"
#include "switcher/link.h"
#include "switcher/switcher_connection.h"

namespace zrn {
namespace {

using test::Bytes;

// The program's link against a real server on the loopback interface.
class Loopback : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    s.ServerPort = server.serverPort();
    for (int type : {0xF6, 0xF7, 0xCB}) {
      s.linkState.handlers[type] = [this](State&, const QByteArray& m) { dispatched << m; };
    }
  }
  // Dials the server and returns its end once the program sees the link up.
  QTcpSocket* Connect() {
    ConnectToSwitcher(s);
    if (!server.hasPendingConnections() && !server.waitForNewConnection(5000)) {
      return nullptr;
    }
    QTcpSocket* peer = server.nextPendingConnection();
    return QTest::qWaitFor([&] { return s.Connected; }, 5000) ? peer : nullptr;
  }
  // What the server has received so far, once at least n bytes are there.
  QByteArray ServerReads(QTcpSocket* peer, int n) {
    QByteArray got;
    (void)QTest::qWaitFor(
        [&] {
          got += peer->readAll();
          return got.size() >= n;
        },
        5000);
    return got;
  }

  QTcpServer server;
  SwitcherConnection connection{s};
  QList<QByteArray> dispatched;
};

// Keep-alives, split reports and commands over a real socket, a close and a reset.
TEST_F(Loopback, ConnectsTalksBothWaysAndNoticesTheCloseAndTheReset) {
  QTcpSocket* peer = Connect();
  ASSERT_NE(peer, nullptr);
  peer->write(Bytes({0xF5}));
  EXPECT_EQ(ServerReads(peer, 1), Bytes({0xF4})) << "a keep-alive is answered with one byte";

  // A report split across two writes waits for its end, without the decode timer.
  peer->write(Bytes({0xF7, 0x01}));
  QTest::qWait(50);
  EXPECT_FALSE(connection.DecodeTimerActive());
  EXPECT_EQ(s.ReceiveBuffer, Bytes({0xF7, 0x01}));
  peer->write(Bytes({0x00, 0x01, 0xFF}));
  ASSERT_TRUE(QTest::qWaitFor([&] { return dispatched.size() == 1; }, 5000));
  EXPECT_EQ(dispatched[0], Bytes({0xF7, 0x01, 0x00, 0x01, 0xFF}));

  EXPECT_TRUE(SendSwitcherCommand(s, 7, 12, kCommandConnect));
  EXPECT_EQ(ServerReads(peer, 9), Bytes({0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF}));

  peer->close();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
  EXPECT_FALSE(SendSwitcherCommand(s, 7, 12, kCommandConnect)) << "nothing goes out when down";
  EXPECT_TRUE(ErrorLines().isEmpty());

  // The switcher resets the next connection unseen by the event loop: the write that finds it
  // must not close the link inside the code that wrote.
  peer = Connect();
  ASSERT_NE(peer, nullptr);
  const linger reset{1, 0};
  ASSERT_EQ(::setsockopt(static_cast<int>(peer->socketDescriptor()), SOL_SOCKET, SO_LINGER, &reset,
                         sizeof reset),
            0);
  peer->abort();
  QThread::msleep(50);
  SendSwitcherCommand(s, 7, 12, kCommandConnect);
  EXPECT_TRUE(s.Connected);
  EXPECT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
}

// A refused attempt says where it tried and why, beside the specified text; each attempt replaces
// the last, and only the latest one may report in. Neither is a change of state.
TEST_F(Loopback, RefusedAndAbandonedAttemptsLeaveOneQuietLink) {
  const quint16 port = server.serverPort();
  server.close();
  QSignalSpy changes(&connection, &SwitcherConnection::changed);
  ConnectToSwitcher(s);
  ASSERT_TRUE(changes.wait(5000));
  EXPECT_EQ(s.StatusBarText,
            QStringLiteral("Server Module Not Connected - connecting to 127.0.0.1:%1 "
                           "(Connection refused)")
                .arg(port));

  ASSERT_TRUE(server.listen(QHostAddress::LocalHost, port));
  for (int i = 0; i < 5; ++i) {
    ConnectToSwitcher(s);
  }
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.Connected; }, 5000));
  QTest::qWait(100);
  int open = 0;
  while (server.hasPendingConnections()) {
    QTcpSocket* peer = server.nextPendingConnection();
    QTest::qWait(20);
    open += peer->state() == QAbstractSocket::ConnectedState ? 1 : 0;
  }
  EXPECT_EQ(open, 1) << "abandoned attempts are closed";
  EXPECT_EQ(s.MessageRows.join(u'|').section(QStringLiteral(" - "), 2),
            QStringLiteral("Server Module Connected"));
  EXPECT_TRUE(ErrorLines().isEmpty());
}

}  // namespace
}  // namespace zrn
