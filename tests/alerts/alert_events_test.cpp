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
    s.ActiveShows = {0};  // counted only in show mode
    s.ActiveShowCount = 1;
    s.Shows[0].Name = QStringLiteral("Morning");
    s.Shows[0].DownlinkMonitor = 5;
    s.ShowCount = 1;
  }

  void Link(bool up) {
    s.Connected = up;
    s.linkState.ExchangeComplete = up;
  }
  // The events of one update, in order, "; " between them.
  QString Step() {
    QStringList seen;
    for (const AlertEvent& e : tracker.Update(s)) {
      const QString on = e.kind != AlertKind::RelayChanged ? "" : e.on ? "on" : "off";
      seen << QStringList{AlertKindName(e.kind), e.panel, e.name, on}.join(' ').simplified();
    }
    return seen.join(QStringLiteral("; "));
  }

  AlertTracker tracker;
};

TEST_F(AlertTrackerTest, EachChangeGivesItsEventsOnce) {
  const struct {
    const char* what;
    std::function<void()> change;
    const char* events;  // in order, "; " between them
    const char* lamp;
  } steps[] = {
      {"not yet connected", [] {}, "", "grey"},
      {"connected, exchange complete", [&] { Link(true); }, "link_returned 127.0.0.1:1250",
       "green"},
      {"output 2 silent", [&] { s.panels.outputs[1].lamp = kLampRed; },
       "output_alarm_raised 02 Studio 2", "red"},
      {"nothing new", [] {}, "", "red"},
      {"relay latched", [&] { s.RelayStates[0] = 1; }, "relay_changed ALARM on", "red"},
      {"acknowledged", [&] { s.panels.outputs[1].lamp = kLampYellow; },
       "output_alarm_acknowledged 02 Studio 2", "yellow"},
      {"output 3 silent and cancelled in one go",
       [&] {
         s.panels.outputs[2].lamp = kLampRed;
         s.Outputs[2].AlarmCanceled = true;
       },
       "output_alarm_raised 03 Studio 3; output_alarm_canceled 03 Studio 3", "yellow"},
      {"audio back on output 2", [&] { s.panels.outputs[1].lamp = kLampGreen; },
       "output_alarm_ended 02 Studio 2", "yellow"},
      {"panel 3 now watches another output",
       [&] {
         s.Outputs[2].Output = 9;
         s.Outputs[2].AlarmCanceled = false;
         s.panels.outputs[2].lamp = kLampRed;
       },
       "output_alarm_ended 03 Studio 3; output_alarm_raised 03 Studio 3", "red"},
      {"panel 3 no longer watched", [&] { s.OutputCount = 2; }, "output_alarm_ended 03", "green"},
      {"show mode: the show's downlink in alarm",
       [&] {
         s.ProgramMode = 1;
         s.Shows[0].Alarm = 1;
       },
       "show_alarm_raised Morning", "red"},
      {"the show's alarm cancelled", [&] { s.Shows[0].AlarmCanceled = true; },
       "show_alarm_ended Morning", "green"},
      {"link lost: relay unknown, lamp grey",
       [&] {
         Link(false);
         s.RelayStates[0] = 0;
       },
       "link_lost 127.0.0.1:1250", "grey"},
      {"link back: the released relay is told", [&] { Link(true); },
       "link_returned 127.0.0.1:1250; relay_changed ALARM off", "green"},
  };
  for (const auto& step : steps) {
    step.change();
    EXPECT_EQ(Step().toStdString(), step.events) << step.what;
    EXPECT_EQ(tracker.Summary().lamp.toStdString(), step.lamp) << step.what;
  }
  EXPECT_EQ(tracker.AlarmsRaised(), 4u);
}

TEST_F(AlertTrackerTest, SummaryNamesTheSilentOutputsAndTheFirstConnectionIsNotNotified) {
  Link(true);
  EXPECT_FALSE(Notifies(tracker.Update(s).at(0))) << "the first connection is no news";
  EXPECT_EQ(tracker.Summary().toolTip, QStringLiteral("No output silent"));
  s.panels.outputs[0].lamp = kLampRed;
  s.panels.outputs[2].lamp = kLampYellow;
  const AlertEvent raised = tracker.Update(s).at(0);
  EXPECT_EQ(NotificationTitle(raised) + ": " + NotificationText(raised),
            QStringLiteral("Loss alarm: Studio 1 (output 1) is silent"));
  EXPECT_EQ(tracker.Summary().toolTip, QStringLiteral("2 outputs silent: Studio 1, Studio 3"));
  EXPECT_TRUE(tracker.Summary().alarmOn);

  // The exposition carries the show too, with label values escaped.
  s.ProgramMode = 1;
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
