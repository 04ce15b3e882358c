#include "schedule/event_scheduler.h"

#include <algorithm>

#include "core/channel_texts.h"
#include "core/failure.h"
#include "schedule/event_time.h"
#include "storage/logs.h"
#include "switcher/commands.h"

namespace zrn {

namespace {

const QString kLocation = QStringLiteral("Error determining next event");
const QString kTitle = QStringLiteral("Timer Error");
const QString kUnknown = QStringLiteral("Uknown");

// 3 minutes of 500 ms ticks: longer than an event's own second and its catch-up window.
constexpr qint16 kHoldOffTicks = 360;
// An event runs at most this late (the poll timer's catch-up is under 3 minutes).
constexpr int kCatchUpSeconds = 180;

QString SourceText(const State& s, int source) {
  return NameAt(s.InputNames, source - 1) + QStringLiteral(" [") + ChannelDigits(source) +
         QLatin1Char(']');
}

// A channel that can travel as a route: 1-based, and neither 0 nor 16383 ("none").
bool IsChannel(int channel) {
  return channel >= 1 && channel < kNone;
}

// Routes source to the entry's output; false when nothing was sent.
bool Route(State& s, OutputEntry& output, int source) {
  // A new connection's exchange decides what the switcher has; the route waits for it.
  if (!s.linkState.ExchangeComplete ||
      !SendSwitcherCommand(s, output.Output, source, kCommandConnect)) {
    return false;
  }
  output.PendingRouteSource = kNone;
  // The new source's silence is not known yet: the old source's state must not raise an alarm.
  StartSilenceGrace(s, output.Output - 1, source - 1);
  return true;
}

// Index of the earliest event on day later than afterSeconds (-1: any time), lowest index on
// equal times; -1 when none. seconds[j] is -1 for an event whose time could not be read.
int EarliestOn(const OutputEntry& output, const std::vector<int>& seconds, int day,
               int afterSeconds) {
  int best = -1;
  for (int j = 0; j < static_cast<int>(seconds.size()); ++j) {
    const int at = seconds[static_cast<size_t>(j)];
    if (at > afterSeconds && RunsOn(output.Events[static_cast<size_t>(j)], day) &&
        (best < 0 || at < seconds[static_cast<size_t>(best)])) {
      best = j;
    }
  }
  return best;
}

// afterSeconds: the search of today takes events later than this (seconds after midnight).
qint16 FindNextEvent(State& s, const OutputEntry& output, int afterSeconds) {
  if (output.EventCount <= 0) {
    return kNone;
  }
  if (output.EventCount > static_cast<int>(output.Events.size())) {
    // The events that exist still run.
    LogError(s, kLocation, kTitle, Failure::SubscriptOutOfRange());
  }
  std::vector<int> seconds(static_cast<size_t>(UsableEventCount(output)), -1);
  for (size_t j = 0; j < seconds.size(); ++j) {
    try {
      seconds[j] = EventTimeSeconds(output.Events[j].Time);
    } catch (const Failure& failure) {
      LogError(s, kLocation, kTitle, failure);
    }
  }
  const int today = DayNow(s);
  int found = EarliestOn(output, seconds, today, afterSeconds);
  // The following days, then on into next week up to today itself.
  for (int ahead = 1; found < 0 && ahead <= 7; ++ahead) {
    found = EarliestOn(output, seconds, (today + ahead) % 7, -1);
  }
  return found < 0 ? kNone : static_cast<qint16>(found);
}

// Where the search for the event after one just run starts today: after that event when it ran
// late (the clock stepped over it), so a second event stepped over within the catch-up window
// runs late too instead of never; otherwise after now.
int SearchAfterRun(const State& s, const ScheduledEvent& event) {
  const int now = SecondsNow(s);
  try {
    const int at = EventTimeSeconds(event.Time);
    return at < now && now - at < kCatchUpSeconds ? at : now;
  } catch (const Failure&) {
    return now;  // the search itself reports the time it cannot read
  }
}

void GetNextEventOf(State& s, int index, int afterSeconds) {
  Trap(s, kLocation, kTitle, [&] {
    OutputEntry& output = At(s.Outputs, index);
    output.NextEvent = FindNextEvent(s, output, afterSeconds);
  });
}

}  // namespace

QString EventReportLine(const State& s, const OutputEntry& output) {
  QString label;
  const int n = output.Output;
  switch (output.DisplayOption) {
    case 0:
      label = NameAt(s.OutputNames, n - 1);
      break;
    case 1:
      label = n >= 1 && n <= static_cast<int>(s.CrosspointMap.size())
                  ? NameAt(s.InputNames, s.CrosspointMap[static_cast<size_t>(n - 1)].Sources[0])
                  : kUnknown;
      break;
    case 2:
      label = output.CustomLabel;
      break;
    default:
      break;
  }
  return label + QStringLiteral(" [") + ChannelDigits(n) + QLatin1Char(']') +
         (output.MonitoringEnabled ? QStringLiteral(" Monitoring enabled.")
                                   : QStringLiteral(" Monitoring disabled."));
}

void GetNextEvent(State& s, int index) {
  GetNextEventAfter(s, index, SecondsNow(s));
}

void GetNextEventAfter(State& s, int index, int afterSeconds) {
  if (index != kNone) {
    GetNextEventOf(s, index, afterSeconds);
    return;
  }
  const int count = std::min<int>(s.PanelsLoaded, static_cast<int>(s.Outputs.size()));
  for (int i = 0; i < count; ++i) {
    GetNextEventOf(s, i, afterSeconds);
  }
}

void ExecuteEvent(State& s, int index) {
  if (s.ProgramMode == 1) {
    return;
  }
  int after = 0;
  const bool done = Trap(s, kLocation, kTitle, [&] {
    OutputEntry& output = At(s.Outputs, index);
    const int j = output.NextEvent;
    if (j < 0 || j >= UsableEventCount(output)) {
      throw Failure::SubscriptOutOfRange();
    }
    const ScheduledEvent event = output.Events[static_cast<size_t>(j)];
    after = SearchAfterRun(s, event);

    output.MonitoringEnabled = event.Active;
    output.DisplayOption = event.DisplayOption;
    if (event.DisplayOption == 2) {
      output.CustomLabel = event.Label;
    }

    QString sourceNote;
    if (event.Connect && IsChannel(event.Source) && IsChannel(output.Output)) {
      if (Route(s, output, event.Source)) {
        sourceNote = QStringLiteral(" Source: ") + SourceText(s, event.Source);
      } else {
        // Sent when the next start-up exchange completes; a later route replaces it.
        output.PendingRouteSource = event.Source;
        sourceNote = QStringLiteral(" Source: ") + SourceText(s, event.Source) +
                     QStringLiteral(" (held until the switcher is connected)");
      }
    }

    output.HoldOffTicks = kHoldOffTicks;
    output.HoldOffEvent = static_cast<qint16>(j);
    RecordRun(output, j, WallClockNow(s));

    DisplayMessage(s, EventReportLine(s, output) + sourceNote);
    s.OutputsDirty = true;
  });
  // After a failure NextEvent stays as it was.
  if (done) {
    GetNextEventOf(s, index, after);
  }
}

void SendPendingRoutes(State& s) {
  // Scheduled events act in output mode only.
  if (s.ProgramMode == 1) {
    return;
  }
  for (size_t i = 0; i < s.Outputs.size(); ++i) {
    Trap(s, kLocation, kTitle, [&] {
      OutputEntry& output = s.Outputs[i];
      const int source = output.PendingRouteSource;
      if (source == kNone) {
        return;
      }
      if (!IsChannel(source) || !IsChannel(output.Output)) {
        output.PendingRouteSource = kNone;
        return;
      }
      if (Route(s, output, source)) {
        DisplayMessage(
            s, EventReportLine(s, output) + QStringLiteral(" Source: ") + SourceText(s, source));
      }
    });
  }
}

}  // namespace zrn
