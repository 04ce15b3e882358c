// Feeds arbitrary bytes to the shows reader as ZRNShows.dat and checks that every count it
// sets stays within the arrays it sizes.
#include <algorithm>

#include "core/state.h"
#include "fuzz/fuzz_folder.h"
#include "storage/shows_file.h"

namespace {

// A counted group holds at least max(count, 1) elements.
template <class T>
bool Holds(const std::vector<T>& group, qint16 count) {
  return count >= 0 && group.size() >= static_cast<size_t>(std::max<int>(count, 1));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  zrn::State s;
  s.AppPath = zrn::fuzz::WriteInput(QStringLiteral("ZRNShows.dat"), data, size);
  if (!zrn::ReadShows(s)) {
    return 0;
  }
  if (s.ShowCount < 0 || static_cast<size_t>(s.ShowCount) > s.Shows.size() ||
      s.SilenceOutCount < 0 || static_cast<size_t>(s.SilenceOutCount) != s.SilenceOuts.size()) {
    __builtin_trap();
  }
  // A file without shows leaves one spare record past the count; nothing reads it.
  for (qint16 k = 0; k < s.ShowCount; ++k) {
    const zrn::ShowRecord& show = s.Shows[static_cast<size_t>(k)];
    if (!Holds(show.OutputLeft, show.OutputCount) || !Holds(show.OutputRight, show.OutputCount) ||
        !Holds(show.OutputCue, show.OutputCount) || !Holds(show.StudioLeft, show.StudioCount) ||
        !Holds(show.StudioRight, show.StudioCount) || !Holds(show.StudioCue, show.StudioCount) ||
        !Holds(show.IgnoreWindows, show.IgnoreCount)) {
      __builtin_trap();
    }
  }
  return 0;
}
