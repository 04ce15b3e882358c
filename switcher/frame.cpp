#include "switcher/frame.h"

#include "core/failure.h"
#include "switcher/byte_utils.h"

namespace zrn {

void AppendInt14(QByteArray& payload, int value) {
  if (value < 0 || value > kMax14Bit) {
    throw Failure::Overflow();
  }
  payload.append(static_cast<char>(value & 127));
  payload.append(static_cast<char>(value >> 7));
}

QByteArray BuildFrame(quint8 type, const QByteArray& payload) {
  for (char byte : payload) {
    if (static_cast<quint8>(byte) > 127) {
      throw Failure::InvalidArgument();
    }
  }
  QByteArray frame;
  frame.reserve(payload.size() + 3);
  frame.append(static_cast<char>(type));
  frame.append(payload);
  frame.append(static_cast<char>(CheckSum(frame, 0)));
  frame.append(kEndOfMessage);
  return frame;
}

}  // namespace zrn
