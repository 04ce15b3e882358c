#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <map>

#include "monitor_client.h"
#include "sim/control.h"
#include "sim/scenario.h"
#include "sim/sim_switcher.h"
#include "sim/trace.h"

namespace zrn::sim {
namespace {

using test::Bytes;
using test::MonitorClient;

// A reply line of "status" as its key=value pairs.
std::map<QString, QString> Fields(const QString& reply) {
  std::map<QString, QString> fields;
  for (const QString& word : reply.split(QLatin1Char(' ')).mid(1)) {
    fields[word.section(QLatin1Char('='), 0, 0)] = word.section(QLatin1Char('='), 1);
  }
  return fields;
}

QString ReadLine(QIODevice& device) {
  (void)QTest::qWaitFor([&] { return device.canReadLine(); }, 5000);
  return QString::fromUtf8(device.readLine()).trimmed();
}

class SimControl : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(sim.Listen(QHostAddress::LocalHost, 0));
    ASSERT_TRUE(monitor.Connect(sim.Port()));
    ASSERT_EQ(monitor.Next(), Bytes({0x81, 0x64, 0x64, 0xFF}));
  }

  SimSwitcher sim{SimOptions{.inputs = 16, .outputs = 16, .relays = 4, .optos = 0}};
  MonitorClient monitor;
};

TEST_F(SimControl, ControlPortAnswersEveryLineAndStatusIsKeyValuePairs) {
  ControlServer control(sim);
  ASSERT_TRUE(control.Listen(0));
  QTcpSocket operatorLine;
  operatorLine.connectToHost(QHostAddress::LocalHost, control.Port());
  ASSERT_TRUE(operatorLine.waitForConnected(5000));
  operatorLine.write(
      "status\nroute 12 7\nRELAY 2 on\n\n# a comment\nbogus 1\ninput 17 silent\n"
      "route none 3\nsend F6 01 02 FF\nburst 3\nburst 0\nstatus\n");

  auto fields = Fields(ReadLine(operatorLine));
  EXPECT_EQ(fields["connections"], QStringLiteral("1"));
  EXPECT_EQ(fields["inputs"], QStringLiteral("16"));
  EXPECT_EQ(fields["relays_on"], QStringLiteral("-"));
  EXPECT_EQ(fields["silent_outputs"], QStringLiteral("-"));
  EXPECT_EQ(fields["routes"], QStringLiteral("1:1,2:2,3:3,4:4,5:5,6:6,7:7,8:8,9:9,10:10,11:11,"
                                             "12:12,13:13,14:14,15:15,16:16"));

  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("ok route 12 7"));
  EXPECT_EQ(monitor.Next(), Bytes({0xF6, 0x01, 0x01, 0x00, 0x06, 0x00, 0x01, 0x00, 0x00, 0x0B, 0x00,
                                   0x00, 0x00, 0x14, 0xFF}));
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("ok relay 2 on"));
  EXPECT_EQ(monitor.Next(), Bytes({0xF7, 0x28, 0x01, 0x00, 0x01, 0x00, 0x01, 0x2B, 0xFF}));
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("error unknown command 'bogus'"));
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("error input must be 1..16"));
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("ok route none 3"));
  EXPECT_EQ(monitor.Next(),
            Bytes({0xF6, 0x01, 0x01, 0x00, 0x02, 0x00, 0x00, 0x00, 0x00, 0x04, 0xFF}));
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("ok sent 4 bytes to 1 connections"));
  EXPECT_EQ(monitor.Next(), Bytes({0xF6, 0x01, 0x02, 0xFF}));
  // Peak on for outputs 1 to 3, one report each.
  EXPECT_EQ(ReadLine(operatorLine), QStringLiteral("ok burst 3 reports, 27 bytes"));
  EXPECT_EQ(monitor.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x00, 0x00, 0x41, 0x4C, 0xFF}));
  EXPECT_EQ(monitor.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x01, 0x00, 0x41, 0x4D, 0xFF}));
  EXPECT_EQ(monitor.Next(), Bytes({0xCB, 0x0A, 0x01, 0x00, 0x02, 0x00, 0x41, 0x4E, 0xFF}));
  EXPECT_TRUE(ReadLine(operatorLine).startsWith(QLatin1String("error usage: burst N")));

  fields = Fields(ReadLine(operatorLine));
  EXPECT_EQ(fields["relays_on"], QStringLiteral("2"));
  EXPECT_EQ(fields["pending_outputs"], QStringLiteral("3"));
  EXPECT_TRUE(fields["routes"].startsWith(QLatin1String("1:1,2:2,3:-,4:4,5:5,6:6,7:12,")));
}

TEST_F(SimControl, ScenariosParseStrictlyAndRunOnTime) {
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

  const auto steps = ParseScenario(
      QStringLiteral("# relay first\n  at 0.2 relay 1 on\n\nevery 0.3 input 2 toggle\n"), &error);
  ASSERT_TRUE(steps);
  ScenarioRunner runner(sim, *steps);
  QSignalSpy ran(&runner, &ScenarioRunner::ran);
  QElapsedTimer clock;
  clock.start();
  runner.Start();
  EXPECT_EQ(monitor.Next(), Bytes({0xF7, 0x28, 0x01, 0x00, 0x00, 0x00, 0x01, 0x2A, 0xFF}));
  EXPECT_GE(clock.elapsed(), 190);
  ASSERT_TRUE(QTest::qWaitFor([&] { return ran.size() >= 3; }, 5000));
  EXPECT_EQ(ran[1][1].toString(), QStringLiteral("ok input 2 silent"));
  EXPECT_EQ(ran[2][1].toString(), QStringLiteral("ok input 2 audio"));
}

