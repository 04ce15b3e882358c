#include <functional>

#include "alerts/alert_events.h"
#include "alerts/status_snapshot.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

// The tracker turns what the state shows into events: each step changes the state as the
// monitor would and names the events it must give, in order.
class AlertTrackerTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.Connected = false;
    s.Outputs.resize(3);
    s.panels.outputs.resize(3);
    for (int i = 0; i < 3; ++i) {
      s.Outputs[i].Output = static_cast<qint16>(i + 1);
      s.Outputs[i].MonitoringEnabled = true;
      s.Outputs[i].DisplayOption = 2;
      s.Outputs[i].CustomLabel = QStringLiteral("Studio %1").arg(i + 1);
      s.panels.outputs[i].position = QStringLiteral("0%1").arg(i + 1);
      s.panels.outputs[i].lamp = kLampGreen;
    }
    s.OutputCount = 3;
    s.AlarmRelay = 1;
    s.SwitcherRelayCount = 2;
    s.RelayStates.assign(2, 0);
    s.RelayNames = QStringList{QStringLiteral("ALARM"), QStringLiteral("SPARE")};
    s.Shows.resize(1);
    s.Shows[0].Name = QStringLiteral("Morning");
    s.Shows[0].DownlinkMonitor = 5;
    s.ShowCount = 1;
  }

  QStringList Step() {
    QStringList seen;
    for (const AlertEvent& e : tracker.Update(s)) {
      QString text = AlertKindName(e.kind);
      if (!e.panel.isEmpty()) {
        text += QLatin1Char(' ') + e.panel;
      }
      if (!e.name.isEmpty()) {
        text += QLatin1Char(' ') + e.name;
      }
      if (e.kind == AlertKind::RelayChanged) {
        text += e.on ? QStringLiteral(" on") : QStringLiteral(" off");
      }
      seen << text;
    }
    return seen;
  }

  AlertTracker tracker;
};

TEST_F(AlertTrackerTest, EachChangeGivesItsEventsOnce) {
  const struct {
    const char* what;
    std::function<void()> change;
    QStringList events;
    QString lamp;
  } steps[] = {
      {"not yet connected", [] {}, {}, QStringLiteral("grey")},
      {"connected, exchange complete",
       [&] {
         s.Connected = true;
         s.linkState.ExchangeComplete = true;
       },
       {QStringLiteral("link_returned 127.0.0.1:1250")},
       QStringLiteral("green")},
      {"output 2 silent",
       [&] { s.panels.outputs[1].lamp = kLampRed; },
       {QStringLiteral("output_alarm_raised 02 Studio 2")},
       QStringLiteral("red")},
      {"nothing new", [] {}, {}, QStringLiteral("red")},
      {"relay latched",
       [&] { s.RelayStates[0] = 1; },
       {QStringLiteral("relay_changed ALARM on")},
       QStringLiteral("red")},
      {"acknowledged",
       [&] { s.panels.outputs[1].lamp = kLampYellow; },
       {QStringLiteral("output_alarm_acknowledged 02 Studio 2")},
       QStringLiteral("yellow")},
      {"output 3 silent and cancelled in one go",
       [&] {
         s.panels.outputs[2].lamp = kLampRed;
         s.Outputs[2].AlarmCanceled = true;
       },
       {QStringLiteral("output_alarm_raised 03 Studio 3"),
        QStringLiteral("output_alarm_canceled 03 Studio 3")},
       QStringLiteral("yellow")},
      {"audio back on output 2",
       [&] { s.panels.outputs[1].lamp = kLampGreen; },
       {QStringLiteral("output_alarm_ended 02 Studio 2")},
       QStringLiteral("yellow")},
      {"panel 3 now watches another output",
       [&] {
         s.Outputs[2].Output = 9;
         s.Outputs[2].AlarmCanceled = false;
         s.panels.outputs[2].lamp = kLampRed;
       },
       {QStringLiteral("output_alarm_ended 03 Studio 3"),
        QStringLiteral("output_alarm_raised 03 Studio 3")},
       QStringLiteral("red")},
      {"panel 3 no longer watched",
       [&] { s.OutputCount = 2; },
       {QStringLiteral("output_alarm_ended 03")},
       QStringLiteral("green")},
      {"show mode: the show's downlink in alarm",
       [&] {
         s.ProgramMode = 1;
         s.ActiveShows = {0};
         s.ActiveShowCount = 1;
         s.Shows[0].Alarm = 1;
       },
       {QStringLiteral("show_alarm_raised Morning")},
       QStringLiteral("red")},
      {"the show's alarm cancelled",
       [&] { s.Shows[0].AlarmCanceled = true; },
       {QStringLiteral("show_alarm_ended Morning")},
       QStringLiteral("green")},
      {"link lost: relay unknown, lamp grey",
       [&] {
         s.Connected = false;
         s.linkState.ExchangeComplete = false;
         s.RelayStates[0] = 0;
       },
       {QStringLiteral("link_lost 127.0.0.1:1250")},
       QStringLiteral("grey")},
      {"link back: the released relay is told",
       [&] {
         s.Connected = true;
         s.linkState.ExchangeComplete = true;
       },
       {QStringLiteral("link_returned 127.0.0.1:1250"), QStringLiteral("relay_changed ALARM off")},
       QStringLiteral("green")},
  };
  for (const auto& step : steps) {
    step.change();
    EXPECT_EQ(Step(), step.events) << step.what;
    EXPECT_EQ(tracker.Summary().lamp, step.lamp) << step.what;
  }
  EXPECT_EQ(tracker.AlarmsRaised(), 4u);
}

TEST_F(AlertTrackerTest, SummaryNamesTheSilentOutputsAndTheFirstConnectionIsNotNotified) {
  s.Connected = true;
  s.linkState.ExchangeComplete = true;
  std::vector<AlertEvent> events = tracker.Update(s);
  ASSERT_EQ(events.size(), 1u);
  EXPECT_FALSE(Notifies(events[0])) << "the first connection is no news";
  EXPECT_EQ(tracker.Summary().toolTip, QStringLiteral("No output silent"));

  s.panels.outputs[0].lamp = kLampRed;
  s.panels.outputs[2].lamp = kLampYellow;
  events = tracker.Update(s);
  EXPECT_EQ(tracker.Summary().toolTip, QStringLiteral("2 outputs silent: Studio 1, Studio 3"));
  EXPECT_TRUE(tracker.Summary().alarmOn);
  ASSERT_FALSE(events.empty());
  EXPECT_EQ(NotificationTitle(events[0]) + QStringLiteral(": ") + NotificationText(events[0]),
            QStringLiteral("Loss alarm: Studio 1 (output 1) is silent"));

  // The exposition carries the show too, with label values escaped.
  s.ProgramMode = 1;
  s.ActiveShows = {0};
  s.ActiveShowCount = 1;
  s.Shows[0].Name = QStringLiteral("Late \"Night\" \\ Talk");
  s.Shows[0].Alarm = 1;
  const QByteArray metrics = MetricsText(TakeStatusSnapshot(s, AlertCounters{}));
  EXPECT_TRUE(metrics.contains("zrn_show_in_alarm{show=\"Late \\\"Night\\\" \\\\ Talk\"} 1\n"))
      << metrics.constData();
  EXPECT_TRUE(
      metrics.contains("zrn_output_in_alarm{panel=\"01\",output=\"1\",name=\"Studio 1\"} 1\n"));
}

}  // namespace
}  // namespace zrn
