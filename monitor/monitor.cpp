#include "monitor/monitor.h"

#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "monitor/poll_tick.h"
#include "monitor/startup.h"
#include "storage/logs.h"

namespace zrn {

Monitor::Monitor(const QString& appPath, Clock* clock, QObject* parent)
    : QObject(parent), appPath_(appPath) {
  if (clock != nullptr) {
    s_.clock = clock;
  }
  connection_ = std::make_unique<SwitcherConnection>(s_);
  connect(connection_.get(), &SwitcherConnection::changed, this, &Monitor::changed);
  pollTimer_.setInterval(500);
  connect(&pollTimer_, &QTimer::timeout, this, &Monitor::Poll);
  // Outside this object's handlers only the switcher's messages change the state, so the panel
  // update may keep what it found from one decode batch to the next (see Handle).
  ++s_.panelPass.batches;
}

Monitor::~Monitor() {
  pollTimer_.stop();
  connection_.reset();
}

template <class Body>
void Monitor::Handle(const char* where, Body&& body) {
  // A handler may change anything, in a dialog's own event loop too: while it runs the panel
  // update keeps nothing beyond one decode batch, and nothing it kept before survives it.
  --s_.panelPass.batches;
  s_.panelPass.Forget();
  // The last line of defence: nothing a handler meets may end the program.
  Trap(s_, QString::fromLatin1(where), QStringLiteral("Timer Error"), body);
  ++s_.panelPass.batches;
  s_.panelPass.Forget();
  emit changed();
}

void Monitor::Start() {
  Handle("Error Starting", [&] { Form_Load(s_, appPath_); });
  pollTimer_.start();
}

void Monitor::Stop() {
  pollTimer_.stop();
  Handle("Error Stopping", [&] { Form_Unload(s_); });
}

void Monitor::Poll() {
  Handle("Error in Poll Timer", [&] { PollTick(s_); });
}

void Monitor::Run(const char* where, const std::function<void()>& command) {
  Handle(where, command);
}

void Monitor::ToggleView() {
  Handle("Error Toggling View", [&] { mnuToggle_Click(s_); });
}

void Monitor::CancelAlarm() {
  Handle("Error Canceling Alarm", [&] { cmdCancel_Click(s_); });
}

void Monitor::PanelClicked(int index) {
  Handle("Error Acknowledging Alarm", [&] { AcknowledgeLossAlarm(s_, index); });
}

void Monitor::PanelMenuRequested(int index) {
  // The panel menu acts on the output whose panel was clicked last.
  Handle("Error Selecting Output", [&] { s_.SelectedOutput = static_cast<qint16>(index); });
}

}  // namespace zrn