TEST_F(SimControl, TraceLogsEveryFrameWithMicroseconds) {
  QTemporaryDir dir;
  Trace trace;
  QString error;
  ASSERT_TRUE(trace.Open(dir.filePath(QStringLiteral("trace.txt")), &error));
  sim.SetTrace(&trace);
  MonitorClient second;
  ASSERT_TRUE(second.Connect(sim.Port()));
  ASSERT_FALSE(second.Next().isEmpty());
  second.Write(Bytes({0x12, 0xF5}));
  ASSERT_EQ(second.Next(), Bytes({0xF4}));

  QFile file(dir.filePath(QStringLiteral("trace.txt")));
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
  const QString stamp = QStringLiteral(R"(^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6} c2 )");
  QStringList frames;
  for (const QString& line : lines) {
    const QRegularExpressionMatch m = QRegularExpression(stamp + "(.*)$").match(line);
    if (m.hasMatch()) {
      frames << m.captured(1);
    }
  }
  ASSERT_EQ(frames.size(), 5) << lines.join(QLatin1Char('\n')).toStdString();
  EXPECT_TRUE(frames[0].startsWith(QLatin1String("-- # connected from 127.0.0.1:")));
  EXPECT_EQ(frames.mid(1), QStringList({QStringLiteral("tx 81 64 64 FF"), QStringLiteral("skip 12"),
                                        QStringLiteral("rx F5"), QStringLiteral("tx F4")}));
}

// The program itself: options, standard input commands, exit codes.
TEST(SimProgram, RunsFromTheCommandLineAndTakesCommandsOnStandardInput) {
  const QString program = QCoreApplication::applicationDirPath() + "/zrn-switcher-sim";
  if (!QFileInfo::exists(program)) {
    GTEST_SKIP() << "build the zrn-switcher-sim target first";
  }
  // Every refusal names the option at fault.
  const struct {
    QStringList args;
    const char* says;
  } refused[] = {
      {{"--inputs", "0"}, "--inputs: '0' is not a whole number from 1 to 16382"},
      {{"--port", "http"}, "--port: 'http' is not a whole number from 0 to 65535"},
      {{"--control", "70000"}, "--control: '70000' is not a whole number from 1 to 65535"},
      {{"--listen", "nowhere"}, "--listen: not an address: nowhere"},
      {{"--scenario", "/nonexistent/steps.txt"}, "--scenario: cannot read /nonexistent/steps.txt"},
  };
  for (const auto& c : refused) {
    QProcess bad;
    bad.start(program, c.args);
    ASSERT_TRUE(bad.waitForFinished(5000));
    EXPECT_EQ(bad.exitCode(), 1) << c.says;
    EXPECT_TRUE(bad.readAllStandardError().contains(c.says)) << c.says;
  }
  // A scenario file's bad line is reported with its number when the file is loaded.
  QTemporaryDir dir;
  QFile steps(dir.filePath(QStringLiteral("steps.txt")));
  ASSERT_TRUE(steps.open(QIODevice::WriteOnly));
  steps.write("# a mistake on the third line\nat 1 input 2 silent\nevery 60 input 300 toggle\n");
  steps.close();
  QProcess badScenario;
  badScenario.start(program, {QStringLiteral("--scenario"), steps.fileName()});
  ASSERT_TRUE(badScenario.waitForFinished(5000));
  EXPECT_EQ(badScenario.exitCode(), 1);
  EXPECT_EQ(QString::fromUtf8(badScenario.readAllStandardError()).trimmed(),
            QStringLiteral("zrn-switcher-sim: --scenario: ") + steps.fileName() +
                QStringLiteral(" line 3: input must be 1..256: every 60 input 300 toggle"));

  QProcess sim;
  sim.start(program, {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--outputs"),
                      QStringLiteral("8"), QStringLiteral("--scenario"), QStringLiteral("demo")});
  ASSERT_TRUE(sim.waitForStarted(5000));
  const QRegularExpressionMatch listening =
      QRegularExpression(QStringLiteral("listening on 127\\.0\\.0\\.1:(\\d+)$"))
          .match(ReadLine(sim));
  ASSERT_TRUE(listening.hasMatch());
  MonitorClient monitor;
  ASSERT_TRUE(monitor.Connect(static_cast<quint16>(listening.captured(1).toUInt())));
  EXPECT_EQ(monitor.Next(), Bytes({0x81, 0x64, 0x64, 0xFF}));

  sim.write("status\n");
  const auto fields = Fields(ReadLine(sim));
  EXPECT_EQ(fields.at("connections"), QStringLiteral("1"));
  EXPECT_EQ(fields.at("inputs"), QStringLiteral("256"));
  EXPECT_EQ(fields.at("outputs"), QStringLiteral("8"));
  sim.write("quit\n");
  ASSERT_TRUE(sim.waitForFinished(5000));
  EXPECT_EQ(sim.exitStatus(), QProcess::NormalExit);
  EXPECT_EQ(sim.exitCode(), 0);
}

}  // namespace
}  // namespace zrn::sim
