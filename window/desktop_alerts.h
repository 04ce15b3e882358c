#pragma once

#include <QIcon>
#include <QObject>
#include <QString>
#include <memory>
#include <vector>

class QSoundEffect;
class QSystemTrayIcon;
class QTemporaryFile;
class QWidget;

namespace zrn {

class Alerts;
struct AlertEvent;

// A round lamp of the named colour ("green", "red", "yellow", "grey") for the tray.
QIcon LampIcon(const QString& lamp);

// The desktop's part of the alerts: the tray lamp and its summary, a notification for each
// new alarm and link change, "ALARM - " in the window title and a flashed taskbar entry while
// an alarm is on, and the optional tone until the alarm is acknowledged or cancelled.
class DesktopAlerts final : public QObject {
  Q_OBJECT

 public:
  DesktopAlerts(Alerts& alerts, QWidget* window);
  ~DesktopAlerts() override;

  QSystemTrayIcon* Tray() const { return tray_; }
  QString TrayLamp() const { return lamp_; }
  // The notifications shown since start, oldest first (at most the last 50), "title: text".
  const QStringList& Notifications() const { return notifications_; }
  bool TonePlaying() const { return tonePlaying_; }

 private:
  void Follow();
  void Notify(const std::vector<AlertEvent>& events);
  void RaiseWindow();

  Alerts& alerts_;
  QWidget* window_;
  QString baseTitle_;
  QSystemTrayIcon* tray_ = nullptr;
  QString lamp_;
  QStringList notifications_;
  std::unique_ptr<QTemporaryFile> toneFile_;
  QSoundEffect* tone_ = nullptr;
  bool tonePlaying_ = false;
};

}  // namespace zrn
