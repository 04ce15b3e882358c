#include "monitor/link_watch.h"

#include <algorithm>

#include "monitor/output_panels.h"
#include "monitor/panel_filter.h"

namespace zrn {

namespace {

bool Silent(const OutputPanelModel& panel) {
  // An acknowledged alarm is the same silence, still going on.
  return panel.lamp == kLampRed || panel.lamp == kLampYellow;
}

QString Address(const State& s) {
  return s.ServerAddress + QLatin1Char(':') + QString::number(s.ServerPort);
}

}  // namespace

bool ReportsStale(const State& s) {
  return !s.Connected || !s.linkState.ExchangeComplete;
}

void WatchTick(State& s) {
  const QDateTime now = Now(s);
  WatchTimes& w = s.watch;
  if (!ReportsStale(s)) {
    w.staleSince = QDateTime();
  } else if (!w.staleSince.isValid()) {
    w.staleSince = now;
  }
  // Between ticks the count only ever drops to 0, when the switcher answers.
  if (!s.Connected || s.linkState.NoResponseCount == 0) {
    w.unansweredSince = QDateTime();
  } else if (!w.unansweredSince.isValid()) {
    w.unansweredSince = now;
  }

  const int panels = std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
  const qint64 nowMs = now.toMSecsSinceEpoch();
  w.silentSince.resize(static_cast<size_t>(panels), -1);
  for (int i = 0; i < panels; ++i) {
    OutputPanelModel& panel = s.panels.outputs[static_cast<size_t>(i)];
    qint64& since = w.silentSince[static_cast<size_t>(i)];
    qint64 seconds = -1;
    if (Silent(panel)) {
      if (since < 0) {
        since = nowMs;
      }
      seconds = std::max<qint64>(0, (nowMs - since) / 1000);
    } else {
      since = -1;
    }
    // Written only when it changed, so the window repaints only the panels that are silent.
    if (panel.silentSeconds != seconds) {
      panel.silentSeconds = seconds;
    }
  }

  // "Only alarms" follows the alarms as they come and go.
  const PanelFilter& filter = s.panels.filter;
  if (filter.onlyAlarms) {
    std::vector<int> shown;
    for (int i = 0; i < panels; ++i) {
      if (PanelMatches(s, i, filter.text, true)) {
        shown.push_back(i);
      }
    }
    if (shown != filter.shown) {
      ApplyViewVisibility(s);
    }
  }
}

QString StatusLine(const State& s) {
  const QDateTime now = Now(s);
  const QDateTime since = s.watch.staleSince.isValid() ? s.watch.staleSince : now;
  const QString time = since.toString(QStringLiteral("HH:mm:ss"));
  if (!s.Connected) {
    QString line =
        QStringLiteral("No link since ") + time + QStringLiteral(" - ") + s.StatusBarText;
    if (!s.StatusBarText.contains(Address(s))) {
      line += QStringLiteral(" - ") + Address(s);
    }
    return line;
  }
  if (!s.linkState.ExchangeComplete) {
    return QStringLiteral("No reports since ") + time + QStringLiteral(" - ") + s.StatusBarText;
  }
  if (s.watch.unansweredSince.isValid()) {
    const qint64 waited = s.watch.unansweredSince.secsTo(now);
    if (waited >= kNoReplyNoticeSeconds) {
      return QStringLiteral("No reply for %1 s from %2 - ").arg(waited).arg(Address(s)) +
             s.StatusBarText;
    }
  }
  return s.StatusBarText;
}

QString DurationText(qint64 seconds) {
  seconds = std::max<qint64>(0, seconds);
  if (seconds < 60) {
    return QStringLiteral("%1 s").arg(seconds);
  }
  if (seconds < 3600) {
    return QStringLiteral("%1 min %2 s")
        .arg(seconds / 60)
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
  }
  return QStringLiteral("%1 h %2 min")
      .arg(seconds / 3600)
      .arg(seconds % 3600 / 60, 2, 10, QLatin1Char('0'));
}

QString CompactDuration(qint64 seconds) {
  seconds = std::max<qint64>(0, seconds);
  const auto two = [](qint64 v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
  if (seconds < 3600) {
    return QString::number(seconds / 60) + QLatin1Char(':') + two(seconds % 60);
  }
  if (seconds < 86400) {
    return QString::number(seconds / 3600) + QLatin1Char(':') + two(seconds % 3600 / 60) +
           QLatin1Char(':') + two(seconds % 60);
  }
  return QStringLiteral("%1 d %2 h").arg(seconds / 86400).arg(seconds % 86400 / 3600);
}

}  // namespace zrn
