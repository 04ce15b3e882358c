// Throughput of the switcher link: decoding and dispatching a realistic mixed stream, and
// building command frames.
#include <benchmark/benchmark.h>
#include <QDir>
#include <QTemporaryDir>
#include <algorithm>

#include "bench/switcher_state.h"
#include "core/state.h"
#include "switcher/frame.h"
#include "switcher/link.h"

namespace {

// Keep-alives, silence change-of-state reports and crosspoint reports about switcher outputs
// 0 .. outputs - 1, as a busy switcher sends them.
QByteArray MixedStream(int messages, int outputs) {
  QByteArray stream;
  for (int i = 0; i < messages; ++i) {
    QByteArray payload;
    switch (i % 4) {
      case 0:
        stream.append(static_cast<char>(0xF5));
        continue;
      case 1:
      case 2:
        // Change of state: one item, output, status.
        payload.append(static_cast<char>(0x0A));
        zrn::AppendInt14(payload, 1);
        zrn::AppendInt14(payload, i % outputs);
        payload.append(static_cast<char>(i % 2));
        stream += zrn::BuildFrame(0xCB, payload);
        break;
      default:
        // Crosspoint block of one output with one source.
        payload.append(static_cast<char>(0x01));
        zrn::AppendInt14(payload, 1);
        zrn::AppendInt14(payload, i % outputs);
        zrn::AppendInt14(payload, 1);
        payload.append('\0');
        zrn::AppendInt14(payload, (i * 7) % outputs);
        zrn::AppendInt14(payload, 0);
        stream += zrn::BuildFrame(0xF6, payload);
    }
  }
  return stream;
}

// Arguments: messages, watched outputs. 64 watched outputs are every fourth of a 256-output
// switcher, as a station would watch; 4096 are every output of a 4096 x 4096 router.
void BM_DecodeMixedStream(benchmark::State& state) {
  const int messages = static_cast<int>(state.range(0));
  const int watched = static_cast<int>(state.range(1));
  const int outputs = std::max(256, watched);
  zrn::bench::SwitcherState w(outputs, watched, 1, outputs / watched);
  zrn::State& s = w.s;
  zrn::OnConnected(s);
  const QByteArray stream = MixedStream(messages, outputs);
  for (auto _ : state) {
    s.ReceiveBuffer = stream;
    s.linkState.eomSearchedBytes = 0;
    while (zrn::DecodeAvailable(s, std::chrono::hours(1))) {
    }
    benchmark::DoNotOptimize(s.ReceiveBuffer);
  }
  state.SetItemsProcessed(state.iterations() * messages);
  state.SetBytesProcessed(state.iterations() * stream.size());
}
BENCHMARK(BM_DecodeMixedStream)->Args({10000, 64})->Args({10000, 4096});

void BM_BuildFrames(benchmark::State& state) {
  QByteArray payload;
  for (int i = 0; i < state.range(0); ++i) {
    payload.append(static_cast<char>(i % 128));
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(zrn::BuildFrame(0xCB, payload));
  }
  state.SetBytesProcessed(state.iterations() * (payload.size() + 3));
}
BENCHMARK(BM_BuildFrames)->Arg(6)->Arg(14 * 256 + 5);

}  // namespace

BENCHMARK_MAIN();
