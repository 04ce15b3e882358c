#include "switcher/switcher_connection.h"

#include "switcher/link.h"

namespace zrn {

SwitcherConnection::SwitcherConnection(State& s, QObject* parent) : QObject(parent), s_(s) {
  s_.link = &link_;
  decodeTimer_.setInterval(10);
  connect(&link_, &TcpLink::connected, this, [this] {
    OnConnected(s_);
    emit changed();
  });
  connect(&link_, &TcpLink::received, this,
          [this](const QByteArray& bytes) { Follow(OnDataAvailable(s_, bytes)); });
  connect(&link_, &TcpLink::closed, this, [this] {
    OnClosed(s_);
    Follow(false);
  });
  connect(&decodeTimer_, &QTimer::timeout, this, [this] { Follow(DecodeTick(s_)); });
}

SwitcherConnection::~SwitcherConnection() {
  if (s_.link == &link_) {
    s_.link = nullptr;
  }
}

void SwitcherConnection::Follow(bool bytesWait) {
  if (bytesWait && !decodeTimer_.isActive()) {
    decodeTimer_.start();
  } else if (!bytesWait) {
    decodeTimer_.stop();
  }
  emit changed();
}

}  // namespace zrn
