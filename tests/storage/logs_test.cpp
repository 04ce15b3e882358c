#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include "storage/logs.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::TempStateTest;

QStringList LinesOf(const QByteArray& bytes) {
  QStringList lines = QString::fromUtf8(bytes).split(QStringLiteral("\r\n"));
  if (!lines.isEmpty() && lines.last().isEmpty()) {
    lines.removeLast();
  }
  return lines;
}

class Logs : public TempStateTest {};

TEST_F(Logs, ActivityLogHeaderColumnsAndMessageList) {
  s.MaxDisplay = 3;
  DisplayMessage(s, QString());
  EXPECT_TRUE(Files().isEmpty()) << "an empty message writes nothing anywhere";
  EXPECT_TRUE(s.MessageRows.isEmpty());

  DisplayMessage(s, QStringLiteral("Server Module Connected"));
  const QByteArray bytes = ReadAll(QStringLiteral("EventLog.txt"));
  ASSERT_TRUE(bytes.endsWith("\r\n"));
  ASSERT_FALSE(bytes.contains("\n\n")) << "every line ends with CR LF";
  QStringList lines = LinesOf(bytes);
  ASSERT_EQ(lines.size(), 13);
  // Lines 3 to 5 carry the address block, right of 19 blanks.
  for (int i = 2; i <= 4; ++i) {
    EXPECT_TRUE(lines[i].startsWith(QString(19, ' ')) && lines[i].size() > 25) << i;
    EXPECT_NE(lines[i][19], QLatin1Char(' '));
    lines[i].clear();
  }
  EXPECT_EQ(
      lines,
      (QStringList{"             H A L V O R N", "", "", "", "", "", "", "ZRN Pennaro Logfile",
                   "Version: 02.00.0011 - 05/16/2025", "",
                   " DATE              TIME             MESSAGE DESCRIPTION", QString(80, '-'),
                   "Mon, Nov 16, 2026 - 15:42:52" + QString(27, ' ') + "Server Module Connected"}));
  EXPECT_EQ(lines[12].indexOf(QStringLiteral("Server")), 55) << "message starts at column 56";
  EXPECT_EQ(s.MessageRows, QStringList{"Mon, Nov 16, 2026 - 15:42:52 - Server Module Connected"});

  // The source column; a deleted log comes back with its header.
  ASSERT_TRUE(QFile::remove(PathOf(QStringLiteral("EventLog.txt"))));
  clock.Set(QDateTime(QDate(2026, 1, 4), QTime(7, 5, 9)));
  WriteActivityLog(s, QStringLiteral("M"), QStringLiteral("SRC"));
  lines = LinesOf(ReadAll(QStringLiteral("EventLog.txt")));
  ASSERT_EQ(lines.size(), 13);
  EXPECT_EQ(lines.last(),
            "Sun, Jan 04, 2026 - 07:05:09" + QString(7, ' ') + "SRC" + QString(17, ' ') + "M");

  // The message list keeps the newest MaxDisplay rows; the log keeps them all.
  for (int i = 1; i <= 5; ++i) {
    DisplayMessage(s, QStringLiteral("m%1").arg(i));
  }
  ASSERT_EQ(s.MessageRows.size(), 3);
  EXPECT_TRUE(s.MessageRows[0].endsWith(QStringLiteral(" - m3")));
  EXPECT_TRUE(s.MessageRows[2].endsWith(QStringLiteral(" - m5")));
  EXPECT_EQ(LinesOf(ReadAll(QStringLiteral("EventLog.txt"))).size(), 13 + 5);
}

