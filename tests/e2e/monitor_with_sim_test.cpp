#include <QDataStream>
#include <QLabel>

#include "core/panel_models.h"
#include "e2e/sim_process.h"
#include "monitor/link_watch.h"
#include "shows/show_status.h"
#include "ui/broadcast_style.h"
#include "window/alarm_controls_widget.h"
#include "window/main_window.h"
#include "window/panel_canvas_widget.h"

namespace zrn {
namespace {

using MonitorWithSim = test::SimFixture;

// The colour the canvas draws at the middle of an output panel's lamp.
QColor LampPixel(PanelCanvasWidget& canvas, const OutputPanelModel& panel) {
  const Rect& f = panel.normal.frame;
  const Rect& l = panel.normal.lamp;
  const QPoint centre =
      PanelCanvasWidget::ToPixels(Rect{f.left + l.left, f.top + l.top, l.width, l.height}).center();
  return canvas.grab().toImage().pixelColor(centre);
}

// A silence latches the relay; a lost link greys every lamp at once without changing the relay
// decision; the new exchange restores the lamps, and audio releases the relay.
TEST_F(MonitorWithSim, SilenceLatchesTheRelayADroppedLinkGreysTheLampsAndAudioReleasesIt) {
  ApplyBroadcastStyle(*qApp);
  Launch();
  MainWindow window(*monitor);
  window.show();
  State& s = monitor->state();
  EXPECT_EQ(s.OutputNames[0], QStringLiteral("TX 1    ")) << "names keep their blanks";
  EXPECT_EQ(s.panels.outputs[0].toolTip, QStringLiteral("TX 1        [0001]"));
  ASSERT_TRUE(LampBecomes(0, kLampGreen));
  // Input 2 feeds output 2.
  EXPECT_EQ(sim->Command(QStringLiteral("input 2 silent")).left(2), QStringLiteral("ok"));
  ASSERT_TRUE(LampBecomes(1, kLampRed));
  ASSERT_TRUE(QTest::qWaitFor([&] { return sim->RelayOn(); }, 5000))
      << "the alarm relay is latched on the switcher";
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.panels.window.alarmLampColour == kLampRed; }, 5000));
  EXPECT_TRUE(Log().contains(QStringLiteral("TX 2     [0002] Silence Alarm Status ON!")));
  EXPECT_TRUE(Log().contains(QStringLiteral("Loss Alarm Report On")));
  PanelCanvasWidget& canvas = *window.Canvas();
  EXPECT_EQ(LampPixel(canvas, s.panels.outputs[1]).name(), QStringLiteral("#ff0000"));
  EXPECT_EQ(LampPixel(canvas, s.panels.outputs[0]).name(), QStringLiteral("#00ff00"));
  ASSERT_EQ(s.lossAlarm.wantedRelay, 1);

  // What the operator sees the moment the link is known to be down, before any poll tick.
  struct Seen {
    bool taken = false;
    std::vector<QColor> pixels;
    std::vector<Rgb> lamps;
    qint16 wanted = 0;
    QString status;
  } seen;
  QObject::connect(monitor.get(), &Monitor::changed, &window, [&] {
    if (s.Connected || seen.taken) {
      return;
    }
    seen.taken = true;
    for (const OutputPanelModel& panel : s.panels.outputs) {
      seen.pixels.push_back(LampPixel(canvas, panel));
      seen.lamps.push_back(panel.lamp);
    }
    // The relay lamp as the switcher last reported it is no fresher.
    const AlarmControlsWidget& alarm = *window.AlarmControls();
    const QRect relay = PanelCanvasWidget::ToPixels(s.panels.window.alarmLamp)
                            .translated(-alarm.DesignedPixels(s.panels.window).topLeft());
    seen.pixels.push_back(window.AlarmControls()->grab().toImage().pixelColor(relay.center()));
    seen.wanted = s.lossAlarm.wantedRelay;
    seen.status = window.StatusText()->text();
  });
  sim->Command(QStringLiteral("drop"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return seen.taken; }, 5000));
  ASSERT_EQ(seen.pixels.size(), 5u);
  for (const QColor& c : seen.pixels) {
    // "No information": a dim grey, neither green nor red nor any other lamp colour.
    const int spread =
        std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
    EXPECT_TRUE(spread < 24 && c.value() < 0xa0) << qPrintable(c.name());
  }
  EXPECT_EQ(seen.lamps, (std::vector<Rgb>{kLampGreen, kLampRed, kLampGreen, kLampGreen}))
      << "the lamp colours the alarm decides on stay";
  EXPECT_EQ(seen.wanted, 1) << "the relay decision is not changed by the lost link";
  EXPECT_TRUE(seen.status.startsWith(QStringLiteral("No link since "))) << qPrintable(seen.status);
  EXPECT_TRUE(seen.status.contains(QStringLiteral("127.0.0.1"))) << qPrintable(seen.status);
  EXPECT_TRUE(sim->RelayOn());

  // The fresh reports of the new exchange restore the lamps.
  ASSERT_TRUE(WaitForExchange());
  ASSERT_TRUE(QTest::qWaitFor([&] { return !ReportsStale(s); }, 5000));
  QCoreApplication::processEvents();
  EXPECT_EQ(LampPixel(canvas, s.panels.outputs[1]).name(), QStringLiteral("#ff0000"));
  EXPECT_EQ(LampPixel(canvas, s.panels.outputs[0]).name(), QStringLiteral("#00ff00"));

  sim->Command(QStringLiteral("input 2 audio"));
  ASSERT_TRUE(LampBecomes(1, kLampGreen));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !sim->RelayOn(); }, 5000));
  EXPECT_TRUE(Log().contains(QStringLiteral("Loss Alarm Report Off")));
  EXPECT_EQ(Log("Errorlog.txt"), QString());
}

