#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>

#include "core/state.h"
#include "switcher/switcher_connection.h"

namespace zrn {

// The running program without its window: the state, the poll timer and the switcher
// connection. Every handler runs its core procedure and then tells the window through
// changed().
class Monitor final : public QObject {
  Q_OBJECT

 public:
  // clock may be null for the system clock; it must outlive the monitor.
  explicit Monitor(const QString& appPath, Clock* clock = nullptr, QObject* parent = nullptr);
  ~Monitor() override;

  State& state() { return s_; }
  const State& state() const { return s_; }

  // Start-up: reads the files, builds the panels, connects and starts the poll timer.
  void Start();
  // Shut-down: stops the timers and closes the connection.
  void Stop();

  // Commands of the main window.
  void ToggleView();
  void CancelAlarm();
  void PanelClicked(int index);
  void PanelMenuRequested(int index);
  // One pass of the poll timer (the timer calls it; tests may too).
  void Poll();
  // Runs a window command (a dialog and what follows it) under the same guard as every
  // handler, then tells the window.
  void Run(const char* where, const std::function<void()>& command);

 signals:
  void changed();

 private:
  // Runs a command with the last-line guard of every handler, then tells the window.
  template <class Body>
  void Handle(const char* where, Body&& body);

  State s_;
  QString appPath_;
  std::unique_ptr<SwitcherConnection> connection_;
  QTimer pollTimer_;
};

}  // namespace zrn
