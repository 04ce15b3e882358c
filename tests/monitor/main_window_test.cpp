#include <QHelpEvent>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSettings>
#include <QSystemTrayIcon>
#include <QTcpServer>
#include <QToolTip>

#include "alerts/alerts.h"
#include "monitor/loss_alarm.h"
#include "monitor/monitor.h"
#include "monitor/output_panels.h"
#include "monitor/panel_update.h"
#include "support/bytes.h"
#include "support/monitor_config.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "ui/broadcast_style.h"
#include "window/alarm_controls_widget.h"
#include "window/desktop_alerts.h"
#include "window/find_bar_widget.h"
#include "window/main_window.h"
#include "window/panel_canvas_widget.h"

namespace zrn {
namespace {

using test::Bytes;

// These windows are tried on a 1280x720 screen, the smallest operators use, unless a platform
// was chosen on purpose. It must be set before the test main creates the application.
const bool kSmallScreen = [] {
  const QByteArray platform = qgetenv("QT_QPA_PLATFORM");
  if (platform.isEmpty() || platform == "offscreen") {
    qputenv("QT_QPA_PLATFORM",
            QByteArray("offscreen:configfile=") + ZRN_TEST_DATA_DIR "/screen-1280x720.json");
  }
  return true;
}();

// The whole program with its window, against a loopback server standing in for the switcher.
class MainWindowTest : public ::testing::Test {
 protected:
  // The normal view of three studios, their alarm relay as given.
  void StartWith(const QString& alarmRelay = QStringLiteral("3")) {
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    ASSERT_TRUE(test::WriteMonitorConfig(
        dir.path(),
        {.port = server.serverPort(), .watched = 3, .alarmRelay = alarmRelay, .studios = true}));

    ApplyBroadcastStyle(*qApp);
    monitor = std::make_unique<Monitor>(dir.path() + QLatin1Char('/'), &clock);
    window = std::make_unique<MainWindow>(*monitor);
    monitor->Start();
    person.Open(*window);  // drawn stale until the exchange completes
    ASSERT_TRUE(server.hasPendingConnections() || server.waitForNewConnection(5000));
    peer = server.nextPendingConnection();
    ASSERT_TRUE(QTest::qWaitFor([&] { return monitor->state().Connected; }, 5000));

    // What the switcher would have reported: detection on every output, 16 relays, all off.
    State& s = monitor->state();
    for (auto& status : s.SilenceStatus) {
      status.Mode = 0x109;
    }
    s.SwitcherRelayCount = 16;
    s.RelayStates.assign(16, 0);
    s.linkState.ExchangeComplete = true;
    // As a completed exchange does: the window draws fresh lamps from here on.
    emit monitor->changed();
  }

  void SetSilent(std::initializer_list<int> channels) {
    State& s = monitor->state();
    for (int channel : channels) {
      s.SilenceStatus[channel - 1].Status = 1;
    }
    UpdateStatus(s);
    emit monitor->changed();
  }

  // Whether the switcher side receives this frame; the poll timer may repeat a command until the
  // switcher reports it carried out, so other frames may come first.
  bool ServerReceives(const QByteArray& frame) {
    const bool seen =
        QTest::qWaitFor([&] { return (received += peer->readAll()).contains(frame); }, 5000);
    received.clear();
    return seen;
  }

  // More watched outputs than a configuration file can hold: output n on channel n, and past
  // the switcher's last channel round again.
  void Watch(int count) {
    State& s = monitor->state();
    s.Outputs.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
      s.Outputs[i].Output = static_cast<qint16>(i % 256 + 1);
      s.Outputs[i].MonitoringEnabled = true;
    }
    s.OutputCount = static_cast<qint16>(count);
    UpdateOutputs(s);
    emit monitor->changed();
    QCoreApplication::processEvents();
  }

