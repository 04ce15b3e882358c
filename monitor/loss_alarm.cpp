#include "monitor/loss_alarm.h"

#include <algorithm>

#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "shows/show_panels.h"
#include "storage/logs.h"
#include "switcher/commands.h"

namespace zrn {

namespace {

const QString kReportOn = QStringLiteral("Loss Alarm Report On");
const QString kReportOff = QStringLiteral("Loss Alarm Report Off");
const QString kReportCanceled = QStringLiteral("Loss Alarm Report Canceled");
const QString kLocation = QStringLiteral("Error Driving Alarm Relay");
const QString kTitle = QStringLiteral("Display Error");

int PanelledOutputs(const State& s) {
  return std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
}

bool ReportedOn(const State& s, int relay) {
  return relay >= 1 && relay <= RelayTableSize(s) && s.RelayStates[relay - 1] == 1;
}

// Relay commands go out only on a live link whose exchange is complete: before that the
// reported states may still be the previous connection's.
bool LinkReady(const State& s) {
  return s.Connected && s.linkState.ExchangeComplete;
}

// A command goes out at most once per poll tick: the switcher's report of the relay takes a
// moment, and sending again on every report would flood the wire (two monitors on one relay
// would each answer the other's command at once).
void Drive(State& s, int relay, int command) {
  LossAlarmState& a = s.lossAlarm;
  if (a.sentRelay == relay && a.sentCommand == command) {
    return;
  }
  if (SendSwitcherCommand(s, relay, 1, command)) {
    a.sentRelay = static_cast<qint16>(relay);
    a.sentCommand = command;
    if (command == kCommandRelayLatch) {
      a.latchedRelay = static_cast<qint16>(relay);
    }
  }
}

void ReleaseStrayRelay(State& s, bool usable) {
  LossAlarmState& a = s.lossAlarm;
  if (a.strayRelay == kNone) {
    return;
  }
  if ((usable && a.strayRelay == s.AlarmRelay) || !ReportedOn(s, a.strayRelay)) {
    a.strayRelay = kNone;
    return;
  }
  if (!a.strayReleaseSent && LinkReady(s)) {
    a.strayReleaseSent = SendSwitcherCommand(s, a.strayRelay, 1, kCommandRelayRelease);
  }
}

}  // namespace

bool OutputInAlarm(const State& s, int index) {
  const OutputEntry& entry = s.Outputs[index];
  return s.panels.outputs[index].lamp == kLampRed && entry.AlarmState == 0 && !entry.AlarmCanceled;
}

bool ShowInAlarm(const ShowRecord& show) {
  return show.Alarm == 1 && !show.AlarmCanceled && !show.AlarmSuppressed &&
         show.DownlinkMonitor != kNone;
}

int RelayTableSize(const State& s) {
  // Until the relay names arrive the table holds no reported state, so no relay is known.
  return std::clamp<int>(s.SwitcherRelayCount, 0, static_cast<int>(s.RelayStates.size()));
}

bool AlarmRelayUsable(const State& s) {
  return s.AlarmRelay >= 1 && s.AlarmRelay <= RelayTableSize(s);
}

bool AlarmRelayWanted(const State& s) {
  if (s.ProgramMode == 1) {
    bool any = false;
    ForEachActiveShow(s, [&](int, int index) { any = any || ShowInAlarm(s.Shows[index]); });
    return any;
  }
  // Within a decode batch the panel update keeps the count.
  if (s.panelPass.lampsCurrent) {
    return s.panelPass.alarmCount > 0;
  }
  const int panels = PanelledOutputs(s);
  for (int i = 0; i < panels; ++i) {
    if (OutputInAlarm(s, i)) {
      return true;
    }
  }
  return false;
}

void DecideAlarmRelay(State& s) {
  Trap(s, kLocation, kTitle, [&] {
    LossAlarmState& a = s.lossAlarm;
    const bool usable = AlarmRelayUsable(s);
    const bool wanted = usable && AlarmRelayWanted(s);
    if (a.wantedRelay != kNone && a.wantedRelay != s.AlarmRelay) {
      // The setting moved away from a relay we latched; nobody else would release it.
      a.strayRelay = a.wantedRelay;
      a.strayReleaseSent = false;
    }
    const bool wasWanted = a.wantedRelay != kNone;
    a.wantedRelay = wanted ? s.AlarmRelay : kNone;
    if (wanted != wasWanted) {
      DisplayMessage(s, wanted ? kReportOn : kReportOff);
    }
    ReleaseStrayRelay(s, usable);
    if (!usable || !LinkReady(s)) {
      return;
    }
    const bool on = ReportedOn(s, s.AlarmRelay);
    if (!on && !wanted && a.latchedRelay == s.AlarmRelay) {
      a.latchedRelay = kNone;  // our release has been carried out
    }
    if (wanted && !on) {
      Drive(s, s.AlarmRelay, kCommandRelayLatch);
    } else if (!wanted && on && (a.latchedRelay == s.AlarmRelay || !a.startupDecided)) {
      // Another monitor may hold a relay we did not latch; one left latched by our own
      // previous run is released once.
      Drive(s, s.AlarmRelay, kCommandRelayRelease);
    }
    a.startupDecided = true;
  });
}

void BeginRelayTick(State& s) {
  s.lossAlarm.sentRelay = kNone;
  s.lossAlarm.sentCommand = -1;
  s.lossAlarm.strayReleaseSent = false;
}

void LossAlarmTick(State& s) {
  const int panels = PanelledOutputs(s);
  for (int i = 0; i < panels; ++i) {
    if (s.panels.outputs[i].lampInGrace && !InSilenceGrace(s, s.Outputs[i].Output - 1)) {
      UpdateStatus(s);
      break;
    }
  }
  DecideAlarmRelay(s);
}

void RelayStatesReported(State& s) {
  UpdateAlarmLamp(s);
  DecideAlarmRelay(s);
}

void AlarmRelayTableArrived(State& s) {
  if (s.AlarmRelay != kNone && !AlarmRelayUsable(s)) {
    WriteErrorLog(s,
                  QStringLiteral("Alarm Relay %1 beyond the switcher's %2 relays")
                      .arg(ChannelDigits(s.AlarmRelay))
                      .arg(RelayTableSize(s)),
                  QStringLiteral("Error Checking Alarm Relay"));
  }
  UpdateAlarmLamp(s);
  DecideAlarmRelay(s);
}

void UpdateAlarmLamp(State& s) {
  s.panels.window.alarmLampColour =
      AlarmRelayUsable(s) && ReportedOn(s, s.AlarmRelay) ? kLampRed : kLampGrey;
}

void cmdCancel_Click(State& s) {
  if (!AlarmRelayUsable(s)) {
    return;
  }
  Trap(s, QStringLiteral("Error Canceling Alarm"), kTitle, [&] {
    LossAlarmState& a = s.lossAlarm;
    if (SendSwitcherCommand(s, s.AlarmRelay, 1, kCommandRelayRelease)) {
      a.sentRelay = s.AlarmRelay;
      a.sentCommand = kCommandRelayRelease;
    }
    DisplayMessage(s, kReportCanceled);
    ForEachActiveShow(s, [&](int, int index) {
      ShowRecord& show = s.Shows[index];
      if (show.Alarm == 1) {
        show.AlarmCanceled = true;
      }
    });
    const int panels = PanelledOutputs(s);
    for (int i = 0; i < panels; ++i) {
      if (OutputInAlarm(s, i)) {
        s.Outputs[i].AlarmCanceled = true;
      }
    }
    // The cancel line already reports the end of the alarm.
    if (a.wantedRelay == s.AlarmRelay) {
      a.wantedRelay = kNone;
    }
  });
  DecideAlarmRelay(s);
}

bool AcknowledgeLossAlarm(State& s, int index) {
  if (index < 0 || index >= PanelledOutputs(s) || s.ProgramMode == 1) {
    return false;
  }
  OutputEntry& entry = s.Outputs[index];
  // Only an alarm that is there can be acknowledged; a click on a quiet panel must not
  // swallow the next one.
  if (!entry.MonitoringEnabled || entry.AlarmState == 1 || entry.Output < 1 ||
      entry.Output == kNone || s.panels.outputs[index].lamp != kLampRed) {
    return false;
  }
  entry.AlarmState = 1;
  DisplayMessage(s, PanelName(s, entry) + QStringLiteral(" [") + ChannelDigits(entry.Output) +
                        QStringLiteral("] Loss Alarm Canceled - User"));
  UpdateStatus(s);
  return true;
}

}  // namespace zrn
