#include "core/ports.h"

namespace zrn {

QDateTime SystemClock::Now() const {
  // Local time looks at the zone file on every call, and a burst of reports asks for the time
  // hundreds of times a millisecond: within one millisecond the answer is the same.
  thread_local qint64 lastMs = -1;
  thread_local QDateTime last;
  const qint64 ms = QDateTime::currentMSecsSinceEpoch();
  if (ms != lastMs) {
    last = QDateTime::fromMSecsSinceEpoch(ms);
    lastMs = ms;
  }
  return last;
}

SystemClock& SystemClock::Instance() {
  static SystemClock clock;
  return clock;
}

}  // namespace zrn
