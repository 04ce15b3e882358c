#include "window/desktop_alerts.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QSoundEffect>
#include <QSystemTrayIcon>
#include <QTemporaryFile>
#include <QWidget>
#include <QtEndian>
#include <cmath>

#include "alerts/alerts.h"

namespace zrn {

namespace {

const QString kAlarmPrefix = QStringLiteral("ALARM - ");
constexpr int kNotificationsKept = 50;
constexpr int kNotificationMs = 10000;

QColor LampColour(const QString& lamp) {
  if (lamp == QLatin1String("green")) {
    return QColor(0, 255, 0);
  }
  if (lamp == QLatin1String("red")) {
    return QColor(255, 0, 0);
  }
  if (lamp == QLatin1String("yellow")) {
    return QColor(255, 255, 0);
  }
  return QColor(160, 160, 160);
}

void Put16(QByteArray& out, quint16 v) {
  const quint16 le = qToLittleEndian(v);
  out.append(reinterpret_cast<const char*>(&le), 2);
}

void Put32(QByteArray& out, quint32 v) {
  const quint32 le = qToLittleEndian(v);
  out.append(reinterpret_cast<const char*>(&le), 4);
}

// One second of the alarm tone as a WAV file: a short 880 Hz beep, then a pause, so the
// looped sound is an insistent beep rather than a drone.
QByteArray ToneWav() {
  constexpr int kRate = 22050;
  constexpr int kBeep = kRate * 35 / 100;
  QByteArray samples;
  samples.reserve(kRate * 2);
  for (int i = 0; i < kRate; ++i) {
    double v = 0;
    if (i < kBeep) {
      const double fade = std::min({1.0, i / 200.0, (kBeep - i) / 200.0});
      v = 0.5 * fade * std::sin(2 * M_PI * 880.0 * i / kRate);
    }
    Put16(samples, static_cast<quint16>(static_cast<qint16>(v * 32767)));
  }
  QByteArray wav("RIFF");
  Put32(wav, 36 + samples.size());
  wav += "WAVEfmt ";
  Put32(wav, 16);
  Put16(wav, 1);  // PCM
  Put16(wav, 1);  // mono
  Put32(wav, kRate);
  Put32(wav, kRate * 2);
  Put16(wav, 2);
  Put16(wav, 16);
  wav += "data";
  Put32(wav, samples.size());
  return wav + samples;
}

}  // namespace

QIcon LampIcon(const QString& lamp) {
  QPixmap pixmap(64, 64);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(20, 20, 20), 4));
  painter.setBrush(LampColour(lamp));
  painter.drawEllipse(QRectF(4, 4, 56, 56));
  return QIcon(pixmap);
}

DesktopAlerts::DesktopAlerts(Alerts& alerts, QWidget* window)
    : QObject(window), alerts_(alerts), window_(window) {
  baseTitle_ = window_->windowTitle();
  tray_ = new QSystemTrayIcon(this);
  auto* menu = new QMenu(window_);
  menu->addAction(QStringLiteral("Show Window"), this, &DesktopAlerts::RaiseWindow);
  tray_->setContextMenu(menu);
  connect(tray_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason why) {
    if (why == QSystemTrayIcon::DoubleClick || why == QSystemTrayIcon::Trigger) {
      RaiseWindow();
    }
  });
  connect(&alerts_, &Alerts::summaryUpdated, this, &DesktopAlerts::Follow);
  connect(&alerts_, &Alerts::alerted, this, &DesktopAlerts::Notify);
  Follow();
}

DesktopAlerts::~DesktopAlerts() = default;

void DesktopAlerts::RaiseWindow() {
  window_->showNormal();
  window_->raise();
  window_->activateWindow();
}

void DesktopAlerts::Follow() {
  const DesktopSummary& summary = alerts_.Summary();
  const AlertSettings& settings = alerts_.Settings();

  if (summary.lamp != lamp_) {
    lamp_ = summary.lamp;
    tray_->setIcon(LampIcon(lamp_));
  }
  const QString tip = QStringLiteral("ZRN Pennaro\n") + summary.toolTip;
  if (tray_->toolTip() != tip) {
    tray_->setToolTip(tip);
  }
  tray_->setVisible(settings.trayIcon && QSystemTrayIcon::isSystemTrayAvailable());

  const QString title = summary.alarmOn ? kAlarmPrefix + baseTitle_ : baseTitle_;
  if (window_->windowTitle() != title) {
    window_->setWindowTitle(title);
  }

  const bool toneWanted = settings.sound && summary.alarmOn;
  if (toneWanted != tonePlaying_) {
    tonePlaying_ = toneWanted;
    if (toneWanted && tone_ == nullptr) {
      toneFile_ = std::make_unique<QTemporaryFile>(QStringLiteral("zrn-alarm-XXXXXX.wav"));
      if (toneFile_->open()) {
        toneFile_->write(ToneWav());
        toneFile_->flush();
        tone_ = new QSoundEffect(this);
        tone_->setSource(QUrl::fromLocalFile(toneFile_->fileName()));
        tone_->setLoopCount(QSoundEffect::Infinite);
      }
    }
    if (tone_ != nullptr) {
      toneWanted ? tone_->play() : tone_->stop();
    }
  }
}

void DesktopAlerts::Notify(const std::vector<AlertEvent>& events) {
  bool newAlarm = false;
  for (const AlertEvent& e : events) {
    newAlarm =
        newAlarm || e.kind == AlertKind::OutputAlarmRaised || e.kind == AlertKind::ShowAlarmRaised;
    if (!Notifies(e) || !alerts_.Settings().notifications) {
      continue;
    }
    const QString title = NotificationTitle(e);
    const QString text = NotificationText(e);
    notifications_.append(title + QStringLiteral(": ") + text);
    if (notifications_.size() > kNotificationsKept) {
      notifications_.removeFirst();
    }
    if (tray_->isVisible()) {
      const bool alarm = e.kind == AlertKind::OutputAlarmRaised ||
                         e.kind == AlertKind::ShowAlarmRaised || e.kind == AlertKind::LinkLost;
      tray_->showMessage(title, text,
                         alarm ? QSystemTrayIcon::Critical : QSystemTrayIcon::Information,
                         kNotificationMs);
    }
  }
  if (newAlarm) {
    QApplication::alert(window_);
  }
}

}  // namespace zrn
