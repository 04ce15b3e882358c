#include "storage/events_file.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "core/failure.h"
#include "storage/file_io.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kEventsFile = QStringLiteral("ZRNEvents.dat");
constexpr int kVersion = 1;
constexpr int kTimeWidth = 8;
constexpr int kLabelWidth = 12;

struct StoredEvent {
  int outputIndex = 0;
  ScheduledEvent event;
};

// The records in file order; the whole file is read before anything is distributed.
std::vector<StoredEvent> ParseEvents(const QByteArray& bytes) {
  ByteReader in(bytes);
  in.I16();  // version, never checked
  const int count = in.I16();
  // The list grows with what is actually read, so a count larger than the file costs nothing.
  std::vector<StoredEvent> stored;
  for (int k = 0; k < count; ++k) {
    StoredEvent record;
    record.outputIndex = in.U8();
    record.event.Time = in.Text(kTimeWidth);
    record.event.Days = in.U8();
    record.event.Active = in.U8() != 0;
    record.event.DisplayOption = in.U8();
    record.event.Connect = in.U8() != 0;
    record.event.Source = in.I16();
    record.event.Label = in.Text(kLabelWidth);
    stored.push_back(std::move(record));
  }
  return stored;
}

// Appends each record to its output's schedule; an output beyond the table stops the reading
// with the records before it already in place.
void Distribute(State& s, const std::vector<StoredEvent>& stored, std::vector<int>& counters) {
  for (const StoredEvent& record : stored) {
    OutputEntry& output = At(s.Outputs, record.outputIndex);
    int& counter = At(counters, record.outputIndex);
    const auto needed = static_cast<std::size_t>(counter) + 1;
    if (output.Events.size() < needed) {
      output.Events.resize(needed);
    }
    output.Events[needed - 1] = record.event;
    ++counter;
  }
}

// Ascending time of day: the texts are zero-padded 24-hour times, so code order is time order.
// Equal times keep their file order; a full file (32767 events) sorts in milliseconds.
void SortByTime(OutputEntry& output) {
  const auto count = std::clamp<std::ptrdiff_t>(output.EventCount, 0,
                                                static_cast<std::ptrdiff_t>(output.Events.size()));
  std::stable_sort(output.Events.begin(), output.Events.begin() + count,
                   [](const ScheduledEvent& a, const ScheduledEvent& b) {
                     return QString::compare(a.Time, b.Time, Qt::CaseSensitive) < 0;
                   });
}

// The file, not the configuration, decides how many events each output has.
void SettleCounts(State& s, const std::vector<int>& counters) {
  for (std::size_t o = 0; o < s.Outputs.size(); ++o) {
    OutputEntry& output = s.Outputs[o];
    if (counters[o] == 0) {
      if (output.Events.empty()) {
        output.Events.resize(1);
      }
      output.Events[0].Source = kNone;
    }
    if (counters[o] != output.EventCount) {
      output.EventCount = static_cast<qint16>(counters[o]);
    }
    SortByTime(output);
  }
}

// Why an event cannot be stored in a 27-byte record, or an empty text when it can.
QString Unstorable(int outputIndex, const ScheduledEvent& event) {
  if (outputIndex > 255) {
    return QStringLiteral("output index %1 does not fit in a byte").arg(outputIndex);
  }
  if (event.Time.size() != kTimeWidth) {
    return QStringLiteral("time \"%1\" is not 8 characters").arg(event.Time);
  }
  if (event.Label.size() > kLabelWidth) {
    return QStringLiteral("label \"%1\" is longer than 12 characters").arg(event.Label);
  }
  if (event.Days < 0 || event.Days > 255) {
    return QStringLiteral("days %1 is out of 0 to 255").arg(event.Days);
  }
  if (event.DisplayOption < 0 || event.DisplayOption > 255) {
    return QStringLiteral("display option %1 is out of 0 to 255").arg(event.DisplayOption);
  }
  return QString();
}

void WriteRecord(ByteWriter& out, int outputIndex, const ScheduledEvent& event) {
  out.U8(outputIndex);
  out.Text(event.Time, kTimeWidth);
  out.U8(event.Days);
  out.U8(event.Active ? 255 : 0);
  out.U8(event.DisplayOption);
  out.U8(event.Connect ? 255 : 0);
  out.I16(event.Source);
  out.Text(event.Label, kLabelWidth);
}

}  // namespace

bool ReadEvents(State& s) {
  std::vector<int> counters(s.Outputs.size(), 0);
  const QString path = DataPath(s, kEventsFile);
  const bool ok =
      Trap(s, QStringLiteral("Error Reading Events"), QStringLiteral("File Error"), [&] {
        if (!QFileInfo::exists(path)) {
          return;  // no schedule saved yet: every output ends with no events
        }
        Distribute(s, ParseEvents(ReadFileBytes(path)), counters);
      });
  if (!ok) {
    SetAsideDamagedFile(s, kEventsFile, /*move=*/false);
    return false;
  }
  SettleCounts(s, counters);
  return true;
}

bool SaveEvents(State& s, QString* failure) {
  QString reason;
  const bool saved =
      Trap(s, QStringLiteral("Error Saving Events"), QStringLiteral("File Error"), [&] {
        const int outputs = std::clamp<int>(s.PanelsLoaded, 0, static_cast<int>(s.Outputs.size()));
        ByteWriter records;
        int written = 0;
        for (int o = 0; o < outputs; ++o) {
          const OutputEntry& output = s.Outputs[o];
          const int events =
              std::clamp<int>(output.EventCount, 0, static_cast<int>(output.Events.size()));
          for (int e = 0; e < events; ++e) {
            const ScheduledEvent& event = output.Events[e];
            const QString reason = Unstorable(o, event);
            if (!reason.isEmpty()) {
              // One bad event must not cost the rest of the schedule.
              WriteErrorLog(
                  s,
                  QStringLiteral("Event %1 of output %2 not saved: %3").arg(e).arg(o).arg(reason),
                  QStringLiteral("Error Saving Events"));
              continue;
            }
            WriteRecord(records, o, event);
            ++written;
          }
        }
        ByteWriter file;
        file.I16(kVersion);
        file.I16(written);
        SaveFileAtomically(DataPath(s, kEventsFile), file.Bytes() + records.Bytes(), &reason);
      });
  if (!saved && failure != nullptr) {
    *failure = SaveFailureText(DataPath(s, kEventsFile), reason);
  }
  return saved;
}

}  // namespace zrn
