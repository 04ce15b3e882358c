#include <ranges>
#include <tuple>

#include "storage/events_file.h"
#include "storage/shows_file.h"
#include "storage_fixture.h"

namespace zrn {
namespace {

const QString kEventsFile = QStringLiteral("ZRNEvents.dat");
const QString kShowsFile = QStringLiteral("ZRNShows.dat");

QByteArray Hex(const char* hex) {
  return QByteArray::fromHex(hex);
}

ScheduledEvent Event(const QString& time, int days = 31, bool active = true, int display = 0,
                     bool connect = false, int source = kNone, const QString& label = {}) {
  return {time,    active, static_cast<qint16>(display), static_cast<qint16>(days),
          connect, label,  static_cast<qint16>(source)};
}

// An output's events, every field of each, so a whole schedule compares at once.
using Stored = std::tuple<std::string, int, bool, int, bool, int, std::string>;
std::vector<Stored> Schedule(const OutputEntry& output) {
  std::vector<Stored> out;
  for (const ScheduledEvent& e : output.Events | std::views::take(output.EventCount)) {
    out.emplace_back(e.Time.toStdString(), e.Days, e.Active, e.DisplayOption, e.Connect, e.Source,
                     e.Label.toStdString());
  }
  return out;
}

class DataFiles : public test::StorageTest {
 protected:
  void UseOutputs(int count) {
    s.Outputs.assign(count, OutputEntry{});
    s.PanelsLoaded = static_cast<qint16>(count);
  }
  void SetEvents(int output, std::vector<ScheduledEvent> events) {
    s.Outputs[output].EventCount = static_cast<qint16>(events.size());
    events.emplace_back();  // the spare element a schedule keeps
    s.Outputs[output].Events = std::move(events);
  }
};

TEST_F(DataFiles, EventsWorkedExampleFlagsSortingAndCountsFromTheFile) {
  SetEvents(0, {Event("06:30:00")});
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kEventsFile), Hex("01000100") + QByteArray(1, '\0') + "06:30:00" +
                                      Hex("1FFF0000FF3F") + QByteArray(12, ' '));

  SetEvents(0, {});
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kEventsFile), Hex("01000000"));

  // Any flag not zero reads true and is written back as 255.
  WriteAll(kEventsFile, Hex("01000100") + QByteArray(1, '\0') + "07:00:00" + Hex("010102070500") +
                            "Breakfast   ");
  ASSERT_TRUE(ReadEvents(s));
  // Trailing blanks of the label are kept.
  EXPECT_EQ(Schedule(s.Outputs[0]),
            (std::vector<Stored>{{"07:00:00", 1, true, 2, true, 5, "Breakfast   "}}));
  ASSERT_TRUE(SaveEvents(s));
  EXPECT_EQ(ReadAll(kEventsFile).mid(4 + 9, 6), Hex("01FF02FF0500"));

  // Each output's events come back sorted by time, equal times in file order, with every field
  // and the label padded to 12; the file, not the configuration, decides counts and panels.
  UseOutputs(3);
  SetEvents(0, {Event("12:00:00", 127, false, 1, true, 256, QStringLiteral("Caf\u00e9 Matin")),
                Event("08:00:00", 2, true, 0, false, kNone, "A"), Event("00:00:00"),
                Event("08:00:00", 2, true, 0, false, kNone, "B")});
  SetEvents(1, {Event("10:00:00")});
  ASSERT_TRUE(SaveEvents(s));
  s.PanelsLoaded = 1;
  s.Outputs[1].EventCount = 3;
  SetEvents(2, {Event("01:00:00", 1, true, 0, true, 44)});
  ASSERT_TRUE(ReadEvents(s));
  EXPECT_EQ(Schedule(s.Outputs[0]),
            (std::vector<Stored>{{"00:00:00", 31, true, 0, false, kNone, std::string(12, ' ')},
                                 {"08:00:00", 2, true, 0, false, kNone, "A           "},
                                 {"08:00:00", 2, true, 0, false, kNone, "B           "},
                                 {"12:00:00", 127, false, 1, true, 256, "Caf\u00e9 Matin  "}}));
  EXPECT_EQ(
      std::tuple(s.Outputs[1].EventCount, s.Outputs[2].EventCount, s.Outputs[2].Events[0].Source),
      std::tuple(1, 0, kNone))
      << "an output without events has no route";
}

