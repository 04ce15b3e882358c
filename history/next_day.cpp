#include "history/next_day.h"

#include <algorithm>

#include "core/channel_texts.h"
#include "core/failure.h"
#include "schedule/event_scheduler.h"
#include "schedule/event_time.h"

namespace zrn {

namespace {

constexpr int kSecondsPerDay = 86400;
// Bounds the walk through one output's schedule: more occurrences than a day can hold.
constexpr int kMostPerOutput = kSecondsPerDay;

QString LabelAfter(const State& s, const OutputEntry& output, const ScheduledEvent& event) {
  switch (event.DisplayOption) {
    case 0:
      return NameAt(s.OutputNames, output.Output - 1);
    case 1: {
      if (event.Connect && event.Source >= 1 && event.Source < kNone) {
        return NameAt(s.InputNames, event.Source - 1);
      }
      const int n = output.Output;
      return n >= 1 && n <= static_cast<int>(s.CrosspointMap.size())
                 ? NameAt(s.InputNames, s.CrosspointMap[static_cast<size_t>(n - 1)].Sources[0])
                 : QStringLiteral("Uknown");
    }
    case 2:
      return event.Label;
    default:
      return QString();
  }
}

}  // namespace

std::vector<UpcomingEvent> NextDayEvents(const State& s, const QDateTime& from) {
  std::vector<UpcomingEvent> found;
  const QDateTime until = from.addSecs(kSecondsPerDay);
  const QDate firstDate = from.date();
  const int firstDay = firstDate.dayOfWeek() - 1;
  const int firstSecond = from.time().msecsSinceStartOfDay() / 1000;

  // The scheduler searches in a state of its own; one is enough for every output. Its logs
  // go nowhere: a time that cannot be read is the real scheduler's to report.
  State scratch;
  scratch.AppPath = s.AppPath;
  scratch.MaxLogFileSize = s.MaxLogFileSize;
  scratch.PanelsLoaded = 1;
  scratch.OutputCount = 1;
  const int count = std::min<int>(s.OutputCount, static_cast<int>(s.Outputs.size()));
  for (int i = 0; i < count; ++i) {
    const OutputEntry& output = s.Outputs[static_cast<size_t>(i)];
    if (output.EventCount <= 0) {
      continue;
    }
    scratch.Outputs.assign(1, output);
    int dayOffset = 0;
    int after = firstSecond;
    for (int step = 0; step < kMostPerOutput; ++step) {
      scratch.Today = static_cast<qint16>((firstDay + dayOffset) % 7);
      scratch.CurrentTime = QTime(0, 0).addSecs(std::max(after, 0));
      GetNextEventAfter(scratch, 0, after);
      const int j = scratch.Outputs[0].NextEvent;
      if (j == kNone || j < 0 || j >= UsableEventCount(output)) {
        break;
      }
      const ScheduledEvent& event = output.Events[static_cast<size_t>(j)];
      int at = 0;
      try {
        at = EventTimeSeconds(event.Time);
      } catch (const Failure&) {
        break;
      }
      // The day the search found it on: today when later than now, else the nearest day
      // ahead it runs on, a week ahead at most.
      int ahead = at > after && RunsOn(event, scratch.Today) ? 0 : -1;
      for (int d = 1; ahead < 0 && d <= 7; ++d) {
        if (RunsOn(event, (scratch.Today + d) % 7)) {
          ahead = d;
        }
      }
      if (ahead < 0) {
        break;
      }
      dayOffset += ahead;
      const QDateTime when(firstDate.addDays(dayOffset), QTime(0, 0).addSecs(at));
      if (when > until) {
        break;
      }
      UpcomingEvent upcoming;
      upcoming.when = when;
      upcoming.output = i;
      upcoming.event = j;
      upcoming.channel = output.Output;
      upcoming.monitoring = event.Active;
      upcoming.label = LabelAfter(s, output, event);
      if (event.Connect && event.Source >= 1 && event.Source < kNone) {
        upcoming.source = NameAt(s.InputNames, event.Source - 1) + QStringLiteral(" [") +
                          ChannelDigits(event.Source) + QLatin1Char(']');
      }
      found.push_back(upcoming);
      after = at;
    }
  }
  std::stable_sort(found.begin(), found.end(),
                   [](const UpcomingEvent& a, const UpcomingEvent& b) { return a.when < b.when; });
  return found;
}

QString CsvField(const QString& text) {
  if (!text.contains(QLatin1Char(',')) && !text.contains(QLatin1Char('"')) &&
      !text.contains(QLatin1Char('\n'))) {
    return text;
  }
  QString quoted = text;
  quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
  return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString UpcomingCsv(const std::vector<UpcomingEvent>& events) {
  QString csv = QStringLiteral("Time,Output,Monitoring,Label,Source\r\n");
  for (const UpcomingEvent& e : events) {
    csv += QStringList{e.when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                       ChannelDigits(e.channel),
                       e.monitoring ? QStringLiteral("on") : QStringLiteral("off"),
                       CsvField(e.label), CsvField(e.source)}
               .join(QLatin1Char(',')) +
           QStringLiteral("\r\n");
  }
  return csv;
}

}  // namespace zrn
