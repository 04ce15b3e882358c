#pragma once

#include <QDateTime>
#include <QString>
#include <deque>
#include <optional>
#include <vector>

namespace zrn {

// What an activity line says happened to an output, a show or the link.
enum class AlarmKind {
  Silent,         // "... Silence Alarm Status ON!"
  AudioBack,      // "... Silence Alarm Status OFF!"
  Acknowledged,   // "... Loss Alarm Canceled - User"
  Cancelled,      // "Loss Alarm Report Canceled"
  MonitoringOff,  // "... Monitoring disabled"
  MonitoringOn,   // "... Monitoring enabled"
  NoLink,         // "Server Module Not Connected"
  LinkBack,       // "Server Module Connected"
};

struct AlarmEvent {
  QDateTime when;
  // The output ("Studio A [0012]") or show ("Drive Time") as the line names it; empty for the
  // link and for Cancel Alarm, which concern every output.
  QString subject;
  AlarmKind kind = AlarmKind::Silent;
  friend bool operator==(const AlarmEvent&, const AlarmEvent&) = default;
};

// The text of a kind in the table and the CSV ("silent", "audio back" ...).
QString KindText(AlarmKind kind);

// Reads one operational message; nothing for the messages the history does not keep.
std::optional<AlarmEvent> ParseActivity(const QDateTime& when, const QString& message);

// What identifies a subject across label changes: the "[0012]" of an output, else the name.
QString SubjectKey(const QString& subject);

// The alarm history of the last 24 hours, kept from the operational messages as they are
// reported and, at start-up, read back from the activity log and its rotated copies.
class AlarmHistory {
 public:
  static constexpr qint64 kKeptSeconds = 24 * 3600;
  // Bounds the memory whatever floods the log.
  static constexpr std::size_t kMaxEvents = 20000;

  // Takes one message as it is reported.
  void Record(const QDateTime& when, const QString& message);
  // Reads back the events of the 24 hours before now from EventLog.txt and the rotated
  // "EventLog MMddyy HHmm.txt" files of folder (with its trailing separator), oldest first.
  // Returns the number of files read.
  int ReadBack(const QString& folder, const QDateTime& now);
  // Forgets what is older than 24 hours before now.
  void Forget(const QDateTime& now);

  const std::deque<AlarmEvent>& Events() const { return events_; }
  // Per event, how long the state it began lasted: until the next event of its subject (for
  // the link, until it came back), or until now when it still holds; -1 for a moment only.
  std::vector<qint64> Durations(const QDateTime& now) const;

 private:
  void Add(const AlarmEvent& event);
  std::deque<AlarmEvent> events_;
};

// What an output or show was in, over a stretch of time, on the timeline.
enum class TimelineState { Silent, Acknowledged, Cancelled, MonitoringOff, NoLink };

struct TimelineSpan {
  QDateTime from;
  QDateTime to;
  TimelineState state = TimelineState::Silent;
  friend bool operator==(const TimelineSpan&, const TimelineSpan&) = default;
};

struct TimelineRow {
  QString subject;  // as last named
  std::vector<TimelineSpan> spans;
};

// The timeline of every subject whose name contains filter (ignoring case), in the order they
// first appear: silent, acknowledged, cancelled and monitoring-off stretches, ending at now when
// they still hold. The link's outages are one row of their own, first, named "Switcher link".
std::vector<TimelineRow> Timeline(const AlarmHistory& history, const QDateTime& now,
                                  const QString& filter = QString());

// The events as CSV, with how long each lasted as of now.
QString HistoryCsv(const AlarmHistory& history, const std::vector<std::size_t>& rows,
                   const QDateTime& now);

}  // namespace zrn
