#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include "storage/logs.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

const QString kActivity = QStringLiteral("EventLog.txt");
const QString kErrors = QStringLiteral("Errorlog.txt");

QStringList LinesOf(const QByteArray& bytes) {
  return QString::fromUtf8(bytes).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

class Logs : public test::TempStateTest {
 protected:
  // Writes long lines until the log has passed the 1 KB limit; returns what it held then.
  QByteArray Fill(const QString& name) {
    for (int i = 0; i < 100 && QFileInfo(PathOf(name)).size() < 1024; ++i) {
      const QString line = QStringLiteral("line %1 ").arg(i) + QString(100, 'x');
      if (name == kActivity) {
        WriteActivityLog(s, line, QString());
      } else {
        WriteErrorLog(s, line, QStringLiteral("Error Somewhere"));
      }
    }
    return ReadAll(name);
  }
};

TEST_F(Logs, HeadersColumnsAndMessageList) {
  s.MaxDisplay = 3;
  DisplayMessage(s, QString());
  EXPECT_TRUE(Files().isEmpty() && s.MessageRows.isEmpty()) << "an empty message goes nowhere";

  DisplayMessage(s, QStringLiteral("Server Module Connected"));
  // Every line ends with CR LF, the last one too.
  QStringList lines = QString::fromUtf8(ReadAll(kActivity)).split(QStringLiteral("\r\n"));
  // Lines 3 to 5 carry the address block, right of 19 blanks.
  for (int i = 2; i <= 4 && i < lines.size(); ++i) {
    lines[i].replace(QRegularExpression(QStringLiteral("^ {19}\\S.{6,}$")), QStringLiteral("@"));
  }
  EXPECT_EQ(
      lines,
      (QStringList{"             H A L V O R N", "", "@", "@", "@", "", "", "ZRN Pennaro Logfile",
                   "Version: 02.00.0011 - 05/16/2025", "",
                   " DATE              TIME             MESSAGE DESCRIPTION", QString(80, '-'),
                   "Mon, Nov 16, 2026 - 15:42:52" + QString(27, ' ') + "Server Module Connected",
                   ""}));
  EXPECT_EQ(s.MessageRows, QStringList{"Mon, Nov 16, 2026 - 15:42:52 - Server Module Connected"});

  LogError(s, QStringLiteral("Error Saving Events"), QStringLiteral("File Error"),
           Failure::FileNotFound());
  EXPECT_EQ(LinesOf(ReadAll(kErrors)).mid(4),
            (QStringList{"ZRN Pennaro Error Logfile",
                         " DATE     TIME           LOCATION                      MESSAGE "
                         "DESCRIPTION",
                         QString(80, '-'),
                         "11/16/2026 3:42:52 PM   Error Saving Events" + QString(17, ' ') +
                             "Error #  53 - File not found"}));

  // A long location is written whole and pushes the message right.
  const QString longLocation = QStringLiteral("Error Updating The Show Silence Display Now");
  clock.AdvanceSeconds(1);
  LogError(s, longLocation, QStringLiteral("Display Error"), Failure::SubscriptOutOfRange());
  EXPECT_EQ(ErrorLines().last(), QStringLiteral("11/16/2026 3:42:53 PM   ") + longLocation +
                                     QStringLiteral("Error #  9 - Subscript out of range"));
  EXPECT_EQ(ErrorText(Failure{-5, QStringLiteral("x")}), QStringLiteral("Error # -5 - x"));

  // The source column; a deleted log comes back with its header.
  ASSERT_TRUE(QFile::remove(PathOf(kActivity)));
  clock.Set(QDateTime(QDate(2026, 1, 4), QTime(7, 5, 9)));
  WriteActivityLog(s, QStringLiteral("M"), QStringLiteral("SRC"));
  EXPECT_EQ(LinesOf(ReadAll(kActivity)).mid(8),  // the header without its blank lines
            QStringList{"Sun, Jan 04, 2026 - 07:05:09       SRC                 M"});

  // The message list keeps the newest MaxDisplay rows, the log all; an inner batch ends first.
  {
    ActivityBatch outer(s);
    ActivityBatch inner(s);
    for (int i = 1; i <= 5; ++i) {
      DisplayMessage(s, QStringLiteral("m%1").arg(i));
    }
  }
  ASSERT_EQ(s.MessageRows.size(), 3);
  EXPECT_TRUE(s.MessageRows[0].endsWith(QStringLiteral(" - m3")));
  EXPECT_EQ(LinesOf(ReadAll(kActivity)).size(), 9 + 5);
}

// Rotating twice within one minute must not overwrite the first copy; the error log rotates by
// the same rule under its own names; a limit of 0 never rotates.
TEST_F(Logs, RotationAtTheLimitKeepsEveryRotatedFile) {
  s.MaxLogFileSize = 1;
  const QByteArray full = Fill(kActivity);
  WriteActivityLog(s, QStringLiteral("after rotation"), QString());
  const QByteArray second = Fill(kActivity);
  WriteActivityLog(s, QStringLiteral("again"), QString());
  EXPECT_EQ(ReadAll(QStringLiteral("EventLog 111626 1542.txt")), full);
  EXPECT_EQ(ReadAll(QStringLiteral("EventLog 111626 1542 (2).txt")), second);

  Fill(kErrors);
  WriteErrorLog(s, QStringLiteral("fresh"), QStringLiteral("Error Somewhere"));
  EXPECT_TRUE(QFileInfo::exists(PathOf(QStringLiteral("Errorlog 111626 1542.txt"))));
  EXPECT_EQ(ErrorLines().size(), 1);

  s.MaxLogFileSize = 0;
  Fill(kActivity);
  WriteActivityLog(s, QStringLiteral("past the size"), QString());
  EXPECT_EQ(Files().size(), 5);
}

// A line repeated within a minute is held back and counted when another comes, when the minute
// is over, or on closing; two that alternate every tick are held back like one.
TEST_F(Logs, RepeatedErrorsAreHeldBackAndCounted) {
  const auto log = [&](const char* location, int advanceMs) {
    LogError(s, QString::fromLatin1(location), QString(), Failure::DeviceIo());
    clock.AdvanceMs(advanceMs);
  };
  for (int i = 0; i < 5; ++i) {
    log("Error Reading Events", 5000);
  }
  log("Error Saving Shows", 10000);
  log("Error Saving Shows", 60000);
  log("Error Saving Shows", 61000);
  for (int tick = 0; tick < 100; ++tick) {
    log(tick % 2 == 0 ? "Error A" : "Error B", 500);
  }
  FlushHeldBackErrors(s);
  QStringList lines;
  for (const QString& line : ErrorLines()) {
    lines << line.mid(24).simplified();
  }
  const QString io = QStringLiteral(" Error # 57 - Device I/O error");
  EXPECT_EQ(lines,
            (QStringList{
                "Error Reading Events" + io, "Error Reading Events" + io + " (repeated 4 times)",
                "Error Saving Shows" + io, "Error Saving Shows" + io + " (repeated 1 times)",
                "Error Saving Shows" + io, "Error A" + io, "Error B" + io,
                "Error A" + io + " (repeated 49 times)", "Error B" + io + " (repeated 49 times)"}));
}

// Logs that not even root can write (their names are folders), or a missing folder, cost only
// lines.
TEST_F(Logs, PersistentWriteFailureNeitherLoopsNorThrows) {
  ASSERT_TRUE(QDir(dir.path()).mkdir(kErrors));
  for (int i = 0; i < 500; ++i) {
    LogError(s, QStringLiteral("Error %1").arg(i), QString(), Failure::DeviceIo());
  }
  EXPECT_FALSE(s.logs.reportingWriteFailure);

  ASSERT_TRUE(QDir(dir.path()).mkdir(kActivity));
  DisplayMessage(s, QStringLiteral("still shown"));
  ASSERT_EQ(s.MessageRows.size(), 1) << "the message list does not depend on the file";

  // With the error log writable again, the activity log failure is reported there.
  ASSERT_TRUE(QDir(dir.path()).rmdir(kErrors));
  DisplayMessage(s, QStringLiteral("lost line"));
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Writing to Activity Log")));

  s.AppPath = dir.path() + QStringLiteral("/no/such/folder/");
  for (int i = 0; i < 100; ++i) {
    DisplayMessage(s, QStringLiteral("message %1").arg(i));
  }
  EXPECT_EQ(s.MessageRows.size(), 100);
  EXPECT_FALSE(QDir(dir.path() + QStringLiteral("/no")).exists());
}

}  // namespace
}  // namespace zrn
