// Feeds arbitrary bytes to the receive side of the switcher link, cut into pieces as a network
// would deliver them: the first byte of the input chooses the piece size. Every input starts
// from the same freshly connected state.
#include <QByteArray>
#include <QDir>
#include <algorithm>
#include <vector>

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

class Decoder {
 public:
  Decoder() {
    // Error lines go nowhere: the folder does not exist, so nothing piles up on the disk.
    s_.AppPath = QDir::tempPath() + QStringLiteral("/zrn-fuzz-absent/");
    s_.link = &link_;
    zrn::OnConnected(s_);
    // The crosspoint records are most of a state's bytes and only crosspoint maps write them
    // (a name table may resize them): they are kept apart and copied back only when touched.
    mapHandler_ = s_.linkState.handlers[0xF6];
    s_.linkState.handlers[0xF6] = [this](zrn::State& s, const QByteArray& m) {
      mapWritten_ = true;
      mapHandler_(s, m);
    };
    records_ = std::move(s_.CrosspointMap);
    s_.CrosspointMap.clear();
    pristine_ = s_;
    s_.CrosspointMap = records_;
  }

  zrn::State& state() { return s_; }

  void Reset() {
    auto map = std::move(s_.CrosspointMap);
    s_ = pristine_;
    if (mapWritten_ || map.size() != records_.size()) {
      map = records_;
    }
    s_.CrosspointMap = std::move(map);
    mapWritten_ = false;
  }

 private:
  NullLink link_;
  zrn::State s_;
  zrn::State pristine_;
  std::vector<zrn::CrosspointEntry> records_;
  zrn::MessageHandler mapHandler_;
  bool mapWritten_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static Decoder decoder;
  if (size == 0) {
    return 0;
  }
  zrn::State& s = decoder.state();
  const auto piece = static_cast<size_t>(1 + data[0] % 64);
  for (size_t at = 1; at < size; at += piece) {
    const size_t n = std::min(piece, size - at);
    zrn::OnDataAvailable(s, QByteArray::fromRawData(reinterpret_cast<const char*>(data + at),
                                                    static_cast<qsizetype>(n)));
  }
  if (s.ReceiveBuffer.size() > zrn::kMaxReceiveBuffer) {
    __builtin_trap();
  }
  decoder.Reset();
  return 0;
}
