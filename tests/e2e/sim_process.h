#pragma once

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QElapsedTimer>
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
  explicit SimProcess(quint16 port, QStringList options = {})
      : port_(port), options_(std::move(options)) {}
  ~SimProcess() { Kill(); }

  bool Start() {
    process_.setProgram(QCoreApplication::applicationDirPath() +
                        QStringLiteral("/zrn-switcher-sim"));
    process_.setArguments(QStringList{QStringLiteral("--port"), QString::number(port_)} + options_);
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
    QElapsedTimer waited;
    waited.start();
    while (waited.elapsed() < 5000 && process_.state() == QProcess::Running) {
      // Other lines (the banner, notes) are not replies.
      while (process_.canReadLine()) {
        const QString reply = QString::fromUtf8(process_.readLine()).trimmed();
        if (reply.startsWith(QStringLiteral("ok")) || reply.startsWith(QStringLiteral("error"))) {
          return reply;
        }
      }
      // The monitor in this thread goes on meanwhile; the reply is taken the moment it comes.
      QCoreApplication::processEvents();
      process_.waitForReadyRead(1);
    }
    return QString();
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
  QStringList options_;
  QProcess process_;
};

}  // namespace zrn::test
