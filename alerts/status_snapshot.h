#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <vector>

namespace zrn {

struct State;
struct Rgb;

// One watched output as the window shows it, with what its lamp means.
struct OutputStatus {
  QString panel;  // the panel's position number, "01"
  int output = 0;
  QString name;
  QString nameLine;
  QString channelLine;
  QString toolTip;
  QString lamp;  // "green", "red", "yellow", "cyan", "grey"
  bool silent = false;
  bool inAlarm = false;
  bool acknowledged = false;
  bool canceled = false;
  bool monitoring = false;
};

struct ShowStatus {
  QString name;
  QString outputs;
  QString source;
  QString indicator;
  bool inAlarm = false;
};

// Counters the status endpoint reports, kept by the alert tracker.
struct AlertCounters {
  quint64 alarmsRaised = 0;
  quint64 messagesDecoded = 0;
  // Seconds since the last message from the switcher (or since start when none came yet).
  double lastMessageAgeSeconds = 0;
  int webhookQueued = 0;
  quint64 webhookDropped = 0;
};

// Everything the status endpoint tells, read from the state in one go.
struct StatusSnapshot {
  QDateTime time;
  bool linkUp = false;
  bool exchangeComplete = false;
  QString address;
  int port = 0;
  QString statusBar;
  bool showMode = false;
  bool largeView = false;
  int relay = 0;  // 0 = no usable alarm relay
  QString relayName;
  bool relayWanted = false;
  bool relayReported = false;
  QString alarmLamp;
  std::vector<OutputStatus> outputs;
  std::vector<ShowStatus> shows;
  QStringList messages;
  AlertCounters counters;
};

// The colour a lamp shows, by name: "green", "red", "yellow", "cyan" or "grey".
QString LampName(const Rgb& colour);

StatusSnapshot TakeStatusSnapshot(const State& s, const AlertCounters& counters);

// The Prometheus text exposition format (version 0.0.4).
QByteArray MetricsText(const StatusSnapshot& snapshot);
QJsonObject StatusJson(const StatusSnapshot& snapshot);
// The read-only status page: it fetches /api/status itself and redraws once a second.
QByteArray StatusPageHtml();

}  // namespace zrn
