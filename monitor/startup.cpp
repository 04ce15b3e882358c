#include "monitor/startup.h"

#include <QDir>

#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "monitor/poll_tick.h"
#include "schedule/due_events.h"
#include "schedule/event_scheduler.h"
#include "storage/config_file.h"
#include "storage/events_file.h"
#include "storage/logs.h"
#include "storage/shows_file.h"
#include "switcher/link.h"
#include "switcher/name_tables.h"

namespace zrn {

void Form_Load(State& s, const QString& appPath) {
  s.AppPath = QDir::toNativeSeparators(appPath);
  if (!s.AppPath.endsWith(QDir::separator())) {
    s.AppPath += QDir::separator();
  }
  s.OutputCount = 1;
  s.PanelsLoaded = 1;
  s.MaxDisplay = 100;
  s.LargeViewActive = false;

  QString problem;
  if (ReadConfiguration(s, &problem)) {
    UpdateOutputs(s);
  } else if (!problem.isEmpty()) {
    // Running without the operator's configuration must not go unnoticed.
    s.FileNotice = problem;
    DisplayMessage(s, problem);
  }
  ConnectToSwitcher(s);
  ReadEvents(s);
  ReadShows(s);
  // The shows borrow outputs through this index; it must not wait for the switcher to
  // report a different size.
  UpdateSilenceOutTable(s);
  RefreshClock(s);
  GetNextEvent(s, kNone);
  // A restart inside a scheduled "off" period stays off.
  ApplyMostRecentPastEvents(s);
  UpdateOutputs(s);
  ShowConfiguredView(s);
}

void Form_Unload(State& s) {
  // Closing is not an outage: the log says the monitor closed, not that the switcher was lost.
  s.Connected = false;
  CloseSwitcherLink(s);
  DisplayMessage(s, QStringLiteral("Monitor Closed"));
  FlushHeldBackErrors(s);
}

}  // namespace zrn
