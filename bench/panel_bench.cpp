// Cost of redrawing the output panels: UpdateOutputs (panel texts) and UpdateStatus (lamps and
// the relay decision) for 256 and 4096 watched outputs, as every status report and poll tick asks.
#include <benchmark/benchmark.h>
#include <algorithm>

#include "bench/switcher_state.h"
#include "core/state.h"
#include "monitor/link_watch.h"
#include "monitor/panel_filter.h"
#include "monitor/panel_update.h"

namespace {

void BM_UpdateOutputsAndStatus(benchmark::State& state) {
  const int watched = static_cast<int>(state.range(0));
  zrn::bench::SwitcherState w(std::max(256, watched), watched);
  zrn::State& s = w.s;
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
BENCHMARK(BM_UpdateOutputsAndStatus)->Arg(256)->Arg(4096)->Unit(benchmark::kMicrosecond);

// The part of each poll tick that counts how long outputs have been silent (and, with "Only
// alarms" set, follows the alarms), for 4096 watched outputs with every eighth one silent, the
// clock moving on 500 ms a tick. Target: well under 1 ms a tick.
void BM_SilentDurationsPerTick(benchmark::State& state) {
  const int watched = static_cast<int>(state.range(0));
  zrn::bench::SwitcherState w(watched, watched);
  zrn::State& s = w.s;
  zrn::ManualClock clock;
  s.clock = &clock;
  s.Connected = true;
  s.linkState.ExchangeComplete = true;
  for (int i = 0; i < watched; i += 8) {
    s.SilenceStatus[i].Status = 1;
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
