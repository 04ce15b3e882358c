#include "alerts/status_snapshot.h"

#include <QJsonArray>
#include <algorithm>

#include "core/state.h"
#include "monitor/loss_alarm.h"
#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "shows/show_panels.h"

namespace zrn {

namespace {

constexpr int kMessagesShown = 20;

// Label values may hold anything a switcher names a channel; the format escapes three characters.
QByteArray LabelValue(const QString& text) {
  QByteArray out = text.toUtf8();
  if (!out.contains('\\') && !out.contains('"') && !out.contains('\n')) {
    return out;
  }
  QByteArray escaped;
  escaped.reserve(out.size() + 8);
  for (const char c : out) {
    if (c == '\\') {
      escaped += "\\\\";
    } else if (c == '"') {
      escaped += "\\\"";
    } else if (c == '\n') {
      escaped += "\\n";
    } else {
      escaped += c;
    }
  }
  return escaped;
}

// Built straight into bytes: a scrape of 4096 outputs writes over 16 000 samples, and it runs in
// the event loop that also carries the alarms.
class Exposition {
 public:
  explicit Exposition(qsizetype expected) { text_.reserve(expected); }
  void Family(const char* name, const char* type, const char* help) {
    text_ += "# HELP ";
    text_ += name;
    text_ += ' ';
    text_ += help;
    text_ += "\n# TYPE ";
    text_ += name;
    text_ += ' ';
    text_ += type;
    text_ += '\n';
  }
  void Sample(const char* name, const QByteArray& labels, bool value) {
    Start(name, labels);
    text_ += value ? "1\n" : "0\n";
  }
  void Sample(const char* name, const QByteArray& labels, double value) {
    Start(name, labels);
    text_ += QByteArray::number(value, 'g', 12);
    text_ += '\n';
  }
  QByteArray Bytes() { return std::move(text_); }

