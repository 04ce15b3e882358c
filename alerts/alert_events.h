#pragma once

#include <QDateTime>
#include <QElapsedTimer>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <map>
#include <vector>

namespace zrn {

struct State;

enum class AlertKind {
  OutputAlarmRaised,
  OutputAlarmAcknowledged,
  OutputAlarmCanceled,
  OutputAlarmEnded,
  ShowAlarmRaised,
  ShowAlarmEnded,
  RelayChanged,
  LinkLost,
  LinkReturned,
};

struct AlertEvent {
  AlertKind kind = AlertKind::LinkLost;
  QDateTime time;
  // Outputs: the panel's position number, the switcher output and the name the panel shows.
  QString panel;
  int output = 0;
  // Output or show name; the relay's name for a relay change; the address for the link.
  QString name;
  // Relay changes: the relay and whether the switcher now reports it latched.
  int relay = 0;
  bool on = false;
  // Link returns: whether this is the program's first connection.
  bool first = false;
};

QString AlertKindName(AlertKind kind);
// Whether the event is one the desktop notifies (new alarms, link lost, link back).
bool Notifies(const AlertEvent& event);
QString NotificationTitle(const AlertEvent& event);
QString NotificationText(const AlertEvent& event);
// The webhook's body; sequence numbers count from 1 per run, so a receiver sees gaps and repeats.
QJsonObject AlertEventJson(const AlertEvent& event, quint64 sequence);

// What the tray and the window title show: the Alarm lamp's colour and a short summary.
struct DesktopSummary {
  QString lamp = QStringLiteral("grey");  // grey = no link
  bool alarmOn = false;                   // an alarm that nobody acknowledged or cancelled
  int silentCount = 0;
  QStringList silentNames;  // at most a few, for the tool tip
  QString toolTip;
};

// Finds what changed since the last look at the state: alarms raised and ended, relay and link
// changes. Cheap enough to run after every event the monitor handles (no text is built for
// outputs that did not change).
class AlertTracker {
 public:
  AlertTracker();

  std::vector<AlertEvent> Update(const State& s);

  const DesktopSummary& Summary() const { return summary_; }
  quint64 AlarmsRaised() const { return alarmsRaised_; }
  quint64 MessagesDecoded() const { return messages_; }
  double LastMessageAgeSeconds() const;

 private:
  enum Phase : quint8 { kQuiet, kAlarm, kAcknowledged, kCanceled };
  struct OutputMark {
    int output = 0;
    Phase phase = kQuiet;
  };

  std::vector<OutputMark> outputs_;
  std::map<QString, bool> shows_;
  bool linkUp_ = false;
  bool everUp_ = false;
  int relay_ = 0;
  bool relayOn_ = false;
  quint64 alarmsRaised_ = 0;
  quint64 messages_ = 0;
  QElapsedTimer sinceMessage_;
  DesktopSummary summary_;
};

}  // namespace zrn
