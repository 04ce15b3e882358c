#pragma once

#include <gtest/gtest.h>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
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

// A configuration that watches `watched` outputs from output `first` of the switcher on
// 127.0.0.1:port, with relay 1 as the alarm relay, written into folder.
inline bool WriteMonitorConfig(const QString& folder, quint16 port, int watched,
                               const QString& mode = QStringLiteral("Output"), int first = 1) {
  QString ini = QStringLiteral(
                    "[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP Port=%1\r\n"
                    "Maximum Log File Size=5000\r\nMaximum Display=100\r\nAlarm Relay=1\r\n"
                    "Default View=Normal\r\nProgram Mode=%2\r\nOutput Count=%3\r\n")
                    .arg(port)
                    .arg(mode)
                    .arg(watched);
  for (int n = 1; n <= watched; ++n) {
    ini += QStringLiteral(
               "[OUTPUT%1]\r\nOutput=%2\r\nDisplay Options=0\r\nCustom Label=None\r\n"
               "Event Count=0\r\n")
               .arg(n)
               .arg(first + n - 1);
  }
  QFile file(folder + QStringLiteral("/zrnconfig.ini"));
  const QByteArray bytes = ini.toLatin1();
  return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
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
