#include "alerts/status_server.h"

#include <QHostAddress>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QJsonDocument>
#include <QUrlQuery>

#include "core/state.h"
#include "storage/logs.h"

namespace zrn {

namespace {

using Status = QHttpServerResponder::StatusCode;

// Compares without stopping at the first difference, so the time taken says nothing about
// how much of a guessed token was right.
bool SameSecret(const QByteArray& a, const QByteArray& b) {
  if (a.size() != b.size()) {
    return false;
  }
  unsigned char diff = 0;
  for (qsizetype i = 0; i < a.size(); ++i) {
    diff |= static_cast<unsigned char>(a[i] ^ b[i]);
  }
  return diff == 0;
}

}  // namespace

StatusServer::StatusServer(SnapshotSource source, QString token, QObject* parent)
    : QAbstractHttpServer(parent), source_(std::move(source)), token_(token.trimmed().toUtf8()) {}

bool StatusServer::Start(State& s, const AlertSettings& settings) {
  const QString location = QStringLiteral("Error Starting Status Endpoint");
  const QString refusal = EndpointRefusal(settings);
  if (!refusal.isEmpty()) {
    WriteErrorLog(s, refusal + QStringLiteral("; not started"), location);
    return false;
  }
  const QString text = settings.httpAddress.trimmed();
  const QHostAddress address = text.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0
                                   ? QHostAddress(QHostAddress::LocalHost)
                                   : QHostAddress(text);
  port_ = listen(address, static_cast<quint16>(settings.httpPort));
  if (port_ == 0) {
    WriteErrorLog(s,
                  QStringLiteral("Status endpoint could not listen on %1:%2")
                      .arg(text)
                      .arg(settings.httpPort),
                  location);
    return false;
  }
  return true;
}

bool StatusServer::Authorized(const QHttpServerRequest& request) const {
  if (token_.isEmpty()) {
    return true;
  }
  const QByteArray header = request.value(QByteArrayLiteral("Authorization")).trimmed();
  const QByteArray scheme = QByteArrayLiteral("Bearer ");
  if (header.size() > scheme.size() && header.left(scheme.size()).toLower() == scheme.toLower()) {
    return SameSecret(header.mid(scheme.size()).trimmed(), token_);
  }
  const QString query = request.query().queryItemValue(QStringLiteral("token"), QUrl::FullyDecoded);
  return !query.isEmpty() && SameSecret(query.toUtf8(), token_);
}

bool StatusServer::handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) {
  QHttpServerResponder responder = makeResponder(request, socket);
  if (!Authorized(request)) {
    responder.write(QByteArrayLiteral("401 Unauthorized\n"),
                    {{"Content-Type", "text/plain"}, {"WWW-Authenticate", "Bearer"}},
                    Status::Unauthorized);
    return true;
  }
  const QString path = request.url().path();
  if (request.method() != QHttpServerRequest::Method::Get &&
      request.method() != QHttpServerRequest::Method::Head) {
    // Nothing here changes anything.
    responder.write(QByteArrayLiteral("405 Method Not Allowed\n"),
                    {{"Content-Type", "text/plain"}, {"Allow", "GET"}}, Status::MethodNotAllowed);
    return true;
  }
  if (path == QLatin1String("/metrics")) {
    responder.write(MetricsText(source_()),
                    {{"Content-Type", "text/plain; version=0.0.4; charset=utf-8"},
                     {"Cache-Control", "no-store"}});
  } else if (path == QLatin1String("/api/status")) {
    responder.write(QJsonDocument(StatusJson(source_())).toJson(QJsonDocument::Compact),
                    {{"Content-Type", "application/json"}, {"Cache-Control", "no-store"}});
  } else if (path == QLatin1String("/")) {
    responder.write(StatusPageHtml(), {{"Content-Type", "text/html; charset=utf-8"}});
  } else {
    responder.write(QByteArrayLiteral("404 Not Found\n"), QByteArrayLiteral("text/plain"),
                    Status::NotFound);
  }
  return true;
}

void StatusServer::missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) {
  makeResponder(request, socket)
      .write(QByteArrayLiteral("404 Not Found\n"), QByteArrayLiteral("text/plain"),
             Status::NotFound);
}

}  // namespace zrn
