#include "core/state.h"

#include <algorithm>

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
  InstallReactions(*this);
}

QDateTime Now(const State& s) {
  return s.clock != nullptr ? s.clock->Now() : QDateTime::currentDateTime();
}

bool RoutedNow(const State& s, int output, int source) {
  if (output < 0 || output >= static_cast<int>(s.CrosspointMap.size())) {
    return false;
  }
  const CrosspointEntry& route = s.CrosspointMap[output];
  return route.SourceCount > 0 && route.Sources[0] == source;
}

bool StartSilenceGrace(State& s, int output, int source) {
  if (output < 0 || output >= std::max<int>(s.SwitcherOutputCount, 0) ||
      RoutedNow(s, output, source)) {
    return false;
  }
  if (static_cast<int>(s.SilenceGraceUntil.size()) <= output) {
    s.SilenceGraceUntil.resize(output + 1);
  }
  int detect = 8;
  int ret = 5;
  if (output < static_cast<int>(s.SilenceStatus.size())) {
    const SilenceStatusEntry& e = s.SilenceStatus[output];
    if (e.DetectTime > 0 && e.DetectTime <= 500 && e.ReturnTime >= 0 && e.ReturnTime <= 500) {
      detect = e.DetectTime;
      ret = e.ReturnTime;
    }
  }
  s.SilenceGraceUntil[output] = Now(s).addSecs(detect + ret);
  return true;
}

void EndSilenceGrace(State& s, int output) {
  if (output >= 0 && output < static_cast<int>(s.SilenceGraceUntil.size())) {
    s.SilenceGraceUntil[output] = QDateTime();
  }
}

bool InSilenceGrace(const State& s, int output) {
  if (output < 0 || output >= static_cast<int>(s.SilenceGraceUntil.size())) {
    return false;
  }
  const QDateTime& until = s.SilenceGraceUntil[output];
  // A grace reaching further ahead than any detector allows was stretched by the clock going
  // back; it must not hold off alarms for that long.
  const qint64 left = Now(s).secsTo(until);
  return until.isValid() && left > 0 && left <= 1000;
}

}  // namespace zrn
