#pragma once

#include <QByteArray>

namespace zrn {

inline constexpr char kEndOfMessage = static_cast<char>(0xFF);
inline constexpr int kMax14Bit = 16383;

// Appends a 14-bit number as two 7-bit bytes, low first; a value outside 0..16383 throws.
void AppendInt14(QByteArray& payload, int value);

// Type byte, payload of 7-bit bytes, checksum and end byte. A payload byte with its top bit
// set throws, since it would end or cut the frame on the wire.
QByteArray BuildFrame(quint8 type, const QByteArray& payload);

}  // namespace zrn
