#include <QFileInfo>

#include "core/failure.h"
#include "core/numbers.h"
#include "storage/file_io.h"
#include "support/temp_state.h"
#include "switcher/name_tables.h"

namespace zrn {
namespace {

using test::TempStateTest;

class SilenceOutTable : public TempStateTest {};

TEST_F(SilenceOutTable, IndexPointsAtTheLastEntryOfEachOutput) {
  s.SwitcherOutputCount = 8;
  for (qint16 output : {3, 5, 3, 40, 7}) {
    SilenceOut entry;
    entry.Output = output;
    s.SilenceOuts.push_back(entry);
  }
  s.SilenceOutCount = 5;
  UpdateSilenceOutTable(s);

  ASSERT_EQ(s.SilenceOutIndex.size(), 8u);
  EXPECT_EQ(s.SilenceOutIndex[3], 2) << "a later entry with the same output wins";
  EXPECT_EQ(s.SilenceOutIndex[5], 1);
  EXPECT_EQ(s.SilenceOutIndex[7], 4) << "an entry after a bad one is still indexed";
  EXPECT_EQ(s.SilenceOutIndex[0], kNone);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Silence Out Table")));
}

TEST(Numbers, LeadingNumberReadsLikeTheConfigurationFile) {
  EXPECT_EQ(LeadingNumber(QStringLiteral("1250")), 1250);
  EXPECT_EQ(LeadingNumber(QStringLiteral(" 12 34 ")), 1234);
  EXPECT_EQ(LeadingNumber(QStringLiteral("-5x")), -5);
  EXPECT_EQ(LeadingNumber(QStringLiteral("2.5")), 2.5);
  EXPECT_EQ(LeadingNumber(QStringLiteral("1e3")), 1000);
  EXPECT_EQ(LeadingNumber(QStringLiteral("7e")), 7);
  EXPECT_EQ(LeadingNumber(QStringLiteral("abc")), 0);
  EXPECT_EQ(LeadingNumber(QString()), 0);
  EXPECT_EQ(LeadingNumber(QStringLiteral("-")), 0);
  EXPECT_EQ(LeadingNumber(QStringLiteral("0x10")), 0);
  EXPECT_EQ(RoundHalfEven(2.5), 2);
  EXPECT_EQ(RoundHalfEven(3.5), 4);
  EXPECT_EQ(RoundHalfEven(-2.5), -2);
  EXPECT_EQ(RoundHalfEven(2.6), 3);
  EXPECT_THROW(ToInteger(32768), Failure);
  EXPECT_EQ(ToInteger(-32768), -32768);
}

class FileIo : public TempStateTest {};

TEST_F(FileIo, ReaderNeverReadsPastTheEnd) {
  const QByteArray bytes(
      "\x01\x00\xFF\x3F"
      "AB",
      6);
  ByteReader reader(bytes);
  EXPECT_EQ(reader.I16(), 1);
  EXPECT_EQ(reader.I16(), 16383);
  EXPECT_EQ(reader.Remaining(), 2);
  try {
    reader.Text(3);
    FAIL() << "read past the end";
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number, 62);
  }
  EXPECT_EQ(reader.Text(2), QStringLiteral("AB"));
  EXPECT_THROW(reader.U8(), Failure);

  ByteWriter writer;
  writer.I16(-1);
  writer.U8(255);
  writer.Text(QStringLiteral("\u00e9t\u00e9"), 5);
  EXPECT_EQ(writer.Bytes(), QByteArray("\xFF\xFF\xFF\xE9t\xE9  ", 8));
  EXPECT_THROW(writer.U8(256), Failure);
  EXPECT_THROW(writer.I16(40000), Failure);
  EXPECT_THROW(writer.Text(QStringLiteral("toolong"), 3), Failure);
}

TEST_F(FileIo, DamagedFilesAreSetAsideUnderUniqueNames) {
  WriteAll(QStringLiteral("ZRNEvents.dat"), "damaged");
  const QString first = SetAsideDamagedFile(s, QStringLiteral("ZRNEvents.dat"), false);
  const QString second = SetAsideDamagedFile(s, QStringLiteral("ZRNEvents.dat"), false);
  EXPECT_EQ(QFileInfo(first).fileName(), QStringLiteral("ZRNEvents.dat.bad-20261116-154252"));
  EXPECT_NE(first, second);
  EXPECT_TRUE(QFileInfo::exists(PathOf(QStringLiteral("ZRNEvents.dat"))));

  const QString moved = SetAsideDamagedFile(s, QStringLiteral("ZRNEvents.dat"), true);
  EXPECT_FALSE(moved.isEmpty());
  EXPECT_FALSE(QFileInfo::exists(PathOf(QStringLiteral("ZRNEvents.dat"))));
  EXPECT_EQ(ErrorLines().size(), 3);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("ZRNEvents.dat.bad-20261116-154252")));
}

}  // namespace
}  // namespace zrn
