#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QObject>
#include <QTimer>
#include <QUrl>
#include <deque>

#include "alerts/alert_settings.h"

class QNetworkReply;

namespace zrn {

struct State;

// Delivers alert events to a configured URL as JSON POSTs, one at a time and in order. An event
// the receiver cannot take now waits in a bounded queue and is tried again with a growing pause;
// nothing here ever waits on the network, so the window and the alarm path never do.
class Webhook final : public QObject {
  Q_OBJECT

 public:
  explicit Webhook(State& s, QObject* parent = nullptr);
  ~Webhook() override;

  void Configure(const AlertSettings& settings);
  // Queues one event; drops the oldest when the queue is full.
  void Post(const QJsonObject& event);

  int Queued() const { return static_cast<int>(queue_.size()); }
  quint64 Dropped() const { return dropped_; }
  bool Enabled() const { return url_.isValid() && !url_.isEmpty(); }

 private:
  void SendNext();
  void Finished();

  State& s_;
  QNetworkAccessManager net_;
  QUrl url_;
  QByteArray secret_;
  int limit_ = 1000;
  int maxRetryMs_ = 15000;
  std::deque<QByteArray> queue_;
  QNetworkReply* inFlight_ = nullptr;
  QTimer retry_;
  int backoffMs_ = 0;
  quint64 dropped_ = 0;
  bool dropReported_ = false;
  bool failureReported_ = false;
};

// The signature header's value for a body: "sha256=" and the hex HMAC-SHA256 under the secret.
QByteArray WebhookSignature(const QByteArray& secret, const QByteArray& body);

}  // namespace zrn
