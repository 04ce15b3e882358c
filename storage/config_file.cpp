#include "storage/config_file.h"

#include <QFileInfo>
#include <QLatin1String>
#include <QStringList>
#include <algorithm>
#include <cmath>
#include <new>

#include "core/failure.h"
#include "core/numbers.h"
#include "storage/file_io.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kFileName = QStringLiteral("zrnconfig.ini");
const QString kDefaultAddress = QStringLiteral("127.0.0.1");

constexpr QLatin1String kServerAddress("Server IP Address");
constexpr QLatin1String kServerPort("Server IP Port");
constexpr QLatin1String kMaxLogFileSize("Maximum Log File Size");
constexpr QLatin1String kMaxDisplay("Maximum Display");
constexpr QLatin1String kAlarmRelay("Alarm Relay");
constexpr QLatin1String kDefaultView("Default View");
constexpr QLatin1String kProgramMode("Program Mode");
constexpr QLatin1String kOutputCount("Output Count");
constexpr QLatin1String kSection("[OUTPUT");
constexpr QLatin1String kOutput("Output");
constexpr QLatin1String kDisplayOptions("Display Options");
constexpr QLatin1String kCustomLabel("Custom Label");
constexpr QLatin1String kEventCount("Event Count");

// Nothing the program writes comes near this; a larger file is refused instead of loaded.
constexpr qint64 kMaxFileBytes = 16 * 1024 * 1024;

// The events file holds at most this many events in all; larger counts can only come from a
// damaged file and would size the schedules without bound.
constexpr long long kMaxTotalEvents = 32767;

bool IsBlank(QChar c) {
  return c == u' ' || c == u'\t';
}

bool IsLineEnd(QChar c) {
  return c == u'\r' || c == u'\n';
}

// Entries end at a comma or a line end; blank lines give none. A quoted entry runs to the
// next quote, and whatever follows that quote up to the separator is dropped.
QStringList SplitEntries(const QString& text) {
  QStringList entries;
  const qsizetype n = text.size();
  qsizetype pos = 0;
  bool afterComma = false;  // a comma promises an entry even if only blanks follow
  while (pos < n) {
    while (pos < n && IsBlank(text[pos])) {
      ++pos;
    }
    if (pos >= n) {
      break;
    }
    if (IsLineEnd(text[pos])) {
      if (afterComma) {
        entries << QString();
        afterComma = false;
      }
      if (text[pos] == u'\r' && pos + 1 < n && text[pos + 1] == u'\n') {
        ++pos;
      }
      ++pos;
      continue;
    }
    qsizetype end = pos;
    if (text[pos] == u'"') {
      const qsizetype close = text.indexOf(u'"', pos + 1);
      entries << text.mid(pos + 1, (close < 0 ? n : close) - pos - 1);
      end = close < 0 ? n : close + 1;
    }
    while (end < n && text[end] != u',' && !IsLineEnd(text[end])) {
      ++end;
    }
    if (text[pos] != u'"') {
      entries << text.mid(pos, end - pos);
    }
    afterComma = end < n && text[end] == u',';
    pos = afterComma ? end + 1 : end;
  }
  if (afterComma) {
    entries << QString();
  }
  return entries;
}

// The value starts one character after the key, where the equals sign stands.
QString Value(const QString& entry, QLatin1String key, qsizetype width = -1) {
  return entry.mid(key.size() + 1, width);
}

double Number(const QString& text) {
  return RoundHalfEven(LeadingNumber(text));
}

qint16 IntegerOf(const QString& text) {
  const double value = Number(text);
  if (!(std::fabs(value) < 1e18)) {  // also infinity from an overlong digit run
    throw Failure::Overflow();
  }
  return ToInteger(static_cast<long long>(value));
}

qint32 LongOf(const QString& text) {
  const double value = Number(text);
  if (!(value >= -2147483648.0 && value <= 2147483647.0)) {
    throw Failure::Overflow();
  }
  return static_cast<qint32>(value);
}

void ApplyDefaults(State& s) {
  OutputEntry first;
  first.Output = 1;
  s.Outputs.assign(1, first);
  // The table now holds one entry; a different count would point past it.
  s.OutputCount = 1;
  s.ServerPort = 1250;
  s.ServerAddress = kDefaultAddress;
  s.MaxLogFileSize = 5000;
  s.MaxDisplay = 100;
  s.AlarmRelay = kNone;
}

class EntryReader {
 public:
  // current always holds the entry being applied, so a failure can name it.
  EntryReader(State& s, QStringList entries, QString& current)
      : s_(s), entries_(std::move(entries)), current_(current) {
    for (const OutputEntry& entry : s_.Outputs) {
      totalEvents_ += std::max<qint16>(entry.EventCount, 0);
    }
  }

