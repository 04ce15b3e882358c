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

void AppendLine(const QString& path, const QString& line) {
  AppendBytes(path, Lines({line}));
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

void RotateIfFull(State& s, const QString& base) {
  if (s.MaxLogFileSize <= 0) {
    return;
  }
  const QFileInfo info(DataPath(s, base + QStringLiteral(".txt")));
  if (info.exists() && info.size() >= LogLimit(s)) {
    Rotate(s, base);
  }
}

void WriteErrorLine(State& s, const QString& location, const QString& message) {
  const QString stamp = GeneralDateTime(Now(s));
  QString line = stamp.leftJustified(24) + location;
  if (line.size() < 60) {
    line = line.leftJustified(60);
  }
  line += message;

  RotateIfFull(s, kErrorLog);
  const QString path = DataPath(s, kErrorLog + QStringLiteral(".txt"));
  if (!QFileInfo::exists(path)) {
    CreateErrorLog(s);
  }
  AppendLine(path, line);
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
  // The formats are worked out once per locale: every error line needs them.
  struct Formats {
    QString localeName, date, time;
  };
  static Formats cached;
  const QLocale locale;
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
  return locale.toString(when.date(), cached.date) + QLatin1Char(' ') +
         locale.toString(when.time(), cached.time);
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

void CreateErrorLog(State& s) {
  QStringList lines = HeaderTop();
  lines << QStringLiteral("ZRN Pennaro Error Logfile") << QString()
        << QStringLiteral(
               " DATE     TIME           LOCATION                      MESSAGE DESCRIPTION")
        << kHyphens;
  // A failure here surfaces when the line itself is appended.
  try {
    CreateLog(DataPath(s, kErrorLog + QStringLiteral(".txt")), lines);
  } catch (const Failure&) {
  }
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
// the lines whose minute is over.
void WriteHeldBackCounts(State& s, const QDateTime& now) {
  std::vector<HeldBackError>& recent = s.logs.recentErrors;
  for (HeldBackError& e : recent) {
    if (e.heldBack > 0) {
      const int held = std::exchange(e.heldBack, 0);
      WriteErrorLine(s, e.location, e.message + QStringLiteral(" (repeated %1 times)").arg(held));
    }
  }
  std::erase_if(recent, [&](const HeldBackError& e) { return !WithinMinute(e.lastWritten, now); });
}

}  // namespace

void WriteErrorLog(State& s, const QString& message, const QString& location) {
  LogState& log = s.logs;
  // A failed write is reported through this very function; that report gets no attempt of
  // its own, so a read-only folder or a full disk costs one attempt per message.
  if (log.reportingWriteFailure) {
    return;
  }
  const QDateTime now = Now(s);
  auto same = std::find_if(
      log.recentErrors.begin(), log.recentErrors.end(),
      [&](const HeldBackError& e) { return e.location == location && e.message == message; });
  if (same != log.recentErrors.end() && WithinMinute(same->lastWritten, now)) {
    ++same->heldBack;
    return;
  }
  try {
    WriteHeldBackCounts(s, now);
    WriteErrorLine(s, location, message);
    // Only a line that reached the file holds back its repeats.
    std::erase_if(log.recentErrors, [&](const HeldBackError& e) {
      return e.location == location && e.message == message;
    });
    if (log.recentErrors.size() >= kMaxRecentErrors) {
      log.recentErrors.erase(log.recentErrors.begin());
    }
    log.recentErrors.push_back({location, message, now, 0});
  } catch (const Failure& failure) {
    log.reportingWriteFailure = true;
    LogError(s, QStringLiteral("Error Writing to Error Log"), QStringLiteral("File Error"),
             failure);
    log.reportingWriteFailure = false;
  }
}

void FlushHeldBackErrors(State& s) {
  try {
    WriteHeldBackCounts(s, Now(s));
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
