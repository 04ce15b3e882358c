// Feeds arbitrary bytes to the receive side of the switcher link, cut into pieces as a network
// would deliver them: the first byte of the input chooses the piece size.
//
// The state is set up once. Every input starts from it again, but only what the input's
// messages reached is put back: copying a whole state per input would cost more than decoding.
#include <QByteArray>
#include <QDir>
#include <algorithm>
#include <array>
#include <bitset>
#include <utility>
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
    // Error lines go nowhere: the folder does not exist. A failed attempt costs less than a
    // written line, and nothing piles up on the disk.
    s_.AppPath = QDir::tempPath() + QStringLiteral("/zrn-fuzz-absent/");
    s_.link = &link_;
    zrn::OnConnected(s_);
    // Each handler notes that it ran, so the reset knows what the input may have changed. The
    // state to go back to holds the same noting handlers: they are small enough to be copied
    // without allocating.
    for (int type = 0; type < 256; ++type) {
      real_[type] = s_.linkState.handlers[type];
      if (real_[type]) {
        s_.linkState.handlers[type] = [this, type](zrn::State& s, const QByteArray& m) {
          Reached(type, m);
          real_[type](s, m);
        };
      }
    }
    pristine_ = s_;
  }

  zrn::State& state() { return s_; }

  void Reached(int type, const QByteArray& m) {
    reached_.set(static_cast<size_t>(type));
    if (type == 0xF6 && m.size() >= 6) {
      // A crosspoint map writes the records of its outputs only.
      const int count = (m[2] & 127) + 128 * (m[3] & 127);
      const int first = (m[4] & 127) + 128 * (m[5] & 127);
      routed_.emplace_back(first, first + count);
    }
  }

  void Reset() {
    zrn::OnConnected(s_);
    s_.requests = pristine_.requests;
    s_.MessageRows = pristine_.MessageRows;
    s_.StatusBarText = pristine_.StatusBarText;
    if (reached_.none()) {
      return;
    }
    std::bitset<256> reports;
    for (const int type : {0xCB, 0xF6, 0xF7}) {
      reports.set(type);
    }
    if ((reached_ & ~reports).any()) {
      // Name tables and the start-up exchange reach nearly everything: start over. The
      // crosspoint records (most of a state's bytes) stay out of the copy: below, only the
      // ones the input wrote are put back.
      auto map = std::move(s_.CrosspointMap);
      auto cleanMap = std::move(pristine_.CrosspointMap);
      s_ = pristine_;
      pristine_.CrosspointMap = std::move(cleanMap);
      s_.CrosspointMap = std::move(map);
    } else {
      // The status reports change their own table, the watched output and its panel.
      if (reached_.test(0xCB)) {
        s_.SilenceStatus = pristine_.SilenceStatus;
        s_.SilenceGraceUntil = pristine_.SilenceGraceUntil;
      }
      if (reached_.test(0xF7)) {
        s_.RelayStates = pristine_.RelayStates;
      }
      s_.Outputs = pristine_.Outputs;
      s_.panels = pristine_.panels;
      s_.lossAlarm = pristine_.lossAlarm;
    }
    // A name table may have resized the records; otherwise only crosspoint maps wrote them.
    const auto records = static_cast<int>(pristine_.CrosspointMap.size());
    if (static_cast<int>(s_.CrosspointMap.size()) != records) {
      s_.CrosspointMap = pristine_.CrosspointMap;
    } else {
      for (const auto& [first, end] : routed_) {
        if (first < records) {
          std::copy(pristine_.CrosspointMap.begin() + first,
                    pristine_.CrosspointMap.begin() + std::min(end, records),
                    s_.CrosspointMap.begin() + first);
        }
      }
    }
    reached_.reset();
    routed_.clear();
  }

 private:
  NullLink link_;
  zrn::State s_;
  zrn::State pristine_;
  std::array<zrn::MessageHandler, 256> real_;
  std::bitset<256> reached_;
  // Outputs first .. end - 1 of each crosspoint map handled.
  std::vector<std::pair<int, int>> routed_;
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
  decoder.Reset();  // the next input starts where this one did
  return 0;
}
