#include <algorithm>
#include <random>

#include "support/bytes.h"
#include "support/temp_state.h"
#include "switcher/byte_utils.h"

namespace zrn {
namespace {

using test::TempStateTest;

using test::Bytes;

class ByteUtils : public TempStateTest {};

TEST_F(ByteUtils, ConvertIntegerJoinsSevenBitPairs) {
  EXPECT_EQ(ConvertInteger(s, 127, 127), 16383);
  EXPECT_EQ(ConvertInteger(s, 5, 2), 261);
  EXPECT_EQ(ConvertInteger(s, 0, 0), 0);
  EXPECT_TRUE(ErrorLines().isEmpty());

  EXPECT_EQ(ConvertInteger(s, 200, 255), 16383);
  ASSERT_EQ(ErrorLines().size(), 1);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Invalid data in Message")));
  EXPECT_TRUE(ErrorLines()[0].endsWith(QStringLiteral("Error #  6 - Overflow")));
}

TEST_F(ByteUtils, CheckSumCoversTheBytesBetweenTypeAndChecksum) {
  EXPECT_EQ(CheckSum(Bytes({0xF2, 0x00, 0x07, 0x04, 0x18}), 0), 35);
  EXPECT_EQ(CheckSum(Bytes({0x81, 0x64, 0x21, 0x05, 0xFF}), 2), 5);
  EXPECT_EQ(CheckSum(Bytes({0xF5}), 0), 0);
  EXPECT_EQ(CheckSum(QByteArray(), 2), 0);
  EXPECT_EQ(CheckSum(Bytes({0x80, 0x7F, 0x7F, 0x7F}), 0), (127 * 3) % 128);
}

TEST_F(ByteUtils, FindEomAndCuttingTheBuffer) {
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

TEST_F(ByteUtils, ConvertMinutesIn24And12HourForms) {
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("13:05:59"), 2), 3665);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("00:00:00"), 0), 0);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("23:59:59"), 6), 10079);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("12:30:00 AM"), 0), 30);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("12:30:00 PM"), 0), 750);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("11:59:59 PM"), 6), 10079);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("1:05:00 PM"), 1), 1440 + 13 * 60 + 5);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("9:15:00 AM"), 0), 9 * 60 + 15);
  EXPECT_TRUE(ErrorLines().isEmpty());

  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("999:00:00"), 6), 0);
  EXPECT_EQ(ConvertMinutes(s, QStringLiteral("garbage"), 1), 0);
  ASSERT_EQ(ErrorLines().size(), 2);
  EXPECT_TRUE(ErrorLines()[0].contains(QStringLiteral("Error Converting Minutes")));
}

TEST_F(ByteUtils, QuickSortOrdersByCodeAndCarriesTheNumbers) {
  QStringList names{QStringLiteral("b"), QStringLiteral("B"), QStringLiteral("a")};
  std::vector<qint16> numbers{0, 1, 2};
  QuickSort(s, names, numbers, 0, 2);
  EXPECT_EQ(names, (QStringList{QStringLiteral("B"), QStringLiteral("a"), QStringLiteral("b")}));
  EXPECT_EQ(numbers, (std::vector<qint16>{1, 2, 0}));

  QStringList one{QStringLiteral("only")};
  std::vector<qint16> oneNumber{7};
  QuickSort(s, one, oneNumber, 0, 0);
  EXPECT_EQ(one, QStringList{QStringLiteral("only")});

  QStringList none;
  std::vector<qint16> noNumbers;
  QuickSort(s, none, noNumbers, 0, -1);
  EXPECT_TRUE(ErrorLines().isEmpty());

  QStringList prefix{QStringLiteral("Studio 10"), QStringLiteral("Studio 1"),
                     QStringLiteral("Studio")};
  std::vector<qint16> prefixNumbers{0, 1, 2};
  QuickSort(s, prefix, prefixNumbers, 0, 2);
  EXPECT_EQ(prefixNumbers, (std::vector<qint16>{2, 1, 0}));
}

TEST_F(ByteUtils, QuickSortHandlesLargeAndHostileTables) {
  std::mt19937 random(42);
  for (int shape = 0; shape < 4; ++shape) {
    QStringList names;
    for (int i = 0; i < 16383; ++i) {
      switch (shape) {
        case 0:
          names << QStringLiteral("Out %1").arg(i, 5, 10, QLatin1Char('0'));
          break;
        case 1:
          names << QStringLiteral("Out %1").arg(16383 - i, 5, 10, QLatin1Char('0'));
          break;
        case 2:
          names << QStringLiteral("same");
          break;
        default:
          names << QString::number(random() % 1000);
          break;
      }
    }
    const QStringList original = names;
    std::vector<qint16> numbers(names.size());
    for (int i = 0; i < names.size(); ++i) {
      numbers[i] = static_cast<qint16>(i);
    }
    QuickSort(s, names, numbers, 0, static_cast<int>(names.size()) - 1);
    EXPECT_TRUE(std::is_sorted(names.begin(), names.end())) << shape;
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
