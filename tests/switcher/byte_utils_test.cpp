#include "switcher/byte_utils.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "support/switcher_bytes.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::Bytes;

class ByteUtils : public test::TempStateTest {};

// Bad input gives the safe value and one error line each.
TEST_F(ByteUtils, NumbersAndTimesFromTheirWireForms) {
  const struct { int low, high, value; } integers[] = {{5, 2, 261}, {200, 255, 16383}};
  for (const auto& c : integers) {
    EXPECT_EQ(ConvertInteger(s, c.low, c.high), c.value) << c.low << "," << c.high;
  }
  const struct {
    const char* time;
    int day, minutes;
  } times[] = {{"13:05:59", 2, 3665},   {"23:59:59", 6, 10079},  {"12:30:00 AM", 0, 30},
               {"12:30:00 PM", 0, 750}, {"1:05:00 PM", 1, 2225}, {"9:15:00 AM", 0, 555},
               {"999:00:00", 6, 0},     {"garbage", 1, 0}};
  for (const auto& c : times) {
    EXPECT_EQ(ConvertMinutes(s, QString::fromLatin1(c.time), c.day), c.minutes) << c.time;
  }
  const QStringList lines = ErrorLines();
  ASSERT_EQ(lines.size(), 3);
  EXPECT_TRUE(lines[0].contains(QStringLiteral("Invalid data in Message")));
  EXPECT_TRUE(lines[0].endsWith(QStringLiteral("Error #  6 - Overflow")));
  EXPECT_TRUE(lines[1].contains(QStringLiteral("Error Converting Minutes")));
}

TEST_F(ByteUtils, CheckSumAndCuttingTheBufferAtItsEdges) {
  EXPECT_EQ(CheckSum(Bytes({0x81, 0x64, 0x21, 0x05, 0xFF}), 2), 5);
  EXPECT_EQ(CheckSum(QByteArray(), 2), 0);
  EXPECT_EQ(FindEOM(s, Bytes({1, 2, 3})), 0);
  s.ReceiveBuffer = Bytes({1, 2});
  EXPECT_EQ(TrimBuffer(s, 10), Bytes({1, 2}));
  EXPECT_TRUE(s.ReceiveBuffer.isEmpty());
  QByteArray message = Bytes({9, 8, 7});
  EXPECT_EQ(SplitBytes(message, 1), Bytes({9}));
  EXPECT_EQ(message, Bytes({8, 7}));
}

// Names sort by character code and carry their numbers along, whatever the table's shape: sorted,
// reversed and all equal tables of the largest size must not exhaust the stack.
TEST_F(ByteUtils, QuickSortOrdersByCodeAndCarriesTheNumbers) {
  const std::function<QString(int)> shapes[] = {
      [](int i) { return QStringLiteral("Out %1").arg(i, 5, 10, QLatin1Char('0')); },
      [](int i) { return QStringLiteral("Out %1").arg(16383 - i, 5, 10, QLatin1Char('0')); },
      [](int) { return QStringLiteral("same"); },
  };
  QList<QStringList> tables{{"b", "B", "a"}, {}, {"Studio 10", "Studio 1", "Studio"}};
  for (const auto& shape : shapes) {
    QStringList names;
    for (int i = 0; i < 16383; ++i) {
      names << shape(i);
    }
    tables << names;
  }
  for (QStringList names : tables) {
    SCOPED_TRACE(names.mid(0, 3).join(u',').toStdString());
    const QStringList original = names;
    std::vector<qint16> numbers(names.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    QuickSort(s, names, numbers, 0, static_cast<int>(names.size()) - 1);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
    for (int i = 0; i < names.size(); ++i) {
      ASSERT_EQ(original[numbers[i]], names[i]) << "numbers travel with their names";
    }
  }
  EXPECT_TRUE(ErrorLines().isEmpty());

  QStringList names{QStringLiteral("x")};
  std::vector<qint16> numbers{0};
  QuickSort(s, names, numbers, 0, 5);
  EXPECT_EQ(ErrorLines().filter(QStringLiteral("Quick Sort Error")).size(), 1);
}

}  // namespace
}  // namespace zrn
