#include "storage/shows_file.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "core/failure.h"
#include "storage/file_io.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kShowsFile = QStringLiteral("ZRNShows.dat");
constexpr int kVersion = 1;
constexpr int kTimeWidth = 8;
constexpr int kDateWidth = 10;
constexpr int kMaxNameLength = 255;
constexpr int kExportNameWidth = 25;

// A group count announces more entries than the file still holds: fail before allocating.
void NeedBytes(const ByteReader& in, long long count, int entrySize) {
  if (count * entrySize > in.Remaining()) {
    throw Failure::InputPastEnd();
  }
}

// A counted group of n entries; an empty group still gets one element, holding 0.
int GroupSize(int count) {
  return count < 1 ? 1 : count;
}

ShowChannel StoredChannel(qint16 channel) {
  ShowChannel entry;
  entry.Channel = channel;
  return entry;
}

ShowRecord ParseShow(ByteReader& in) {
  ShowRecord show;
  show.Name = in.Text(in.U8());
  show.StartTime = in.Text(kTimeWidth);
  show.EndTime = in.Text(kTimeWidth);
  show.StartDate = in.Text(kDateWidth);
  show.EndDate = in.Text(kDateWidth);
  show.Days = in.U8();
  in.U8();  // activity when saved; every show starts inactive
  show.DownlinkSource = in.I16();

  const int outputs = in.I16();
  NeedBytes(in, outputs, 6);
  show.OutputCount = static_cast<qint16>(std::max(outputs, 0));
  show.OutputLeft.assign(GroupSize(outputs), 0);
  show.OutputRight.assign(GroupSize(outputs), 0);
  show.OutputCue.assign(GroupSize(outputs), 0);
  for (int j = 0; j < outputs; ++j) {
    show.OutputLeft[j] = in.I16();
    show.OutputRight[j] = in.I16();
    show.OutputCue[j] = in.I16();
  }

  const int studios = in.I16();
  NeedBytes(in, studios, 6);
  show.StudioCount = static_cast<qint16>(std::max(studios, 0));
  show.StudioLeft.assign(GroupSize(studios), StoredChannel(0));
  show.StudioRight.assign(GroupSize(studios), StoredChannel(0));
  show.StudioCue.assign(GroupSize(studios), StoredChannel(0));
  for (int j = 0; j < studios; ++j) {
    show.StudioLeft[j] = StoredChannel(in.I16());
    show.StudioRight[j] = StoredChannel(in.I16());
    show.StudioCue[j] = StoredChannel(in.I16());
  }

  const int windows = in.I16();
  NeedBytes(in, windows, 2 * kTimeWidth);
  show.IgnoreCount = static_cast<qint16>(std::max(windows, 0));
  show.IgnoreWindows.assign(GroupSize(windows), IgnoreWindow{});
  for (int j = 0; j < windows; ++j) {
    show.IgnoreWindows[j].StartTime = in.Text(kTimeWidth);
    show.IgnoreWindows[j].EndTime = in.Text(kTimeWidth);
  }

  show.DetectLevel = in.I16();
  show.DetectTime1 = in.I16();
  show.DetectTime2 = in.I16();
  return show;
}

// A text that would shift every later field of the file when read back.
void CheckWidth(const QString& text, int width, int show, const char* field) {
  if (text.size() != width) {
    throw Failure{
        Failure::InvalidArgument().number,
        QStringLiteral("Show %1 %2 \"%3\" is not %4 characters")
            .arg(QString::number(show), QLatin1String(field), text, QString::number(width))};
  }
}

void WriteShow(ByteWriter& out, const ShowRecord& show, int index) {
  if (show.Name.size() > kMaxNameLength) {
    throw Failure{Failure::Overflow().number,
                  QStringLiteral("Show %1 name is longer than 255 characters").arg(index)};
  }
  CheckWidth(show.StartTime, kTimeWidth, index, "start time");
  CheckWidth(show.EndTime, kTimeWidth, index, "end time");
  CheckWidth(show.StartDate, kDateWidth, index, "start date");
  CheckWidth(show.EndDate, kDateWidth, index, "end date");

  out.U8(static_cast<int>(show.Name.size()));
  out.RawText(show.Name);
  out.Text(show.StartTime, kTimeWidth);
  out.Text(show.EndTime, kTimeWidth);
  out.Text(show.StartDate, kDateWidth);
  out.Text(show.EndDate, kDateWidth);
  out.U8(show.Days & 0xFF);
  out.U8(show.ActivityState);
  out.I16(show.DownlinkSource);

  out.I16(show.OutputCount);
  for (int j = 0; j < show.OutputCount; ++j) {
    out.I16(At(show.OutputLeft, j));
    out.I16(At(show.OutputRight, j));
    out.I16(At(show.OutputCue, j));
  }
  out.I16(show.StudioCount);
  for (int j = 0; j < show.StudioCount; ++j) {
    out.I16(At(show.StudioLeft, j).Channel);
    out.I16(At(show.StudioRight, j).Channel);
    out.I16(At(show.StudioCue, j).Channel);
  }
  out.I16(show.IgnoreCount);
  for (int j = 0; j < show.IgnoreCount; ++j) {
    const IgnoreWindow& window = At(show.IgnoreWindows, j);
    CheckWidth(window.StartTime, kTimeWidth, index, "ignore start time");
    CheckWidth(window.EndTime, kTimeWidth, index, "ignore end time");
    out.Text(window.StartTime, kTimeWidth);
    out.Text(window.EndTime, kTimeWidth);
  }
  out.I16(show.DetectLevel);
  out.I16(show.DetectTime1);
  out.I16(show.DetectTime2);
}

