#include "shows/shows_pass.h"

#include <algorithm>

#include "shows/show_activity.h"
#include "shows/show_panels.h"
#include "shows/show_status.h"
#include "shows/silence_monitors.h"

namespace zrn {

namespace {

bool LinkReady(const State& s) {
  const RequestState& r = s.requests;
  return s.Connected && s.linkState.ExchangeComplete && r.Req1 == 0 && r.Req2 == 0 && r.Req3 == 0 &&
         r.Req4 == 0;
}

}  // namespace

void ShowsPass(State& s) {
  if (!LinkReady(s)) {
    return;
  }
  if (s.ProgramMode != 1) {
    if (ActiveShowsListed(s) > 0) {
      EndActiveShows(s);
    }
    SendPendingParks(s);
    return;
  }
  GetActiveShows(s);
  const std::vector<qint16> active(s.ActiveShows.begin(),
                                   s.ActiveShows.begin() + ActiveShowsListed(s));
  for (qint16 show : active) {
    UpdateShowSilenceDisplay(s, show);
  }
  if (s.ShowStatusOpen) {
    UpdateSilenceDetectStatus(s, s.SelectedShow);
  }
  CheckSilenceAlarm(s);
}

void ResendShowMonitors(State& s) {
  if (s.ProgramMode != 1) {
    SendPendingParks(s);
    return;
  }
  // Shows that ended during the outage end now instead of being routed again and parked a
  // tick later; shows that started meanwhile are routed by their start.
  const std::vector<qint16> before(s.ActiveShows.begin(),
                                   s.ActiveShows.begin() + ActiveShowsListed(s));
  GetActiveShows(s);
  std::vector<int> sent;
  auto resend = [&](int output) {
    const qint16 e = MonitorEntryOf(s, output);
    if (e == kNone || std::find(sent.begin(), sent.end(), output) != sent.end()) {
      return;
    }
    sent.push_back(output);
    SendSilenceMonitor(s, e);
  };
  for (const qint16 show : before) {
    if (ActiveShowPosition(s, show) < 0) {
      continue;
    }
    const ShowRecord& rec = s.Shows[show];
    resend(rec.DownlinkMonitor);
    for (const ShowChannel& studio : rec.StudioLeft) {
      resend(studio.Monitor);
    }
  }
}

}  // namespace zrn
