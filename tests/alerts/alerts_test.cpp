#include <QAbstractHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QImage>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QStandardPaths>

#include "alerts/alert_events.h"
#include "alerts/alerts.h"
#include "alerts/status_server.h"
#include "alerts/status_snapshot.h"
#include "core/panel_models.h"
#include "e2e/sim_process.h"
#include "storage/logs.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

struct Reply {
  int status = 0;
  QByteArray body;
};

Reply Fetch(quint16 port, const QString& path, const QByteArray& authorization = {},
            const QByteArray& verb = "GET") {
  QNetworkAccessManager net;
  QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2").arg(port).arg(path)));
  if (!authorization.isEmpty()) {
    request.setRawHeader("Authorization", authorization);
  }
  QNetworkReply* reply = net.sendCustomRequest(request, verb);
  EXPECT_TRUE(QTest::qWaitFor([&] { return reply->isFinished(); }, 5000));
  Reply r{reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt(), reply->readAll()};
  reply->deleteLater();
  return r;
}

// The value of the one sample whose line starts with prefix, or -1.
double Sample(const QByteArray& metrics, const QString& prefix) {
  for (const QString& line : QString::fromUtf8(metrics).split(QLatin1Char('\n'))) {
    if (line.startsWith(prefix)) {
      return line.section(QLatin1Char(' '), -1).toDouble();
    }
  }
  return -1;
}

// A chat or paging system's webhook, recording what it is sent.
class Receiver final : public QAbstractHttpServer {
 public:
  std::vector<std::pair<QByteArray, QByteArray>> got;  // body and signature

 protected:
  bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override {
    got.emplace_back(request.body(), request.value("X-ZRN-Signature"));
    makeResponder(request, socket).write(QHttpServerResponder::StatusCode::NoContent);
    return true;
  }
  void missingHandler(const QHttpServerRequest&, QTcpSocket*) override {}
};

// The whole monitor with its alerts against the simulator in its own process; the simulator
// reports silence and audio at once.
class AlertsWithSim : public test::SimFixture {
 protected:
  void Started() override {
    alerts = std::make_unique<Alerts>(*monitor);
    alerts->Start();
  }
  QByteArray Metrics() { return Fetch(alerts->EndpointPort(), QStringLiteral("/metrics")).body; }

  std::unique_ptr<Alerts> alerts;
};

const QString kSilent2 = QStringLiteral("zrn_output_silent{panel=\"02\",output=\"2\",");
const QString kAlarm2 = QStringLiteral("zrn_output_in_alarm{panel=\"02\",output=\"2\",");
const QString kRelay1 = QStringLiteral("zrn_relay_reported{relay=\"1\"");

