#pragma once

#include <QString>

namespace zrn {

struct State;

// What reaches people away from the screen, kept in ZRNAlerts.ini beside the other files. The
// defaults are what an absent file means.
struct AlertSettings {
  bool trayIcon = true;
  bool notifications = true;
  bool sound = false;

  bool httpEnabled = true;
  QString httpAddress = QStringLiteral("127.0.0.1");
  int httpPort = 9250;
  // Required for any address other than a loopback one; checked on every request when set.
  QString httpToken;

  QString webhookUrl;
  QString webhookSecret;
  int webhookQueueLimit = 1000;
  // Longest wait between two tries of an undelivered event.
  int webhookMaxRetrySeconds = 15;

  friend bool operator==(const AlertSettings&, const AlertSettings&) = default;
};

inline const QString kAlertsFileName = QStringLiteral("ZRNAlerts.ini");

// Whether address names this machine only (127.0.0.0/8, ::1, "localhost").
bool IsLoopbackAddress(const QString& address);

// Why the status endpoint must not start with these settings, or empty when it may.
QString EndpointRefusal(const AlertSettings& settings);

// Reads ZRNAlerts.ini from the state's folder. A value that cannot be used keeps its default
// and gets one error-log line.
AlertSettings ReadAlertSettings(State& s);
// Writes ZRNAlerts.ini; false (and an error-log line) when it could not be written.
bool WriteAlertSettings(State& s, const AlertSettings& settings);

}  // namespace zrn
