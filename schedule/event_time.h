#pragma once

#include <QDateTime>
#include <QString>

#include "core/state.h"

namespace zrn {

// Seconds after midnight of an event time text ("hh:mm:ss"; "h:mm", and the 12-hour forms
// with AM/PM, are read too). Throws Failure 13 (type mismatch) when the text is not a time.
int EventTimeSeconds(const QString& time);

// Whether the event runs on day (0 Monday ... 6 Sunday); only the low 7 bits of Days count.
bool RunsOn(const ScheduledEvent& event, int day);

// Number of events of the output that can be read: EventCount, bounded by the array.
int UsableEventCount(const OutputEntry& output);

// CurrentTime as whole seconds after midnight, or the clock's when CurrentTime is not set.
int SecondsNow(const State& s);
// Today, held to 0..6.
int DayNow(const State& s);

// The clock's local date and time to the second, as plain wall-clock figures (no zone), so a
// time that comes round again after the clock is set back compares equal to the first one.
QDateTime WallClockNow(const State& s);

// Whether event index of output already ran for its occurrence today at seconds after
// midnight: it ran at that time or within the hour after it.
bool OccurrenceRan(const OutputEntry& output, int index, int seconds, const QDateTime& wallNow);

// Notes that event index of output ran at wallNow.
void RecordRun(OutputEntry& output, int index, const QDateTime& wallNow);

}  // namespace zrn
