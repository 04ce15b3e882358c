#include "alerts/alerts.h"

#include "alerts/status_server.h"
#include "monitor/monitor.h"

namespace zrn {

Alerts::Alerts(Monitor& monitor, QObject* parent)
    : QObject(parent), monitor_(monitor), webhook_(monitor.state()) {
  connect(&monitor_, &Monitor::changed, this, &Alerts::Follow);
}

Alerts::~Alerts() = default;

void Alerts::Start() {
  settings_ = ReadAlertSettings(monitor_.state());
  webhook_.Configure(settings_);
  StartEndpoint();
  Follow();
}

bool Alerts::Apply(const AlertSettings& settings) {
  const bool saved = WriteAlertSettings(monitor_.state(), settings);
  const bool endpointChanged =
      settings.httpEnabled != settings_.httpEnabled ||
      settings.httpAddress != settings_.httpAddress || settings.httpPort != settings_.httpPort ||
      settings.httpToken != settings_.httpToken || (settings.httpEnabled && !server_);
  settings_ = settings;
  webhook_.Configure(settings_);
  if (endpointChanged) {
    StartEndpoint();
  }
  emit summaryUpdated();
  return saved;
}

void Alerts::StartEndpoint() {
  server_.reset();
  if (!settings_.httpEnabled) {
    return;
  }
  server_ = std::make_unique<StatusServer>([this] { return Snapshot(); }, settings_.httpToken);
  if (!server_->Start(monitor_.state(), settings_)) {
    server_.reset();
  }
}

quint16 Alerts::EndpointPort() const {
  return server_ ? server_->Port() : 0;
}

StatusSnapshot Alerts::Snapshot() const {
  AlertCounters counters;
  counters.alarmsRaised = tracker_.AlarmsRaised();
  counters.messagesDecoded = monitor_.state().linkState.messagesDecoded;
  counters.lastMessageAgeSeconds = tracker_.LastMessageAgeSeconds();
  counters.webhookQueued = webhook_.Queued();
  counters.webhookDropped = webhook_.Dropped();
  return TakeStatusSnapshot(monitor_.state(), counters);
}

void Alerts::Follow() {
  std::vector<AlertEvent> events = tracker_.Update(monitor_.state());
  for (const AlertEvent& e : events) {
    webhook_.Post(AlertEventJson(e, ++sequence_));
  }
  if (!events.empty()) {
    emit alerted(events);
  }
  emit summaryUpdated();
}

}  // namespace zrn