// Every cut of a good file is an error, and so is a count promising records that are not there
// or an output beyond the table (randomly damaged files are the fuzz target's).
TEST_F(DataFiles, EventsEveryCutOfAGoodFileIsAnErrorAndCountsAreNeverTrusted) {
  UseOutputs(2);
  SetEvents(0, {Event("06:30:00"), Event("18:00:00", 96, false, 2, true, 7, "Late")});
  SetEvents(1, {Event("12:00:00")});
  ASSERT_TRUE(SaveEvents(s));
  const QByteArray whole = ReadAll(kEventsFile);
  QList<QByteArray> damaged{Hex("0100307500000000000000")};  // 30000 records
  for (int length = 0; length < whole.size(); ++length) {
    damaged << whole.left(length);
  }
  for (const QByteArray& file : damaged) {
    ForgetErrors(kEventsFile);
    WriteAll(kEventsFile, file);
    EXPECT_FALSE(ReadEvents(s)) << file.size();
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading Events"),
                             QStringLiteral("Error #  62 - Input past end of file")))
        << file.size();
  }

  // An output beyond the table stops the reading; what was given out stays, the file is set aside.
  ForgetErrors(kEventsFile);
  WriteAll(kEventsFile, whole);
  UseOutputs(1);
  s.Outputs[0].EventCount = 4;
  EXPECT_FALSE(ReadEvents(s));
  EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading Events"),
                           QStringLiteral("Error #  9 - Subscript out of range")));
  EXPECT_EQ(std::tuple(s.Outputs[0].Events[0].Time, s.Outputs[0].EventCount, ReadAll(kEventsFile),
                       Files().filter(QStringLiteral("ZRNEvents.dat.bad-")).size()),
            std::tuple(QStringLiteral("06:30:00"), 4, whole, 1));

  ForgetErrors(kEventsFile);
  WriteAll(kEventsFile, Hex("0100FFFF"));
  EXPECT_TRUE(ReadEvents(s)) << "a negative count reads no records";
  EXPECT_EQ(s.Outputs[0].EventCount, 0);
}

// Saving stays within the tables: of too high a count or too many panels, what there is is saved.
TEST_F(DataFiles, EventsUnstorableEventsAreSkippedAndLogged) {
  UseOutputs(258);
  s.PanelsLoaded = 300;
  s.Outputs[1].Events = {Event("05:00:00"), Event("06:00:00")};
  s.Outputs[1].EventCount = 9;
  SetEvents(0, {Event("06:00:00"), Event("6:30"),
                Event("07:00:00", 31, true, 2, false, kNone, QStringLiteral("Thirteen chrs")),
                Event("08:00:00", 300), Event("09:00:00", 31, true, -1), Event("10:00:00")});
  SetEvents(256, {Event("11:00:00")});
  SetEvents(257, {Event("11:00:00")});
  ASSERT_TRUE(SaveEvents(s));

  // The count is what was written.
  const QByteArray saved = ReadAll(kEventsFile);
  EXPECT_EQ(saved.left(4) + saved.mid(4 + 27, 27),
            Hex("01000400") + Hex("00") + "10:00:00" + Hex("1FFF0000FF3F") + QByteArray(12, ' '));

  for (const char* text :
       {"Event 1 of output 0 not saved: time \"6:30\"", "Event 2 of output 0 not saved: label",
        "Event 3 of output 0 not saved: days 300",
        "Event 4 of output 0 not saved: display option -1",
        "Event 0 of output 256 not saved: output index 256", "Event 0 of output 257 not saved"}) {
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Saving Events"), QString::fromUtf8(text)))
        << text;
  }
}

