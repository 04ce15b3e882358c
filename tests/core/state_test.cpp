#include <QFileInfo>

#include "core/failure.h"
#include "core/numbers.h"
#include "storage/file_io.h"
#include "support/temp_state.h"
#include "switcher/name_tables.h"

namespace zrn {
namespace {

using CoreTest = test::TempStateTest;

TEST_F(CoreTest, SilenceOutIndexPointsAtTheLastEntryOfEachOutput) {
  s.SwitcherOutputCount = 8;
  s.SilenceOuts = {{.Output = 3}, {.Output = 5}, {.Output = 3}, {.Output = 40}, {.Output = 7}};
  s.SilenceOutCount = 5;
  UpdateSilenceOutTable(s);
  EXPECT_EQ(s.SilenceOutIndex, (std::vector<qint16>{kNone, kNone, kNone, 2, kNone, 1, kNone, 4}))
      << "a later entry with the same output wins; one after a bad entry is still indexed";
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Updating Silence Out Table")));
}

TEST(Numbers, LeadingNumberReadsLikeTheConfigurationFile) {
  const std::pair<const char*, double> cases[] = {
      {"1250", 1250}, {" 12 34 ", 1234}, {"-5x", -5}, {"2.5", 2.5}, {"1e3", 1000},
      {"7e", 7},      {"abc", 0},        {"", 0},     {"-", 0},     {"0x10", 0}};
  for (const auto& [text, value] : cases) {
    EXPECT_EQ(LeadingNumber(QString::fromLatin1(text)), value) << '"' << text << '"';
  }
  EXPECT_EQ((std::vector{RoundHalfEven(2.5), RoundHalfEven(3.5), RoundHalfEven(-2.5),
                         RoundHalfEven(2.6)}),
            (std::vector<double>{2, 4, -2, 3}));
  EXPECT_THROW(ToInteger(32768), Failure);
}

TEST_F(CoreTest, ByteReaderNeverReadsPastTheEnd) {
  const QByteArray bytes = QByteArray::fromHex("0100FF3F4142");
  ByteReader reader(bytes);
  EXPECT_EQ(reader.I16(), 1);
  EXPECT_EQ(reader.I16(), 16383);
  EXPECT_THROW(reader.Text(3), Failure);
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

TEST_F(CoreTest, DamagedFilesAreSetAsideUnderUniqueNames) {
  const QString name = QStringLiteral("ZRNEvents.dat");
  WriteAll(name, "damaged");
  const QString first = SetAsideDamagedFile(s, name, false);
  EXPECT_EQ(QFileInfo(first).fileName(), QStringLiteral("ZRNEvents.dat.bad-20261116-154252"));
  EXPECT_NE(SetAsideDamagedFile(s, name, false), first);
  EXPECT_TRUE(QFileInfo::exists(PathOf(name)));
  EXPECT_FALSE(SetAsideDamagedFile(s, name, true).isEmpty());
  EXPECT_FALSE(QFileInfo::exists(PathOf(name)));
  EXPECT_EQ(ErrorLines().size(), 3) << "one line per file set aside";
}

}  // namespace
}  // namespace zrn