  // A widget's place in the window.
  QRect InWindow(const QWidget* widget) const {
    return QRect(widget->mapTo(window.get(), QPoint(0, 0)), widget->size());
  }
  QRect VisiblePanelArea() const { return InWindow(window->PanelArea()->viewport()); }
  // Where a panel stands in the window, scrolled into sight first as the operator would.
  QRect PanelInWindow(int index, bool scroll = false) const {
    const OutputPanelModel& panel = monitor->state().panels.outputs[index];
    const QRect frame =
        PanelCanvasWidget::ToPixels(panel.normal.visible ? panel.normal.frame : panel.large.frame);
    if (scroll) {
      window->PanelArea()->ensureVisible(frame.center().x(), frame.center().y(),
                                         frame.width() / 2 + 2, frame.height() / 2 + 2);
    }
    return frame.translated(window->Canvas()->mapTo(window.get(), QPoint()));
  }
  QRect ScrollTo(int index) { return PanelInWindow(index, true); }
  // A click on a panel reaches whatever the operator sees there.
  void ClickPanel(int index) {
    const QPoint at = ScrollTo(index).center();
    QWidget* target = window->childAt(at);
    ASSERT_NE(target, nullptr);
    QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(window.get(), at));
  }
  // The colour on screen at the middle of a panel's lamp, as "#rrggbb".
  QString LampOnScreen(int index) {
    const OutputPanelModel& panel = monitor->state().panels.outputs[index];
    const Rect& lamp = panel.large.visible ? panel.large.lamp : panel.normal.lamp;
    const QPoint centre = ScrollTo(index).topLeft() + PanelCanvasWidget::ToPixels(lamp).center();
    return window->grab().toImage().pixelColor(centre).name();
  }

  // A menu item by its text.
  QAction* MenuItem(const QString& text) const {
    for (QAction* item : window->findChildren<QAction*>()) {
      if (item->text() == text) {
        return item;
      }
    }
    ADD_FAILURE() << "no menu item " << text.toStdString();
    return nullptr;
  }

  QTemporaryDir dir;
  ManualClock clock{QDateTime(QDate(2026, 11, 18), QTime(14, 5, 0))};
  QTcpServer server;
  QTcpSocket* peer = nullptr;
  QByteArray received;
  test::ScriptedPrompt prompt;
  std::unique_ptr<Monitor> monitor;
  std::unique_ptr<MainWindow> window;
  test::Person person;
};

// The digits of a position number as drawn, and the tallest one's height: runs of bright
// columns at least half as tall as the tallest, so an ellipsis' dots do not count as digits.
std::pair<int, int> DigitsAndHeight(const QImage& image) {
  std::vector<int> heights;
  for (int x = 0; x < image.width(); ++x) {
    QRect column;
    for (int y = 0; y < image.height(); ++y) {
      column |= qGray(image.pixel(x, y)) > 150 ? QRect(x, y, 1, 1) : QRect();
    }
    heights.push_back(column.height());
  }
  const int tallest = *std::max_element(heights.begin(), heights.end());
  int digits = 0;
  bool inGlyph = false;
  for (const int h : heights) {
    const bool tall = tallest > 0 && h * 2 >= tallest;
    digits += tall && !inGlyph ? 1 : 0;
    inGlyph = h > 0 && (inGlyph || tall);
  }
  return {digits, tallest};
}

