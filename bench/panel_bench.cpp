// Cost of redrawing the output panels: UpdateOutputs (panel texts) and UpdateStatus (lamps and
// the relay decision) for 256 and 4096 watched outputs, as every status report and poll tick asks.
#include <benchmark/benchmark.h>
#include <algorithm>

#include "bench/switcher_state.h"
#include "core/state.h"
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

}  // namespace

BENCHMARK_MAIN();
