#include "monitor/setup_commands.h"

#include "monitor/panel_update.h"
#include "schedule/event_scheduler.h"
#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/file_io.h"
#include "storage/logs.h"
#include "storage/shows_file.h"

namespace zrn {

void SetupAccepted(State& s) {
  UpdateOutputs(s);
  // The data files log their own failures; the configuration writer leaves it to us. The
  // operator hears of each file that was not saved.
  QString failure;
  if (!WriteConfiguration(s, &failure)) {
    WriteErrorLog(s, QStringLiteral("zrnconfig.ini could not be written; the setup is not saved"),
                  QStringLiteral("Error Writing ini file"));
    ReportFailedSave(s, failure);
  }
  if (!SaveShows(s, &failure)) {
    ReportFailedSave(s, failure);
  }
  if (!SaveEvents(s, &failure)) {
    ReportFailedSave(s, failure);
  }
  GetNextEvent(s, kNone);
  s.DialogAccepted = false;
}

}  // namespace zrn