  void Run() {
    for (k_ = 0; k_ < entries_.size(); ++k_) {
      current_ = entries_[k_];
      Apply(entries_[k_]);
    }
  }

 private:
  void Apply(const QString& e) {
    if (e.startsWith(kServerAddress)) {
      const QString address = Value(e, kServerAddress, 25);
      s_.ServerAddress = address.isEmpty() ? kDefaultAddress : address;
    } else if (e.startsWith(kServerPort)) {
      const qint32 port = LongOf(Value(e, kServerPort, 5));
      s_.ServerPort = port <= 0 ? 1250 : port;
    } else if (e.startsWith(kMaxLogFileSize)) {
      // 0 switches rotation off, as Setup offers it.
      const qint32 size = LongOf(Value(e, kMaxLogFileSize, 5));
      s_.MaxLogFileSize = size < 0 ? 5000 : size;
    } else if (e.startsWith(kMaxDisplay)) {
      const qint16 lines = IntegerOf(Value(e, kMaxDisplay, 5));
      s_.MaxDisplay = lines <= 0 ? 125 : lines;
    } else if (e.startsWith(kAlarmRelay)) {
      const qint16 relay = IntegerOf(Value(e, kAlarmRelay, 5));
      s_.AlarmRelay = relay <= 0 ? kNone : relay;
    } else if (e.startsWith(kDefaultView)) {
      s_.DefaultViewLarge = Value(e, kDefaultView, 6) == QLatin1String("Large") ? 1 : 0;
    } else if (e.startsWith(kProgramMode)) {
      s_.ProgramMode = Value(e, kProgramMode, 6) == QLatin1String("Output") ? 0 : 1;
    } else if (e.startsWith(kOutputCount)) {
      const qint16 count = IntegerOf(Value(e, kOutputCount, 3));
      s_.OutputCount = count <= 0 ? 64 : count;
      s_.Outputs.assign(static_cast<size_t>(s_.OutputCount), OutputEntry{});
      totalEvents_ = 0;
    } else if (e.startsWith(kSection)) {
      ReadSection(e);
    }
  }

  void ReadSection(const QString& e) {
    const qsizetype close = e.indexOf(u']', kSection.size());
    const qint16 n = IntegerOf(e.mid(kSection.size(), close < 0 ? -1 : close - kSection.size()));
    if (n < 1 || n > s_.OutputCount) {
      throw Failure::SubscriptOutOfRange();
    }
    OutputEntry& entry = At(s_.Outputs, n - 1);

    // Four slots in a fixed order; an entry in the wrong slot is used up all the same.
    const QLatin1String fieldKeys[] = {kOutput, kDisplayOptions, kCustomLabel, kEventCount};
    for (const QLatin1String key : fieldKeys) {
      ++k_;
      if (k_ >= entries_.size()) {
        current_ = e;  // the section that ends too early
        throw Failure::InputPastEnd();
      }
      const QString& field = entries_[k_];
      current_ = field;
      if (!field.startsWith(key)) {
        continue;
      }
      if (key == kOutput) {
        const qint16 output = IntegerOf(Value(field, kOutput, 5));
        entry.Output = output <= 0 ? kNone : output;
      } else if (key == kDisplayOptions) {
        entry.DisplayOption = IntegerOf(Value(field, kDisplayOptions, 5));
      } else if (key == kCustomLabel) {
        // Kept whole: labels set by events are 12 characters with their trailing blanks.
        const QString label = Value(field, kCustomLabel);
        entry.CustomLabel = label.isEmpty() ? QStringLiteral("None") : label;
      } else {
        SetEventCount(entry, IntegerOf(Value(field, kEventCount, 5)));
      }
    }
  }

  void SetEventCount(OutputEntry& entry, qint16 count) {
    const long long total =
        totalEvents_ - std::max<qint16>(entry.EventCount, 0) + std::max<qint16>(count, 0);
    if (total > kMaxTotalEvents) {
      throw Failure::Overflow();
    }
    totalEvents_ = total;
    entry.EventCount = count;
    entry.Events.assign(count > 0 ? static_cast<size_t>(count) : 1, ScheduledEvent{});
  }

  State& s_;
  const QStringList entries_;
  QString& current_;
  qsizetype k_ = 0;
  long long totalEvents_ = 0;
};

void FinalChecks(State& s) {
  if (s.MaxDisplay == 0) {
    s.MaxDisplay = 100;
  }
  const size_t count =
      std::min(static_cast<size_t>(std::max<qint16>(s.OutputCount, 0)), s.Outputs.size());
  for (size_t i = 0; i < count; ++i) {
    s.Outputs[i].MonitoringEnabled = s.Outputs[i].Output != kNone;
  }
}

}  // namespace

