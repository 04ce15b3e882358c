#include <QDataStream>
#include <QLabel>

#include "core/panel_models.h"
#include "e2e/sim_process.h"
#include "shows/show_status.h"
#include "ui/broadcast_style.h"
#include "window/alarm_controls_widget.h"
#include "window/main_window.h"
#include "window/panel_canvas_widget.h"

namespace zrn {
namespace {

using MonitorWithSim = test::SimFixture;

// A show on air watches its downlink: a silence raises its alarm and latches the relay. A lost
// link greys the show's lamp and the relay lamp at once, without changing the alarm or the relay
// decision; the new exchange routes the monitors again to what they carry and the alarm holds
// the relay throughout. Taking a studio source routes it; a restarted switcher, which has
// forgotten the monitors, gets them again.
TEST_F(MonitorWithSim, AShowOnAirWatchesItsDownlinkThroughALostLinkAndTakesAStudio) {
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
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return s.panels.shows[0].indicatorColour == kLampGreen; }, 15000))
      << "the downlink monitor reports audio once its grace is over";

  sim->Command(QStringLiteral("input 1 silent"));
  ASSERT_TRUE(
      QTest::qWaitFor([&] { return s.panels.shows[0].indicatorColour == kLampRed; }, 10000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return sim->RelayOn(); }, 5000));
  EXPECT_TRUE(Log().contains(QStringLiteral("Loss Alarm Report On")));
  EXPECT_TRUE(Log().contains(QStringLiteral("Drive Time Silence Alarm Status ON!")));
  PanelCanvasWidget& canvas = *window.Canvas();
  const Rect& f = s.panels.shows[0].frame;
  const Rect& i = s.panels.shows[0].indicator;
  const QPoint lamp =
      PanelCanvasWidget::ToPixels(Rect{f.left + i.left, f.top + i.top, i.width, i.height}).center();
  EXPECT_EQ(canvas.grab().toImage().pixelColor(lamp).name(), QStringLiteral("#ff0000"));

  // What the operator sees the moment the link is known to be down, before any poll tick: the
  // lamps drawn as "no information", a dim grey, neither green nor red nor any other lamp
  // colour; the relay lamp too, as the switcher last reported it is no fresher.
  bool seen = false;
  QObject::connect(monitor.get(), &Monitor::changed, &window, [&] {
    if (s.Connected || std::exchange(seen, true)) {
      return;
    }
    AlarmControlsWidget& alarm = *window.AlarmControls();
    const QRect relay = PanelCanvasWidget::ToPixels(s.panels.window.alarmLamp)
                            .translated(-alarm.DesignedPixels(s.panels.window).topLeft());
    for (const QColor& c : {canvas.grab().toImage().pixelColor(lamp),
                            alarm.grab().toImage().pixelColor(relay.center())}) {
      const int spread =
          std::max({c.red(), c.green(), c.blue()}) - std::min({c.red(), c.green(), c.blue()});
      EXPECT_TRUE(spread < 24 && c.value() < 0xa0) << qPrintable(c.name());
    }
    EXPECT_EQ(s.panels.shows[0].indicatorColour, kLampRed) << "the colour the alarm decides on";
    EXPECT_EQ(s.lossAlarm.wantedRelay, 1) << "the relay decision is not changed by the lost link";
    const QString status = window.StatusText()->text();
    EXPECT_TRUE(status.startsWith(QStringLiteral("No link since ")) &&
                status.contains(QStringLiteral("127.0.0.1")))
        << qPrintable(status);
  });
  sim->Command(QStringLiteral("drop"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return seen; }, 5000));
  ASSERT_TRUE(WaitForExchange());
  QElapsedTimer held;
  held.start();
  while (held.elapsed() < 3000) {
    ASSERT_TRUE(sim->RelayOn()) << "released " << held.elapsed() << " ms after the reconnection";
    QTest::qWait(250);
  }
  EXPECT_EQ(canvas.grab().toImage().pixelColor(lamp).name(), QStringLiteral("#ff0000"));
  EXPECT_FALSE(Log().contains(QStringLiteral("Loss Alarm Report Off")));

  // Taking the second studio source routes inputs 5 and 6 to show outputs 10/11 and 12/13; the
  // downlink and studio sources are watched on the borrowed outputs.
  const auto routes = [&] { return sim->Status(QStringLiteral("routes")); };
  ASSERT_EQ(TakeStudioSource(s, 0, 1), 4);
  EXPECT_TRUE(QTest::qWaitFor(
      [&] { return routes().contains(QStringLiteral("10:5,11:6,12:5,13:6,14:1,15:2,16:5")); },
      5000))
      << routes().toStdString();

  sim->Kill();
  ASSERT_TRUE(QTest::qWaitFor([&] { return !s.Connected; }, 5000));
  ASSERT_NO_FATAL_FAILURE(StartSim());
  ASSERT_TRUE(WaitForExchange());
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return routes().endsWith(QStringLiteral("14:1,15:2,16:5")); }, 5000))
      << routes().toStdString();
}

}  // namespace
}  // namespace zrn