 private:
  void Start(const char* name, const QByteArray& labels) {
    text_ += name;
    if (!labels.isEmpty()) {
      text_ += '{';
      text_ += labels;
      text_ += '}';
    }
    text_ += ' ';
  }
  QByteArray text_;
};

QByteArray OutputLabels(const OutputStatus& o) {
  return "panel=\"" + LabelValue(o.panel) + "\",output=\"" + QByteArray::number(o.output) +
         "\",name=\"" + LabelValue(o.name) + '"';
}

}  // namespace

QString LampName(const Rgb& c) {
  if (c == kLampGreen) {
    return QStringLiteral("green");
  }
  if (c == kLampRed) {
    return QStringLiteral("red");
  }
  if (c == kLampYellow) {
    return QStringLiteral("yellow");
  }
  if (c == kLampCyan) {
    return QStringLiteral("cyan");
  }
  return QStringLiteral("grey");
}

StatusSnapshot TakeStatusSnapshot(const State& s, const AlertCounters& counters) {
  StatusSnapshot snap;
  snap.time = Now(s);
  snap.linkUp = s.Connected;
  snap.exchangeComplete = s.Connected && s.linkState.ExchangeComplete;
  snap.address = s.ServerAddress;
  snap.port = s.ServerPort;
  snap.statusBar = s.StatusBarText;
  snap.showMode = s.ProgramMode == 1;
  snap.largeView = s.LargeViewActive;
  if (AlarmRelayUsable(s)) {
    snap.relay = s.AlarmRelay;
    snap.relayName =
        s.AlarmRelay - 1 < s.RelayNames.size() ? s.RelayNames[s.AlarmRelay - 1] : QString();
    snap.relayReported = s.RelayStates[s.AlarmRelay - 1] == 1;
  }
  snap.relayWanted = s.lossAlarm.wantedRelay != kNone;
  snap.alarmLamp = LampName(s.panels.window.alarmLampColour);

  const int outputs = std::min(WatchedCount(s), static_cast<int>(s.panels.outputs.size()));
  snap.outputs.reserve(outputs);
  for (int i = 0; i < outputs; ++i) {
    const OutputEntry& entry = s.Outputs[i];
    const OutputPanelModel& panel = s.panels.outputs[i];
    OutputStatus o;
    o.panel = panel.position;
    o.output = entry.Output == kNone ? 0 : entry.Output;
    o.name = PanelName(s, entry);
    o.nameLine = panel.nameLine;
    o.channelLine = panel.channelLine;
    o.toolTip = panel.toolTip;
    o.lamp = LampName(panel.lamp);
    o.silent = panel.lamp == kLampRed || panel.lamp == kLampYellow;
    o.inAlarm = OutputInAlarm(s, i);
    o.acknowledged = panel.lamp == kLampYellow;
    o.canceled = entry.AlarmCanceled && panel.lamp == kLampRed;
    o.monitoring = entry.MonitoringEnabled;
    snap.outputs.push_back(std::move(o));
  }

  ForEachActiveShow(s, [&](int p, int index) {
    if (p >= static_cast<int>(s.panels.shows.size())) {
      return;
    }
    const ShowPanelModel& panel = s.panels.shows[p];
    ShowStatus show;
    show.name = s.Shows[index].Name;
    show.outputs = panel.outputsText;
    show.source = panel.sourceText;
    show.indicator = LampName(panel.indicatorColour);
    show.inAlarm = ShowInAlarm(s.Shows[index]);
    snap.shows.push_back(std::move(show));
  });

  const int rows = static_cast<int>(s.MessageRows.size());
  snap.messages = s.MessageRows.mid(std::max(0, rows - kMessagesShown));
  snap.counters = counters;
  return snap;
}

QByteArray MetricsText(const StatusSnapshot& snap) {
  Exposition m(4096 + static_cast<qsizetype>(snap.outputs.size()) * 4 * 80);
  m.Family("zrn_link_up", "gauge", "Whether the TCP link to the switcher is connected.");
  m.Sample("zrn_link_up", {}, snap.linkUp);
  m.Family("zrn_exchange_complete", "gauge",
           "Whether the start-up exchange of the present connection has completed.");
  m.Sample("zrn_exchange_complete", {}, snap.exchangeComplete);
  m.Family("zrn_last_message_age_seconds", "gauge",
           "Seconds since the last message from the switcher.");
  m.Sample("zrn_last_message_age_seconds", {}, snap.counters.lastMessageAgeSeconds);

  struct OutputFact {
    const char* name;
    const char* help;
    bool OutputStatus::*flag;
  };
  const OutputFact facts[] = {
      {"zrn_output_silent", "Whether the watched output is silent (lamp red or yellow).",
       &OutputStatus::silent},
      {"zrn_output_in_alarm", "Whether the watched output's silence holds the alarm relay.",
       &OutputStatus::inAlarm},
      {"zrn_output_acknowledged", "Whether the watched output's silence was acknowledged.",
       &OutputStatus::acknowledged},
      {"zrn_output_monitoring", "Whether monitoring of the watched output is on.",
       &OutputStatus::monitoring},
  };
  std::vector<QByteArray> labels;
  labels.reserve(snap.outputs.size());
  for (const OutputStatus& o : snap.outputs) {
    labels.push_back(OutputLabels(o));
  }
  for (const OutputFact& fact : facts) {
    m.Family(fact.name, "gauge", fact.help);
    for (std::size_t i = 0; i < snap.outputs.size(); ++i) {
      m.Sample(fact.name, labels[i], snap.outputs[i].*fact.flag);
    }
  }

  const QByteArray relay =
      "relay=\"" + QByteArray::number(snap.relay) + "\",name=\"" + LabelValue(snap.relayName) + '"';
  m.Family("zrn_relay_wanted", "gauge", "Whether the loss alarm wants the alarm relay latched.");
  m.Sample("zrn_relay_wanted", relay, snap.relayWanted);
  m.Family("zrn_relay_reported", "gauge", "Whether the switcher reports the alarm relay latched.");
  m.Sample("zrn_relay_reported", relay, snap.relayReported);

  m.Family("zrn_show_in_alarm", "gauge", "Whether the active show's downlink is in alarm.");
  for (const ShowStatus& show : snap.shows) {
    m.Sample("zrn_show_in_alarm", "show=\"" + LabelValue(show.name) + '"', show.inAlarm);
  }

  m.Family("zrn_alarms_raised_total", "counter", "Loss and show alarms raised since start.");
  m.Sample("zrn_alarms_raised_total", {}, static_cast<double>(snap.counters.alarmsRaised));
  m.Family("zrn_messages_decoded_total", "counter",
           "Messages decoded from the switcher since start.");
  m.Sample("zrn_messages_decoded_total", {}, static_cast<double>(snap.counters.messagesDecoded));
  m.Family("zrn_webhook_queued", "gauge", "Webhook events waiting to be delivered.");
  m.Sample("zrn_webhook_queued", {}, static_cast<double>(snap.counters.webhookQueued));
  m.Family("zrn_webhook_dropped_total", "counter",
           "Webhook events dropped because the queue was full.");
  m.Sample("zrn_webhook_dropped_total", {}, static_cast<double>(snap.counters.webhookDropped));
  return m.Bytes();
}

QJsonObject StatusJson(const StatusSnapshot& snap) {
  QJsonArray outputs;
  for (const OutputStatus& o : snap.outputs) {
    outputs.append(QJsonObject{{QStringLiteral("panel"), o.panel},
                               {QStringLiteral("output"), o.output},
                               {QStringLiteral("name"), o.name},
                               {QStringLiteral("nameLine"), o.nameLine},
                               {QStringLiteral("channelLine"), o.channelLine},
                               {QStringLiteral("toolTip"), o.toolTip},
                               {QStringLiteral("lamp"), o.lamp},
                               {QStringLiteral("silent"), o.silent},
                               {QStringLiteral("inAlarm"), o.inAlarm},
                               {QStringLiteral("acknowledged"), o.acknowledged},
                               {QStringLiteral("canceled"), o.canceled},
                               {QStringLiteral("monitoring"), o.monitoring}});
  }
  QJsonArray shows;
  for (const ShowStatus& show : snap.shows) {
    shows.append(QJsonObject{{QStringLiteral("name"), show.name},
                             {QStringLiteral("outputs"), show.outputs},
                             {QStringLiteral("source"), show.source},
                             {QStringLiteral("indicator"), show.indicator},
                             {QStringLiteral("inAlarm"), show.inAlarm}});
  }
  const AlertCounters& c = snap.counters;
  return QJsonObject{
      {QStringLiteral("time"), snap.time.toString(Qt::ISODate)},
      {QStringLiteral("link"),
       QJsonObject{{QStringLiteral("up"), snap.linkUp},
                   {QStringLiteral("exchangeComplete"), snap.exchangeComplete},
                   {QStringLiteral("address"), snap.address},
                   {QStringLiteral("port"), snap.port},
                   {QStringLiteral("lastMessageAgeSeconds"), c.lastMessageAgeSeconds}}},
      {QStringLiteral("statusBar"), snap.statusBar},
      {QStringLiteral("mode"), snap.showMode ? QStringLiteral("shows") : QStringLiteral("outputs")},
      {QStringLiteral("view"), snap.largeView ? QStringLiteral("large") : QStringLiteral("normal")},
      {QStringLiteral("alarmLamp"), snap.alarmLamp},
      {QStringLiteral("relay"), QJsonObject{{QStringLiteral("number"), snap.relay},
                                            {QStringLiteral("name"), snap.relayName},
                                            {QStringLiteral("wanted"), snap.relayWanted},
                                            {QStringLiteral("reported"), snap.relayReported}}},
      {QStringLiteral("outputs"), outputs},
      {QStringLiteral("shows"), shows},
      {QStringLiteral("messages"), QJsonArray::fromStringList(snap.messages)},
      {QStringLiteral("counters"),
       QJsonObject{{QStringLiteral("alarmsRaised"), static_cast<double>(c.alarmsRaised)},
                   {QStringLiteral("messagesDecoded"), static_cast<double>(c.messagesDecoded)},
                   {QStringLiteral("webhookQueued"), c.webhookQueued},
                   {QStringLiteral("webhookDropped"), static_cast<double>(c.webhookDropped)}}}};
}

}  // namespace zrn
