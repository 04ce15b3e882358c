#include "history/alarm_history.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>

#include "history/next_day.h"

namespace zrn {

namespace {

// Where the message starts in an activity line, after the stamp and source columns.
constexpr int kMessageColumn = 55;
constexpr int kStampWidth = 35;

struct Ending {
  const char* text;
  AlarmKind kind;
};

// Message endings after the subject, longest first where one ends another.
constexpr Ending kEndings[] = {
    {" Silence Alarm Status ON!", AlarmKind::Silent},
    {" Silence Alarm Status OFF!", AlarmKind::AudioBack},
    {" Loss Alarm Canceled - User", AlarmKind::Acknowledged},
};

bool StateLasts(AlarmKind kind) {
  return kind == AlarmKind::Silent || kind == AlarmKind::Acknowledged ||
         kind == AlarmKind::MonitoringOff || kind == AlarmKind::NoLink;
}

QDateTime ReadStamp(const QString& line) {
  const QString stamp = line.left(kStampWidth).trimmed();
  return QLocale().toDateTime(stamp, QStringLiteral("ddd, MMM dd, yyyy - HH:mm:ss"));
}

// The minute a rotated log was started afresh, from its name; invalid for other files.
QDateTime RotatedAt(const QString& name) {
  static const QRegularExpression pattern(
      QStringLiteral("^EventLog (\\d{6} \\d{4})(?: \\((\\d+)\\))?\\.txt$"));
  const QRegularExpressionMatch m = pattern.match(name);
  if (!m.hasMatch()) {
    return QDateTime();
  }
  QDateTime at = QDateTime::fromString(m.captured(1), QStringLiteral("MMddyy HHmm"));
  // Two-digit years are read as 19yy.
  if (at.isValid() && at.date().year() < 2000) {
    at = at.addYears(100);
  }
  return at;
}

}  // namespace

QString KindText(AlarmKind kind) {
  switch (kind) {
    case AlarmKind::Silent:
      return QStringLiteral("silent");
    case AlarmKind::AudioBack:
      return QStringLiteral("audio back");
    case AlarmKind::Acknowledged:
      return QStringLiteral("acknowledged");
    case AlarmKind::Cancelled:
      return QStringLiteral("cancelled");
    case AlarmKind::MonitoringOff:
      return QStringLiteral("monitoring off");
    case AlarmKind::MonitoringOn:
      return QStringLiteral("monitoring on");
    case AlarmKind::NoLink:
      return QStringLiteral("no link");
    case AlarmKind::LinkBack:
      return QStringLiteral("link back");
  }
  return QString();
}

std::optional<AlarmEvent> ParseActivity(const QDateTime& when, const QString& message) {
  // To the second, as the log keeps it, so what is read back equals what was recorded.
  const QDateTime at = when.addMSecs(-when.time().msec());
  if (message == QLatin1String("Server Module Not Connected")) {
    return AlarmEvent{at, QString(), AlarmKind::NoLink};
  }
  if (message == QLatin1String("Server Module Connected")) {
    return AlarmEvent{at, QString(), AlarmKind::LinkBack};
  }
  if (message == QLatin1String("Loss Alarm Report Canceled")) {
    return AlarmEvent{at, QString(), AlarmKind::Cancelled};
  }
  for (const Ending& ending : kEndings) {
    const QLatin1String tail(ending.text);
    if (message.endsWith(tail)) {
      return AlarmEvent{at, message.chopped(tail.size()), ending.kind};
    }
  }
  // Monitoring switched by the operator ("... Monitoring disabled - User") or by a scheduled
  // event ("... Monitoring disabled." and maybe the source it routed).
  static const QRegularExpression monitoring(
      QStringLiteral("^(.*\\[\\d{4}\\]) Monitoring (enabled|disabled)(?: - User|\\..*)$"));
  const QRegularExpressionMatch m = monitoring.match(message);
  if (m.hasMatch()) {
    return AlarmEvent{at, m.captured(1),
                      m.captured(2) == QLatin1String("enabled") ? AlarmKind::MonitoringOn
                                                                : AlarmKind::MonitoringOff};
  }
  return std::nullopt;
}

QString SubjectKey(const QString& subject) {
  static const QRegularExpression channel(QStringLiteral("\\[\\d{4}\\]$"));
  const QRegularExpressionMatch m = channel.match(subject);
  return m.hasMatch() ? m.captured(0) : subject.trimmed();
}

void AlarmHistory::Add(const AlarmEvent& event) {
  events_.push_back(event);
  while (events_.size() > kMaxEvents) {
    events_.pop_front();
  }
}

void AlarmHistory::Record(const QDateTime& when, const QString& message) {
  if (const std::optional<AlarmEvent> event = ParseActivity(when, message)) {
    Add(*event);
    Forget(when);
  }
}

void AlarmHistory::Forget(const QDateTime& now) {
  const QDateTime cutoff = now.addSecs(-kKeptSeconds);
  while (!events_.empty() && events_.front().when < cutoff) {
    events_.pop_front();
  }
}

int AlarmHistory::ReadBack(const QString& folder, const QDateTime& now) {
  const QDateTime cutoff = now.addSecs(-kKeptSeconds);
  // A rotated log holds the lines up to the minute it was set aside: only those set aside
  // since the cutoff can hold lines of the last 24 hours.
  struct Rotated {
    QDateTime at;
    int copy;
    QString name;
  };
  std::vector<Rotated> rotated;
  const QStringList names =
      QDir(folder).entryList({QStringLiteral("EventLog *.txt")}, QDir::Files, QDir::Name);
  for (const QString& name : names) {
    const QDateTime at = RotatedAt(name);
    if (at.isValid() && at.addSecs(60) >= cutoff) {
      static const QRegularExpression copy(QStringLiteral("\\((\\d+)\\)\\.txt$"));
      const QRegularExpressionMatch m = copy.match(name);
      rotated.push_back({at, m.hasMatch() ? m.captured(1).toInt() : 1, name});
    }
  }
  std::sort(rotated.begin(), rotated.end(), [](const Rotated& a, const Rotated& b) {
    return a.at != b.at ? a.at < b.at : a.copy < b.copy;
  });
  QStringList files;
  for (const Rotated& r : rotated) {
    files << r.name;
  }
  files << QStringLiteral("EventLog.txt");

  std::vector<AlarmEvent> read;
  int filesRead = 0;
  for (const QString& name : files) {
    QFile file(folder + name);
    if (!file.open(QIODevice::ReadOnly)) {
      continue;
    }
    ++filesRead;
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QStringLiteral("\r\n"));
    for (const QString& line : lines) {
      if (line.size() <= kMessageColumn) {
        continue;
      }
      // The message first: reading a stamp costs more, and most lines are not kept.
      std::optional<AlarmEvent> event = ParseActivity(QDateTime(), line.mid(kMessageColumn));
      if (!event) {
        continue;
      }
      const QDateTime when = ReadStamp(line);
      if (!when.isValid() || when < cutoff || when > now) {
        continue;
      }
      event->when = when;
      read.push_back(*event);
    }
  }
  // What was read back comes before anything recorded since.
  std::deque<AlarmEvent> live = std::move(events_);
  events_.clear();
  for (const AlarmEvent& event : read) {
    Add(event);
  }
  for (const AlarmEvent& event : live) {
    Add(event);
  }
  return filesRead;
}

