#include "storage/logs.h"

#include <algorithm>
#include <utility>

#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include "storage/file_io.h"

namespace zrn {

namespace {

const QString kActivityLog = QStringLiteral("EventLog");
const QString kErrorLog = QStringLiteral("Errorlog");
const QString kHyphens = QString(80, QLatin1Char('-'));

QStringList HeaderTop() {
  return {QString(13, QLatin1Char(' ')) + QStringLiteral("H A L V O R N"),
          QString(),
          QString(19, QLatin1Char(' ')) +
              QStringLiteral("Halvorn Broadcast Systems, 1420 Kettering Parkway"),
          QString(19, QLatin1Char(' ')) + QStringLiteral("Dayton, Ohio 45439  USA"),
          QString(19, QLatin1Char(' ')) +
              QStringLiteral("Tel. +1 937 555 0148   www.halvorn-broadcast.com"),
          QString(),
          QString()};
}

QByteArray Lines(const QStringList& lines) {
  QByteArray bytes;
  for (const QString& line : lines) {
    bytes += line.toUtf8();
    bytes += "\r\n";
  }
  return bytes;
}

void CreateLog(const QString& path, const QStringList& lines) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    throw Failure::PathFileAccess();
  }
  const QByteArray bytes = Lines(lines);
  if (file.write(bytes) != bytes.size()) {
    throw Failure::DeviceIo();
  }
}

void AppendBytes(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
    throw Failure::PathFileAccess();
  }
  if (file.write(bytes) != bytes.size() || !file.flush()) {
    throw Failure::DeviceIo();
  }
}

// Moves a full log to "<base> MMddyy HHmm.txt"; a second rotation in the same minute gets
// " (2)", " (3)" ... so no rotated log is ever overwritten.
void Rotate(State& s, const QString& base) {
  const QString path = DataPath(s, base + QStringLiteral(".txt"));
  const QString stem = DataPath(s, base + QLatin1Char(' ') + FileStamp(Now(s)));
  QString target = stem + QStringLiteral(".txt");
  for (int n = 2; QFileInfo::exists(target); ++n) {
    if (n > 9999) {
      throw Failure::PathFileAccess();
    }
    target = stem + QStringLiteral(" (%1).txt").arg(n);
  }
  if (!QFile::rename(path, target)) {
    throw Failure::PathFileAccess();
  }
}

qint64 LogLimit(const State& s) {
  return static_cast<qint64>(s.MaxLogFileSize) * 1024;
}

// Creates the error log with its header; false when it cannot be created.
bool TryCreateErrorLog(State& s);

// Appends one error line; false when the log cannot be written. An error that cannot be logged
// has nowhere to be reported, so the failure is answered, not thrown: in a folder that has
// gone, every message's attempt must stay cheap.
bool WriteErrorLine(State& s, const QString& location, const QString& message) {
  // Nothing is written in a folder that is not there, and one look at the folder says so.
  if (!s.AppPath.isEmpty() && !QFileInfo(s.AppPath).isDir()) {
    return false;
  }
  const QString path = DataPath(s, kErrorLog + QStringLiteral(".txt"));
  QFileInfo info(path);
  bool exists = info.exists();
  if (exists && s.MaxLogFileSize > 0 && info.size() >= LogLimit(s)) {
    Rotate(s, kErrorLog);
    exists = false;
  }
  if (!exists && !TryCreateErrorLog(s)) {
    return false;
  }
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
    return false;
  }
  // The line is made only once it has somewhere to go.
  const QString stamp = GeneralDateTime(Now(s));
  QString line = stamp.leftJustified(24) + location;
  if (line.size() < 60) {
    line = line.leftJustified(60);
  }
  line += message;
  const QByteArray bytes = Lines({line});
  return file.write(bytes) == bytes.size() && file.flush();
}

}  // namespace

QString ActivityStamp(const QDateTime& when) {
  // A burst of reports stamps many lines within one second: the text is made once.
  struct Last {
    QDate date;
    int second = -1;
    QLocale locale;
    QString text;
  };
  static Last last;
  const QDate date = when.date();
  const int second = when.time().msecsSinceStartOfDay() / 1000;
  const QLocale locale;
  if (date != last.date || second != last.second || !(locale == last.locale)) {
    last.text = locale.toString(when, QStringLiteral("ddd, MMM dd, yyyy - HH:mm:ss"));
    last.date = date;
    last.second = second;
    last.locale = locale;
  }
  return last.text;
}

