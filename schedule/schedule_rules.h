#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "core/state.h"

namespace zrn {

// What the schedule editor's fields hold for one event.
struct EventFields {
  QString time;
  bool active = false;
  int displayOption = 0;
  // Bit d set: the box of day d (0 Monday ... 6 Sunday) is ticked.
  int days = 0;
  QString label;
  bool connect = false;
  // Position in the source list: 0 "Undefined", n input n.
  int sourcePosition = 0;
};

// Why the fields cannot be stored, as the message box shows it.
struct FieldError {
  QString title;
  QString text;
};

// The longest label the events file can hold.
inline constexpr int kMaxEventLabel = 12;

// The time text as "hh:mm:ss" when it reads as a time ("6:30", "06:30:", "6:30 PM"); otherwise
// the text unchanged, for the strict check to refuse.
QString NormaliseEventTime(const QString& text);

// Exactly 8 characters, ":" at the third and sixth, hours to 23, minutes and seconds to 59.
bool IsValidEventTime(const QString& text);

// The first reason the fields cannot become an event, checked in the order the operator reads
// them; nothing when they can.
std::optional<FieldError> CheckEventFields(const EventFields& fields);

// The event the checked fields describe.
ScheduledEvent EventFromFields(const EventFields& fields);

// The fields showing an event.
EventFields FieldsOfEvent(const ScheduledEvent& event);

// The event shown when an output has none.
ScheduledEvent BlankEvent();

// "MoTuWeThFr" for Monday to Friday; empty when no day is set.
QString DaysText(int days);

// Key of the event list's row i: "Ch.0003".
QString EventRowKey(int index);

// The columns Time, Status, Source and Days of an event's row.
QStringList EventRowTexts(const State& s, const ScheduledEvent& event);

// "Scheduling for [0012]Studio A"; an output the name table does not hold reads "Uknown".
QString ScheduleTitle(const State& s, const OutputEntry& output);

// "Undefined", then "[0001] " and the name of every switcher input.
QStringList SourceListTexts(const State& s);

}  // namespace zrn