TEST_F(MonitorWithSim, AShowOnAirWatchesItsDownlinkAndTakesAStudio) {
  // One show all day, every day: downlink input 1, studio sources inputs 2/3 and 5/6, show
  // outputs 10/11 and 12/13, three borrowed silence-detecting outputs 14 to 16.
  QByteArray shows;
  QDataStream out(&shows, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  out << qint16(1) << qint16(1) << quint8(10);
  out.writeRawData("Drive Time00:00:0023:59:5901/01/202412/31/2099", 46);
  out << quint8(127) << quint8(0);
  for (qint16 v :
       std::initializer_list<qint16>{0, 2, 9,     10, kNone, 11, 12, kNone, 2,  1,  2, kNone,
                                     4, 5, kNone, 0,  824,   3,  1,  3,     13, 14, 15}) {
    out << v;
  }
  QFile file(dir.path() + QStringLiteral("/ZRNShows.dat"));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(shows) == shows.size());
  file.close();

  ApplyBroadcastStyle(*qApp);
  Launch(QStringLiteral("Show"));
  MainWindow window(*monitor);
  window.show();
  State& s = monitor->state();
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.ActiveShowCount == 1; }, 5000));
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return s.panels.shows[0].indicatorColour == kLampGreen; }, 15000))
      << "the downlink monitor reports audio once its grace is over";

  sim->Command(QStringLiteral("input 1 silent"));
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return s.panels.shows[0].indicatorColour == kLampRed; }, 10000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return sim->RelayOn(); }, 5000));
  EXPECT_TRUE(Log().contains(QStringLiteral("Loss Alarm Report On")));
  EXPECT_TRUE(Log().contains(QStringLiteral("Drive Time Silence Alarm Status ON!")));

  // The link drops with the downlink still silent: the monitors are routed again to what they
  // already carry, and the alarm holds the relay all along.
  sim->Command(QStringLiteral("drop"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
  ASSERT_TRUE(WaitForExchange());
  QElapsedTimer held;
  held.start();
  while (held.elapsed() < 3000) {
    ASSERT_TRUE(sim->RelayOn()) << "released " << held.elapsed() << " ms after the reconnection";
    QTest::qWait(250);
  }
  EXPECT_EQ(s.panels.shows[0].indicatorColour, kLampRed);
  EXPECT_FALSE(Log().contains(QStringLiteral("Loss Alarm Report Off")));

  // Taking the second studio source routes inputs 5 and 6 to show outputs 10/11 and 12/13; the
  // downlink and studio sources are watched on the borrowed outputs.
  const auto routes = [&] { return sim->Status(QStringLiteral("routes")); };
  ASSERT_EQ(TakeStudioSource(s, 0, 1), 4);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return routes().contains(QStringLiteral("10:5,11:6,12:5,13:6,14:1,15:2,16:5")); },
      5000))
      << routes().toStdString();

  // A restarted switcher has forgotten the monitors; they are routed again once the new
  // exchange completes.
  sim->Kill();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
  ASSERT_NO_FATAL_FAILURE(StartSim());
  EXPECT_TRUE(routes().endsWith(QStringLiteral("14:14,15:15,16:16")));
  ASSERT_TRUE(WaitForExchange());
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return routes().endsWith(QStringLiteral("14:1,15:2,16:5")); }, 5000))
      << routes().toStdString();
}

}  // namespace
}  // namespace zrn
