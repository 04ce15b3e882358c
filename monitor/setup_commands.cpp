#include "monitor/setup_commands.h"

#include "monitor/panel_update.h"
#include "schedule/event_scheduler.h"
#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/logs.h"
#include "storage/shows_file.h"

namespace zrn {

void SetupAccepted(State& s) {
  UpdateOutputs(s);
  // The data files report their own failures; the configuration writer leaves it to us.
  if (!WriteConfiguration(s)) {
    WriteErrorLog(s, QStringLiteral("zrnconfig.ini could not be written; the setup is not saved"),
                  QStringLiteral("Error Writing ini file"));
  }
  SaveShows(s);
  SaveEvents(s);
  GetNextEvent(s, kNone);
  s.DialogAccepted = false;
}

}  // namespace zrn