// An operator's session on a 1280x720 screen. Setup cancelled after removing and inserting
// entries leaves every panel on its own output. File > Alerts... is filled in, and a silence
// reaches the desktop: title, tray lamp and summary, a notification and the tone, all ended by
// acknowledging the panels. Then 1000 panels in the normal view and, after File > Toggle View,
// the large one: every panel scrolls into sight and answers its click, the alarm controls and
// the message list stay beside and below the panels, and Cancel releases the relay.
TEST_F(MainWindowTest, AnOperatorsSessionFromTheAlertsToAThousandPanelsInBothViews) {
  StartWith();
  State& s = monitor->state();
  int driven = 0;
  test::WhenModal([&](QDialog& setup) {
    person.Open(setup);
    for (const char* caption : {"Remove", "Insert", "Cancel"}) {
      person.Click(QLatin1String(caption));
    }
    ++driven;
  });
  MenuItem(QStringLiteral("Set&up"))->trigger();
  ASSERT_EQ(s.OutputCount, 3);
  s.prompt = &prompt;
  const QString iniPath = dir.path() + QStringLiteral("/ZRNAlerts.ini");
  // The status endpoint on any free port.
  QSettings(iniPath, QSettings::IniFormat).setValue(QStringLiteral("Status/Port"), 0);
  Alerts alerts(*monitor);
  window->AttachAlerts(alerts);
  alerts.Start();
  DesktopAlerts* desktop = window->Desktop();

  test::WhenModal([&](QDialog& dialog) {
    person.Open(dialog);
    person.Click(QStringLiteral("Sound until acknowledged"));
    // Another address without a token is refused and the dialog stays.
    for (const char* address : {"0.0.0.0", "127.0.0.1"}) {
      person.Retype(QStringLiteral("Address"), QLatin1String(address));
      person.Click(QStringLiteral("OK"));
    }
    EXPECT_EQ(prompt.informed, QStringList{"Status endpoint on 0.0.0.0 needs a token."});
    EXPECT_FALSE(dialog.isVisible());
    ++driven;
  });
  MenuItem(QStringLiteral("&Alerts..."))->trigger();
  ASSERT_EQ(driven, 2);
  person.Open(*window);  // back from the dialogs
  const QSettings ini(iniPath, QSettings::IniFormat);
  EXPECT_TRUE(ini.value(QStringLiteral("Desktop/Sound")).toBool());
  EXPECT_EQ(ini.value(QStringLiteral("Status/Address")).toString(), QStringLiteral("127.0.0.1"));
  EXPECT_NE(alerts.EndpointPort(), 0) << "the endpoint listens again on a free port";

  const auto trayPixel = [&] {
    return desktop->Tray()->icon().pixmap(32, 32).toImage().pixelColor(16, 16).name();
  };
  EXPECT_EQ(trayPixel(), QStringLiteral("#00ff00"));
  SetSilent({3});
  EXPECT_EQ(window->windowTitle(), QStringLiteral("ALARM - ZRN Pennaro"));
  EXPECT_EQ(trayPixel(), QStringLiteral("#ff0000"));
  EXPECT_EQ(desktop->Notifications().value(0),
            QStringLiteral("Loss alarm: Studio 3 (output 3) is silent"));
  EXPECT_TRUE(desktop->TonePlaying());

  SetSilent({1});
  EXPECT_EQ(desktop->Tray()->toolTip(),
            QStringLiteral("ZRN Pennaro\n2 outputs silent: Out 0001, Studio 3"));
  ClickPanel(0);
  ClickPanel(2);
  EXPECT_EQ(window->windowTitle(), QStringLiteral("ZRN Pennaro"));
  EXPECT_EQ(trayPixel(), QStringLiteral("#ffff00"));
  EXPECT_FALSE(desktop->TonePlaying()) << "the tone ends with the acknowledgement";
  EXPECT_EQ(desktop->Notifications().size(), 2);

  Watch(1000);
  const QRect screen = window->screen()->availableGeometry();
  // Outputs 9 and 150 and the last panel's go silent too, and relay 3 is latched.
  SetSilent({9, 150, 999 % 256 + 1});
  EXPECT_TRUE(ServerReceives(Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF})));

  for (const bool large : {false, true}) {
    SCOPED_TRACE(large ? "large view" : "normal view");
    EXPECT_TRUE(screen.contains(window->frameGeometry()))
        << "the window fits the screen instead of opening at the view's full size";
    const QRect area = VisiblePanelArea();
    const QRect alarm = InWindow(window->AlarmControls());
    EXPECT_TRUE(window->rect().contains(alarm));
    EXPECT_FALSE(area.intersects(alarm));
    EXPECT_EQ(window->History()->isVisible(), !large) << "the large view has no message list";
    EXPECT_TRUE(large || !area.intersects(InWindow(window->History())));
    for (int i = 0; i < 1000; ++i) {
      const QRect panel = ScrollTo(i);
      ASSERT_TRUE(area.contains(panel)) << "panel " << i + 1;
      ASSERT_EQ(window->childAt(panel.center()), window->Canvas()) << "panel " << i + 1;
    }
    // Position numbers of three and four digits are drawn whole and legible.
    for (const int index : {8, 98, 99, 100, 149, 998, 999}) {
      const OutputPanelModel& panel = s.panels.outputs[index];
      ScrollTo(index);
      const QRect box = PanelCanvasWidget::NumberPixels(panel, large);
      const auto [digits, height] = DigitsAndHeight(window->Canvas()->grab(box).toImage());
      EXPECT_EQ(digits, panel.position.size()) << panel.position.toStdString();
      EXPECT_GE(height, box.height() / 3) << panel.position.toStdString();
    }
    // A click acknowledges that panel's output, not another one on the same channel.
    const auto [clicked, sameChannel] = large ? std::pair(999, 743) : std::pair(149, 405);
    EXPECT_EQ(LampOnScreen(clicked), QStringLiteral("#ff0000"));
    ClickPanel(clicked);
    EXPECT_EQ(LampOnScreen(clicked), QStringLiteral("#ffff00"));
    EXPECT_EQ(LampOnScreen(sameChannel), QStringLiteral("#ff0000"));

    QScrollBar* bar = window->PanelArea()->verticalScrollBar();
    bar->setValue(bar->maximum());
    EXPECT_EQ(InWindow(window->AlarmControls()), alarm) << "the alarm controls do not scroll";
    EXPECT_EQ(window->childAt(InWindow(window->CancelButton()).center()), window->CancelButton());
    if (!large) {
      ClickPanel(8);
      EXPECT_TRUE(test::Person::Rows(window->History())
                      .last()
                      .endsWith(QStringLiteral("[0009] Loss Alarm Canceled - User")));
      // Resting the pointer on the acknowledged panel tells how long it has been silent.
      monitor->Poll();
      clock.AdvanceSeconds(75);
      monitor->Poll();
      const QPoint over = window->Canvas()->mapFrom(window.get(), PanelInWindow(8).center());
      QHelpEvent hover(QEvent::ToolTip, over, window->Canvas()->mapToGlobal(over));
      QApplication::sendEvent(window->Canvas(), &hover);
      EXPECT_EQ(QToolTip::text(),
                s.panels.outputs[8].toolTip + QStringLiteral("\nSilent for 1 min 15 s"));
      MenuItem(QStringLiteral("Toggle &View"))->trigger();
    }
  }
  // A click on a green panel acknowledges nothing.
  ClickPanel(1);
  EXPECT_EQ(s.panels.outputs[1].lamp, kLampGreen);

  s.RelayStates[2] = 1;  // the switcher reports the relay latched
  RelayStatesReported(s);
  person.Click(QStringLiteral("Cancel"));
  EXPECT_TRUE(ServerReceives(Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x02, 0x00, 0x42, 0xFF})));
  // A peak on another output afterwards raises nothing: the cancelled alarms stay off the relay.
  peer->write(Bytes({0xCB, 0x0A, 0x01, 0x00, 0x06, 0x00, 0x41, 0x52, 0xFF}));
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.SilenceStatus[6].Status == 2; }, 5000));
  EXPECT_EQ(s.lossAlarm.wantedRelay, kNone);
  EXPECT_TRUE(s.MessageRows.last().endsWith(QStringLiteral("Loss Alarm Report Canceled")));

  // The operator makes the window smaller: the controls come along, the panels still scroll.
  window->resize(800, 450);
  QCoreApplication::processEvents();
  EXPECT_TRUE(window->rect().contains(InWindow(window->AlarmControls())));
  EXPECT_TRUE(window->rect().contains(VisiblePanelArea()));
  EXPECT_TRUE(VisiblePanelArea().contains(ScrollTo(999)));
}

