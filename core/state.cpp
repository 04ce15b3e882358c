#include "core/state.h"

#include "core/failure.h"
#include "storage/logs.h"
#include "switcher/dispatch.h"

namespace zrn {

State::State() {
  OutputEntry first;
  first.Output = 1;
  Outputs.push_back(first);

  for (int k = 1; k <= SwitcherOutputCount; ++k) {
    OutputNames << QStringLiteral("Out %1").arg(k, 4, 10, QLatin1Char('0'));
  }
  for (int k = 0; k < SwitcherInputCount; ++k) {
    InputNames << QString();
  }
  RelayStates.assign(SwitcherOutputCount, 0);
  SilenceStatus.resize(SwitcherOutputCount);
  CrosspointMap.resize(SwitcherOutputCount);
  SilenceOutIndex.assign(SwitcherOutputCount, kNone);
  InstallMessageHandlers(*this);
}

QDateTime Now(const State& s) {
  return s.clock != nullptr ? s.clock->Now() : QDateTime::currentDateTime();
}

void UpdateSilenceOutTable(State& s) {
  s.SilenceOutIndex.assign(std::max<int>(s.SwitcherOutputCount, 0), kNone);
  const int count = std::min<int>(s.SilenceOutCount, static_cast<int>(s.SilenceOuts.size()));
  for (int k = 0; k < count; ++k) {
    // One entry naming an output the switcher does not have must not cost the others.
    Trap(s, QStringLiteral("Error Updating Silence Out Table"), QStringLiteral("List Error"),
         [&] { At(s.SilenceOutIndex, s.SilenceOuts[k].Output) = static_cast<qint16>(k); });
  }
}

}  // namespace zrn
