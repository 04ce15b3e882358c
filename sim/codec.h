#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace zrn::sim {

// "None" for every channel or relay number on the wire.
inline constexpr int kNone = 16383;
inline constexpr quint8 kEndByte = 0xFF;

// Single-byte messages: keep-alive, its answer and the two acknowledgements.
inline constexpr quint8 kKeepAlive = 0xF5;
inline constexpr quint8 kKeepAliveAnswer = 0xF4;
bool IsSingleByteMessage(quint8 type);

// Two 7-bit bytes, low first; values are clamped to 0..16383 so no data byte gets its top bit.
void Append14(QByteArray& out, int value);
int Read14(const QByteArray& bytes, int offset);

// Type byte, payload, checksum (payload sum modulo 128) and end byte.
QByteArray Frame(quint8 type, const QByteArray& payload);

// Whether a complete framed message carries the right checksum.
bool HasValidChecksum(const QByteArray& message);

// "81 64 64 FF"
QString HexBytes(const QByteArray& bytes);
// Accepts "F5 F4", "f5f4" or "0xF5 0xF4"; nullopt for anything else.
std::optional<QByteArray> ParseHex(const QString& text);

// Cuts a byte stream into messages the way the monitor's own decoder does: bytes before a type
// byte are skipped, and a frame cut short by the next type byte is skipped up to that byte.
class FrameReader {
 public:
  // A connection that sends this much without an end byte is not talking the protocol.
  static constexpr qsizetype kMaxPending = 1024 * 1024;

  struct Item {
    bool skipped = false;  // bytes that belong to no message
    QByteArray bytes;
  };

  void Append(const QByteArray& bytes) { buffer_.append(bytes); }
  // The next message or skipped run, or nullopt when the rest needs more bytes.
  std::optional<Item> Next();
  // True once the unfinished message has grown past kMaxPending.
  bool Overflowed() const { return buffer_.size() > kMaxPending; }

 private:
  Item Take(qsizetype count, bool skipped);

  QByteArray buffer_;
};

}  // namespace zrn::sim
