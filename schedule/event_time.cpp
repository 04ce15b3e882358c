#include "schedule/event_time.h"

#include <QStringList>
#include <algorithm>

#include "core/failure.h"

namespace zrn {

int EventTimeSeconds(const QString& time) {
  static const QStringList formats = {QStringLiteral("H:mm:ss"), QStringLiteral("H:mm"),
                                      QStringLiteral("h:mm:ss AP"), QStringLiteral("h:mm AP")};
  const QString text = time.trimmed();
  for (const QString& format : formats) {
    const QTime parsed = QTime::fromString(text, format);
    if (parsed.isValid()) {
      return parsed.msecsSinceStartOfDay() / 1000;
    }
  }
  throw Failure::TypeMismatch();
}

bool RunsOn(const ScheduledEvent& event, int day) {
  return day >= 0 && day <= 6 && (event.Days & (1 << day)) != 0;
}

int UsableEventCount(const OutputEntry& output) {
  return std::clamp<int>(output.EventCount, 0, static_cast<int>(output.Events.size()));
}

int SecondsNow(const State& s) {
  const QTime time = s.CurrentTime.isValid() ? s.CurrentTime : Now(s).time();
  return time.msecsSinceStartOfDay() / 1000;
}

int DayNow(const State& s) {
  return ((s.Today % 7) + 7) % 7;
}

QDateTime WallClockNow(const State& s) {
  const QDateTime now = Now(s);
  const QTime second =
      QTime::fromMSecsSinceStartOfDay(now.time().msecsSinceStartOfDay() / 1000 * 1000);
  return QDateTime(now.date(), second, Qt::UTC);
}

bool OccurrenceRan(const OutputEntry& output, int index, int seconds, const QDateTime& wallNow) {
  if (index < 0 || index >= static_cast<int>(output.LastRun.size())) {
    return false;
  }
  const QDateTime& ran = output.LastRun[static_cast<size_t>(index)];
  const QDateTime occurrence(wallNow.date(), QTime::fromMSecsSinceStartOfDay(seconds * 1000),
                             Qt::UTC);
  // Runs happen within the catch-up window of their occurrence; the hour covers a clock set
  // back by an hour when summer time ends.
  return ran.isValid() && ran >= occurrence && ran < occurrence.addSecs(3600);
}

void RecordRun(OutputEntry& output, int index, const QDateTime& wallNow) {
  if (index < 0) {
    return;
  }
  if (static_cast<int>(output.LastRun.size()) <= index) {
    output.LastRun.resize(static_cast<size_t>(index) + 1);
  }
  output.LastRun[static_cast<size_t>(index)] = wallNow;
}

}  // namespace zrn
