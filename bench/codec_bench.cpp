// Throughput of the switcher link: decoding and dispatching a realistic mixed stream, and
// building command frames.
#include <benchmark/benchmark.h>
#include <QDir>
#include <QTemporaryDir>

#include "bench/null_link.h"
#include "core/state.h"
#include "switcher/frame.h"
#include "switcher/link.h"

namespace {

using zrn::bench::NullLink;

// Keep-alives, silence change-of-state reports and crosspoint reports, as a busy switcher
// sends them.
QByteArray MixedStream(int messages) {
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
        zrn::AppendInt14(payload, i % 256);
        payload.append(static_cast<char>(i % 2));
        stream += zrn::BuildFrame(0xCB, payload);
        break;
      default:
        // Crosspoint block of one output with one source.
        payload.append(static_cast<char>(0x01));
        zrn::AppendInt14(payload, 1);
        zrn::AppendInt14(payload, i % 256);
        zrn::AppendInt14(payload, 1);
        payload.append('\0');
        zrn::AppendInt14(payload, (i * 7) % 256);
        zrn::AppendInt14(payload, 0);
        stream += zrn::BuildFrame(0xF6, payload);
    }
  }
  return stream;
}

void BM_DecodeMixedStream(benchmark::State& state) {
  NullLink link;
  // Logs go to a real folder: a watched output's silence change writes an activity line.
  QTemporaryDir dir;
  zrn::State s;
  s.AppPath = dir.path() + QLatin1Char('/');
  s.link = &link;
  zrn::OnConnected(s);
  // Watch 64 outputs, as a station would; the reports below concern all 256.
  s.Outputs.assign(64, zrn::OutputEntry{});
  for (int i = 0; i < 64; ++i) {
    s.Outputs[i].Output = static_cast<qint16>(1 + 4 * i);
  }
  s.OutputCount = 64;
  const int messages = static_cast<int>(state.range(0));
  const QByteArray stream = MixedStream(messages);
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
BENCHMARK(BM_DecodeMixedStream)->Arg(1000)->Arg(10000);

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
