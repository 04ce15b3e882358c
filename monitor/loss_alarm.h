#pragma once

#include "core/state.h"

namespace zrn {

// Relays the switcher has told us about: the relay table, once its names arrived.
int RelayTableSize(const State& s);
// AlarmRelay names a relay of that table; one beyond it counts as none.
bool AlarmRelayUsable(const State& s);

// Whether watched output index counts towards the relay: a red lamp that was neither
// acknowledged nor cancelled.
bool OutputInAlarm(const State& s, int index);

// Whether the loss alarm wants the relay latched: in output mode a red lamp that was neither
// acknowledged nor cancelled; in show mode an active show in alarm, not cancelled and not
// suppressed.
bool AlarmRelayWanted(const State& s);

// The one decision on the relay: latched while wanted, released while not wanted and latched
// by this monitor. Writes "Loss Alarm Report On" / "Off" when the decision changes, and sends a
// command while the switcher's report disagrees, at most once per poll tick.
void DecideAlarmRelay(State& s);

// Start of a poll tick: a relay command may go out again from here on.
void BeginRelayTick(State& s);

// Poll tick: looks again at lamps whose grace is over, then decides, re-sending a command the
// switcher has not yet carried out.
void LossAlarmTick(State& s);

// After each relay-state report: the "Alarm" lamp, then the decision.
void RelayStatesReported(State& s);
// When the relay table (the relay names) arrives: one error line when AlarmRelay lies beyond
// it, then the lamp and the decision.
void AlarmRelayTableArrived(State& s);

// The "Alarm" lamp: red while the switcher reports the alarm relay on.
void UpdateAlarmLamp(State& s);

// Cancel Alarm: releases the relay and takes what alarms now off it until its silence ends.
void cmdCancel_Click(State& s);

// Left click on output panel index: acknowledges a red lamp (it turns yellow). False when
// nothing was acknowledged.
bool AcknowledgeLossAlarm(State& s, int index);

}  // namespace zrn
