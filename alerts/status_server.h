#pragma once

#include <QAbstractHttpServer>
#include <functional>

#include "alerts/alert_settings.h"
#include "alerts/status_snapshot.h"

namespace zrn {

struct State;

// The read-only status endpoint: GET /metrics (Prometheus), GET /api/status (JSON) and GET /
// (a page that shows the panels). When a token is set, every request must carry it as
// "Authorization: Bearer <token>" (or ?token= for a browser opening the page).
class StatusServer final : public QAbstractHttpServer {
  Q_OBJECT

 public:
  using SnapshotSource = std::function<StatusSnapshot()>;

  StatusServer(SnapshotSource source, QString token, QObject* parent = nullptr);

  // Listens on the settings' address and port; false and an error-log line when the settings
  // refuse it or the port is taken. The port actually bound (for port 0) is Port().
  bool Start(State& s, const AlertSettings& settings);
  quint16 Port() const { return port_; }

 protected:
  bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override;
  void missingHandler(const QHttpServerRequest& request, QTcpSocket* socket) override;

 private:
  bool Authorized(const QHttpServerRequest& request) const;

  SnapshotSource source_;
  QByteArray token_;
  quint16 port_ = 0;
};

}  // namespace zrn
