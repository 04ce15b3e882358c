// Feeds arbitrary bytes to the events reader as ZRNEvents.dat and checks that every output's
// event count stays within its schedule.
#include <cstddef>
#include <cstdint>

#include "core/state.h"
#include "fuzz/fuzz_folder.h"
#include "storage/events_file.h"

namespace {

constexpr int kOutputs = 8;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zrn::fuzz::WriteInput(QStringLiteral("ZRNEvents.dat"), data, size);
  zrn::State s;
  s.AppPath = zrn::fuzz::FolderPath();
  s.Outputs.assign(kOutputs, zrn::OutputEntry{});
  s.OutputCount = kOutputs;
  s.PanelsLoaded = kOutputs;
  const bool ok = zrn::ReadEvents(s);
  if (ok) {
    if (s.Outputs.size() != static_cast<size_t>(kOutputs)) {
      __builtin_trap();
    }
    for (const zrn::OutputEntry& output : s.Outputs) {
      if (output.EventCount < 0 || static_cast<size_t>(output.EventCount) > output.Events.size() ||
          output.Events.empty()) {
        __builtin_trap();
      }
    }
  }
  zrn::fuzz::ClearFolder();
  return 0;
}