bool ReadConfiguration(State& s, QString* problem) {
  const QString path = DataPath(s, kFileName);
  bool fileFound = false;
  QString failedEntry;
  Failure failure;
  const bool ok =
      Trap(s, QStringLiteral("Error Reading ini file"), QStringLiteral("File Error"), [&] {
        const QFileInfo info(path);
        if (!info.exists()) {
          ApplyDefaults(s);
          return;
        }
        fileFound = true;
        try {
          if (info.size() > kMaxFileBytes) {
            throw Failure::OutOfMemory();
          }
          EntryReader(s, SplitEntries(QString::fromLatin1(ReadFileBytes(path))), failedEntry).Run();
        } catch (const Failure& f) {
          failure = f;
          throw;
        }
      });
  if (!ok && fileFound) {
    const QString unreadable = UnreadableReason(path);
    // Out of the way, so the next start begins from the defaults and no later save
    // replaces the operator's file with the little that was read.
    const QString keptAs = SetAsideDamagedFile(s, kFileName, /*move=*/true);
    if (problem != nullptr) {
      const QString what =
          !unreadable.isEmpty() ? QStringLiteral("%1 is unreadable (%2)").arg(kFileName, unreadable)
          : failedEntry.isEmpty()
              ? QStringLiteral("%1 is damaged (%2)").arg(kFileName, failure.description)
              : QStringLiteral("%1 is damaged at \"%2\" (%3)")
                    .arg(kFileName, failedEntry, failure.description);
      const QString where =
          keptAs.isEmpty() ? QStringLiteral("it could not be set aside")
                           : QStringLiteral("set aside as %1").arg(QFileInfo(keptAs).fileName());
      *problem = QStringLiteral("Configuration not read: %1; %2").arg(what, where);
    }
  }
  // Whatever was read, the watched entries agree with their outputs.
  FinalChecks(s);
  return ok;
}

bool WriteConfiguration(State& s, QString* failure) {
  QString reason;
  try {
    QString text;
    auto line = [&text](const QString& content) {
      text += content;
      text += QStringLiteral("\r\n");
    };
    auto entry = [&line](QLatin1String key, const QString& value) {
      line(QString(key) + QLatin1Char('=') + value);
    };
    line(QStringLiteral("[CONFIGURATION]"));
    entry(kServerAddress, s.ServerAddress);
    entry(kServerPort, QString::number(s.ServerPort));
    entry(kMaxLogFileSize, QString::number(s.MaxLogFileSize));
    entry(kMaxDisplay, QString::number(s.MaxDisplay));
    entry(kAlarmRelay, QString::number(s.AlarmRelay));
    entry(kDefaultView,
          s.DefaultViewLarge == 1 ? QStringLiteral("Large") : QStringLiteral("Normal"));
    entry(kProgramMode, s.ProgramMode == 0 ? QStringLiteral("Output") : QStringLiteral("Show"));
    entry(kOutputCount, QString::number(s.OutputCount));
    for (int n = 1; n <= s.OutputCount; ++n) {
      const OutputEntry& output = At(s.Outputs, n - 1);
      line(QString(kSection) + QString::number(n) + QLatin1Char(']'));
      entry(kOutput, QString::number(output.Output));
      entry(kDisplayOptions, QString::number(output.DisplayOption));
      entry(kCustomLabel, output.CustomLabel);
      entry(kEventCount, QString::number(output.EventCount));
    }
    SaveFileAtomically(DataPath(s, kFileName), text.toLatin1(), &reason);
    return true;
  } catch (const Failure& f) {
    if (reason.isEmpty()) {
      reason = f.description;
    }
  } catch (const std::bad_alloc&) {
    reason = Failure::OutOfMemory().description;
  }
  if (failure != nullptr) {
    *failure = SaveFailureText(DataPath(s, kFileName), reason);
  }
  return false;
}

bool NormalizeServerAddress(const QString& address, QString* normalized) {
  QStringList parts;
  qsizetype from = 0;
  for (int dots = 0; dots < 3; ++dots) {
    const qsizetype dot = address.indexOf(u'.', from);
    if (dot < 0) {
      return false;
    }
    parts << address.mid(from, dot - from);
    from = dot + 1;
  }
  if (from >= address.size()) {
    return false;
  }
  parts << address.mid(from);

  QStringList numbers;
  for (const QString& part : parts) {
    numbers << QString::number(static_cast<int>(std::clamp(Number(part), 0.0, 255.0)));
  }
  if (normalized != nullptr) {
    *normalized = numbers.join(u'.');
  }
  return true;
}

}  // namespace zrn
