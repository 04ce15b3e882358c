// Cost of what the alerts add to the event loop with the largest router watched: the tracker's
// look after every handled event, and one scrape of /metrics or /api/status.
#include <benchmark/benchmark.h>
#include <QJsonDocument>
#include <QTemporaryDir>

#include "alerts/alert_events.h"
#include "alerts/status_snapshot.h"
#include "bench/null_link.h"
#include "core/state.h"
#include "monitor/panel_update.h"

namespace {

using zrn::bench::NullLink;

constexpr qint16 kDetecting = 0x109;

// watched outputs, every eighth silent, panels drawn.
struct Watched {
  explicit Watched(int watched) {
    s.link = &link;
    s.AppPath = dir.path() + QLatin1Char('/');
    s.SwitcherOutputCount = static_cast<qint16>(std::max(watched, 256));
    s.SilenceStatus.resize(s.SwitcherOutputCount);
    s.CrosspointMap.resize(s.SwitcherOutputCount);
    s.Outputs.assign(watched, zrn::OutputEntry{});
    s.OutputCount = static_cast<qint16>(watched);
    for (int i = 0; i < watched; ++i) {
      zrn::OutputEntry& out = s.Outputs[i];
      out.Output = static_cast<qint16>(i + 1);
      out.MonitoringEnabled = true;
      out.DisplayOption = static_cast<qint16>(i % 3);
      out.CustomLabel = QStringLiteral("Studio %1").arg(i);
      s.SilenceStatus[i].Mode = kDetecting;
      s.SilenceStatus[i].Status = i % 8 == 0 ? 1 : 0;
      s.CrosspointMap[i].SourceCount = 1;
      s.CrosspointMap[i].Sources[0] = static_cast<qint16>(i);
    }
    s.Connected = true;
    s.linkState.ExchangeComplete = true;
    zrn::UpdateOutputs(s);
    zrn::UpdateStatus(s);
  }
  QTemporaryDir dir;
  NullLink link;
  zrn::State s;
};

void BM_TrackerUpdate(benchmark::State& state) {
  Watched w(static_cast<int>(state.range(0)));
  zrn::AlertTracker tracker;
  tracker.Update(w.s);
  for (auto _ : state) {
    benchmark::DoNotOptimize(tracker.Update(w.s));
  }
}
BENCHMARK(BM_TrackerUpdate)->Arg(256)->Arg(4096)->Unit(benchmark::kMicrosecond);

void BM_MetricsScrape(benchmark::State& state) {
  Watched w(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(zrn::MetricsText(zrn::TakeStatusSnapshot(w.s, {})));
  }
}
BENCHMARK(BM_MetricsScrape)->Arg(256)->Arg(4096)->Unit(benchmark::kMillisecond);

void BM_StatusJson(benchmark::State& state) {
  Watched w(static_cast<int>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(QJsonDocument(zrn::StatusJson(zrn::TakeStatusSnapshot(w.s, {})))
                                 .toJson(QJsonDocument::Compact));
  }
}
BENCHMARK(BM_StatusJson)->Arg(256)->Arg(4096)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
