#pragma once

#include <QByteArray>

#include "core/failure.h"
#include "core/state.h"
#include "switcher/byte_utils.h"

namespace zrn {

// Whether a received frame's checksum byte matches its payload.
inline bool ChecksumOk(const QByteArray& message) {
  return message.size() >= 3 &&
         CheckSum(message, 2) == static_cast<quint8>(message[message.size() - 2]);
}

// Reads the payload of a received frame field by field. The checksum and end byte are not
// payload: reading into them throws, so a message shorter than its own counts is an error of
// the handler that reads it, never a read out of bounds.
class MessageReader {
 public:
  MessageReader(State& s, const QByteArray& message, qsizetype offset = 1)
      : s_(s), message_(message), at_(offset) {}

  int Byte() { return static_cast<quint8>(message_[Take(1)]); }

  // A 14-bit number, low 7 bits first.
  int Int14() {
    const qsizetype at = Take(2);
    return ConvertInteger(s_, static_cast<quint8>(message_[at]),
                          static_cast<quint8>(message_[at + 1]));
  }

  // The next n bytes.
  QByteArray Bytes(int n) { return message_.mid(Take(n), n); }

 private:
  qsizetype Take(qsizetype n) {
    if (n < 0 || at_ + n > message_.size() - 2) {
      throw Failure::InvalidArgument();
    }
    const qsizetype at = at_;
    at_ += n;
    return at;
  }

  State& s_;
  const QByteArray& message_;
  qsizetype at_;
};

}  // namespace zrn
