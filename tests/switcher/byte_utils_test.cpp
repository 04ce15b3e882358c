#include "switcher/byte_utils.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <random>

#include "support/switcher_bytes.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

using test::Bytes;

class ByteUtils : public test::TempStateTest {};

TEST_F(ByteUtils, NumbersAndTimesFromTheirWireForms) {
  const struct { int low, high, value; } integers[] = {{127, 127, 16383}, {5, 2, 261}, {0, 0, 0}};
  for (const auto& c : integers) {
    EXPECT_EQ(ConvertInteger(s, c.low, c.high), c.value) << c.low << "," << c.high;
  }
  const struct {
    const char* time;
    int day, minutes;
  } times[] = {{"13:05:59", 2, 3665},   {"00:00:00", 0, 0},
               {"23:59:59", 6, 10079},  {"12:30:00 AM", 0, 30},
               {"12:30:00 PM", 0, 750}, {"11:59:59 PM", 6, 10079},
               {"1:05:00 PM", 1, 2225}, {"9:15:00 AM", 0, 9 * 60 + 15}};
  for (const auto& c : times) {
    EXPECT_EQ(ConvertMinutes(s, QString::fromLatin1(c.time), c.day), c.minutes) << c.time;
  }
  EXPECT_TRUE(ErrorLines().isEmpty());

  // Bad input gives the safe value and one error line each.
  EXPECT_EQ(ConvertInteger(s, 200, 255), 16383);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("999:00:00"), 6), 0);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("garbage"), 1), 0);
  const QStringList lines = ErrorLines();
  ASSERT_EQ(lines.size(), 3);
  EXPECT_TRUE(lines[0].contains(QStringLiteral("Invalid data in Message")));
  EXPECT_TRUE(lines[0].endsWith(QStringLiteral("Error #  6 - Overflow")));
  EXPECT_TRUE(lines[1].contains(QStringLiteral("Error Converting Minutes")));
}

TEST_F(ByteUtils, ChecksumEndOfMessageAndCuttingTheBuffer) {
  const struct {
    QByteArray message;
    int skip, sum;
  } sums[] = {{Bytes({0xF2, 0x00, 0x07, 0x04, 0x18}), 0, 35},
              {Bytes({0x81, 0x64, 0x21, 0x05, 0xFF}), 2, 5},
              {Bytes({0xF5}), 0, 0},
              {QByteArray(), 2, 0},
              {Bytes({0x80, 0x7F, 0x7F, 0x7F}), 0, (127 * 3) % 128}};
  for (const auto& c : sums) {
    EXPECT_EQ(CheckSum(c.message, c.skip), c.sum) << c.message.toHex().constData();
  }
  EXPECT_EQ(FindEOM(s, QByteArray()), 0);
  EXPECT_EQ(FindEOM(s, Bytes({1, 2, 3})), 0);
  EXPECT_EQ(FindEOM(s, Bytes({0xF6, 0x01, 0xFF, 0xCB})), 3);

  s.ReceiveBuffer = Bytes({1, 2, 3});
  EXPECT_EQ(TrimBuffer(s, 3), Bytes({1, 2, 3}));
  EXPECT_TRUE(s.ReceiveBuffer.isEmpty());
  s.ReceiveBuffer = Bytes({1, 2, 3, 4, 5});
  EXPECT_EQ(TrimBuffer(s, 3), Bytes({1, 2, 3}));
  EXPECT_EQ(s.ReceiveBuffer, Bytes({4, 5}));
  EXPECT_EQ(TrimBuffer(s, 10), Bytes({4, 5}));
  EXPECT_TRUE(s.ReceiveBuffer.isEmpty());

  QByteArray message = Bytes({9, 8, 7, 6});
  EXPECT_EQ(SplitBytes(message, 1), Bytes({9}));
  EXPECT_EQ(message, Bytes({8, 7, 6}));
}

// Names sort by character code and carry their numbers along, whatever the table's shape.
TEST_F(ByteUtils, QuickSortOrdersByCodeAndCarriesTheNumbers) {
  std::mt19937 random(42);
  const std::function<QString(int)> shapes[] = {
      [](int i) { return QStringLiteral("Out %1").arg(i, 5, 10, QLatin1Char('0')); },
      [](int i) { return QStringLiteral("Out %1").arg(16383 - i, 5, 10, QLatin1Char('0')); },
      [](int) { return QStringLiteral("same"); },
      [&](int) { return QString::number(random() % 1000); },
  };
  QList<QStringList> tables{{"b", "B", "a"}, {"only"}, {}, {"Studio 10", "Studio 1", "Studio"}};
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
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Quick Sort Error")));
}

}  // namespace
}  // namespace zrn
