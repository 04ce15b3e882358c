#pragma once

#include <QObject>
#include <memory>
#include <vector>

#include "alerts/alert_events.h"
#include "alerts/alert_settings.h"
#include "alerts/status_snapshot.h"
#include "alerts/webhook.h"

namespace zrn {

class Monitor;
class StatusServer;

// Everything that carries the monitor's alarms beyond its window: the settings file, the
// events found after each change, the webhook and the status endpoint. The window adds the
// desktop's part (tray, notifications, title, sound) by listening to alerted().
class Alerts final : public QObject {
  Q_OBJECT

 public:
  explicit Alerts(Monitor& monitor, QObject* parent = nullptr);
  ~Alerts() override;

  // Reads ZRNAlerts.ini and starts the endpoint and the webhook as it says.
  void Start();
  // Takes new settings (from the dialog) at once; false when they could not be saved.
  bool Apply(const AlertSettings& settings);

  const AlertSettings& Settings() const { return settings_; }
  const DesktopSummary& Summary() const { return tracker_.Summary(); }
  StatusSnapshot Snapshot() const;
  // The port the endpoint listens on; 0 when it is off or could not start.
  quint16 EndpointPort() const;
  const Webhook& Hook() const { return webhook_; }

 signals:
  // New events since the last change, oldest first; never empty.
  void alerted(const std::vector<zrn::AlertEvent>& events);
  // After every change the monitor reports, once the summary has been brought up to date.
  void summaryUpdated();

 private:
  void Follow();
  void StartEndpoint();

  Monitor& monitor_;
  AlertSettings settings_;
  AlertTracker tracker_;
  Webhook webhook_;
  std::unique_ptr<StatusServer> server_;
  quint64 sequence_ = 0;
};

}  // namespace zrn
