#pragma once

#include <QDateTime>
#include <QString>
#include <vector>

#include "core/state.h"

namespace zrn {

// One occurrence of a scheduled event.
struct UpcomingEvent {
  QDateTime when;
  int output = 0;  // index into Outputs
  int event = 0;   // index into that output's Events
  qint16 channel = kNone;
  bool monitoring = false;
  // What the panel will be labelled after the event.
  QString label;
  // "Sat 1 [0005]" when the event routes a source, else empty.
  QString source;
  friend bool operator==(const UpcomingEvent&, const UpcomingEvent&) = default;
};

// Every scheduled event due after from and at most 24 hours later, in time order (ties in
// output order), found by stepping each output's schedule with the scheduler's own search, so
// the week wraps as it does when the events run.
std::vector<UpcomingEvent> NextDayEvents(const State& s, const QDateTime& from);

// The list as CSV: a header line, then one line per event; fields with commas or quotes are
// quoted.
QString UpcomingCsv(const std::vector<UpcomingEvent>& events);

// One CSV field, quoted when it must be.
QString CsvField(const QString& text);

}  // namespace zrn
