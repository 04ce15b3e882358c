#pragma once

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QProcess>
#include <QTcpServer>
#include <QTest>

namespace zrn::test {

// A free loopback port, found by binding and letting go.
inline quint16 FreePort() {
  QTcpServer probe;
  probe.listen(QHostAddress::LocalHost);
  return probe.serverPort();
}

// The switcher simulator as a separate program, driven through its standard input.
class SimProcess {
 public:
  explicit SimProcess(quint16 port) : port_(port) {}
  ~SimProcess() { Kill(); }

  bool Start() {
    process_.setProgram(QCoreApplication::applicationDirPath() +
                        QStringLiteral("/zrn-switcher-sim"));
    process_.setArguments({QStringLiteral("--port"), QString::number(port_)});
    process_.setProcessChannelMode(QProcess::SeparateChannels);
    process_.start();
    if (!process_.waitForStarted(5000)) {
      return false;
    }
    // Ready once it answers a command.
    return Command(QStringLiteral("status")).startsWith(QStringLiteral("ok"));
  }

  // Sends one control line and returns the reply line.
  QString Command(const QString& line) {
    process_.write((line + QLatin1Char('\n')).toUtf8());
    QString reply;
    (void)QTest::qWaitFor(
        [&] {
          // Other lines (the banner, notes) are not replies.
          while (process_.canReadLine()) {
            reply = QString::fromUtf8(process_.readLine()).trimmed();
            if (reply.startsWith(QStringLiteral("ok")) ||
                reply.startsWith(QStringLiteral("error"))) {
              return true;
            }
          }
          return process_.state() != QProcess::Running;
        },
        5000);
    return reply;
  }

  // One key of the status line ("relays_on", "silent_outputs", "routes"...).
  QString Status(const QString& key) {
    const QStringList pairs = Command(QStringLiteral("status")).split(QLatin1Char(' '));
    for (const QString& pair : pairs) {
      if (pair.startsWith(key + QLatin1Char('='))) {
        return pair.mid(key.size() + 1);
      }
    }
    return QString();
  }

  void Kill() {
    if (process_.state() != QProcess::NotRunning) {
      process_.kill();
      process_.waitForFinished(3000);
    }
  }

 private:
  quint16 port_;
  QProcess process_;
};

}  // namespace zrn::test
