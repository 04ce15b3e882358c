#include "core/ports.h"

namespace zrn {

SystemClock& SystemClock::Instance() {
  static SystemClock clock;
  return clock;
}

}  // namespace zrn