// The webhook receiver is down through the whole silence and comes up afterwards: it still gets
// every event once, in order, signed, and the outage is one error line.
TEST_F(AlertsWithSim, MetricsStatusPageAndWebhookFollowASilence) {
  const quint16 hookPort = test::FreePort();
  ASSERT_NO_FATAL_FAILURE(StartSim({"--detect", "0", "--return", "0"}));
  QFile ini(dir.path() + "/ZRNAlerts.ini");
  ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
  ini.write("[Status]\nPort=0\n[Webhook]\nSecret=studio-secret\nMaxRetrySeconds=1\n");
  ini.write("Url=http://127.0.0.1:" + QByteArray::number(hookPort) + "/hook\n");
  ini.close();
  ASSERT_NO_FATAL_FAILURE(Launch());
  ASSERT_TRUE(LampBecomes(1, kLampGreen));
  const State& s = monitor->state();

  QByteArray metrics = Metrics();
  EXPECT_EQ(Sample(metrics, "zrn_link_up "), 1);
  EXPECT_GT(Sample(metrics, "zrn_messages_decoded_total "), 10);

  sim->Command(QStringLiteral("input 2 silent"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Sample(Metrics(), kAlarm2) == 1; }, 10000));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Sample(Metrics(), kRelay1) == 1; }, 5000));
  metrics = Metrics();
  QProcess promtool;  // scripts/setup installs it
  promtool.start("promtool", {"check", "metrics"});
  promtool.write(metrics);
  promtool.closeWriteChannel();
  ASSERT_TRUE(promtool.waitForFinished(10000)) << "promtool is missing";
  EXPECT_EQ(promtool.exitCode(), 0) << promtool.readAll().constData();
  EXPECT_EQ(Sample(metrics, kSilent2), 1);
  EXPECT_EQ(Sample(metrics, "zrn_relay_wanted{relay=\"1\""), 1);
  EXPECT_EQ(Sample(metrics, "zrn_alarms_raised_total "), 1);

  // The JSON carries what each panel shows.
  const QJsonObject status =
      QJsonDocument::fromJson(Fetch(alerts->EndpointPort(), "/api/status").body).object();
  QStringList shown, panels;
  for (int i = 0; i < 4; ++i) {
    const QJsonObject o = status["outputs"][i].toObject();
    for (const char* key : {"panel", "toolTip", "nameLine", "channelLine", "lamp"}) {
      shown << o[key].toString();
    }
    const OutputPanelModel& p = s.panels.outputs[i];
    panels << p.position << p.toolTip << p.nameLine << p.channelLine << (i == 1 ? "red" : "green");
  }
  EXPECT_EQ(shown, panels);
  EXPECT_EQ(status["statusBar"].toString(), s.StatusBarText);

  // The status page as a browser draws it: the silent output's lamp is red.
  const QString chromium = QStandardPaths::findExecutable("chromium");
  ASSERT_FALSE(chromium.isEmpty()) << "chromium is missing (scripts/setup installs it)";
  QTemporaryDir shots;
  const QString png = qEnvironmentVariable("ZRN_STATUS_PAGE_SHOT", shots.path() + "/status.png");
  QProcess browser;
  browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--window-size=900,520",
                           "--virtual-time-budget=3000", "--user-data-dir=" + shots.path(),
                           "--screenshot=" + png,
                           "http://127.0.0.1:" + QString::number(alerts->EndpointPort())});
  // The page asks this process for its data, so the event loop runs while the browser does.
  EXPECT_TRUE(QTest::qWaitFor([&] { return browser.state() == QProcess::NotRunning; }, 60000));
  const QImage shot = QImage(png).convertToFormat(QImage::Format_RGB32);
  ASSERT_FALSE(shot.isNull());
  const auto* pixels = reinterpret_cast<const QRgb*>(shot.constBits());
  EXPECT_GT(std::count(pixels, pixels + shot.width() * shot.height(), qRgb(255, 0, 0)), 200)
      << "a red lamp is on the page";

  sim->Command(QStringLiteral("input 2 audio"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Sample(Metrics(), kSilent2) == 0; }, 10000));
  ASSERT_TRUE(QTest::qWaitFor([&] { return Sample(Metrics(), kRelay1) == 0; }, 5000));
  EXPECT_EQ(Sample(Metrics(), kAlarm2), 0);

  Receiver hook;
  ASSERT_EQ(hook.listen(QHostAddress::LocalHost, hookPort), hookPort);
  ASSERT_TRUE(QTest::qWaitFor([&] { return alerts->Hook().Queued() == 0; }, 10000));
  QTest::qWait(200);
  QStringList kinds;
  for (const auto& [body, signature] : hook.got) {
    const QJsonObject e = QJsonDocument::fromJson(body).object();
    kinds << QStringList{e["sequence"].toVariant().toString(), e["event"].toString(),
                         e["panel"].toString(), e["on"].toVariant().toString()}
                 .join(' ');
    EXPECT_EQ(signature, WebhookSignature("studio-secret", body));
  }
  EXPECT_EQ(kinds,
            (QStringList{"1 link_returned  ", "2 output_alarm_raised 02 ", "3 relay_changed  true",
                         "4 output_alarm_ended 02 ", "5 relay_changed  false"}));
  EXPECT_EQ(Log("Errorlog.txt").count(QStringLiteral("Webhook not delivered")), 1)
      << "one line per outage";
}

