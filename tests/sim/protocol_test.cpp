#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTest>

#include "sim/control.h"
#include "sim/scenario.h"
#include "sim/sim_switcher.h"

namespace zrn::sim {
namespace {

// Wire bytes as a hex dump: Hex("F6 01 FF").
QByteArray Hex(const char* dump) {
  return QByteArray::fromHex(dump);
}

// The monitor's end of the wire, cut into messages by the end byte (or one byte for the
// keep-alive and acknowledgement bytes).
class MonitorClient {
 public:
  bool Connect(quint16 port) {
    socket.connectToHost(QHostAddress::LocalHost, port);
    return socket.waitForConnected(5000);
  }
  // The next message, or empty when none arrives within the time.
  QByteArray Next(int timeoutMs = 5000) {
    QByteArray message;
    (void)QTest::qWaitFor(
        [&] {
          buffer += socket.readAll();
          const auto first = static_cast<quint8>(buffer.isEmpty() ? 0 : buffer[0]);
          const bool single = first == 0xF1 || first == 0xF3 || first == 0xF4 || first == 0xF5;
          const qsizetype end = single ? 0 : buffer.indexOf(static_cast<char>(0xFF));
          if (buffer.isEmpty() || end < 0) {
            return false;
          }
          message = buffer.left(end + 1);
          buffer.remove(0, end + 1);
          return true;
        },
        timeoutMs);
    return message;
  }

  QTcpSocket socket;
  QByteArray buffer;
};

const QByteArray kTypeRequest = Hex("81 64 64 FF");

QString ReadLine(QIODevice& device) {
  (void)QTest::qWaitFor([&] { return device.canReadLine(); }, 5000);
  return QString::fromUtf8(device.readLine()).trimmed();
}

class SimProtocol : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(sim.Listen(QHostAddress::LocalHost, 0));
    ASSERT_TRUE(a.Connect(sim.Port()));
    ASSERT_EQ(a.Next(), kTypeRequest);
  }

  SimSwitcher sim{SimOptions{.inputs = 100,
                             .outputs = 100,
                             .relays = 4,
                             .optos = 2,
                             .detectSeconds = 1,
                             .returnSeconds = 1}};
  MonitorClient a;
};

TEST_F(SimProtocol, AnswersTheMonitorsStartUpInFullWithLargeTablesSplit) {
  // The monitor's start-up: type answer, info request, advanced request.
  a.socket.write(
      Hex("81 20 01 21 FF F2 00 07 04 18 00 00 00 00 00 00 00 00 00 00 23 FF "
          "CD 7F 00 02 00 5A 00 5B 00 36 FF"));
  QList<QByteArray> got;
  QList<qsizetype> sizes;
  for (QByteArray m = a.Next(); !m.isEmpty(); m = a.Next(500)) {
    int sum = 0;
    for (qsizetype i = 1; i < m.size() - 2; ++i) {
      sum += static_cast<quint8>(m[i]);
    }
    EXPECT_EQ(static_cast<quint8>(m[m.size() - 2]), sum % 128) << m.toHex(' ').toStdString();
    got << m;
    sizes << m.size();
  }
  // Names: inputs, outputs, optos, relays, each table whole, 8 characters a name; the crosspoint
  // map in two reports of 64 and 36 outputs; relays; detector configuration and status, each in
  // 64 and 36 outputs.
  ASSERT_EQ(sizes, (QList<qsizetype>{1009, 1009, 29, 49, 456, 260, 18, 904, 512, 72, 44}));
  EXPECT_EQ(got[0].left(15), Hex("FC 0A 08 64 00 00 00") + "STUDIO A");
  EXPECT_EQ(got[1].left(7), Hex("FC 14 08 64 00 00 00"));
  EXPECT_EQ(got[1].mid(7 + 10 * 99, 10), QByteArray("OUT 100 ") + Hex("63 00"));
  EXPECT_EQ(got[2], Hex("FC 1E 08 02 00 00 00 4F 4E 20 41 49 52 20 20 00 00 4D 49 43 20 4C 49 56 "
                        "45 01 00 2B FF"));
  EXPECT_EQ(got[3].left(7), Hex("FC 28 08 04 00 00 00"));
  // Input n on output n.
  EXPECT_EQ(got[4].left(6), Hex("F6 01 40 00 00 00"));
  EXPECT_EQ(got[4].mid(6 + 5 * 7, 7), Hex("01 00 00 05 00 00 00"));
  EXPECT_EQ(got[5].left(6), Hex("F6 01 24 00 40 00"));
  EXPECT_EQ(got[5].mid(6 + 35 * 7, 7), Hex("01 00 00 63 00 00 00"));
  EXPECT_EQ(got[6], Hex("F7 28 04 00 00 00 00 01 00 00 02 00 00 03 00 00 32 FF"));
  // Message only, enabled, -20 dB, 1 s both ways; then all audible.
  EXPECT_EQ(got[7].left(20), Hex("CB 00 40 00 00 00 09 02 7F 7F 38 06 01 00 01 00 00 08 00 00"));
  EXPECT_EQ(got[8].left(6), Hex("CB 00 24 00 40 00"));
  EXPECT_EQ(got[9], Hex("CB 0B 40 00 00 00") + QByteArray(64, '\0') + Hex("4B FF"));
  EXPECT_EQ(got[10], Hex("CB 0B 24 00 40 00") + QByteArray(36, '\0') + Hex("6F FF"));

  // The password on its own request; a request with a wrong checksum is not answered.
  a.socket.write(Hex("F2 02 00 00 00 00 00 00 00 00 00 00 00 00 00 02 FF"));
  EXPECT_EQ(a.Next(), Hex("80 00 07 50 45 4E 4E 41 52 4F 1A FF"));
  a.socket.write(Hex("F2 02 00 00 00 00 00 00 00 00 00 00 00 00 00 03 FF"));
  EXPECT_EQ(a.Next(200), QByteArray());
}

