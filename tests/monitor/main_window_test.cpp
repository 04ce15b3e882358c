#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include "monitor/loss_alarm.h"
#include "monitor/main_window.h"
#include "monitor/monitor.h"
#include "monitor/panel_canvas_widget.h"
#include "monitor/panel_update.h"
#include "support/bytes.h"
#include "support/temp_state.h"
#include "ui/broadcast_style.h"

namespace zrn {
namespace {

using test::Bytes;

// The whole program with its window, against a loopback server standing in for the switcher.
class MainWindowTest : public ::testing::Test {
 protected:
  void StartWith(const QString& defaultView, int outputs) {
    ASSERT_TRUE(dir.isValid());
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QString ini = QStringLiteral(
                      "[CONFIGURATION]\r\nServer IP Address=127.0.0.1\r\nServer IP Port=%1\r\n"
                      "Maximum Log File Size=5000\r\nMaximum Display=100\r\nAlarm Relay=3\r\n"
                      "Default View=%2\r\nProgram Mode=Output\r\nOutput Count=%3\r\n")
                      .arg(server.serverPort())
                      .arg(defaultView)
                      .arg(outputs);
    for (int n = 1; n <= outputs; ++n) {
      ini += QStringLiteral(
                 "[OUTPUT%1]\r\nOutput=%1\r\nDisplay Options=%2\r\nCustom Label=Studio %1\r\n"
                 "Event Count=0\r\n")
                 .arg(n)
                 .arg(n % 3 == 0 ? 2 : 0);
    }
    QFile file(dir.path() + QStringLiteral("/zrnconfig.ini"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(ini.toLatin1());
    file.close();

    ApplyBroadcastStyle(*qApp);
    monitor = std::make_unique<Monitor>(dir.path() + QLatin1Char('/'), &clock);
    window = std::make_unique<MainWindow>(*monitor);
    monitor->Start();
    window->show();
    ASSERT_TRUE(server.waitForNewConnection(5000));
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
  }

  void SetSilent(std::initializer_list<int> channels, quint8 status) {
    State& s = monitor->state();
    for (int channel : channels) {
      s.SilenceStatus[channel - 1].Status = status;
    }
    UpdateStatus(s);
    emit monitor->changed();
  }

  // Whether the switcher side receives this frame; the poll timer may repeat a command until the
  // switcher reports it carried out, so other frames may come first.
  bool ServerReceives(const QByteArray& frame) {
    return QTest::qWaitFor(
        [&] {
          received += peer->readAll();
          const qsizetype at = received.indexOf(frame);
          if (at < 0) {
            return false;
          }
          received.remove(0, at + frame.size());
          return true;
        },
        5000);
  }

  QPoint PanelCentre(int index) const {
    const OutputPanelModel& panel = monitor->state().panels.outputs[index];
    const Rect& frame = panel.normal.visible ? panel.normal.frame : panel.large.frame;
    return PanelCanvasWidget::ToPixels(frame).center();
  }

  void SaveScreenshot(const QString& name) {
    const QString folder =
        QCoreApplication::applicationDirPath() + QStringLiteral("/../screenshots");
    QDir().mkpath(folder);
    QTest::qWait(50);
    EXPECT_TRUE(window->grab().save(folder + QLatin1Char('/') + name));
  }

  QTemporaryDir dir;
  ManualClock clock{QDateTime(QDate(2026, 11, 18), QTime(14, 5, 0))};
  QTcpServer server;
  QTcpSocket* peer = nullptr;
  QByteArray received;
  std::unique_ptr<Monitor> monitor;
  std::unique_ptr<MainWindow> window;
};

TEST_F(MainWindowTest, NormalViewShowsEveryPanelAndAcknowledgesByClick) {
  StartWith(QStringLiteral("Normal"), 40);
  const State& s = monitor->state();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("ZRN Pennaro"));
  EXPECT_FALSE(s.LargeViewActive);
  ASSERT_EQ(s.panels.outputs.size(), 40u);
  for (const OutputPanelModel& panel : s.panels.outputs) {
    EXPECT_TRUE(panel.normal.visible);
  }
  EXPECT_TRUE(window->History()->isVisible());
  EXPECT_EQ(window->CancelButton()->toolTip(), QStringLiteral("Cancel Alarm"));
  EXPECT_EQ(window->StatusText()->text(), QStringLiteral("Server Module Connected"));

  for (int c = 1; c <= 40; ++c) {
    monitor->state().SilenceStatus[c - 1].Status = 0;
  }
  SetSilent({4, 9, 17}, 1);
  EXPECT_EQ(s.panels.outputs[8].lamp, kLampRed);
  // One latch of relay 3 for the three alarms.
  EXPECT_TRUE(ServerReceives(Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF})));

  QTest::mouseClick(window->Canvas(), Qt::LeftButton, {}, PanelCentre(8));
  EXPECT_EQ(s.panels.outputs[8].lamp, kLampYellow);
  EXPECT_TRUE(s.MessageRows.last().endsWith(QStringLiteral("[0009] Loss Alarm Canceled - User")))
      << s.MessageRows.last().toStdString();
  EXPECT_EQ(window->History()->count(), s.MessageRows.size());
  EXPECT_EQ(window->History()->item(window->History()->count() - 1)->text(), s.MessageRows.last());

  // A click on a green panel acknowledges nothing.
  QTest::mouseClick(window->Canvas(), Qt::LeftButton, {}, PanelCentre(0));
  EXPECT_EQ(s.panels.outputs[0].lamp, kLampGreen);
  SaveScreenshot(QStringLiteral("normal-view.png"));
}

TEST_F(MainWindowTest, LargeViewAndCancelReleasesTheRelay) {
  StartWith(QStringLiteral("Large"), 40);
  State& s = monitor->state();
  EXPECT_TRUE(s.LargeViewActive);
  EXPECT_FALSE(window->History()->isVisible());
  for (int c = 1; c <= 40; ++c) {
    s.SilenceStatus[c - 1].Status = 0;
  }
  SetSilent({2, 13}, 1);
  EXPECT_TRUE(ServerReceives(Bytes({0xFE, 0x44, 0x00, 0x00, 0x00, 0x02, 0x00, 0x46, 0xFF})));
  s.RelayStates[2] = 1;  // the switcher reports the relay latched
  RelayStatesReported(s);
  emit monitor->changed();
  EXPECT_EQ(s.panels.window.alarmLampColour, kLampRed);
  SaveScreenshot(QStringLiteral("large-view.png"));

  QTest::mouseClick(window->CancelButton(), Qt::LeftButton);
  EXPECT_TRUE(ServerReceives(Bytes({0xFE, 0x40, 0x00, 0x00, 0x00, 0x02, 0x00, 0x42, 0xFF})));
  EXPECT_TRUE(s.MessageRows.last().endsWith(QStringLiteral("Loss Alarm Report Canceled")));

  // File > Toggle View brings the normal view and its history list back.
  monitor->ToggleView();
  EXPECT_FALSE(s.LargeViewActive);
  EXPECT_TRUE(window->History()->isVisible());
}

}  // namespace
}  // namespace zrn
