#include "alerts/alert_events.h"

#include <QSysInfo>
#include <algorithm>

#include "core/state.h"
#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "shows/show_panels.h"

namespace zrn {

namespace {

constexpr int kNamesInSummary = 4;

QString Address(const State& s) {
  return QStringLiteral("%1:%2").arg(s.ServerAddress).arg(s.ServerPort);
}

QString Plural(int n, const char* one, const char* many) {
  return QStringLiteral("%1 %2").arg(n).arg(QLatin1String(n == 1 ? one : many));
}

QString NameList(const QStringList& names, int count) {
  QString list = names.join(QStringLiteral(", "));
  if (count > names.size()) {
    list += QStringLiteral(", ...");
  }
  return list;
}

}  // namespace

QString AlertKindName(AlertKind kind) {
  switch (kind) {
    case AlertKind::OutputAlarmRaised:
      return QStringLiteral("output_alarm_raised");
    case AlertKind::OutputAlarmAcknowledged:
      return QStringLiteral("output_alarm_acknowledged");
    case AlertKind::OutputAlarmCanceled:
      return QStringLiteral("output_alarm_canceled");
    case AlertKind::OutputAlarmEnded:
      return QStringLiteral("output_alarm_ended");
    case AlertKind::ShowAlarmRaised:
      return QStringLiteral("show_alarm_raised");
    case AlertKind::ShowAlarmEnded:
      return QStringLiteral("show_alarm_ended");
    case AlertKind::RelayChanged:
      return QStringLiteral("relay_changed");
    case AlertKind::LinkLost:
      return QStringLiteral("link_lost");
    case AlertKind::LinkReturned:
      return QStringLiteral("link_returned");
  }
  return {};
}

bool Notifies(const AlertEvent& e) {
  return e.kind == AlertKind::OutputAlarmRaised || e.kind == AlertKind::ShowAlarmRaised ||
         e.kind == AlertKind::LinkLost || (e.kind == AlertKind::LinkReturned && !e.first);
}

QString NotificationTitle(const AlertEvent& e) {
  switch (e.kind) {
    case AlertKind::OutputAlarmRaised:
      return QStringLiteral("Loss alarm");
    case AlertKind::ShowAlarmRaised:
      return QStringLiteral("Show alarm");
    case AlertKind::LinkLost:
      return QStringLiteral("Switcher link lost");
    case AlertKind::LinkReturned:
      return QStringLiteral("Switcher link back");
    default:
      return AlertKindName(e.kind);
  }
}

QString NotificationText(const AlertEvent& e) {
  switch (e.kind) {
    case AlertKind::OutputAlarmRaised:
      return QStringLiteral("%1 (output %2) is silent").arg(e.name).arg(e.output);
    case AlertKind::ShowAlarmRaised:
      return QStringLiteral("%1: the downlink is silent").arg(e.name);
    case AlertKind::LinkLost:
      return QStringLiteral("No link to the switcher at %1").arg(e.name);
    case AlertKind::LinkReturned:
      return QStringLiteral("Connected to the switcher at %1").arg(e.name);
    default:
      return e.name;
  }
}

QJsonObject AlertEventJson(const AlertEvent& e, quint64 sequence) {
  QJsonObject json{{QStringLiteral("event"), AlertKindName(e.kind)},
                   {QStringLiteral("sequence"), static_cast<double>(sequence)},
                   {QStringLiteral("time"), e.time.toString(Qt::ISODate)},
                   {QStringLiteral("host"), QSysInfo::machineHostName()}};
  // Every event names its subject; the key says what kind of subject it is.
  QString subject = QStringLiteral("name");
  switch (e.kind) {
    case AlertKind::OutputAlarmRaised:
    case AlertKind::OutputAlarmAcknowledged:
    case AlertKind::OutputAlarmCanceled:
    case AlertKind::OutputAlarmEnded:
      json.insert(QStringLiteral("panel"), e.panel);
      json.insert(QStringLiteral("output"), e.output);
      break;
    case AlertKind::RelayChanged:
      json.insert(QStringLiteral("relay"), e.relay);
      json.insert(QStringLiteral("on"), e.on);
      break;
    case AlertKind::ShowAlarmRaised:
    case AlertKind::ShowAlarmEnded:
      subject = QStringLiteral("show");
      break;
    case AlertKind::LinkLost:
    case AlertKind::LinkReturned:
      subject = QStringLiteral("switcher");
      break;
  }
  json.insert(subject, e.name);
  return json;
}

AlertTracker::AlertTracker() {
  sinceMessage_.start();
}

double AlertTracker::LastMessageAgeSeconds() const {
  return static_cast<double>(sinceMessage_.elapsed()) / 1000.0;
}

std::vector<AlertEvent> AlertTracker::Update(const State& s) {
  std::vector<AlertEvent> events;
  const QDateTime now = Now(s);
  auto add = [&](AlertKind kind) -> AlertEvent& {
    AlertEvent& e = events.emplace_back();
    e.kind = kind;
    e.time = now;
    return e;
  };

  if (s.linkState.messagesDecoded != messages_) {
    messages_ = s.linkState.messagesDecoded;
    sinceMessage_.restart();
  }

  if (s.Connected != linkUp_) {
    AlertEvent& e = add(s.Connected ? AlertKind::LinkReturned : AlertKind::LinkLost);
    e.name = Address(s);
    e.first = s.Connected && !everUp_;
    linkUp_ = s.Connected;
    everUp_ = everUp_ || s.Connected;
  }

  DesktopSummary summary;
  const int count = std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
  // Outputs no longer watched end their alarms.
  for (int i = count; i < static_cast<int>(outputs_.size()); ++i) {
    if (outputs_[i].phase != kQuiet) {
      AlertEvent& e = add(AlertKind::OutputAlarmEnded);
      e.panel = QStringLiteral("%1").arg(i + 1, 2, 10, QLatin1Char('0'));
      e.output = outputs_[i].output;
    }
  }
  outputs_.resize(count);
  bool anySilent = false;
  for (int i = 0; i < count; ++i) {
    const OutputEntry& entry = s.Outputs[i];
    const OutputPanelModel& panel = s.panels.outputs[i];
    Phase phase = kQuiet;
    if (panel.lamp == kLampYellow) {
      phase = kAcknowledged;
    } else if (panel.lamp == kLampRed) {
      phase = entry.AlarmCanceled ? kCanceled : kAlarm;
    }
    OutputMark& mark = outputs_[i];
    const int output = entry.Output == kNone ? 0 : entry.Output;
    auto report = [&](AlertKind kind) {
      AlertEvent& e = add(kind);
      e.panel = panel.position;
      e.output = mark.output;
      e.name = PanelName(s, entry);
    };
    if (mark.output != output) {
      // Another output now sits at this panel: the old one's alarm ends with its watch.
      if (mark.phase != kQuiet) {
        report(AlertKind::OutputAlarmEnded);
      }
      mark = OutputMark{output, kQuiet};
    }
    if (phase != mark.phase) {
      if (phase == kQuiet) {
        report(AlertKind::OutputAlarmEnded);
      } else {
        if (mark.phase == kQuiet || phase == kAlarm) {
          report(AlertKind::OutputAlarmRaised);
          ++alarmsRaised_;
        }
        if (phase == kAcknowledged) {
          report(AlertKind::OutputAlarmAcknowledged);
        } else if (phase == kCanceled) {
          report(AlertKind::OutputAlarmCanceled);
        }
      }
      mark.phase = phase;
    }
    if (phase != kQuiet) {
      anySilent = true;
      ++summary.silentCount;
      summary.alarmOn = summary.alarmOn || phase == kAlarm;
      if (summary.silentNames.size() < kNamesInSummary) {
        summary.silentNames.append(PanelName(s, entry));
      }
    }
  }

  std::map<QString, bool> shows;
  int showAlarms = 0;
  QStringList showNames;
  ForEachActiveShow(s, [&](int, int index) {
    const ShowRecord& show = s.Shows[index];
    const bool inAlarm = ShowInAlarm(show);
    shows[show.Name] = shows[show.Name] || inAlarm;
    if (inAlarm) {
      ++showAlarms;
      if (showNames.size() < kNamesInSummary) {
        showNames.append(show.Name);
      }
    }
  });
  for (const auto& [name, was] : shows_) {
    const auto now = shows.find(name);
    if (was && (now == shows.end() || !now->second)) {
      add(AlertKind::ShowAlarmEnded).name = name;
    }
  }
  for (const auto& [name, inAlarm] : shows) {
    const auto before = shows_.find(name);
    if (inAlarm && (before == shows_.end() || !before->second)) {
      add(AlertKind::ShowAlarmRaised).name = name;
      ++alarmsRaised_;
    }
  }
  shows_ = std::move(shows);

  const bool fresh = s.Connected && s.linkState.ExchangeComplete;
  if (fresh && AlarmRelayUsable(s)) {
    if (relay_ != s.AlarmRelay) {
      relay_ = s.AlarmRelay;
      relayOn_ = false;
    }
    const bool on = s.RelayStates[relay_ - 1] == 1;
    if (on != relayOn_) {
      AlertEvent& e = add(AlertKind::RelayChanged);
      e.relay = relay_;
      e.on = on;
      e.name = relay_ - 1 < s.RelayNames.size() ? s.RelayNames[relay_ - 1] : QString();
      relayOn_ = on;
    }
  }

  summary.alarmOn = summary.alarmOn || showAlarms > 0;
  if (!fresh) {
    summary.lamp = QStringLiteral("grey");
    summary.toolTip = QStringLiteral("No link to the switcher at %1").arg(Address(s));
  } else {
    summary.lamp = summary.alarmOn ? QStringLiteral("red")
                   : anySilent     ? QStringLiteral("yellow")
                                   : QStringLiteral("green");
    if (s.ProgramMode == 1) {
      summary.toolTip = showAlarms == 0
                            ? QStringLiteral("No show in alarm")
                            : Plural(showAlarms, "show", "shows") + QStringLiteral(" in alarm: ") +
                                  NameList(showNames, showAlarms);
    } else {
      summary.toolTip = summary.silentCount == 0
                            ? QStringLiteral("No output silent")
                            : Plural(summary.silentCount, "output", "outputs") +
                                  QStringLiteral(" silent: ") +
                                  NameList(summary.silentNames, summary.silentCount);
    }
  }
  summary_ = std::move(summary);
  return events;
}

}  // namespace zrn
