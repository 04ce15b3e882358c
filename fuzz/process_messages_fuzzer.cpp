// Feeds arbitrary bytes to the receive side of the switcher link, cut into pieces as a network
// would deliver them: the first byte of the input chooses the piece size. Every input starts
// from a copy of the same freshly connected state.
#include <QByteArray>
#include <QDir>
#include <algorithm>

#include "core/state.h"
#include "switcher/link.h"

namespace {

class NullLink final : public zrn::Link {
 public:
  void Open(const QString&, quint16) override {}
  void Close() override {}
  qint64 Write(const QByteArray& bytes) override { return bytes.size(); }
  bool CanWrite() const override { return true; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static NullLink link;
  static const zrn::State connected = [] {
    zrn::State s;
    // Error lines go nowhere: the folder does not exist, so nothing piles up on the disk.
    s.AppPath = QDir::tempPath() + QStringLiteral("/zrn-fuzz-absent/");
    s.link = &link;
    zrn::OnConnected(s);
    return s;
  }();
  if (size == 0) {
    return 0;
  }
  zrn::State s = connected;
  const auto piece = static_cast<size_t>(1 + data[0] % 64);
  for (size_t at = 1; at < size; at += piece) {
    const size_t n = std::min(piece, size - at);
    zrn::OnDataAvailable(s, QByteArray::fromRawData(reinterpret_cast<const char*>(data + at),
                                                    static_cast<qsizetype>(n)));
  }
  if (s.ReceiveBuffer.size() > zrn::kMaxReceiveBuffer) {
    __builtin_trap();
  }
  return 0;
}
