#include "switcher/tcp_link.h"

namespace zrn {

TcpLink::TcpLink(QObject* parent) : QObject(parent) {}

TcpLink::~TcpLink() {
  Abandon();
}

void TcpLink::Open(const QString& address, quint16 port) {
  Abandon();
  auto* socket = new QTcpSocket(this);
  socket_ = socket;
  closedSignalled_ = false;
  connect(socket, &QTcpSocket::connected, this, [this, socket] {
    // Commands are a few bytes each; waiting to coalesce them would delay a relay latch.
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    if (socket == socket_) {
      lastError_.clear();
      emit connected();
    }
  });
  connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
    if (socket == socket_) {
      const QByteArray bytes = socket->readAll();
      if (!bytes.isEmpty()) {
        emit received(bytes);
      }
    }
  });
  connect(socket, &QTcpSocket::disconnected, this, [this, socket] { SignalClosed(socket); });
  connect(socket, &QTcpSocket::errorOccurred, this, [this, socket](QAbstractSocket::SocketError) {
    // Errors of a live connection other than its end leave it up; a failed attempt ends it.
    if (socket->state() != QAbstractSocket::ConnectedState) {
      SignalClosed(socket);
    }
  });
  socket->connectToHost(address, port);
}

void TcpLink::SignalClosed(QTcpSocket* socket) {
  if (socket == socket_ && !closedSignalled_) {
    closedSignalled_ = true;
    lastError_ =
        socket->error() == QAbstractSocket::UnknownSocketError ? QString() : socket->errorString();
    if (writing_) {
      QMetaObject::invokeMethod(
          this,
          [this, socket] {
            if (socket == socket_) {
              emit closed();
            }
          },
          Qt::QueuedConnection);
      return;
    }
    emit closed();
  }
}

void TcpLink::Abandon() {
  if (socket_ == nullptr) {
    return;
  }
  QTcpSocket* socket = socket_;
  socket_ = nullptr;
  socket->disconnect(this);
  socket->abort();
  socket->deleteLater();
}

void TcpLink::Close() {
  Abandon();
}

qint64 TcpLink::Write(const QByteArray& bytes) {
  if (!CanWrite()) {
    return -1;
  }
  writing_ = true;
  const qint64 written = socket_->write(bytes);
  // Out now rather than when the event loop comes round again: a relay latch must not wait
  // behind the repaint its own alarm asked for.
  if (socket_ != nullptr) {
    socket_->flush();
  }
  writing_ = false;
  return written;
}

bool TcpLink::CanWrite() const {
  return socket_ != nullptr && socket_->state() == QAbstractSocket::ConnectedState;
}

}  // namespace zrn
