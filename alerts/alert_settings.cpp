#include "alerts/alert_settings.h"

#include <QFile>
#include <QHostAddress>
#include <QSettings>

#include "core/state.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kLocation = QStringLiteral("Error Reading Alert Settings");

QString FilePath(const State& s) {
  return s.AppPath + kAlertsFileName;
}

bool ReadBool(State& s, const QSettings& ini, const QString& key, bool fallback) {
  if (!ini.contains(key)) {
    return fallback;
  }
  const QString text = ini.value(key).toString().trimmed().toLower();
  if (text == QLatin1String("true") || text == QLatin1String("1") || text == QLatin1String("on") ||
      text == QLatin1String("yes")) {
    return true;
  }
  if (text == QLatin1String("false") || text == QLatin1String("0") ||
      text == QLatin1String("off") || text == QLatin1String("no")) {
    return false;
  }
  WriteErrorLog(s, QStringLiteral("%1 = %2 is not true or false").arg(key, text), kLocation);
  return fallback;
}

int ReadInt(State& s, const QSettings& ini, const QString& key, int fallback, int low, int high) {
  if (!ini.contains(key)) {
    return fallback;
  }
  bool ok = false;
  const QString text = ini.value(key).toString().trimmed();
  const int value = text.toInt(&ok);
  if (!ok || value < low || value > high) {
    WriteErrorLog(
        s, QStringLiteral("%1 = %2 is not between %3 and %4").arg(key, text).arg(low).arg(high),
        kLocation);
    return fallback;
  }
  return value;
}

}  // namespace

bool IsLoopbackAddress(const QString& address) {
  const QString trimmed = address.trimmed();
  if (trimmed.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0) {
    return true;
  }
  const QHostAddress host(trimmed);
  return !host.isNull() && host.isLoopback();
}

QString EndpointRefusal(const AlertSettings& settings) {
  const QString address = settings.httpAddress.trimmed();
  if (!IsLoopbackAddress(address) && QHostAddress(address).isNull()) {
    return QStringLiteral("Status endpoint address %1 is not an IP address").arg(address);
  }
  if (!IsLoopbackAddress(address) && settings.httpToken.trimmed().isEmpty()) {
    return QStringLiteral("Status endpoint on %1 needs a token").arg(address);
  }
  return {};
}

AlertSettings ReadAlertSettings(State& s) {
  AlertSettings a;
  if (!QFile::exists(FilePath(s))) {
    return a;
  }
  const QSettings ini(FilePath(s), QSettings::IniFormat);
  if (ini.status() != QSettings::NoError) {
    WriteErrorLog(s, kAlertsFileName + QStringLiteral(" could not be read; defaults used"),
                  kLocation);
    return a;
  }
  a.trayIcon = ReadBool(s, ini, QStringLiteral("Desktop/TrayIcon"), a.trayIcon);
  a.notifications = ReadBool(s, ini, QStringLiteral("Desktop/Notifications"), a.notifications);
  a.sound = ReadBool(s, ini, QStringLiteral("Desktop/Sound"), a.sound);
  a.httpEnabled = ReadBool(s, ini, QStringLiteral("Status/Enabled"), a.httpEnabled);
  a.httpAddress = ini.value(QStringLiteral("Status/Address"), a.httpAddress).toString().trimmed();
  a.httpPort = ReadInt(s, ini, QStringLiteral("Status/Port"), a.httpPort, 0, 65535);
  a.httpToken = ini.value(QStringLiteral("Status/Token")).toString().trimmed();
  a.webhookUrl = ini.value(QStringLiteral("Webhook/Url")).toString().trimmed();
  a.webhookSecret = ini.value(QStringLiteral("Webhook/Secret")).toString();
  a.webhookQueueLimit =
      ReadInt(s, ini, QStringLiteral("Webhook/QueueLimit"), a.webhookQueueLimit, 1, 100000);
  a.webhookMaxRetrySeconds =
      ReadInt(s, ini, QStringLiteral("Webhook/MaxRetrySeconds"), a.webhookMaxRetrySeconds, 1, 3600);
  return a;
}

bool WriteAlertSettings(State& s, const AlertSettings& a) {
  QSettings ini(FilePath(s), QSettings::IniFormat);
  ini.setValue(QStringLiteral("Desktop/TrayIcon"), a.trayIcon);
  ini.setValue(QStringLiteral("Desktop/Notifications"), a.notifications);
  ini.setValue(QStringLiteral("Desktop/Sound"), a.sound);
  ini.setValue(QStringLiteral("Status/Enabled"), a.httpEnabled);
  ini.setValue(QStringLiteral("Status/Address"), a.httpAddress);
  ini.setValue(QStringLiteral("Status/Port"), a.httpPort);
  ini.setValue(QStringLiteral("Status/Token"), a.httpToken);
  ini.setValue(QStringLiteral("Webhook/Url"), a.webhookUrl);
  ini.setValue(QStringLiteral("Webhook/Secret"), a.webhookSecret);
  ini.setValue(QStringLiteral("Webhook/QueueLimit"), a.webhookQueueLimit);
  ini.setValue(QStringLiteral("Webhook/MaxRetrySeconds"), a.webhookMaxRetrySeconds);
  ini.sync();
  if (ini.status() != QSettings::NoError) {
    WriteErrorLog(s, kAlertsFileName + QStringLiteral(" could not be written"),
                  QStringLiteral("Error Saving Alert Settings"));
    return false;
  }
  return true;
}

}  // namespace zrn
