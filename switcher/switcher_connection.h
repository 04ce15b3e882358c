#pragma once

#include <QObject>
#include <QTimer>

#include "core/state.h"
#include "switcher/tcp_link.h"

namespace zrn {

// Wires the TCP link's events to the link handlers of a state and runs the decode timer
// while received bytes wait. Tells its owner after every event through changed().
class SwitcherConnection final : public QObject {
  Q_OBJECT

 public:
  explicit SwitcherConnection(State& s, QObject* parent = nullptr);
  ~SwitcherConnection() override;

  bool DecodeTimerActive() const { return decodeTimer_.isActive(); }

 signals:
  void changed();

 private:
  void Follow(bool bytesWait);

  State& s_;
  TcpLink link_;
  QTimer decodeTimer_;
};

}  // namespace zrn
