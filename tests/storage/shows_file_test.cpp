#include "storage/shows_file.h"

#include <QDir>
#include <functional>
#include <tuple>

#include "storage_fixture.h"

namespace zrn {
namespace {

const QString kFile = QStringLiteral("ZRNShows.dat");

QByteArray Hex(const char* hex) {
  return QByteArray::fromHex(hex);
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

class ShowsFile : public test::StorageTest {};

TEST_F(ShowsFile, FirstStartWritesOneNewShow) {
  ASSERT_TRUE(ReadShows(s));
  EXPECT_EQ(s.ShowCount, 1);
  EXPECT_EQ(ReadAll(kFile), NewShowFile());

  // What the file does not hold: a new show watches no monitor.
  EXPECT_EQ(std::tuple(MakeNewShow().StudioLeft[0].Monitor, MakeNewShow().DownlinkMonitor),
            std::tuple(kNone, kNone));
  s.EditShows.resize(2);
  NewShow(s, 1);
  EXPECT_EQ(s.EditShows[1].DetectLevel, 824);
  NewShow(s, 5);
  EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Adding Show"), QStringLiteral("#  9")));
}

TEST_F(ShowsFile, HandBuiltFileReadsEveryFieldAndSavesBackTheSame) {
  WriteAll(kFile, TwoShowFile());
  ASSERT_TRUE(ReadShows(s));
  ASSERT_EQ(s.ShowCount, 2);
  const ShowRecord& a = s.Shows[0];
  // The stored activity is ignored.
  EXPECT_EQ(std::tuple(a.Name, a.StartTime + a.EndTime, a.StartDate + a.EndDate, a.Days,
                       a.ActivityState, a.DownlinkSource, a.DownlinkMonitor),
            std::tuple(QStringLiteral("Morning Drive"), QStringLiteral("06:00:0010:00:00"),
                       QStringLiteral("03/01/202611/30/2026"), 31, 0, 5, kNone));
  EXPECT_EQ(std::tuple(a.OutputLeft, a.OutputRight, a.OutputCue),
            std::tuple(std::vector<qint16>{1, 4}, std::vector<qint16>{2, 5},
                       std::vector<qint16>{3, kNone}));
  EXPECT_EQ(std::tuple(a.StudioLeft[0], a.StudioRight[0].Channel, a.StudioCue[0].Channel),
            std::tuple(ShowChannel{10, kNone}, 11, kNone));
  EXPECT_EQ(a.IgnoreWindows[0], (IgnoreWindow{"07:00:00", "07:05:00"}));
  EXPECT_EQ(std::tuple(a.OutputCount, a.StudioCount, a.IgnoreCount, a.DetectLevel, a.DetectTime1,
                       a.DetectTime2),
            std::tuple(2, 1, 1, 722, 10, 3));

  // An empty group holds one element of 0; a negative count reads nothing.
  const ShowRecord& b = s.Shows[1];
  EXPECT_EQ(std::tuple(b.Name, b.OutputCount, b.OutputLeft, b.StudioCue.size(),
                       b.StudioCue[0].Channel, b.IgnoreCount, b.IgnoreWindows.size()),
            std::tuple(QString(), 0, std::vector<qint16>{0}, 1u, 0, 0, 1u));
  ASSERT_EQ(s.SilenceOutCount, 2);
  EXPECT_EQ(std::tuple(s.SilenceOuts[1].Output, s.SilenceOuts[1].Source, s.SilenceOuts[1].Show),
            std::tuple(41, kNone, kNone));

  // Saved and read again, every show comes back, characters beyond ASCII too; the activity byte
  // is written but never read.
  s.Shows[0].Name = QStringLiteral("Fr\u00fch am Morgen");
  s.Shows[0].ActivityState = 1;
  ASSERT_TRUE(SaveShows(s));
  EXPECT_EQ(ReadAll(kFile).mid(5, 14), QByteArray("Fr\xfch am Morgen"));
  State back = Fresh();
  ASSERT_TRUE(ReadShows(back));
  s.Shows[0].ActivityState = 0;
  EXPECT_EQ(back.Shows, s.Shows);
  EXPECT_EQ(back.SilenceOuts[1].Output, 41);
}

// Every cut of a good file is an error that leaves the tables and keeps a copy of the file, and
// so is a count promising more than is there (randomly damaged files are the fuzz target's).
TEST_F(ShowsFile, EveryCutOfAGoodFileIsAnErrorThatLeavesTheTables) {
  const QByteArray whole = TwoShowFile();
  // 30000 shows; one show announcing 30000 outputs with two bytes left.
  QList<QByteArray> damaged{Hex("01003075000000000000"),
                            NewShowFile().left(57).replace(53, 2, Hex("3075"))};
  for (int length = 0; length < whole.size(); ++length) {
    damaged << whole.left(length);
  }
  for (const QByteArray& file : damaged) {
    ForgetErrors(kFile);
    s.Shows.assign(2, MakeNewShow());
    s.Shows[1].Name = QStringLiteral("Kept");
    s.ShowCount = 2;
    s.SilenceOuts.assign(1, SilenceOut{.Output = 77});
    s.SilenceOutCount = 1;
    WriteAll(kFile, file);
    EXPECT_FALSE(ReadShows(s)) << file.size();
    EXPECT_TRUE(HasErrorLine(QStringLiteral("Error Reading shows"),
                             QStringLiteral("Error #  62 - Input past end of file")))
        << file.size();
    EXPECT_EQ(std::tuple(s.ShowCount, s.Shows.size(), s.Shows[1].Name, s.SilenceOuts.size(),
                         s.SilenceOuts[0].Output),
              std::tuple(2, 2u, QStringLiteral("Kept"), 1u, 77));
    EXPECT_EQ(ReadAll(kFile), file);
    const QStringList copies = Files().filter(QStringLiteral("ZRNShows.dat.bad-"));
    ASSERT_EQ(copies.size(), 1);
    EXPECT_EQ(ReadAll(copies[0]), file);
  }

  // No shows at all: the count says so and one spare record remains.
  WriteAll(kFile, Hex("010000000000"));
  ASSERT_TRUE(ReadShows(s));
  EXPECT_EQ(std::tuple(s.ShowCount, s.Shows.size()), std::tuple(0, 1u));
}

TEST_F(ShowsFile, UnreadableShowsAreNotSaved) {
  s.Shows = {MakeNewShow()};
  s.ShowCount = 1;
  ASSERT_TRUE(SaveShows(s));
  const QByteArray original = ReadAll(kFile);
  const struct {
    std::function<void(ShowRecord&)> edit;
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
    EXPECT_EQ(ReadAll(kFile), original);
  }
}

TEST_F(ShowsFile, ExportListsNamesAndTimes) {
  s.Shows.assign(3, MakeNewShow());
  s.Shows[0].Name = QStringLiteral("Caf\u00e9");
  s.Shows[0].StartTime = QStringLiteral("06:00:00");
  s.Shows[0].EndTime = QStringLiteral("09:00:00");
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
