// Feeds arbitrary bytes to the events reader as ZRNEvents.dat for eight outputs and checks that
// every output's event count stays within its schedule.
#include "core/state.h"
#include "fuzz/fuzz_folder.h"
#include "storage/events_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zrn::State s;
  s.AppPath = zrn::fuzz::WriteInput(QStringLiteral("ZRNEvents.dat"), data, size);
  s.Outputs.assign(8, zrn::OutputEntry{});
  s.OutputCount = s.PanelsLoaded = 8;
  if (!zrn::ReadEvents(s)) {
    return 0;
  }
  if (s.Outputs.size() != 8u) {
    __builtin_trap();
  }
  for (const zrn::OutputEntry& output : s.Outputs) {
    if (output.EventCount < 0 || static_cast<size_t>(output.EventCount) > output.Events.size() ||
        output.Events.empty()) {
      __builtin_trap();
    }
  }
  return 0;
}
