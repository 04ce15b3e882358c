#include "alerts/webhook.h"

#include <QJsonDocument>
#include <QMessageAuthenticationCode>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <algorithm>

#include "core/state.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kLocation = QStringLiteral("Error Sending Webhook");
constexpr int kFirstRetryMs = 500;
constexpr int kTransferTimeoutMs = 5000;

}  // namespace

QByteArray WebhookSignature(const QByteArray& secret, const QByteArray& body) {
  return QByteArrayLiteral("sha256=") +
         QMessageAuthenticationCode::hash(body, secret, QCryptographicHash::Sha256).toHex();
}

Webhook::Webhook(State& s, QObject* parent) : QObject(parent), s_(s) {
  retry_.setSingleShot(true);
  connect(&retry_, &QTimer::timeout, this, &Webhook::SendNext);
}

Webhook::~Webhook() {
  if (inFlight_ != nullptr) {
    inFlight_->disconnect(this);
    inFlight_->abort();
    inFlight_->deleteLater();
  }
}

void Webhook::Configure(const AlertSettings& settings) {
  const QString text = settings.webhookUrl.trimmed();
  QUrl url(text, QUrl::StrictMode);
  if (!text.isEmpty() && (!url.isValid() || (url.scheme() != QLatin1String("http") &&
                                             url.scheme() != QLatin1String("https")))) {
    WriteErrorLog(s_, QStringLiteral("Webhook URL %1 is not an http or https address").arg(text),
                  kLocation);
    url = QUrl();
  }
  if (url != url_) {
    // Events queued for another receiver do not belong to this one.
    if (inFlight_ != nullptr) {
      inFlight_->disconnect(this);
      inFlight_->abort();
      inFlight_->deleteLater();
      inFlight_ = nullptr;
    }
    retry_.stop();
    backoffMs_ = 0;
    queue_.clear();
  }
  url_ = url;
  secret_ = settings.webhookSecret.toUtf8();
  limit_ = std::max(1, settings.webhookQueueLimit);
  maxRetryMs_ = std::max(1, settings.webhookMaxRetrySeconds) * 1000;
  SendNext();
}

void Webhook::Post(const QJsonObject& event) {
  if (!Enabled()) {
    return;
  }
  queue_.push_back(QJsonDocument(event).toJson(QJsonDocument::Compact));
  // The in-flight event is the queue's front and is never the one dropped.
  const std::size_t keepFront = inFlight_ != nullptr ? 1 : 0;
  while (static_cast<int>(queue_.size()) > limit_ && queue_.size() > keepFront) {
    queue_.erase(queue_.begin() + static_cast<std::ptrdiff_t>(keepFront));
    ++dropped_;
    if (!dropReported_) {
      dropReported_ = true;
      WriteErrorLog(
          s_, QStringLiteral("Webhook queue full at %1 events: oldest events dropped").arg(limit_),
          kLocation);
    }
  }
  SendNext();
}

void Webhook::SendNext() {
  if (inFlight_ != nullptr || retry_.isActive() || queue_.empty() || !Enabled()) {
    return;
  }
  QNetworkRequest request(url_);
  request.setHeader(QNetworkRequest::ContentTypeHeader, QByteArrayLiteral("application/json"));
  request.setHeader(QNetworkRequest::UserAgentHeader, QByteArrayLiteral("zrn-pennaro"));
  if (!secret_.isEmpty()) {
    request.setRawHeader("X-ZRN-Signature", WebhookSignature(secret_, queue_.front()));
  }
  request.setTransferTimeout(kTransferTimeoutMs);
  inFlight_ = net_.post(request, queue_.front());
  connect(inFlight_, &QNetworkReply::finished, this, &Webhook::Finished);
}

void Webhook::Finished() {
  QNetworkReply* reply = inFlight_;
  inFlight_ = nullptr;
  if (reply == nullptr) {
    return;
  }
  reply->deleteLater();
  const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
  if (reply->error() == QNetworkReply::NoError && status >= 200 && status < 300) {
    if (!queue_.empty()) {
      queue_.pop_front();
    }
    backoffMs_ = 0;
    failureReported_ = false;
    if (queue_.empty()) {
      dropReported_ = false;
    }
    SendNext();
    return;
  }
  if (status >= 400 && status < 500 && status != 408 && status != 429) {
    // The receiver refuses this event for good; trying it again would hold up every later one.
    WriteErrorLog(
        s_, QStringLiteral("Webhook receiver refused an event with HTTP %1; dropped").arg(status),
        kLocation);
    if (!queue_.empty()) {
      queue_.pop_front();
    }
    SendNext();
    return;
  }
  if (!failureReported_) {
    failureReported_ = true;
    const QString why = status != 0 ? QStringLiteral("HTTP %1").arg(status) : reply->errorString();
    WriteErrorLog(s_, QStringLiteral("Webhook not delivered (%1); trying again").arg(why),
                  kLocation);
  }
  backoffMs_ = backoffMs_ == 0 ? kFirstRetryMs : std::min(backoffMs_ * 2, maxRetryMs_);
  retry_.start(std::min(backoffMs_, maxRetryMs_));
}

}  // namespace zrn