// A configuration the program could not use is named on screen, not only in the error log; the
// panels are then found among 4096 and put back in their places when the find box is cleared.
TEST_F(MainWindowTest, ASetAsideConfigurationIsNamedAndFindNarrowsFourThousandPanels) {
  StartWith(QStringLiteral("99999"));
  const QString notice = QStringLiteral(
      "Configuration not read: zrnconfig.ini is damaged at \"Alarm Relay=99999\" (Overflow); "
      "set aside as zrnconfig.ini.bad-20261118-140500");
  EXPECT_TRUE(window->FileNotice()->isVisible());
  EXPECT_EQ(window->FileNotice()->text(), notice);
  EXPECT_TRUE(window->StatusText()->text().startsWith(QStringLiteral("Server Module Connected")))
      << "the link state keeps its place beside it";
  EXPECT_TRUE(window->History()->item(0)->text().endsWith(notice));

  State& s = monitor->state();
  s.Outputs.resize(4096);
  s.Outputs[2999].DisplayOption = 2;
  s.Outputs[2999].CustomLabel = QStringLiteral("Newsroom B");
  Watch(4096);

  const std::vector<int>& shownPanels = s.panels.filter.shown;
  const auto inSight = [&](int index) {
    QCoreApplication::processEvents();
    return VisiblePanelArea().contains(PanelInWindow(index));
  };

  ASSERT_FALSE(inSight(1186)) << "far down the grid to begin with";
  person.Press(Qt::Key_F, Qt::ControlModifier);
  ASSERT_EQ(QApplication::focusWidget(), window->FindBar()->Text());
  const struct {
    const char* typed;
    std::vector<int> found;
  } cases[] = {
      {"1187", {1186}},      // by its position
      {"newsroom", {2999}},  // by its label
      {"4096", {4095}},      // the last one
      {"no such name", {}},  // nothing
  };
  for (const auto& c : cases) {
    person.Retype(window->FindBar()->Text(), QString::fromLatin1(c.typed));
    EXPECT_EQ(shownPanels, c.found) << c.typed;
    EXPECT_TRUE(c.found.empty() || inSight(c.found[0])) << c.typed;
  }

  // By the switcher output's name: every panel watching output 163.
  s.OutputNames[162] = QStringLiteral("Traffic Desk");
  person.Retype(window->FindBar()->Text(), QStringLiteral("traffic"));
  const std::vector<int> onOutput163 = shownPanels;
  ASSERT_EQ(onOutput163.size(), 16u);
  EXPECT_TRUE(inSight(onOutput163.back()));

  // Only alarms, of those.
  SetSilent({163});
  person.Click(QStringLiteral("Only alarms"));
  EXPECT_EQ(shownPanels, onOutput163);
  person.Retype(window->FindBar()->Text(), QString());
  SetSilent({7});
  monitor->Poll();  // the filter follows the alarms at the next poll tick
  EXPECT_EQ(shownPanels.size(), 32u) << "only the alarms, whatever their name";
  person.Click(QStringLiteral("Only alarms"));

  // Escape clears the box: every panel is back in its own place.
  person.Press(Qt::Key_Escape);
  for (int i = 0; i < 4096; ++i) {
    const OutputPanelModel& panel = s.panels.outputs[i];
    ASSERT_EQ(
        std::tuple(panel.normal.visible, panel.normal.frame, panel.large.frame),
        std::tuple(true, DesignedOutputPanel(i).normal.frame, DesignedOutputPanel(i).large.frame))
        << i;
  }
}

}  // namespace
}  // namespace zrn
