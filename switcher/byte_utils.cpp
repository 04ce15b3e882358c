#include "switcher/byte_utils.h"

#include <utility>

#include "core/failure.h"
#include "core/numbers.h"
#include "storage/logs.h"

namespace zrn {

qint16 ConvertInteger(State& s, int low, int high) {
  qint16 result = kNone;
  Trap(s, QStringLiteral("Invalid data in Message"), QStringLiteral("Integer Conversion Error"),
       [&] { result = ToInteger(static_cast<long long>(high) * 128 + low); });
  return result;
}

int CheckSum(const QByteArray& message, int n) {
  int sum = 0;
  for (qsizetype i = 1; i <= message.size() - 1 - n; ++i) {
    sum = (sum + static_cast<quint8>(message[i])) & 127;
  }
  return sum;
}

int FindEOM(State& /*s*/, const QByteArray& buffer) {
  const qsizetype at = buffer.indexOf(static_cast<char>(0xFF));
  return at < 0 ? 0 : static_cast<int>(at + 1);
}

QByteArray TrimBuffer(State& s, int n) {
  QByteArray& buffer = s.ReceiveBuffer;
  if (n >= buffer.size()) {
    return std::exchange(buffer, QByteArray());
  }
  if (n <= 0) {
    return QByteArray();
  }
  QByteArray head = buffer.left(n);
  buffer.remove(0, n);
  return head;
}

QByteArray SplitBytes(QByteArray& bytes, int n) {
  QByteArray head = bytes.left(n);
  bytes.remove(0, std::min<qsizetype>(std::max(n, 0), bytes.size()));
  return head;
}

qint16 ConvertMinutes(State& s, const QString& time, int day) {
  qint16 result = 0;
  Trap(s, QStringLiteral("Error Converting Minutes"), QStringLiteral("Timer Error"), [&] {
    const qsizetype colon = time.indexOf(QLatin1Char(':'));
    if (colon < 0) {
      throw Failure::TypeMismatch();
    }
    double hour = RoundHalfEven(LeadingNumber(time.left(colon)));
    const double minute = RoundHalfEven(LeadingNumber(time.mid(colon + 1, 2)));
    const qsizetype m = time.indexOf(QLatin1Char('M'), colon + 1);
    const QString suffix = m >= 1 ? time.mid(m - 1, 2) : time.mid(9, 2);
    if (suffix == QLatin1String("AM") && hour == 12) {
      hour = 0;
    } else if (suffix == QLatin1String("PM") && hour != 12) {
      hour += 12;
    }
    const double total = static_cast<double>(day) * 1440 + hour * 60 + minute;
    if (!(total >= -32768 && total <= 32767)) {
      throw Failure::Overflow();
    }
    result = static_cast<qint16>(total);
  });
  return result;
}

namespace {

void SortRange(QStringList& names, std::vector<qint16>& numbers, int low, int high) {
  // The smaller part recurses and the larger one loops, so the depth stays logarithmic
  // whatever names the switcher sends.
  while (low < high) {
    int i = low;
    int j = high;
    const QString pivot = At(names, (low + high) / 2);
    do {
      while (At(names, i) < pivot) {
        ++i;
      }
      while (At(names, j) > pivot) {
        --j;
      }
      if (i <= j) {
        names.swapItemsAt(i, j);
        std::swap(At(numbers, i), At(numbers, j));
        ++i;
        --j;
      }
    } while (i <= j);
    if (j - low < high - i) {
      if (low < j) {
        SortRange(names, numbers, low, j);
      }
      low = i;
    } else {
      if (i < high) {
        SortRange(names, numbers, i, high);
      }
      high = j;
    }
  }
}

}  // namespace

void QuickSort(State& s, QStringList& names, std::vector<qint16>& numbers, int low, int high) {
  Trap(s, QStringLiteral("Quick Sort Error"), QStringLiteral("Sort Error"),
       [&] { SortRange(names, numbers, low, high); });
}

}  // namespace zrn
