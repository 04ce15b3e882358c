#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTest>

#include "monitor_client.h"
#include "sim/control.h"
#include "sim/sim_switcher.h"

namespace zrn::sim {
namespace {

using test::Bytes;
using test::MonitorClient;

const QByteArray kTypeRequest = Bytes({0x81, 0x64, 0x64, 0xFF});
// The monitor's start-up: type answer, info request, advanced request.
const QByteArray kTypeAnswer = Bytes({0x81, 0x20, 0x01, 0x21, 0xFF});
const QByteArray kStartInfoRequest = Bytes({0xF2, 0x00, 0x07, 0x04, 0x18, 0x00, 0x00, 0x00, 0x00,
                                            0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x23, 0xFF});
const QByteArray kStartAdvancedRequest =
    Bytes({0xCD, 0x7F, 0x00, 0x02, 0x00, 0x5A, 0x00, 0x5B, 0x00, 0x36, 0xFF});

bool ChecksumOk(const QByteArray& m) {
  int sum = 0;
  for (qsizetype i = 1; i < m.size() - 2; ++i) {
    sum = (sum + static_cast<quint8>(m[i])) % 128;
  }
  return m.size() >= 3 && static_cast<quint8>(m[m.size() - 2]) == sum;
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
  a.Write(kTypeAnswer + kStartInfoRequest + kStartAdvancedRequest);
  QList<QByteArray> got;
  for (QByteArray m = a.Next(); !m.isEmpty(); m = a.Next(500)) {
    EXPECT_TRUE(ChecksumOk(m)) << m.toHex(' ').toStdString();
    got << m;
  }
  ASSERT_EQ(got.size(), 11);

  // Names: inputs, outputs, optos, relays, each table whole, 8 characters a name.
  EXPECT_EQ(got[0].left(15), Bytes({0xFC, 0x0A, 0x08, 0x64, 0x00, 0x00, 0x00}) + "STUDIO A");
  EXPECT_EQ(got[0].size(), 10 * 100 + 9);
  EXPECT_EQ(got[1].left(7), Bytes({0xFC, 0x14, 0x08, 0x64, 0x00, 0x00, 0x00}));
  EXPECT_EQ(got[1].mid(7 + 10 * 99, 10), QByteArray("OUT 100 ") + Bytes({0x63, 0x00}));
  EXPECT_EQ(got[2], Bytes({0xFC, 0x1E, 0x08, 0x02, 0x00, 0x00, 0x00, 0x4F, 0x4E, 0x20,
                           0x41, 0x49, 0x52, 0x20, 0x20, 0x00, 0x00, 0x4D, 0x49, 0x43,
                           0x20, 0x4C, 0x49, 0x56, 0x45, 0x01, 0x00, 0x2B, 0xFF}));
  EXPECT_EQ(got[3].left(7), Bytes({0xFC, 0x28, 0x08, 0x04, 0x00, 0x00, 0x00}));
  EXPECT_EQ(got[3].size(), 10 * 4 + 9);

  // The crosspoint map in two reports of 64 and 36 outputs, input n on output n.
  EXPECT_EQ(got[4].left(6), Bytes({0xF6, 0x01, 0x40, 0x00, 0x00, 0x00}));
  EXPECT_EQ(got[4].size(), 8 + 64 * 7);
  EXPECT_EQ(got[4].mid(6 + 5 * 7, 7), Bytes({0x01, 0x00, 0x00, 0x05, 0x00, 0x00, 0x00}));
  EXPECT_EQ(got[5].left(6), Bytes({0xF6, 0x01, 0x24, 0x00, 0x40, 0x00}));
  EXPECT_EQ(got[5].size(), 8 + 36 * 7);
  EXPECT_EQ(got[5].mid(6 + 35 * 7, 7), Bytes({0x01, 0x00, 0x00, 0x63, 0x00, 0x00, 0x00}));

  EXPECT_EQ(got[6], Bytes({0xF7, 0x28, 0x04, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x02, 0x00,
                           0x00, 0x03, 0x00, 0x00, 0x32, 0xFF}));

  // Detector configuration: message only, enabled, -20 dB, 1 s both ways; then all audible.
  EXPECT_EQ(got[7].left(20), Bytes({0xCB, 0x00, 0x40, 0x00, 0x00, 0x00, 0x09, 0x02, 0x7F, 0x7F,
                                    0x38, 0x06, 0x01, 0x00, 0x01, 0x00, 0x00, 0x08, 0x00, 0x00}));
  EXPECT_EQ(got[7].size(), 14 * 64 + 8);
  EXPECT_EQ(got[8].left(6), Bytes({0xCB, 0x00, 0x24, 0x00, 0x40, 0x00}));
  EXPECT_EQ(got[8].size(), 14 * 36 + 8);
  EXPECT_EQ(got[9], Bytes({0xCB, 0x0B, 0x40, 0x00, 0x00, 0x00}) + QByteArray(64, '\0') +
                        Bytes({0x4B, 0xFF}));
  EXPECT_EQ(got[10], Bytes({0xCB, 0x0B, 0x24, 0x00, 0x40, 0x00}) + QByteArray(36, '\0') +
                         Bytes({0x6F, 0xFF}));

  // The password on its own request; a request with a wrong checksum is not answered.
  a.Write(Bytes({0xF2, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x02, 0xFF}));
  EXPECT_EQ(a.Next(),
            Bytes({0x80, 0x00, 0x07, 0x50, 0x45, 0x4E, 0x4E, 0x41, 0x52, 0x4F, 0x1A, 0xFF}));
  a.Write(Bytes({0xF2, 0x02, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x03, 0xFF}));
  EXPECT_TRUE(a.Quiet(200));
}

TEST_F(SimProtocol, CommandsChangeTheSwitcherAndEveryMonitorHearsIt) {
  MonitorClient b;
  ASSERT_TRUE(b.Connect(sim.Port()));
  ASSERT_EQ(b.Next(), kTypeRequest);
  const auto both = [&](const QByteArray& expected) {
    EXPECT_EQ(a.Next(), expected);
    EXPECT_EQ(b.Next(), expected);
  };

  // Input 12 to output 7.
  a.Write(Bytes({0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF}));
  both(Bytes(
      {0xF6, 0x01, 0x01, 0x00, 0x06, 0x00, 0x01, 0x00, 0x00, 0x0B, 0x00, 0x00, 0x00, 0x14, 0xFF}));
  // Latch relay 3, then release relay 1.
  b.Write(Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF}));
  both(Bytes({0xF7, 0x28, 0x01, 0x00, 0x02, 0x00, 0x01, 0x2C, 0xFF}));
  a.Write(Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x00, 0x00, 0x40, 0xFF}));
  both(Bytes({0xF7, 0x28, 0x01, 0x00, 0x00, 0x00, 0x00, 0x29, 0xFF}));
  // A configuration is stored and reported back as sent.
  const QByteArray config =
      Bytes({0xCB, 0x00, 0x01, 0x00, 0x14, 0x00, 0x09, 0x02, 0x7F, 0x7F, 0x38,
             0x06, 0x08, 0x00, 0x05, 0x00, 0x00, 0x08, 0x00, 0x00, 0x71, 0xFF});
  a.Write(config);
  both(config);
  EXPECT_EQ(sim.State().outputs[20].config.detectTime, 8);
  // Relay 5 does not exist: no report, the keep-alive answer comes next.
  a.Write(Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x04, 0x00, 0x48, 0xFF, 0xF5}));
  EXPECT_EQ(a.Next(), Bytes({0xF4}));

  // Clearing output 7 leaves it with nothing routed, which is silence once the detect time is up.
  QElapsedTimer clock;
  clock.start();
  a.Write(Bytes({0xFE, 0x00, 0x00, 0x7F, 0x7F, 0x06, 0x00, 0x04, 0xFF}));
  both(Bytes({0xF6, 0x01, 0x01, 0x00, 0x06, 0x00, 0x00, 0x00, 0x00, 0x08, 0xFF}));
  both(Bytes({0xCB, 0x0A, 0x01, 0x00, 0x06, 0x00, 0x01, 0x12, 0xFF}));
  EXPECT_GE(clock.elapsed(), 900);

  const QString status = StatusLine(sim);
  EXPECT_TRUE(status.contains(QLatin1String(" relays_on=3 "))) << status.toStdString();
  EXPECT_TRUE(status.contains(QLatin1String(" silent_outputs=7 "))) << status.toStdString();
  EXPECT_TRUE(status.contains(QLatin1String(",7:-,"))) << status.toStdString();
}

