// Feeds arbitrary bytes to the configuration reader as zrnconfig.ini and checks that the output
// table it leaves behind is always usable.
#include "core/state.h"
#include "fuzz/fuzz_folder.h"
#include "storage/config_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zrn::State s;
  s.AppPath = zrn::fuzz::WriteInput(QStringLiteral("zrnconfig.ini"), data, size);
  const bool ok = zrn::ReadConfiguration(s);
  if (ok && (s.OutputCount < 1 || s.Outputs.size() < static_cast<size_t>(s.OutputCount))) {
    __builtin_trap();
  }
  for (const zrn::OutputEntry& output : s.Outputs) {
    if (output.Events.empty()) {
      __builtin_trap();
    }
  }
  return 0;
}
