#include "core/state.h"
#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "schedule/event_scheduler.h"
#include "shows/show_panels.h"
#include "shows/shows_pass.h"
#include "switcher/dispatch.h"

namespace zrn {

// Every State is made with these, so whatever runs the switcher's reports (the window, the
// headless program, a test, the fuzz target, a benchmark) gets the monitor's answer to them.
void InstallReactions(State& s) {
  InstallMessageHandlers(s);
  Reactions& r = s.reactions;
  r.outputsChanged = UpdateOutputs;
  r.routesReported = UpdateRoutedOutputs;
  r.silenceReported = UpdateStatus;
  r.silenceChanged = UpdateChangedLamps;
  r.relayStatesReported = RelayStatesReported;
  r.relayTableArrived = AlarmRelayTableArrived;
  r.showAlarmChanged = DecideAlarmRelay;
  r.showsChanged = UpdateShows;
  r.viewChanged = ApplyViewVisibility;
  r.formResized = SetFormSize;
  r.exchangeCompleted = [](State& state) {
    // Routes the schedule wanted while the link was down, and the monitors of the shows on
    // air, which a restarted switcher no longer has.
    SendPendingRoutes(state);
    ResendShowMonitors(state);
  };
}

}  // namespace zrn
