#pragma once

#include <QFile>
#include <QString>

namespace zrn::test {

// What a test's configuration file says: the switcher on 127.0.0.1:port, `watched` outputs from
// switcher output `first` on.
struct MonitorConfig {
  quint16 port = 0;
  int watched = 0;
  QString mode = QStringLiteral("Output");
  int first = 1;
  QString defaultView = QStringLiteral("Normal");
  QString alarmRelay = QStringLiteral("1");
  // Output n labelled "Studio n", every third one with display options 2; else none of that.
  bool studios = false;
};

// Writes zrnconfig.ini into folder.
inline bool WriteMonitorConfig(const QString& folder, const MonitorConfig& c) {
  QString ini = QStringLiteral(
                    "[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP Port=%1\r\n"
                    "Maximum Log File Size=5000\r\nMaximum Display=100\r\nAlarm Relay=%2\r\n"
                    "Default View=%3\r\nProgram Mode=%4\r\nOutput Count=%5\r\n")
                    .arg(c.port)
                    .arg(c.alarmRelay, c.defaultView, c.mode)
                    .arg(c.watched);
  for (int n = 1; n <= c.watched; ++n) {
    ini += QStringLiteral(
               "[OUTPUT%1]\r\nOutput=%2\r\nDisplay Options=%3\r\nCustom Label=%4\r\n"
               "Event Count=0\r\n")
               .arg(n)
               .arg(c.first + n - 1)
               .arg(c.studios && n % 3 == 0 ? 2 : 0)
               .arg(c.studios ? QStringLiteral("Studio %1").arg(n) : QStringLiteral("None"));
  }
  QFile file(folder + QStringLiteral("/zrnconfig.ini"));
  const QByteArray bytes = ini.toLatin1();
  return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

}  // namespace zrn::test
