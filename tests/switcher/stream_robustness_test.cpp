#include <cstdio>
#include <random>

#include "switcher/frame.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

// Valid frames of every kind the switcher sends, to be cut, mutated and mixed with noise.
std::vector<QByteArray> SampleFrames() {
  std::vector<QByteArray> frames;
  frames.push_back(QByteArray(1, static_cast<char>(0xF5)));
  frames.push_back(QByteArray(1, static_cast<char>(0xF4)));
  for (int type : {0x80, 0x81, 0xCB, 0xF2, 0xF6, 0xF7, 0xFC, 0x9A}) {
    QByteArray payload;
    for (int i = 0; i < 1 + type % 23; ++i) {
      payload.append(static_cast<char>((type * 7 + i * 13) % 128));
    }
    frames.push_back(BuildFrame(static_cast<quint8>(type), payload));
  }
  return frames;
}

// A short fixed run here; scripts/fuzz runs it long with other seeds through these variables.
int EnvironmentNumber(const char* name, int fallback) {
  bool ok = false;
  const int value = qEnvironmentVariableIntValue(name, &ok);
  return ok && value > 0 ? value : fallback;
}

class StreamRobustness : public test::SwitcherTest {};

TEST_F(StreamRobustness, RandomAndMutatedStreamsNeverBreakTheDecoder) {
  // Garbage costs an error-log line per run; the lines are not what is tested here, so they
  // go nowhere instead of to disk.
  s.AppPath = dir.path() + QStringLiteral("/absent/");
  std::size_t dispatched = 0;
  for (int type = 0x80; type <= 0xFF; ++type) {
    s.linkState.handlers[type] = [&dispatched, type](State&, const QByteArray& m) {
      ASSERT_EQ(static_cast<quint8>(m.front()), type);
      ASSERT_EQ(static_cast<quint8>(m.back()), 0xFF);
      ++dispatched;
    };
  }
  const std::vector<QByteArray> frames = SampleFrames();
  const int streams = EnvironmentNumber("ZRN_STREAM_ROUNDS", 4000);
  const auto seed = static_cast<unsigned>(EnvironmentNumber("ZRN_STREAM_SEED", 20261122));
  std::printf("%d streams, seed %u (ZRN_STREAM_ROUNDS, ZRN_STREAM_SEED)\n", streams, seed);
  std::mt19937 random(seed);
  auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };

  qsizetype largestBuffer = 0;
  for (int stream = 0; stream < streams; ++stream) {
    // Whole frames, frames with a byte changed, dropped or doubled, and noise.
    QByteArray bytes;
    for (int p = 1 + pick(6); p > 0; --p) {
      QByteArray f = frames[pick(static_cast<int>(frames.size()))];
      const int at = pick(static_cast<int>(f.size()));
      switch (pick(6)) {
        case 0:
          f.clear();
          for (int i = pick(40); i > 0; --i) {
            f.append(static_cast<char>(random()));
          }
          break;
        case 1:
          f[at] = static_cast<char>(random());
          break;
        case 2:
          f.remove(at, 1);
          break;
        case 3:
          f.insert(at, f[at]);
          break;
      }
      bytes += f;
    }
    // Delivered in random pieces, as a network would.
    for (qsizetype at = 0; at < bytes.size();) {
      const qsizetype n = 1 + pick(static_cast<int>(bytes.size() - at));
      OnDataAvailable(s, bytes.mid(at, n));
      at += n;
    }
    largestBuffer = std::max(largestBuffer, s.ReceiveBuffer.size());
    if (stream % 1000 == 999) {
      s.ReceiveBuffer.clear();  // as a reconnection would
      OnConnected(s);
    }
  }
  EXPECT_GT(dispatched, static_cast<std::size_t>(streams));
  EXPECT_LE(largestBuffer, kMaxReceiveBuffer);
  EXPECT_FALSE(link.wire.isEmpty());
  EXPECT_EQ(link.wire.count(static_cast<char>(0xF4)), link.wire.size()) << "only answers go out";
}

}  // namespace
}  // namespace zrn