TEST_F(Logs, RotationAtTheLimitKeepsEveryRotatedFile) {
  const QString msg(100, 'x');
  s.MaxLogFileSize = 0;  // no rotation at all
  for (int i = 0; i < 12; ++i) {
    WriteActivityLog(s, msg, QString());
  }
  EXPECT_EQ(Files(), QStringList{QStringLiteral("EventLog.txt")});
  ASSERT_TRUE(QFile::remove(PathOf(QStringLiteral("EventLog.txt"))));

  s.MaxLogFileSize = 1;
  while (QFileInfo(PathOf(QStringLiteral("EventLog.txt"))).size() < 1024) {
    WriteActivityLog(s, msg, QString());
  }
  const QByteArray full = ReadAll(QStringLiteral("EventLog.txt"));
  WriteActivityLog(s, QStringLiteral("after rotation"), QString());

  EXPECT_EQ(ReadAll(QStringLiteral("EventLog 111626 1542.txt")), full);
  QStringList fresh = LinesOf(ReadAll(QStringLiteral("EventLog.txt")));
  ASSERT_EQ(fresh.size(), 13) << "a fresh log gets its header first";
  EXPECT_EQ(fresh[7], QStringLiteral("ZRN Pennaro Logfile"));
  EXPECT_TRUE(fresh[12].endsWith(QStringLiteral("after rotation")));

  // Filling and rotating again within the same minute must not overwrite the first copy.
  while (QFileInfo(PathOf(QStringLiteral("EventLog.txt"))).size() < 1024) {
    WriteActivityLog(s, msg, QString());
  }
  const QByteArray second = ReadAll(QStringLiteral("EventLog.txt"));
  WriteActivityLog(s, QStringLiteral("again"), QString());
  EXPECT_EQ(ReadAll(QStringLiteral("EventLog 111626 1542.txt")), full);
  EXPECT_EQ(ReadAll(QStringLiteral("EventLog 111626 1542 (2).txt")), second);

  // The error log rotates by the same rule under its own names.
  for (int i = 0; QFileInfo(PathOf(QStringLiteral("Errorlog.txt"))).size() < 1024; ++i) {
    WriteErrorLog(s, QStringLiteral("message %1").arg(i), QStringLiteral("Error Somewhere"));
  }
  WriteErrorLog(s, QStringLiteral("fresh"), QStringLiteral("Error Somewhere"));
  EXPECT_TRUE(QFileInfo::exists(PathOf(QStringLiteral("Errorlog 111626 1542.txt"))));
  EXPECT_EQ(ErrorLines().size(), 1);
}

TEST_F(Logs, BatchedLinesLandAsLineByLineWritingWouldRotationsIncluded) {
  // The same 45 lines over several rotations, one by one into a second folder and in one batch
  // here: the folders must end up byte for byte alike.
  QTemporaryDir oneByOne;
  State single;
  single.AppPath = oneByOne.path() + QLatin1Char('/');
  single.clock = &clock;
  single.MaxLogFileSize = s.MaxLogFileSize = 1;
  const auto write = [&](State& state) {
    for (int i = 0; i < 45; ++i) {
      WriteActivityLog(state, QStringLiteral("line %1 ").arg(i) + QString(60, 'z'), QString());
    }
  };
  write(single);
  {
    const ActivityBatch batch(s);
    const ActivityBatch nested(s);
    write(s);
    EXPECT_FALSE(QFileInfo::exists(PathOf(QStringLiteral("EventLog.txt"))))
        << "nothing is written while the batch is open";
  }
  const QStringList names = QDir(oneByOne.path()).entryList(QDir::Files, QDir::Name);
  ASSERT_GE(names.size(), 4) << names.join(QLatin1Char(',')).toStdString();
  EXPECT_EQ(Files(), names);
  for (const QString& name : names) {
    QFile expected(oneByOne.path() + QLatin1Char('/') + name);
    ASSERT_TRUE(expected.open(QIODevice::ReadOnly));
    EXPECT_EQ(ReadAll(name), expected.readAll()) << name.toStdString();
  }
}

TEST_F(Logs, ErrorLineColumnsAndHeader) {
  LogError(s, QStringLiteral("Error Saving Events"), QStringLiteral("File Error"),
           Failure::FileNotFound());
  const QStringList lines = LinesOf(ReadAll(QStringLiteral("Errorlog.txt")));
  EXPECT_EQ(lines.mid(7),
            (QStringList{"ZRN Pennaro Error Logfile", "",
                         " DATE     TIME           LOCATION                      MESSAGE "
                         "DESCRIPTION",
                         QString(80, '-'),
                         "11/16/2026 3:42:52 PM   Error Saving Events" + QString(17, ' ') +
                             "Error #  53 - File not found"}));

  // A long location is written whole and pushes the message right.
  const QString longLocation = QStringLiteral("Error Updating The Show Silence Display Now");
  ASSERT_GT(longLocation.size(), 36);
  clock.AdvanceSeconds(1);
  LogError(s, longLocation, QStringLiteral("Display Error"), Failure::SubscriptOutOfRange());
  EXPECT_EQ(ErrorLines().last(), QStringLiteral("11/16/2026 3:42:53 PM   ") + longLocation +
                                     QStringLiteral("Error #  9 - Subscript out of range"));

  EXPECT_EQ(ErrorText(Failure{-5, QStringLiteral("x")}), QStringLiteral("Error # -5 - x"));
}

