#pragma once

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

#include "monitor/monitor.h"
#include "support/monitor_config.h"
#include "switcher/startup_exchange.h"

namespace zrn::test {

// A free loopback port, found by binding and letting go.
inline quint16 FreePort() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost);
  return probe.serverPort();
}

inline QString ReadText(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The switcher simulator as a separate program, driven through its standard input.
class SimProcess {
 public:
  explicit SimProcess(quint16 port, const QStringList& options = {}) {
    process_.setProgram(QCoreApplication::applicationDirPath() + "/zrn-switcher-sim");
    process_.setArguments(QStringList{QStringLiteral("--port"), QString::number(port)} + options);
  }
  ~SimProcess() { Kill(); }

  // Ready once it answers a command.
  bool Start() {
    process_.start();
    return process_.waitForStarted(5000) && Command("status").startsWith(QStringLiteral("ok"));
  }

  // Sends one control line and returns the reply line; other lines (the banner, notes) are not
  // replies. The monitor in this thread goes on meanwhile.
  QString Command(const QString& line) {
    process_.write((line + QLatin1Char('\n')).toUtf8());
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 5000 && process_.state() == QProcess::Running) {
      while (process_.canReadLine()) {
        const QString reply = QString::fromUtf8(process_.readLine()).trimmed();
        if (reply.startsWith(QStringLiteral("ok")) || reply.startsWith(QStringLiteral("error"))) {
          return reply;
        }
      }
      QCoreApplication::processEvents();
      process_.waitForReadyRead(1);
    }
    return QString();
  }

  // A value of the status line ("relays_on", "silent_outputs", "routes"...).
  QString Status(const QString& key) {
    const QString status = Command(QStringLiteral("status"));
    return QRegularExpression(QLatin1Char(' ') + key + QStringLiteral("=(\\S*)"))
        .match(status)
        .captured(1);
  }
  bool RelayOn() { return Status(QStringLiteral("relays_on")) == QStringLiteral("1"); }

  void Kill() {
    process_.kill();
    process_.waitForFinished(3000);
  }

 private:
  QProcess process_;
};

// The whole monitor in this process against the simulator in its own.
class SimFixture : public ::testing::Test {
 protected:
  // On the port of the last one, if any.
  void StartSim(const QStringList& options = {}) {
    port = port != 0 ? port : FreePort();
    sim = std::make_unique<SimProcess>(port, options);
    ASSERT_TRUE(sim->Start()) << "zrn-switcher-sim did not start";
  }

  // The simulator (unless running), a configuration watching outputs 1 to `watched`, and the
  // monitor, started and through its start-up exchange.
  void Launch(const QString& mode = QStringLiteral("Output"), int watched = 4,
              Clock* clock = nullptr) {
    if (sim == nullptr) {
      ASSERT_NO_FATAL_FAILURE(StartSim());
    }
    ASSERT_TRUE(WriteMonitorConfig(dir.path(), {.port = port, .watched = watched, .mode = mode}));
    monitor = std::make_unique<Monitor>(dir.path() + QLatin1Char('/'), clock);
    monitor->Start();
    Started();
    ASSERT_TRUE(WaitForExchange()) << "the start-up exchange did not complete";
  }
  // What a test starts beside the monitor, before its exchange.
  virtual void Started() {}

  bool WaitForExchange() {
    return QTest::qWaitFor(
        [&] {
          const State& s = monitor->state();
          return s.Connected && s.linkState.ExchangeComplete && !AnyRequestOutstanding(s);
        },
        10000);
  }

  bool LampBecomes(int panel, const Rgb& colour) {
    return QTest::qWaitFor([&] { return monitor->state().panels.outputs[panel].lamp == colour; },
                           10000);
  }

  QString Log(const char* name = "EventLog.txt") const {
    return ReadText(dir.path() + QLatin1Char('/') + QLatin1String(name));
  }

  QTemporaryDir dir;
  quint16 port = 0;
  ManualClock clock;  // for a test that passes it to Launch; outlives the monitor
  std::unique_ptr<SimProcess> sim;
  std::unique_ptr<Monitor> monitor;
};

}  // namespace zrn::test