TEST_F(SimProtocol, SilenceIsReportedAfterTheDetectTimeAndAudioAfterTheReturnTime) {
  QElapsedTimer clock;
  clock.start();
  EXPECT_EQ(RunCommand(sim, QStringLiteral("input 7 silent")), QStringLiteral("ok input 7 silent"));
  EXPECT_EQ(a.Next(), Hex("CB 0A 01 00 06 00 01 12 FF"));
  EXPECT_GE(clock.elapsed(), 1000);

  clock.restart();
  RunCommand(sim, QStringLiteral("input 7 audio"));
  EXPECT_EQ(a.Next(), Hex("CB 0A 01 00 06 00 00 11 FF"));
  EXPECT_GE(clock.elapsed(), 1000);

  // A silence shorter than the detect time is never reported.
  RunCommand(sim, QStringLiteral("output 2 silent"));
  QTest::qWait(400);
  RunCommand(sim, QStringLiteral("output 2 auto"));
  EXPECT_EQ(a.Next(1000), QByteArray());

  // With detection off (mode 0) silence is not reported.
  a.socket.write(Hex("CB 00 01 00 02 00 00 00 7F 7F 38 06 01 00 01 00 00 08 00 00 49 FF"));
  EXPECT_EQ(a.Next().left(6), Hex("CB 00 01 00 02 00"));
  RunCommand(sim, QStringLiteral("input 3 silent"));
  EXPECT_EQ(a.Next(1300), QByteArray());
}

