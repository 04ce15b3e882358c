// Feeds arbitrary bytes to the receive side of the switcher link, cut into pieces as a network
// would deliver them: the first byte of the input chooses the piece size.
#include <QByteArray>
#include <QDir>

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
  static zrn::State* s = [] {
    auto* state = new zrn::State;
    // Error lines go nowhere: the folder does not exist.
    state->AppPath = QDir::tempPath() + QStringLiteral("/zrn-fuzz-absent/");
    state->link = &link;
    zrn::OnConnected(*state);
    return state;
  }();
  if (size == 0) {
    return 0;
  }
  const qsizetype piece = 1 + data[0] % 64;
  const QByteArray bytes(reinterpret_cast<const char*>(data + 1), static_cast<qsizetype>(size - 1));
  for (qsizetype at = 0; at < bytes.size(); at += piece) {
    zrn::OnDataAvailable(*s, bytes.mid(at, piece));
  }
  if (s->ReceiveBuffer.size() > zrn::kMaxReceiveBuffer) {
    __builtin_trap();
  }
  zrn::OnConnected(*s);  // the next input starts on a clean connection
  return 0;
}
