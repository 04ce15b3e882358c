#include "shows/silence_monitors.h"

#include <algorithm>

#include "core/failure.h"
#include "schedule/event_time.h"
#include "shows/show_activity.h"
#include "shows/show_panels.h"
#include "storage/logs.h"
#include "switcher/commands.h"

namespace zrn {

namespace {

const QString kCreateLocation = QStringLiteral("Error Creating Silence Monitors");
const QString kFreeLocation = QStringLiteral("Error Freeing Silence Monitors");
const QString kTitle = QStringLiteral("Display Error");

int SilenceOutsListed(const State& s) {
  return std::clamp<int>(s.SilenceOutCount, 0, static_cast<int>(s.SilenceOuts.size()));
}

int StudioSources(const ShowRecord& show) {
  return std::clamp<int>(show.StudioCount, 0, static_cast<int>(show.StudioLeft.size()));
}

bool ReportedStatus(const State& s, int output, quint8& status) {
  if (output < 0 || output >= static_cast<int>(s.SilenceStatus.size())) {
    return false;
  }
  status = s.SilenceStatus[output].Status;
  return true;
}

quint8 RoleOfStudio(int k) {
  if (2 + k > 255) {
    throw Failure::Overflow();
  }
  return static_cast<quint8>(2 + k);
}

// Gives entry the show's detector settings; false when it had them already.
bool TakeDetectorSettings(SilenceOut& entry, const ShowRecord& show) {
  const bool changed = entry.DetectLevel != show.DetectLevel ||
                       entry.DetectTime1 != show.DetectTime1 ||
                       entry.DetectTime2 != show.DetectTime2;
  entry.DetectLevel = show.DetectLevel;
  entry.DetectTime1 = show.DetectTime1;
  entry.DetectTime2 = show.DetectTime2;
  return changed;
}

// Takes entry e for input on behalf of show, or joins the show that already watches input
// through it; returns the borrowed output.
qint16 Borrow(State& s, qint16 e, qint16 input, int show, quint8 role) {
  SilenceOut& entry = s.SilenceOuts[e];
  if (entry.Show == kNone) {
    const ShowRecord& owner = s.Shows[show];
    entry.Source = input;
    entry.Show = static_cast<qint16>(show);
    entry.Role = role;
    TakeDetectorSettings(entry, owner);
    SendSilenceMonitor(s, e);
  }
  // Already routed and configured for the show that holds it; routing it again would only
  // restart the detector under that show.
  quint8 status = 0;
  if (ReportedStatus(s, entry.Output, status)) {
    entry.Status = status;
  }
  return entry.Output;
}

void StartMonitorGrace(State& s, const SilenceOut& entry) {
  // Routed again to what it already carries (a re-send, a handover): the detector's report
  // still describes the right source and a live alarm must stand.
  if (!StartSilenceGrace(s, entry.Output, entry.Source)) {
    return;
  }
  // The detector now works with the settings just sent, not with those it reported before.
  const bool known = entry.DetectTime1 >= 1 && entry.DetectTime1 <= 500 && entry.DetectTime2 >= 0 &&
                     entry.DetectTime2 <= 500;
  if (known && entry.Output >= 0 && entry.Output < static_cast<int>(s.SilenceGraceUntil.size())) {
    s.SilenceGraceUntil[entry.Output] = Now(s).addSecs(entry.DetectTime1 + entry.DetectTime2);
  }
}

// The show (and its role) that watches output through a monitor field, other than those
// already cleared; kNone when none does.
qint16 WatcherOf(const State& s, int output, quint8& role) {
  for (size_t i = 0; i < s.Shows.size(); ++i) {
    const ShowRecord& show = s.Shows[i];
    if (show.DownlinkMonitor == output) {
      role = 1;
      return static_cast<qint16>(i);
    }
    for (size_t k = 0; k < show.StudioLeft.size(); ++k) {
      if (show.StudioLeft[k].Monitor == output) {
        role = static_cast<quint8>(std::min<size_t>(2 + k, 255));
        return static_cast<qint16>(i);
      }
    }
  }
  return kNone;
}

void ReleaseOutput(State& s, int output) {
  const qint16 e = MonitorEntryOf(s, output);
  quint8 role = 0;
  const qint16 watcher = WatcherOf(s, output, role);
  if (watcher != kNone) {
    // Another show still listens here: the output stays routed and the entry held for it,
    // now with that show's own detector settings.
    if (e != kNone) {
      SilenceOut& entry = s.SilenceOuts[e];
      entry.Show = watcher;
      entry.Role = role;
      if (TakeDetectorSettings(entry, s.Shows[watcher])) {
        SendShowSilenceConfig(s, e);
      }
    }
    return;
  }
  // Parked later in the pass, so a show starting now on the same source takes it over as it is.
  if (output >= 0 && output < s.SwitcherOutputCount &&
      std::find(s.PendingParks.begin(), s.PendingParks.end(), output) == s.PendingParks.end()) {
    s.PendingParks.push_back(static_cast<qint16>(output));
  }
  if (e != kNone) {
    SilenceOut& entry = s.SilenceOuts[e];
    entry.Source = kNone;
    entry.Show = kNone;
    entry.Role = 0;
  }
}

bool IgnoreWindowApplies(State& s, const ShowRecord& show, const QString& location) {
  const int windows =
      std::clamp<int>(show.IgnoreCount, 0, static_cast<int>(show.IgnoreWindows.size()));
  const int now = SecondsNow(s);
  for (int w = 0; w < windows; ++w) {
    // A window whose times cannot be read is reported and does not apply; the others still do.
    try {
      const int start = EventTimeSeconds(show.IgnoreWindows[w].StartTime);
      const int end = EventTimeSeconds(show.IgnoreWindows[w].EndTime);
      if (start < now && now < end) {
        return true;
      }
    } catch (const Failure& failure) {
      LogError(s, location, kTitle, failure);
    }
  }
  return false;
}

}  // namespace

qint16 MonitorEntryOf(const State& s, int output) {
  if (output < 0 || output >= static_cast<int>(s.SilenceOutIndex.size())) {
    return kNone;
  }
  const qint16 e = s.SilenceOutIndex[output];
  return e >= 0 && e < SilenceOutsListed(s) && s.SilenceOuts[e].Output == output ? e : kNone;
}

qint16 FindSilenceDetectMonitorOutput(const State& s, int input) {
  if (input < 0 || input >= kNone) {
    return kNone;
  }
  const int count = SilenceOutsListed(s);
  for (int k = 0; k < count; ++k) {
    const SilenceOut& entry = s.SilenceOuts[k];
    // An entry shadowed by a later one for the same output would share that output unseen.
    if (MonitorEntryOf(s, entry.Output) != k) {
      continue;
    }
    if (entry.Show == kNone || entry.Source == input) {
      return static_cast<qint16>(k);
    }
  }
  return kNone;
}

// The silence-out entry that can watch source for the show, or kNone after an error line that
// says which of the show's sources (kind) found none.
qint16 MonitorOutputForShow(State& s, int source, const ShowRecord& show, const QString& kind) {
  const qint16 e = FindSilenceDetectMonitorOutput(s, source);
  if (e == kNone) {
    WriteErrorLog(s,
                  QStringLiteral("Unable to locate output to monitor ") + kind +
                      QStringLiteral(" source for show: ") + show.Name,
                  QString());
  }
  return e;
}

void CreateSilenceMonitors(State& s, int show) {
  Trap(s, kCreateLocation, kTitle, [&] {
    if (show < 0 || show >= std::clamp<int>(s.ShowCount, 0, static_cast<int>(s.Shows.size()))) {
      throw Failure::SubscriptOutOfRange();
    }
    ShowRecord& rec = s.Shows[show];
    if (rec.DownlinkSource != kNone) {
      const qint16 e = MonitorOutputForShow(s, rec.DownlinkSource, rec, QStringLiteral("downlink"));
      if (e == kNone) {
        return;
      }
      rec.DownlinkMonitor = Borrow(s, e, rec.DownlinkSource, show, 1);
      rec.DownlinkStatus = s.SilenceOuts[e].Status;
    }
    const int studios = StudioSources(rec);
    for (int k = 0; k < studios; ++k) {
      ShowChannel& studio = rec.StudioLeft[k];
      if (studio.Channel == kNone) {
        continue;
      }
      const qint16 e = MonitorOutputForShow(s, studio.Channel, rec, QStringLiteral("studio"));
      if (e == kNone) {
        break;
      }
      studio.Monitor = Borrow(s, e, studio.Channel, show, RoleOfStudio(k));
      studio.Status = s.SilenceOuts[e].Status;
    }
  });
  UpdateShowSilenceDisplay(s, show);
}

void FreeSilenceOuts(State& s, int show) {
  Trap(s, kFreeLocation, kTitle, [&] {
    ShowRecord& rec = At(s.Shows, show);
    // All of the show's fields are cleared first, so an output it watches twice is parked
    // once and only other shows count as still watching.
    std::vector<int> outputs;
    auto drop = [&](qint16& monitor) {
      if (monitor != kNone && std::find(outputs.begin(), outputs.end(), monitor) == outputs.end()) {
        outputs.push_back(monitor);
      }
      monitor = kNone;
    };
    drop(rec.DownlinkMonitor);
    for (ShowChannel& studio : rec.StudioLeft) {
      drop(studio.Monitor);
    }
    for (int output : outputs) {
      ReleaseOutput(s, output);
    }
  });
}

void SendPendingParks(State& s) {
  std::erase_if(s.PendingParks, [&](qint16 output) {
    const qint16 e = MonitorEntryOf(s, output);
    if (e != kNone && s.SilenceOuts[e].Show != kNone) {
      return true;  // handed over to a show that started meanwhile
    }
    return output >= s.SwitcherOutputCount ||
           SendSwitcherCommand(s, output + 1, kNoSource, kCommandClear);
  });
}

void SendSilenceMonitor(State& s, int entry) {
  Trap(s, kCreateLocation, kTitle, [&] {
    const SilenceOut& e = At(s.SilenceOuts, entry);
    SendSwitcherCommand(s, e.Output + 1, e.Source + 1, kCommandConnect);
    SendShowSilenceConfig(s, entry);
    StartMonitorGrace(s, e);
  });
}

void UpdateShowSilenceDisplay(State& s, int show) {
  if (!s.Connected) {
    return;
  }
  const int p = ActiveShowPosition(s, show);
  if (p < 0) {
    return;
  }
  ShowRecord& rec = s.Shows[show];
  const QString location = QStringLiteral("Error updating show display (silence) Show:") + rec.Name;
  Trap(s, location, kTitle, [&] {
    const int o = rec.DownlinkMonitor;
    const qint16 e = MonitorEntryOf(s, o);
    bool suppressed = false;
    // Right after the program routed the monitor its report still describes the old source.
    bool unknown = false;
    quint8 status = 0;
    if (e == kNone || !ReportedStatus(s, o, status)) {
      suppressed = true;
      status = 0;
    } else if (InSilenceGrace(s, o)) {
      suppressed = true;
      unknown = true;
    } else {
      s.SilenceOuts[e].Status = status;
    }
    suppressed = IgnoreWindowApplies(s, rec, location) || suppressed;

    if (!unknown && rec.DownlinkStatus != status) {
      // Only the silence bit ends a cancel: a peak coming or going on a silent downlink does not.
      if (((rec.DownlinkStatus ^ status) & 1) != 0) {
        rec.AlarmCanceled = false;
      }
      rec.DownlinkStatus = status;
      if (status == 1) {
        rec.Alarm = 1;
      } else if (status == 0) {
        rec.Alarm = 0;
      }
    }
    rec.AlarmSuppressed = suppressed;

    if (p < s.ShowPanelsLoaded && p < static_cast<int>(s.panels.shows.size())) {
      s.panels.shows[p].indicatorColour =
          suppressed ? kLampGrey : SilenceColour(rec.DownlinkStatus);
    }
  });
}

void CheckSilenceAlarm(State& s) {
  Trap(s, QStringLiteral("Error updating show silence alarm"), QStringLiteral("Timer Error"), [&] {
    ForEachActiveShow(s, [&](int, int index) {
      ShowRecord& show = s.Shows[index];
      // A suppressed show keeps its flag, so silence that outlasts an ignore window alarms.
      if (!show.AlarmSuppressed && show.Alarm != show.DownlinkStatus) {
        show.Alarm = show.DownlinkStatus;
      }
      // The log names the show that went silent; the outputs it borrows are hidden.
      const bool alarming = show.Alarm == 1 && !show.AlarmSuppressed;
      if (alarming != show.AlarmLogged) {
        show.AlarmLogged = alarming;
        DisplayMessage(s, show.Name + (alarming ? QStringLiteral(" Silence Alarm Status ON!")
                                                : QStringLiteral(" Silence Alarm Status OFF!")));
      }
    });
  });
  s.reactions.showAlarmChanged(s);
}

Rgb SilenceColour(int status) {
  if (status == 1) {
    return kLampRed;
  }
  return status == 0 ? kLampGreen : kLampGrey;
}

bool MonitorStatus(const State& s, int output, quint8& status) {
  return MonitorEntryOf(s, output) != kNone && !InSilenceGrace(s, output) &&
         ReportedStatus(s, output, status);
}

}  // namespace zrn