int StoredShowCount(const State& s) {
  return std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()));
}

}  // namespace

ShowRecord MakeNewShow() {
  ShowRecord show;
  show.Name = QStringLiteral("New Show");
  show.StartTime = QStringLiteral("24:00:00");
  show.EndTime = QStringLiteral("24:00:00");
  show.StartDate = QStringLiteral("01/01/2025");
  show.EndDate = QStringLiteral("12/31/2025");
  show.Days = 0;
  show.DownlinkSource = kNone;
  show.DownlinkMonitor = kNone;
  show.OutputCount = 1;
  show.OutputLeft = {kNone};
  show.OutputRight = {kNone};
  show.OutputCue = {kNone};
  show.StudioCount = 1;
  show.StudioLeft = {ShowChannel{}};
  show.StudioRight = {ShowChannel{}};
  show.StudioCue = {ShowChannel{}};
  show.IgnoreCount = 0;
  show.IgnoreWindows = std::vector<IgnoreWindow>(1);
  show.DetectTime1 = 8;
  show.DetectTime2 = 5;
  show.DetectLevel = 824;
  return show;
}

void NewShow(State& s, int index) {
  Trap(s, QStringLiteral("Error Adding Show"), QStringLiteral("List Error"),
       [&] { At(s.EditShows, index) = MakeNewShow(); });
}

bool ReadShows(State& s) {
  const QString path = DataPath(s, kShowsFile);
  if (!QFileInfo::exists(path)) {
    s.Shows = {MakeNewShow()};
    s.ShowCount = 1;
    return SaveShows(s);
  }
  std::vector<ShowRecord> shows;
  std::vector<SilenceOut> silenceOuts;
  int showCount = 0;
  const bool ok = Trap(s, QStringLiteral("Error Reading shows"), QStringLiteral("File Error"), [&] {
    const QByteArray bytes = ReadFileBytes(path);
    ByteReader in(bytes);
    in.I16();  // version, never checked
    showCount = std::max<int>(in.I16(), 0);
    // Grows with what is actually read, so a count larger than the file costs nothing.
    for (int k = 0; k < showCount; ++k) {
      shows.push_back(ParseShow(in));
    }
    if (shows.empty()) {
      shows.emplace_back();
    }
    const int outs = in.I16();
    for (int k = 0; k < outs; ++k) {
      SilenceOut entry;
      entry.Output = in.I16();
      silenceOuts.push_back(entry);
    }
  });
  if (!ok) {
    SetAsideDamagedFile(s, kShowsFile, /*move=*/false);
    return false;
  }
  s.Shows = std::move(shows);
  s.ShowCount = static_cast<qint16>(showCount);
  s.SilenceOuts = std::move(silenceOuts);
  s.SilenceOutCount = static_cast<qint16>(s.SilenceOuts.size());
  return true;
}

bool SaveShows(State& s, QString* failure) {
  QString reason;
  const bool saved =
      Trap(s, QStringLiteral("Error Saving Shows"), QStringLiteral("File Error"), [&] {
        const int shows = StoredShowCount(s);
        const int outs =
            std::clamp<int>(s.SilenceOutCount, 0, static_cast<int>(s.SilenceOuts.size()));
        ByteWriter out;
        out.I16(kVersion);
        out.I16(shows);
        for (int k = 0; k < shows; ++k) {
          WriteShow(out, s.Shows[k], k);
        }
        out.I16(outs);
        for (int k = 0; k < outs; ++k) {
          out.I16(s.SilenceOuts[k].Output);
        }
        SaveFileAtomically(DataPath(s, kShowsFile), out.Bytes(), &reason);
      });
  if (!saved && failure != nullptr) {
    *failure = SaveFailureText(DataPath(s, kShowsFile), reason);
  }
  return saved;
}

bool PrintShows(State& s) {
  return Trap(s, QStringLiteral("Error Saving Shows to text file"), QStringLiteral("File Error"),
              [&] {
                QByteArray text;
                for (int k = 0; k < StoredShowCount(s); ++k) {
                  const ShowRecord& show = s.Shows[k];
                  // A longer name is written whole rather than cutting the list short.
                  const QString line = show.Name.leftJustified(kExportNameWidth) + show.StartTime +
                                       QStringLiteral(" - ") + show.EndTime;
                  text += line.toLatin1() + "\r\n";
                }
                const QString name =
                    QStringLiteral("ZRNShows") + FileStamp(Now(s)) + QStringLiteral(".txt");
                SaveFileAtomically(DataPath(s, name), text);
              });
}

}  // namespace zrn
