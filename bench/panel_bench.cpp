// Cost of redrawing the output panels: UpdateOutputs (panel texts) and UpdateStatus (lamps and
// the relay decision) for 256 watched outputs, as every status report and poll tick asks.
#include <benchmark/benchmark.h>
#include <QTemporaryDir>

#include "bench/null_link.h"
#include "core/state.h"
#include "monitor/panel_update.h"

namespace {

using zrn::bench::NullLink;

constexpr qint16 kDetecting = 0x109;

void BM_UpdateOutputsAndStatus(benchmark::State& state) {
  QTemporaryDir dir;
  NullLink link;
  zrn::State s;
  s.link = &link;
  s.AppPath = dir.path() + QLatin1Char('/');
  const int watched = static_cast<int>(state.range(0));
  s.Outputs.assign(watched, zrn::OutputEntry{});
  s.OutputCount = static_cast<qint16>(watched);
  for (int i = 0; i < watched; ++i) {
    zrn::OutputEntry& out = s.Outputs[i];
    out.Output = static_cast<qint16>(i + 1);
    out.MonitoringEnabled = true;
    // A mix of the three ways a panel is labelled.
    out.DisplayOption = static_cast<qint16>(i % 3);
    out.CustomLabel = QStringLiteral("Studio %1").arg(i);
    s.SilenceStatus[i].Mode = kDetecting;
    s.CrosspointMap[i].SourceCount = 1;
    s.CrosspointMap[i].Sources[0] = static_cast<qint16>(i);
  }
  // Every eighth output silent, its alarm raised before timing starts.
  for (int i = 0; i < watched; i += 8) {
    s.SilenceStatus[i].Status = 1;
  }
  zrn::UpdateOutputs(s);
  zrn::UpdateStatus(s);
  for (auto _ : state) {
    zrn::UpdateOutputs(s);
    zrn::UpdateStatus(s);
    benchmark::DoNotOptimize(s.panels);
  }
  state.SetItemsProcessed(state.iterations() * watched);
}
BENCHMARK(BM_UpdateOutputsAndStatus)->Arg(256)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