QString GeneralDateTime(const QDateTime& when) {
  // The formats are worked out once per locale, and a flood of error lines within one second
  // is stamped with one text.
  struct Formats {
    QString localeName, date, time;
    QLocale locale;
    QDate lastDate;
    int lastSecond = -1;
    QString lastText;
  };
  static Formats cached;
  const QLocale locale;
  const QDate date = when.date();
  const int second = when.time().msecsSinceStartOfDay() / 1000;
  if (!cached.date.isEmpty() && locale == cached.locale && date == cached.lastDate &&
      second == cached.lastSecond) {
    return cached.lastText;
  }
  cached.lastDate = date;
  cached.lastSecond = second;
  cached.locale = locale;
  if (cached.localeName != locale.name() || cached.date.isEmpty()) {
    cached.localeName = locale.name();
    cached.date = locale.dateFormat(QLocale::ShortFormat);
    if (!cached.date.contains(QStringLiteral("yyyy"))) {
      cached.date.replace(QStringLiteral("yy"), QStringLiteral("yyyy"));
    }
    // The long time form carries the seconds; its time-zone part is not wanted.
    cached.time = locale.timeFormat(QLocale::LongFormat);
    cached.time.remove(QLatin1Char('t'));
    cached.time = cached.time.trimmed();
  }
  cached.lastText = locale.toString(when.date(), cached.date) + QLatin1Char(' ') +
                    locale.toString(when.time(), cached.time);
  return cached.lastText;
}

QString FileStamp(const QDateTime& when) {
  return when.toString(QStringLiteral("MMddyy HHmm"));
}

QString ErrorText(const Failure& failure) {
  // A non-negative number is preceded by a blank, as number-to-text conversion does.
  const QString number = failure.number >= 0 ? QStringLiteral(" %1").arg(failure.number)
                                             : QString::number(failure.number);
  return QStringLiteral("Error # ") + number + QStringLiteral(" - ") + failure.description;
}

bool CreateActivityLog(State& s) {
  QStringList lines = HeaderTop();
  lines << QStringLiteral("ZRN Pennaro Logfile")
        << QStringLiteral("Version: ") + QLatin1String(kVersionText) << QString()
        << QStringLiteral(" DATE              TIME             MESSAGE DESCRIPTION") << kHyphens;
  try {
    CreateLog(DataPath(s, kActivityLog + QStringLiteral(".txt")), lines);
    return true;
  } catch (const Failure& failure) {
    LogError(s, QStringLiteral("Error Creating Activity Log"), QStringLiteral("File Error"),
             failure);
    return false;
  }
}

namespace {

bool TryCreateErrorLog(State& s) {
  QFile file(DataPath(s, kErrorLog + QStringLiteral(".txt")));
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    return false;
  }
  QStringList lines = HeaderTop();
  lines << QStringLiteral("ZRN Pennaro Error Logfile") << QString()
        << QStringLiteral(
               " DATE     TIME           LOCATION                      MESSAGE DESCRIPTION")
        << kHyphens;
  const QByteArray bytes = Lines(lines);
  return file.write(bytes) == bytes.size();
}

}  // namespace

void CreateErrorLog(State& s) {
  // A failure here surfaces when the line itself is appended.
  TryCreateErrorLog(s);
}

namespace {

constexpr qsizetype kMaxPendingActivityLines = 1000;

// Appends lines to the activity log, rotating it before a line whenever it has reached its
// limit, exactly as writing them one by one would, with one look at the file.
void WriteActivityLines(State& s, const QStringList& lines) {
  try {
    const QString path = DataPath(s, kActivityLog + QStringLiteral(".txt"));
    QFileInfo info(path);
    if (!info.exists() && !CreateActivityLog(s)) {
      return;  // reported by the creation; the lines are lost
    }
    info.refresh();
    qint64 size = info.size();
    QByteArray chunk;
    for (const QString& line : lines) {
      if (s.MaxLogFileSize > 0 && size >= LogLimit(s)) {
        if (!chunk.isEmpty()) {
          AppendBytes(path, chunk);
          chunk.clear();
        }
        Rotate(s, kActivityLog);
        if (!CreateActivityLog(s)) {
          return;
        }
        info.refresh();
        size = info.size();
      }
      const QByteArray bytes = Lines({line});
      chunk += bytes;
      size += bytes.size();
    }
    AppendBytes(path, chunk);
  } catch (const Failure& failure) {
    LogError(s, QStringLiteral("Error Writing to Activity Log"), QStringLiteral("File Error"),
             failure);
  }
}

}  // namespace

void WriteActivityLog(State& s, const QString& message, const QString& source) {
  const QString line =
      (ActivityStamp(Now(s)).leftJustified(35) + source).leftJustified(55) + message;
  if (s.logs.activityBatches > 0) {
    s.logs.pendingActivity.append(line);
    // A batch is bounded: a flood of lines is written in slices.
    if (s.logs.pendingActivity.size() >= kMaxPendingActivityLines) {
      FlushActivityLog(s);
    }
    return;
  }
  WriteActivityLines(s, {line});
}

