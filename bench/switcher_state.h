// A state as the start-up exchange leaves it with a switcher of a given size, watching the first
// outputs with silence detection on, for timing the core on its own.
#pragma once

#include <QString>
#include <QTemporaryDir>

#include "bench/null_link.h"
#include "core/state.h"

namespace zrn::bench {

struct SwitcherState {
  QTemporaryDir dir;  // logs go to a real folder, as in the program
  NullLink link;
  State s;

  // Watches outputs first, first + step, ... (1-based), with mixed display options.
  SwitcherState(int switcherOutputs, int watched, int first = 1, int step = 1) {
    s.AppPath = dir.path() + QLatin1Char('/');
    s.link = &link;
    s.SwitcherOutputCount = static_cast<qint16>(switcherOutputs);
    s.SwitcherInputCount = static_cast<qint16>(switcherOutputs);
    s.OutputNames.clear();
    s.InputNames.clear();
    for (int k = 1; k <= switcherOutputs; ++k) {
      s.OutputNames << QStringLiteral("Out %1").arg(k, 4, 10, QLatin1Char('0'));
      s.InputNames << QStringLiteral("In %1").arg(k, 4, 10, QLatin1Char('0'));
    }
    s.CrosspointMap.assign(switcherOutputs, CrosspointEntry{});
    s.SilenceStatus.assign(switcherOutputs, SilenceStatusEntry{});
    s.RelayStates.assign(switcherOutputs, 0);
    s.SilenceOutIndex.assign(switcherOutputs, kNone);
    s.Outputs.assign(watched, OutputEntry{});
    s.OutputCount = static_cast<qint16>(watched);
    for (int i = 0; i < watched; ++i) {
      OutputEntry& out = s.Outputs[i];
      out.Output = static_cast<qint16>(first + step * i);
      out.MonitoringEnabled = true;
      out.DisplayOption = static_cast<qint16>(i % 3);
      out.CustomLabel = QStringLiteral("Studio %1").arg(i);
    }
    for (int o = 0; o < switcherOutputs; ++o) {
      s.SilenceStatus[o].Mode = 0x109;  // silence detection on, relay alarm
      s.CrosspointMap[o].SourceCount = 1;
      s.CrosspointMap[o].Sources[0] = static_cast<qint16>(o);
    }
  }
};

}  // namespace zrn::bench