std::vector<qint64> AlarmHistory::Durations(const QDateTime& now) const {
  std::vector<qint64> lasted(events_.size(), -1);
  // Walking back, the next event of each subject and the next return of the link.
  QHash<QString, QDateTime> nextOf;
  QDateTime linkBack;
  for (std::size_t i = events_.size(); i-- > 0;) {
    const AlarmEvent& event = events_[i];
    const QString key = SubjectKey(event.subject);
    if (StateLasts(event.kind)) {
      const QDateTime end = event.kind == AlarmKind::NoLink ? linkBack : nextOf.value(key);
      lasted[i] = std::max<qint64>(0, event.when.secsTo(end.isValid() ? end : now));
    }
    if (event.kind == AlarmKind::LinkBack) {
      linkBack = event.when;
    }
    if (!event.subject.isEmpty()) {
      nextOf.insert(key, event.when);
    }
  }
  return lasted;
}

std::vector<TimelineRow> Timeline(const AlarmHistory& history, const QDateTime& now,
                                  const QString& filter) {
  std::vector<TimelineRow> rows;
  QHash<QString, std::size_t> rowOf;
  // The stretch each subject is in, still open.
  struct Open {
    bool open = false;
    TimelineSpan span;
  };
  std::vector<Open> open;
  TimelineRow link{QStringLiteral("Switcher link"), {}};
  Open linkOpen;

  const auto close = [](std::vector<TimelineSpan>& spans, Open& o, const QDateTime& at) {
    if (o.open) {
      o.span.to = at;
      spans.push_back(o.span);
      o.open = false;
    }
  };
  const auto start = [](Open& o, const QDateTime& at, TimelineState state) {
    o.open = true;
    o.span = {at, at, state};
  };

  for (const AlarmEvent& event : history.Events()) {
    if (event.kind == AlarmKind::NoLink) {
      if (!linkOpen.open) {
        start(linkOpen, event.when, TimelineState::NoLink);
      }
      continue;
    }
    if (event.kind == AlarmKind::LinkBack) {
      close(link.spans, linkOpen, event.when);
      continue;
    }
    if (event.kind == AlarmKind::Cancelled) {
      // Cancel Alarm takes every alarm that is red at that moment.
      for (std::size_t r = 0; r < rows.size(); ++r) {
        if (open[r].open && open[r].span.state == TimelineState::Silent) {
          close(rows[r].spans, open[r], event.when);
          start(open[r], event.when, TimelineState::Cancelled);
        }
      }
      continue;
    }
    const QString key = SubjectKey(event.subject);
    auto found = rowOf.find(key);
    if (found == rowOf.end()) {
      found = rowOf.insert(key, rows.size());
      rows.push_back({event.subject, {}});
      open.emplace_back();
    }
    const std::size_t r = found.value();
    rows[r].subject = event.subject;
    close(rows[r].spans, open[r], event.when);
    switch (event.kind) {
      case AlarmKind::Silent:
        start(open[r], event.when, TimelineState::Silent);
        break;
      case AlarmKind::Acknowledged:
        start(open[r], event.when, TimelineState::Acknowledged);
        break;
      case AlarmKind::MonitoringOff:
        start(open[r], event.when, TimelineState::MonitoringOff);
        break;
      default:
        break;
    }
  }
  close(link.spans, linkOpen, now);
  for (std::size_t r = 0; r < rows.size(); ++r) {
    close(rows[r].spans, open[r], now);
  }

  std::vector<TimelineRow> shown;
  const QString wanted = filter.trimmed();
  if (wanted.isEmpty() || link.subject.contains(wanted, Qt::CaseInsensitive)) {
    shown.push_back(std::move(link));
  }
  for (TimelineRow& row : rows) {
    if (wanted.isEmpty() || row.subject.contains(wanted, Qt::CaseInsensitive)) {
      shown.push_back(std::move(row));
    }
  }
  return shown;
}

QString HistoryCsv(const AlarmHistory& history, const std::vector<std::size_t>& rows,
                   const QDateTime& now) {
  QString csv = QStringLiteral("Time,Output or show,What happened,Seconds\r\n");
  const std::vector<qint64> durations = history.Durations(now);
  for (const std::size_t row : rows) {
    if (row >= history.Events().size()) {
      continue;
    }
    const AlarmEvent& e = history.Events()[row];
    const qint64 lasted = durations[row];
    csv += QStringList{e.when.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")), CsvField(e.subject),
                       KindText(e.kind), lasted < 0 ? QString() : QString::number(lasted)}
               .join(QLatin1Char(',')) +
           QStringLiteral("\r\n");
  }
  return csv;
}

}  // namespace zrn