ActivityBatch::ActivityBatch(State& s) : s_(s) {
  ++s_.logs.activityBatches;
}

ActivityBatch::~ActivityBatch() {
  if (--s_.logs.activityBatches == 0) {
    FlushActivityLog(s_);
  }
}

void FlushActivityLog(State& s) {
  if (s.logs.pendingActivity.isEmpty()) {
    return;
  }
  QStringList lines;
  lines.swap(s.logs.pendingActivity);
  WriteActivityLines(s, lines);
}

namespace {

constexpr qint64 kHoldBackSeconds = 60;
// Distinct lines remembered at once; a flood of different lines is written, not remembered.
constexpr size_t kMaxRecentErrors = 64;

bool WithinMinute(const QDateTime& written, const QDateTime& now) {
  return written.isValid() && written <= now && written.secsTo(now) < kHoldBackSeconds;
}

// Writes how often each remembered line was held back since it was last written, and forgets
// the lines whose minute is over. False, and nothing forgotten, when a line could not be
// written.
bool WriteHeldBackCounts(State& s, const QDateTime& now) {
  std::vector<HeldBackError>& recent = s.logs.recentErrors;
  for (HeldBackError& e : recent) {
    if (e.heldBack > 0) {
      const int held = std::exchange(e.heldBack, 0);
      if (!WriteErrorLine(s, e.location,
                          e.message + QStringLiteral(" (repeated %1 times)").arg(held))) {
        return false;
      }
    }
  }
  std::erase_if(recent, [&](const HeldBackError& e) { return !WithinMinute(e.lastWritten, now); });
  return true;
}

}  // namespace

void WriteErrorLog(State& s, const QString& message, const QString& location) {
  LogState& log = s.logs;
  // A failed write is reported through this very function; that report gets no attempt of
  // its own, so a read-only folder or a full disk costs one attempt per message.
  if (log.reportingWriteFailure) {
    return;
  }
  // The remembered lines are compared in UTC, as a local time is converted anew at each
  // comparison; and only when there are any, so a folder that cannot be written stays cheap.
  const QDateTime local = Now(s);
  QDateTime now;
  auto utcNow = [&]() -> const QDateTime& {
    if (now.isNull()) {
      now = local.toUTC();
    }
    return now;
  };
  auto same = std::find_if(
      log.recentErrors.begin(), log.recentErrors.end(),
      [&](const HeldBackError& e) { return e.location == location && e.message == message; });
  if (same != log.recentErrors.end() && WithinMinute(same->lastWritten, utcNow())) {
    ++same->heldBack;
    return;
  }
  try {
    // A line that cannot be written would be reported through this very function, which
    // would drop that report: nothing more is done.
    if ((!log.recentErrors.empty() && !WriteHeldBackCounts(s, utcNow())) ||
        !WriteErrorLine(s, location, message)) {
      return;
    }
    // Only a line that reached the file holds back its repeats.
    std::erase_if(log.recentErrors, [&](const HeldBackError& e) {
      return e.location == location && e.message == message;
    });
    if (log.recentErrors.size() >= kMaxRecentErrors) {
      log.recentErrors.erase(log.recentErrors.begin());
    }
    log.recentErrors.push_back({location, message, utcNow(), 0});
  } catch (const Failure& failure) {
    log.reportingWriteFailure = true;
    LogError(s, QStringLiteral("Error Writing to Error Log"), QStringLiteral("File Error"),
             failure);
    log.reportingWriteFailure = false;
  }
}

void FlushHeldBackErrors(State& s) {
  try {
    WriteHeldBackCounts(s, Now(s).toUTC());
  } catch (const Failure&) {
    // Closing: there is nowhere left to report a log that cannot be written.
  }
}

void LogError(State& s, const QString& location, const QString& /*title*/, const Failure& failure) {
  WriteErrorLog(s, ErrorText(failure), location);
}

void DisplayMessage(State& s, const QString& message) {
  if (message.isEmpty()) {
    return;
  }
  const QDateTime now = Now(s);
  if (s.activityListener) {
    s.activityListener(now, message);
  }
  try {
    const QString row = ActivityStamp(now) + QStringLiteral(" - ") + message;
    const int limit = std::max<int>(s.MaxDisplay, 1);
    while (s.MessageRows.size() > limit - 1) {
      s.MessageRows.removeFirst();
    }
    s.MessageRows.append(row);
  } catch (const std::bad_alloc&) {
    LogError(s, QStringLiteral("Error Displaying Message "), QStringLiteral("Display Error"),
             Failure::OutOfMemory());
  }
  WriteActivityLog(s, message, QString());
}

}  // namespace zrn
