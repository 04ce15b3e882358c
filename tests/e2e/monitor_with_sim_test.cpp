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

using test::SimProcess;
using MonitorWithSim = test::SimFixture;

// The colour the canvas draws at the middle of an output panel's lamp.
QColor LampPixel(PanelCanvasWidget& canvas, const OutputPanelModel& panel) {
  const Rect& f = panel.normal.frame;
  const Rect& l = panel.normal.lamp;
  const QPoint centre =
      PanelCanvasWidget::ToPixels(Rect{f.left + l.left, f.top + l.top, l.width, l.height}).center();
  return canvas.grab().toImage().pixelColor(centre);
}

// "No information": a dim grey, neither green nor red nor any other lamp colour.
bool DrawnAsNoInformation(const QColor& c) {
  const int spread =
      std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
  return spread < 24 && c.value() < 0xa0;
}

// The error log's lines after its header.
QStringList ErrorLines(const QString& text) {
  const QStringList all = text.split(QStringLiteral("\r\n"));
  return all.mid(all.indexOf(QString(80, QLatin1Char('-'))) + 1).filter(QStringLiteral(" "));
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
  const qint16 wanted = s.lossAlarm.wantedRelay;
  ASSERT_EQ(wanted, 1);

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
  std::vector<Rgb> before;
  for (const OutputPanelModel& panel : s.panels.outputs) {
    before.push_back(panel.lamp);
  }
  sim->Command(QStringLiteral("drop"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return seen.taken; }, 5000));
  ASSERT_EQ(seen.pixels.size(), 5u);
  for (std::size_t i = 0; i < seen.pixels.size(); ++i) {
    EXPECT_TRUE(DrawnAsNoInformation(seen.pixels[i]))
        << i << " " << qPrintable(seen.pixels[i].name());
  }
  EXPECT_EQ(seen.lamps, before) << "the lamp colours the alarm decides on stay";
  EXPECT_EQ(seen.wanted, wanted) << "the relay decision is not changed by the lost link";
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
  EXPECT_EQ(ErrorLines(Log("Errorlog.txt")), QStringList());
}

TEST_F(MonitorWithSim, AShowOnAirWatchesItsDownlinkAndTakesAStudio) {
  // One show all day, every day: downlink input 1, studio sources inputs 2/3 and 5/6, show
  // outputs 10/11 and 12/13, three borrowed silence-detecting outputs 14 to 16.
  QByteArray shows;
  auto i16 = [&](int v) {
    shows.append(static_cast<char>(v & 0xFF));
    shows.append(static_cast<char>((v >> 8) & 0xFF));
  };
  i16(1);
  i16(1);
  shows.append(static_cast<char>(10));
  shows += "Drive Time00:00:0023:59:5901/01/202412/31/2099";
  shows.append(static_cast<char>(127));
  shows.append('\0');
  const int none = kNone;
  for (int v :
       {0, 2, 9, 10, none, 11, 12, none, 2, 1, 2, none, 4, 5, none, 0, 824, 3, 1, 3, 13, 14, 15}) {
    i16(v);
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

  // Taking the second studio source routes inputs 5 and 6 to show outputs 10/11 and 12/13.
  ASSERT_EQ(TakeStudioSource(s, 0, 1), 4);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] {
        const QString routes = sim->Status(QStringLiteral("routes"));
        return routes.contains(QStringLiteral("10:5,11:6,12:5,13:6"));
      },
      5000))
      << sim->Status(QStringLiteral("routes")).toStdString();
  EXPECT_TRUE(sim->Status(QStringLiteral("routes")).contains(QStringLiteral("14:1,15:2,16:5")))
      << "downlink and studio sources watched on the borrowed outputs";

  // A restarted switcher has forgotten the monitors; they are routed again once the new
  // exchange completes.
  sim->Kill();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
  sim = std::make_unique<SimProcess>(port);
  ASSERT_TRUE(sim->Start());
  EXPECT_EQ(sim->Status(QStringLiteral("routes")).right(17), QStringLiteral("14:14,15:15,16:16"));
  ASSERT_TRUE(WaitForExchange());
  EXPECT_TRUE(QTest::qWaitFor(
      [&] {
        return sim->Status(QStringLiteral("routes")).endsWith(QStringLiteral("14:1,15:2,16:5"));
      },
      5000))
      << sim->Status(QStringLiteral("routes")).toStdString();
}

}  // namespace
}  // namespace zrn
