#pragma once

#include <QObject>
#include <QPointer>
#include <QTcpSocket>

#include "core/ports.h"

namespace zrn {

// The switcher connection over a non-blocking TCP socket. Each attempt gets a socket of its
// own, and an abandoned socket is cut off from its signals before it goes, so nothing from an
// old attempt reaches the program.
class TcpLink final : public QObject, public Link {
  Q_OBJECT

 public:
  explicit TcpLink(QObject* parent = nullptr);
  ~TcpLink() override;

  void Open(const QString& address, quint16 port) override;
  void Close() override;
  qint64 Write(const QByteArray& bytes) override;
  bool CanWrite() const override;
  QString LastError() const override { return lastError_; }

 signals:
  void connected();
  void received(const QByteArray& bytes);
  // Once per attempt: the peer closed, the connection failed or could not be made.
  void closed();

 private:
  void Abandon();
  void SignalClosed(QTcpSocket* socket);

  QPointer<QTcpSocket> socket_;
  bool closedSignalled_ = false;
  QString lastError_;
  // Set while a write is flushed: a connection found dead there is reported afterwards, not
  // inside the handler that wrote.
  bool writing_ = false;
};

}  // namespace zrn
