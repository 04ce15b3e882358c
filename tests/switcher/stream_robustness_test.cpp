#include <algorithm>
#include <cstdio>
#include <random>

#include "switcher/frame.h"
#include "switcher_fixture.h"

namespace zrn {
namespace {

class StreamRobustness : public test::SwitcherTest {};

// Valid frames of every kind the switcher sends, whole, with a byte changed, dropped or doubled,
// or swapped for noise, delivered in random pieces. A short fixed run here; scripts/fuzz runs it
// long with other seeds through ZRN_STREAM_ROUNDS and ZRN_STREAM_SEED.
TEST_F(StreamRobustness, RandomAndMutatedStreamsNeverBreakTheDecoder) {
  s.AppPath = dir.path() + QStringLiteral("/absent/");  // the garbage's error lines go nowhere
  std::size_t dispatched = 0;
  for (int type = 0x80; type <= 0xFF; ++type) {
    s.linkState.handlers[type] = [&dispatched, type](State&, const QByteArray& m) {
      ASSERT_EQ(static_cast<quint8>(m.front()), type);
      ASSERT_EQ(static_cast<quint8>(m.back()), 0xFF);
      ++dispatched;
    };
  }
  std::vector<QByteArray> frames = {QByteArray(1, '\xF5'), QByteArray(1, '\xF4')};
  for (int type : {0x80, 0x81, 0xCB, 0xF2, 0xF6, 0xF7, 0xFC, 0x9A}) {
    frames.push_back(BuildFrame(static_cast<quint8>(type), QByteArray(1 + type % 23, type % 128)));
  }
  const int rounds = qEnvironmentVariableIntValue("ZRN_STREAM_ROUNDS");
  const int streams = rounds > 0 ? rounds : 4000;
  const int seed = qEnvironmentVariableIsSet("ZRN_STREAM_SEED")
                       ? qEnvironmentVariableIntValue("ZRN_STREAM_SEED")
                       : 20261122;
  std::printf("%d streams, seed %d\n", streams, seed);
  std::mt19937 random(static_cast<unsigned>(seed));
  auto pick = [&](qsizetype n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };

  qsizetype largestBuffer = 0;
  for (int stream = 0; stream < streams; ++stream) {
    QByteArray bytes;
    for (int p = 1 + pick(6); p > 0; --p) {
      QByteArray f = frames[pick(frames.size())];
      const int at = pick(f.size());
      const int how = pick(6);
      if (how == 0) {
        f = QByteArray(pick(40), '\0');
        std::generate(f.begin(), f.end(), [&] { return static_cast<char>(random()); });
      } else if (how == 1) {
        f[at] = static_cast<char>(random());
      } else if (how == 2) {
        f.remove(at, 1);
      } else if (how == 3) {
        f.insert(at, f[at]);
      }
      bytes += f;
    }
    for (qsizetype at = 0, n = 0; at < bytes.size(); at += n) {
      n = 1 + pick(bytes.size() - at);
      OnDataAvailable(s, bytes.mid(at, n));
    }
    largestBuffer = std::max(largestBuffer, s.ReceiveBuffer.size());
    if (stream % 1000 == 999) {
      OnConnected(s);  // a reconnection starts with an empty buffer
    }
  }
  EXPECT_GT(dispatched, static_cast<std::size_t>(streams));
  EXPECT_LE(largestBuffer, kMaxReceiveBuffer);
  EXPECT_EQ(link.wire.count('\xF4'), link.wire.size()) << "only answers go out";
}

}  // namespace
}  // namespace zrn