// The file a first start writes: one new show and no silence outputs.
QByteArray NewShowFile() {
  return Hex("01000100") + Hex("08") + "New Show" + "24:00:0024:00:00" + "01/01/202512/31/2025" +
         Hex("0000FF3F") + Hex("0100FF3FFF3FFF3F") + Hex("0100FF3FFF3FFF3F") + Hex("0000") +
         Hex("380308000500") + Hex("0000");
}

// Two shows, the second with empty and negative group counts, and two silence outputs.
QByteArray TwoShowFile() {
  return Hex("01000200") + Hex("0D") + "Morning Drive" + "06:00:0010:00:00" +
         "03/01/202611/30/2026" + Hex("1F010500") + Hex("020001000200030004000500FF3F") +
         Hex("01000A000B00FF3F") + Hex("0100") + "07:00:0007:05:00" + Hex("D2020A000300") +
         Hex("00") + "24:00:0024:00:00" + "01/01/202512/31/2025" + Hex("0000FF3F") +
         Hex("00000000FFFF") + Hex("380308000500") + Hex("020028002900");
}

TEST_F(DataFiles, ShowsHandBuiltFileReadsEveryFieldAndSavesBackTheSame) {
  WriteAll(kShowsFile, TwoShowFile());
  ASSERT_TRUE(ReadShows(s));
  ASSERT_EQ(s.ShowCount, 2);
  const ShowRecord& a = s.Shows[0];
  // The stored activity is ignored.
  EXPECT_EQ(std::tuple(a.Name + a.StartTime + a.EndTime + a.StartDate + a.EndDate, a.Days,
                       a.ActivityState, a.DownlinkSource, a.DownlinkMonitor, a.OutputCount,
                       a.StudioCount, a.IgnoreCount, a.DetectLevel, a.DetectTime1, a.DetectTime2),
            std::tuple(QStringLiteral("Morning Drive06:00:0010:00:0003/01/202611/30/2026"), 31, 0,
                       5, kNone, 2, 1, 1, 722, 10, 3));
  EXPECT_EQ(std::tuple(a.OutputLeft, a.OutputRight, a.OutputCue, a.StudioLeft[0],
                       a.StudioRight[0].Channel, a.StudioCue[0].Channel, a.IgnoreWindows[0]),
            std::tuple(std::vector<qint16>{1, 4}, std::vector<qint16>{2, 5},
                       std::vector<qint16>{3, kNone}, ShowChannel{10, kNone}, 11, kNone,
                       IgnoreWindow{"07:00:00", "07:05:00"}));

  // An empty group holds one element of 0; a negative count reads nothing.
  const ShowRecord& b = s.Shows[1];
  EXPECT_EQ(std::tuple(b.Name, b.OutputCount, b.OutputLeft, b.StudioCue.size(),
                       b.StudioCue[0].Channel, b.IgnoreCount, b.IgnoreWindows.size(),
                       s.SilenceOutCount, s.SilenceOuts[1].Output, s.SilenceOuts[1].Source),
            std::tuple(QString(), 0, std::vector<qint16>{0}, 1u, 0, 0, 1u, 2, 41, kNone));

  // Saved and read again every show comes back, non-ASCII too; the activity is written, never read.
  s.Shows[0].Name = QStringLiteral("Fr\u00fch am Morgen");
  s.Shows[0].ActivityState = 1;
  ASSERT_TRUE(SaveShows(s));
  EXPECT_EQ(ReadAll(kShowsFile).mid(5, 14), QByteArray("Fr\xfch am Morgen"));
  State back = Fresh();
  ASSERT_TRUE(ReadShows(back));
  s.Shows[0].ActivityState = 0;
  EXPECT_EQ(std::tuple(back.Shows, back.SilenceOuts[1].Output), std::tuple(s.Shows, 41));
}