TEST_F(SimProtocol, GarbageIsSkippedAndAnEndlessMessageCutsTheConnection) {
  // Stray bytes, a map cut short by a command, a command with a wrong checksum, a real command.
  a.Write(Bytes({0x12, 0x34, 0xF6, 0x01, 0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x16, 0xFF,
                 0x99, 0xFF, 0xFF, 0xFE, 0x04, 0x00, 0x0B, 0x00, 0x06, 0x00, 0x15, 0xFF, 0xF5}));
  EXPECT_EQ(a.Next(), Bytes({0xF6, 0x01, 0x01, 0x00, 0x06, 0x00, 0x01, 0x00, 0x00, 0x0B, 0x00, 0x00,
                             0x00, 0x14, 0xFF}));
  EXPECT_EQ(a.Next(), Bytes({0xF4}));
  EXPECT_TRUE(a.Quiet(100));

  // Over a mebibyte without an end byte.
  a.Write(Bytes({0xF6}) + QByteArray(1024 * 1024 + 16, '\x01'));
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return a.socket.state() == QAbstractSocket::UnconnectedState; }, 5000));
  EXPECT_EQ(sim.ConnectionCount(), 0);
}

TEST_F(SimProtocol, SilenceIsReportedAfterTheDetectTimeAndAudioAfterTheReturnTime) {
  QElapsedTimer clock;
  clock.start();
  EXPECT_EQ(RunCommand(sim, QStringLiteral("input 7 silent")), QStringLiteral("ok input 7 silent"));
  EXPECT_TRUE(a.Quiet(700));
  EXPECT_EQ(a.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x06, 0x00, 0x01, 0x12, 0xFF}));
  EXPECT_GE(clock.elapsed(), 1000);

  clock.restart();
  RunCommand(sim, QStringLiteral("input 7 audio"));
  EXPECT_EQ(a.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x06, 0x00, 0x00, 0x11, 0xFF}));
  EXPECT_GE(clock.elapsed(), 1000);

  // A silence shorter than the detect time is never reported.
  RunCommand(sim, QStringLiteral("output 2 silent"));
  QTest::qWait(400);
  RunCommand(sim, QStringLiteral("output 2 auto"));
  EXPECT_TRUE(a.Quiet(1000));

  // With detection off (mode 0) silence is not reported; peaks are, on request.
  a.Write(Bytes({0xCB, 0x00, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x7F, 0x7F, 0x38,
                 0x06, 0x01, 0x00, 0x01, 0x00, 0x00, 0x08, 0x00, 0x00, 0x49, 0xFF}));
  EXPECT_EQ(a.Next().left(6), Bytes({0xCB, 0x00, 0x01, 0x00, 0x02, 0x00}));
  RunCommand(sim, QStringLiteral("input 3 silent"));
  EXPECT_TRUE(a.Quiet(1300));
  EXPECT_EQ(RunCommand(sim, QStringLiteral("peak 2 on")), QStringLiteral("ok peak 2 on"));
  EXPECT_EQ(a.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x01, 0x00, 0x41, 0x4D, 0xFF}));
}

}  // namespace
}  // namespace zrn::sim
