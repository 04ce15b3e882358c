// Cost of redrawing the output panels: UpdateOutputs (panel texts) and UpdateStatus (lamps and
// the relay decision) for 256 watched outputs, as every status report and poll tick asks.
#include <benchmark/benchmark.h>
#include <QTemporaryDir>

#include "bench/null_link.h"
#include "core/state.h"
#include "monitor/link_watch.h"
#include "monitor/panel_filter.h"
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

// The part of each poll tick that counts how long outputs have been silent (and, with "Only
// alarms" set, follows the alarms), for 4096 watched outputs with every eighth one silent, the
// clock moving on 500 ms a tick. Target: well under 1 ms a tick.
void BM_SilentDurationsPerTick(benchmark::State& state) {
  QTemporaryDir dir;
  NullLink link;
  zrn::ManualClock clock;
  zrn::State s;
  s.link = &link;
  s.clock = &clock;
  s.AppPath = dir.path() + QLatin1Char('/');
  s.Connected = true;
  s.linkState.ExchangeComplete = true;
  const int watched = static_cast<int>(state.range(0));
  s.Outputs.assign(watched, zrn::OutputEntry{});
  s.OutputCount = static_cast<qint16>(watched);
  for (int i = 0; i < watched; ++i) {
    s.Outputs[i].Output = static_cast<qint16>(i % 256 + 1);
    s.Outputs[i].MonitoringEnabled = true;
    s.SilenceStatus[i % 256].Mode = kDetecting;
  }
  for (int channel = 0; channel < 256; channel += 8) {
    s.SilenceStatus[channel].Status = 1;
  }
  zrn::UpdateOutputs(s);
  if (state.range(1) != 0) {
    zrn::SetPanelFilter(s, QString(), true);
  }
  zrn::WatchTick(s);
  for (auto _ : state) {
    clock.AdvanceMs(500);
    zrn::WatchTick(s);
    benchmark::DoNotOptimize(s.panels);
  }
  state.SetItemsProcessed(state.iterations() * watched);
}
BENCHMARK(BM_SilentDurationsPerTick)
    ->Args({4096, 0})
    ->Args({4096, 1})
    ->ArgNames({"watched", "only_alarms"})
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