// Every cut of a good file is an error that leaves the tables and keeps a copy of the file, and
// so is a count promising more than is there (randomly damaged files are the fuzz target's).
TEST_F(DataFiles, ShowsEveryCutOfAGoodFileIsAnErrorThatLeavesTheTables) {
  const QByteArray whole = TwoShowFile();
  // 30000 shows; one show announcing 30000 outputs with two bytes left.
  QList<QByteArray> damaged{Hex("01003075000000000000"),
                            NewShowFile().left(57).replace(53, 2, Hex("3075"))};
  for (int length = 0; length < whole.size(); ++length) {
    damaged << whole.left(length);
  }
  for (const QByteArray& file : damaged) {
    ForgetErrors(kShowsFile);
    s.Shows.assign(2, MakeNewShow());
    s.Shows[1].Name = QStringLiteral("Kept");
    s.ShowCount = 2;
    s.SilenceOuts.assign(1, SilenceOut{.Output = 77});
    s.SilenceOutCount = 1;
    WriteAll(kShowsFile, file);
    EXPECT_FALSE(ReadShows(s)) << file.size();
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading shows"),
                             QStringLiteral("Error #  62 - Input past end of file")))
        << file.size();
    EXPECT_EQ(std::tuple(s.ShowCount, s.Shows.size(), s.Shows[1].Name, s.SilenceOuts.size(),
                         s.SilenceOuts[0].Output),
              std::tuple(2, 2u, QStringLiteral("Kept"), 1u, 77));
    const QStringList copies = Files().filter(QStringLiteral("ZRNShows.dat.bad-"));
    EXPECT_EQ(std::tuple(ReadAll(kShowsFile), copies.size(), ReadAll(copies.value(0))),
              std::tuple(file, 1, file));
  }

  // No shows at all: the count says so and one spare record remains.
  WriteAll(kShowsFile, Hex("010000000000"));
  ASSERT_TRUE(ReadShows(s));
  EXPECT_EQ(std::tuple(s.ShowCount, s.Shows.size()), std::tuple(0, 1u));
}

TEST_F(DataFiles, ShowsFirstStartUnreadableShowsAndTheTextExport) {
  ASSERT_TRUE(ReadShows(s));
  ASSERT_EQ(std::tuple(s.ShowCount, ReadAll(kShowsFile)), std::tuple(1, NewShowFile()))
      << "a first start writes one new show";
  const struct {
    void (*edit)(ShowRecord&);
    const char* error;
  } cases[] = {
      {[](ShowRecord& r) { r.StartTime = "6:00"; },
       "Show 0 start time \"6:00\" is not 8 characters"},
      {[](ShowRecord& r) { r.EndDate = "1/1/2026"; }, "end date \"1/1/2026\""},
      {[](ShowRecord& r) { r.Name = QString(256, 'x'); }, "longer than 255 characters"},
      {[](ShowRecord& r) { r.OutputCount = 3; }, "#  9"},
      {[](ShowRecord& r) {
         r.IgnoreCount = 1;
         r.IgnoreWindows[0] = {"01:00:00", ""};
       },
       "ignore end time"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.error);
    s.Shows = {MakeNewShow()};
    c.edit(s.Shows[0]);
    EXPECT_FALSE(SaveShows(s));
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Saving Shows"), QString::fromUtf8(c.error)));
    EXPECT_EQ(ReadAll(kShowsFile), NewShowFile());
  }

  s.Shows.assign(3, MakeNewShow());
  std::tie(s.Shows[0].Name, s.Shows[0].StartTime, s.Shows[0].EndTime) =
      std::tuple(QStringLiteral("Caf\u00e9"), "06:00:00", "09:00:00");
  s.Shows[1].Name = QStringLiteral("Exactly twenty-five chars");
  s.Shows[2].Name = QStringLiteral("A show name of thirty letters!");
  s.ShowCount = 3;
  ASSERT_TRUE(PrintShows(s));

  const QString name = QStringLiteral("ZRNShows111626 1542.txt");
  const QByteArray first = QByteArray("Caf\xE9") + QByteArray(21, ' ') + "06:00:00 - 09:00:00\r\n";
  EXPECT_EQ(ReadAll(name), first + "Exactly twenty-five chars24:00:00 - 24:00:00\r\n" +
                               "A show name of thirty letters!24:00:00 - 24:00:00\r\n");

  // A second export in the same minute replaces the first.
  s.ShowCount = 1;
  ASSERT_TRUE(PrintShows(s));
  EXPECT_EQ(ReadAll(name), first);
}

}  // namespace
}  // namespace zrn