TEST_F(SimProtocol, CommandsFromTheWireOrTheControlPortReachEveryMonitor) {
  MonitorClient b;
  ASSERT_TRUE(b.Connect(sim.Port()));
  ASSERT_EQ(b.Next(), kTypeRequest);
  ControlServer control(sim);
  ASSERT_TRUE(control.Listen(0));
  QTcpSocket operatorLine;
  operatorLine.connectToHost(QHostAddress::LocalHost, control.Port());
  ASSERT_TRUE(operatorLine.waitForConnected(5000));
  // What a monitor sends, or the operator (blank and comment lines get no reply), the reply to
  // the operator, and what both monitors hear of it.
  const struct {
    MonitorClient* from;
    const char* sends;
    const char* reply;
    const char* bothHear;
  } steps[] = {
      // Input 12 to output 7, latch relay 3, release relay 1.
      {&a, "FE 04 00 0B 00 06 00 15 FF", "", "F6 01 01 00 06 00 01 00 00 0B 00 00 00 14 FF"},
      {&b, "FE 44 00 00 00 02 00 46 FF", "", "F7 28 01 00 02 00 01 2C FF"},
      {&a, "FE 40 00 00 00 00 00 40 FF", "", "F7 28 01 00 00 00 00 29 FF"},
      // A detector configuration is stored and reported back as sent.
      {&a, "CB 00 01 00 14 00 09 02 7F 7F 38 06 08 00 05 00 00 08 00 00 71 FF", "",
       "CB 00 01 00 14 00 09 02 7F 7F 38 06 08 00 05 00 00 08 00 00 71 FF"},
      // Output 7 cleared: nothing routed.
      {&a, "FE 00 00 7F 7F 06 00 04 FF", "", "F6 01 01 00 06 00 00 00 00 08 FF"},
      // Stray bytes, a map cut short by a command, a command with a wrong checksum are skipped.
      {&b, "12 34 F6 01 FE 04 00 0B 00 06 00 16 FF 99 FF FF FE 04 00 0B 00 06 00 15 FF", "",
       "F6 01 01 00 06 00 01 00 00 0B 00 00 00 14 FF"},
      {nullptr, "route 12 7", "ok route 12 7", "F6 01 01 00 06 00 01 00 00 0B 00 00 00 14 FF"},
      {nullptr, "RELAY 2 on", "ok relay 2 on", "F7 28 01 00 01 00 01 2B FF"},
      {nullptr, "\n# a comment\nbogus 1", "error unknown command 'bogus'", ""},
      {nullptr, "input 101 silent", "error input must be 1..100", ""},
      {nullptr, "send F6 01 02 FF", "ok sent 4 bytes to 2 connections", "F6 01 02 FF"},
      // Peak on for outputs 1 to 3, one report each, in one write.
      {nullptr, "burst 3", "ok burst 3 reports, 27 bytes",
       "CB 0A 01 00 00 00 41 4C FF CB 0A 01 00 01 00 41 4D FF CB 0A 01 00 02 00 41 4E FF"},
      {nullptr, "route none 3", "ok route none 3", "F6 01 01 00 02 00 00 00 00 04 FF"},
      {nullptr, "burst 0", "error usage: burst N (1 to 1000000 peak changes in one write)", ""},
  };
  for (const auto& step : steps) {
    if (step.from != nullptr) {
      step.from->socket.write(Hex(step.sends));
    } else {
      operatorLine.write(QByteArray(step.sends) + '\n');
      EXPECT_EQ(ReadLine(operatorLine).toStdString(), step.reply) << step.sends;
    }
    for (MonitorClient* monitor : {&a, &b}) {
      QByteArray heard;
      for (QByteArray m = monitor->Next(200); !m.isEmpty(); m = monitor->Next(200)) {
        heard += m;
      }
      EXPECT_EQ(heard.toHex(' ').toUpper().toStdString(), step.bothHear) << step.sends;
    }
  }
  // Relay 5 does not exist: no report, the keep-alive answer comes next.
  a.socket.write(Hex("FE 44 00 00 00 04 00 48 FF F5"));
  EXPECT_EQ(a.Next(), Hex("F4"));
  operatorLine.write("status\n");
  const QString status = ReadLine(operatorLine);
  for (const char* field : {" connections=2 ", " inputs=100 ", " relays_on=2,3 ",
                            " pending_outputs=3 ", " routes=1:1,2:2,3:-,4:4,5:5,6:6,7:12,"}) {
    EXPECT_TRUE(status.contains(QLatin1String(field))) << field << " in " << status.toStdString();
  }

  // Over a mebibyte without an end byte cuts the connection.
  a.socket.write(Hex("F6") + QByteArray(1024 * 1024 + 16, '\x01'));
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return a.socket.state() == QAbstractSocket::UnconnectedState; }, 5000));
  EXPECT_EQ(sim.ConnectionCount(), 1);
}

TEST(SimScenario, ParsesStrictlyAndNamesTheBadLine) {
  // Each bad line is named with its number and what is wrong with it: a bad time or word when
  // parsed, a bad argument when checked against the switcher's size.
  const struct {
    const char* text;
    const char* error;
  } bad[] = {
      {"at 1 input 1 silent\nat x status\n",
       "line 2: seconds must be from 0 to 86400: at x status"},
      {"# first\n\nevery 0 status",
       "line 3: seconds must be more than 0 and at most 86400: every 0 status"},
      {"sometimes 3 status", "line 1: a step starts with \"at\" or \"every\": sometimes 3 status"},
      {"at 1 frobnicate", "line 1: not a control command: at 1 frobnicate"},
      {"at 2", "line 1: not a control command: at 2"},
      {"at 2 status\nat 3 input 17 silent", "line 2: input must be 1..16: at 3 input 17 silent"},
      {"at 1 relay 2 maybe", "line 1: usage: relay N on|off: at 1 relay 2 maybe"},
  };
  QString error;
  for (const auto& c : bad) {
    error.clear();
    const auto parsed = ParseScenario(QString::fromLatin1(c.text), &error);
    if (parsed) {
      EXPECT_FALSE(CheckScenario(*parsed, SimOptions{.inputs = 16, .outputs = 16}, &error))
          << c.text;
    }
    EXPECT_EQ(error, QString::fromLatin1(c.error)) << c.text;
  }
  const auto demo = ParseScenario(DemoScenario(), &error);
  ASSERT_TRUE(demo);
  EXPECT_EQ(demo->size(), 3u);
}

}  // namespace
}  // namespace zrn::sim
