#include "sim/codec.h"

#include <QStringList>

#include <algorithm>

namespace zrn::sim {

namespace {

bool TopBit(char byte) {
  return (static_cast<quint8>(byte) & 0x80) != 0;
}

int PayloadSum(const QByteArray& bytes, qsizetype from, qsizetype to) {
  int sum = 0;
  for (qsizetype i = from; i < to; ++i) {
    sum = (sum + static_cast<quint8>(bytes[i])) & 127;
  }
  return sum;
}

}  // namespace

bool IsSingleByteMessage(quint8 type) {
  return type == 0xF1 || type == 0xF3 || type == kKeepAliveAnswer || type == kKeepAlive;
}

void Append14(QByteArray& out, int value) {
  value = std::clamp(value, 0, kNone);
  out.append(static_cast<char>(value & 127));
  out.append(static_cast<char>(value >> 7));
}

int Read14(const QByteArray& bytes, int offset) {
  return static_cast<quint8>(bytes[offset]) + 128 * static_cast<quint8>(bytes[offset + 1]);
}

QByteArray Frame(quint8 type, const QByteArray& payload) {
  QByteArray out;
  out.reserve(payload.size() + 3);
  out.append(static_cast<char>(type));
  out.append(payload);
  out.append(static_cast<char>(PayloadSum(payload, 0, payload.size())));
  out.append(static_cast<char>(kEndByte));
  return out;
}

bool HasValidChecksum(const QByteArray& message) {
  const qsizetype n = message.size();
  return n >= 3 && static_cast<quint8>(message[n - 1]) == kEndByte &&
         static_cast<quint8>(message[n - 2]) == PayloadSum(message, 1, n - 2);
}

QString HexBytes(const QByteArray& bytes) {
  return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

std::optional<QByteArray> ParseHex(const QString& text) {
  QByteArray out;
  for (QString token : text.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
    if (token.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
      token = token.mid(2);
    }
    if (token.isEmpty() || token.size() % 2 != 0) {
      return std::nullopt;
    }
    for (qsizetype i = 0; i < token.size(); i += 2) {
      bool ok = false;
      const uint value = token.mid(i, 2).toUInt(&ok, 16);
      if (!ok) {
        return std::nullopt;
      }
      out.append(static_cast<char>(value));
    }
  }
  if (out.isEmpty()) {
    return std::nullopt;
  }
  return out;
}

FrameReader::Item FrameReader::Take(qsizetype count, bool skipped) {
  Item item{skipped, buffer_.left(count)};
  buffer_.remove(0, count);
  return item;
}

std::optional<FrameReader::Item> FrameReader::Next() {
  if (buffer_.isEmpty()) {
    return std::nullopt;
  }
  const qsizetype typeAt =
      std::find_if(buffer_.cbegin(), buffer_.cend(), TopBit) - buffer_.cbegin();
  if (typeAt > 0) {
    return Take(typeAt, true);
  }
  const auto type = static_cast<quint8>(buffer_.at(0));
  if (IsSingleByteMessage(type)) {
    return Take(1, false);
  }
  if (type == kEndByte) {
    return Take(1, true);  // an end byte with no message before it
  }
  // The first byte after the type with its top bit set either ends the message or starts the
  // next one, in which case this one was cut short.
  const qsizetype next =
      std::find_if(buffer_.cbegin() + 1, buffer_.cend(), TopBit) - buffer_.cbegin();
  if (next == buffer_.size()) {
    return std::nullopt;
  }
  if (static_cast<quint8>(buffer_.at(next)) == kEndByte) {
    return Take(next + 1, false);
  }
  return Take(next, true);
}

}  // namespace zrn::sim