TEST(WebhookSignature, IsHmacSha256OfTheBody) {
  // RFC 4231, test case 2.
  EXPECT_EQ(WebhookSignature("Jefe", "what do ya want for nothing?"),
            QByteArray("sha256=5bdcc146bf60754e6a042426089575c75a003f089d2739839dec58b964ec3843"));
}

using AlertSettingsAndEndpoint = test::TempStateTest;

// Bad values keep their defaults; off the loopback address every request needs the token, and
// nothing answers a change.
TEST_F(AlertSettingsAndEndpoint, SettingsRoundTripAndTheTokenGuardsEveryRequest) {
  EXPECT_EQ(ReadAlertSettings(s), AlertSettings{});
  WriteAll(kAlertsFileName,
           "[Desktop]\nSound=loud\nTrayIcon=false\n[Status]\nPort=99999\nAddress=0.0.0.0\n");
  AlertSettings settings = ReadAlertSettings(s);
  EXPECT_FALSE(settings.sound);
  EXPECT_FALSE(settings.trayIcon);
  EXPECT_EQ(settings.httpPort, 9250);
  EXPECT_EQ(settings.httpAddress, QStringLiteral("0.0.0.0"));
  EXPECT_EQ(ErrorLines().filter("Error Reading Alert Settings").size(), 2)
      << ErrorLines().join('\n').toStdString();
  settings.httpPort = 0;
  StatusServer refused([] { return StatusSnapshot{}; }, QString());
  EXPECT_FALSE(refused.Start(s, settings));
  EXPECT_EQ(ErrorLines().filter("Status endpoint on 0.0.0.0 needs a token; not started").size(), 1);

  settings.httpToken = QStringLiteral("t0ken");
  settings.webhookUrl = QStringLiteral("https://chat.example/hook");
  settings.webhookSecret = QStringLiteral("s=cret; with \"quotes\"");
  ASSERT_TRUE(WriteAlertSettings(s, settings));
  EXPECT_EQ(ReadAlertSettings(s), settings);
  StatusServer server([] { return StatusSnapshot{}; }, settings.httpToken);
  ASSERT_TRUE(server.Start(s, settings));
  const std::tuple<const char*, QByteArray, QByteArray, int> cases[] = {
      {"/metrics", {}, "GET", 401},
      {"/api/status", "Bearer wrong", "GET", 401},
      {"/", "Basic dDBrZW4=", "GET", 401},
      {"/metrics", "Bearer t0ken", "GET", 200},
      {"/api/status", "bearer t0ken", "GET", 200},
      {"/?token=t0ken", {}, "GET", 200},
      {"/api/status", "Bearer t0ken", "POST", 405},
      {"/metrics", "Bearer t0ken", "DELETE", 405},
      {"/nothing", "Bearer t0ken", "GET", 404},
  };
  for (const auto& [path, authorization, verb, status] : cases) {
    EXPECT_EQ(Fetch(server.Port(), path, authorization, verb).status, status)
        << verb.constData() << ' ' << path << " with \"" << authorization.constData() << '"';
  }
}

// The tracker turns what the state shows into events: each step changes the state as the
// monitor would and names the events it must give, in order.
class AlertTrackerTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
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
  // What changes, the events it gives in order, the tray lamp after it.
  const std::tuple<const char*, std::function<void()>, const char*, const char*> steps[] = {
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
  for (const auto& [what, change, events, lamp] : steps) {
    change();
    EXPECT_EQ(Step().toStdString(), events) << what;
    EXPECT_EQ(tracker.Summary().lamp.toStdString(), lamp) << what;
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