TEST_F(Logs, RepeatedErrorsAreHeldBackAndCounted) {
  for (int i = 0; i < 5; ++i) {
    LogError(s, QStringLiteral("Error Reading Events"), QString(), Failure::InputPastEnd());
    clock.AdvanceSeconds(5);
  }
  ASSERT_EQ(ErrorLines().size(), 1);

  LogError(s, QStringLiteral("Error Saving Shows"), QString(), Failure::DeviceIo());
  QStringList lines = ErrorLines();
  ASSERT_EQ(lines.size(), 3);
  EXPECT_TRUE(lines[1].contains(QStringLiteral("Error Reading Events")));
  EXPECT_TRUE(
      lines[1].endsWith(QStringLiteral("Error #  62 - Input past end of file (repeated 4 times)")));
  EXPECT_TRUE(lines[2].endsWith(QStringLiteral("Error #  57 - Device I/O error")));

  // The same line again after a minute is written, with the count of those held back.
  clock.AdvanceSeconds(10);
  LogError(s, QStringLiteral("Error Saving Shows"), QString(), Failure::DeviceIo());
  clock.AdvanceSeconds(60);
  LogError(s, QStringLiteral("Error Saving Shows"), QString(), Failure::DeviceIo());
  lines = ErrorLines();
  ASSERT_EQ(lines.size(), 5);
  EXPECT_TRUE(lines[3].endsWith(QStringLiteral("(repeated 1 times)")));
  EXPECT_TRUE(lines[4].endsWith(QStringLiteral("Error #  57 - Device I/O error")));

  // Two errors that alternate every tick are held back like one that repeats.
  clock.AdvanceSeconds(61);
  for (int tick = 0; tick < 100; ++tick) {
    LogError(s, tick % 2 == 0 ? QStringLiteral("Error A") : QStringLiteral("Error B"), QString(),
             Failure::DeviceIo());
    clock.AdvanceMs(500);
  }
  lines = ErrorLines();
  ASSERT_EQ(lines.size(), 7);
  EXPECT_TRUE(lines[5].contains(QStringLiteral("Error A")));
  EXPECT_TRUE(lines[6].contains(QStringLiteral("Error B")));

  // Closing writes what is still held back.
  FlushHeldBackErrors(s);
  lines = ErrorLines();
  ASSERT_EQ(lines.size(), 9);
  EXPECT_TRUE(lines[7].contains(QStringLiteral("Error A")) &&
              lines[7].endsWith(QStringLiteral("(repeated 49 times)")));
  EXPECT_TRUE(lines[8].contains(QStringLiteral("Error B")) &&
              lines[8].endsWith(QStringLiteral("(repeated 49 times)")));
}

// A folder in which the logs cannot be written even by root: the log names are folders.
TEST_F(Logs, PersistentWriteFailureNeitherLoopsNorThrows) {
  ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("Errorlog.txt")));
  for (int i = 0; i < 500; ++i) {
    LogError(s, QStringLiteral("Error %1").arg(i), QString(), Failure::DeviceIo());
  }
  EXPECT_FALSE(s.logs.reportingWriteFailure);

  ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("EventLog.txt")));
  DisplayMessage(s, QStringLiteral("still shown"));
  ASSERT_EQ(s.MessageRows.size(), 1) << "the message list does not depend on the file";

  // With the error log writable again, the activity log failure is reported there.
  ASSERT_TRUE(QDir(dir.path()).rmdir(QStringLiteral("Errorlog.txt")));
  DisplayMessage(s, QStringLiteral("lost line"));
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Writing to Activity Log")));
}

TEST_F(Logs, MissingFolderCostsNothingButTheLine) {
  s.AppPath = dir.path() + QStringLiteral("/no/such/folder/");
  for (int i = 0; i < 100; ++i) {
    DisplayMessage(s, QStringLiteral("message %1").arg(i));
  }
  EXPECT_EQ(s.MessageRows.size(), 100);
  EXPECT_FALSE(QDir(dir.path() + QStringLiteral("/no")).exists());
}

}  // namespace
}  // namespace zrn
