#include "history/alarm_history.h"

#include <QComboBox>
#include <QTableWidget>
#include <QTest>

#include "monitor/loss_alarm.h"
#include "monitor/menu_commands.h"
#include "monitor/monitor.h"
#include "monitor/panel_update.h"
#include "storage/logs.h"
#include "support/fake_link.h"
#include "support/person.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "window/alarm_history_window.h"

namespace zrn {

void PrintTo(const AlarmEvent& e, std::ostream* os) {
  *os << e.when.toString(Qt::ISODate).toStdString() << " " << e.subject.toStdString() << " "
      << KindText(e.kind).toStdString();
}

namespace {

// Watched output 12, "Studio A", on a live fake link, with relay 1 for the alarm; the activity
// log rotates every kilobyte.
class AlarmHistoryTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.MaxLogFileSize = 1;
    s.link = &link;
    s.activityListener = [this](const QDateTime& when, const QString& message) {
      live.Record(when, message);
    };
    s.OutputNames[11] = QStringLiteral("Studio A");
    s.Outputs[0].Output = 12;
    s.Outputs[0].MonitoringEnabled = true;
    s.SilenceStatus[11].Mode = 0x109;
    s.AlarmRelay = 1;
    s.SwitcherRelayCount = 1;
    s.RelayStates.assign(1, 0);
  }
  void At(const char* when) {
    clock.Set(QDateTime(QDate(2026, 11, 17), QTime::fromString(QString::fromLatin1(when))));
  }
  void Silence(quint8 status) {
    s.SilenceStatus[11].Status = status;
    DisplayMessage(s, QStringLiteral("Studio A [0012] Silence Alarm Status %1!")
                          .arg(status == 1 ? QStringLiteral("ON") : QStringLiteral("OFF")));
    UpdateStatus(s);
  }

  test::FakeLink link;
  AlarmHistory live;
};

TEST_F(AlarmHistoryTest, ReadBackAcrossRotationsEqualsWhatWasRecordedLive) {
  // A day and more before the end: left out of both.
  clock.Set(QDateTime(QDate(2026, 11, 16), QTime(6, 0, 0)));
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  Silence(1);
  Silence(0);

  At("08:00:00");
  Silence(1);
  At("08:02:30");
  ASSERT_TRUE(AcknowledgeLossAlarm(s, 0));
  At("08:05:00");
  Silence(0);
  At("09:00:00");
  s.SelectedOutput = 0;
  mnuEnable_Click(s);
  At("09:30:00");
  mnuEnable_Click(s);
  At("10:00:00");
  Silence(1);
  At("10:00:20");
  cmdCancel_Click(s);
  At("10:10:00");
  CloseSwitcherLink(s);
  At("10:10:45");
  OnConnected(s);
  At("11:00:00");
  DisplayMessage(s, QStringLiteral("Drive Time Silence Alarm Status ON!"));
  DisplayMessage(s, QStringLiteral("Loss Alarm Report On"));
  At("11:01:00");
  DisplayMessage(s, QStringLiteral("Drive Time Silence Alarm Status OFF!"));
  At("12:00:00");

  const QStringList rotated = Files().filter(QStringLiteral("EventLog "));
  ASSERT_GE(rotated.size(), 2) << "the log was rotated in the middle";

  AlarmHistory read;
  EXPECT_EQ(read.ReadBack(s.AppPath, clock.Now()), rotated.size() + 1);
  live.Forget(clock.Now());
  ASSERT_EQ(read.Events(), live.Events());

  const QString studio = QStringLiteral("Studio A [0012]");
  const auto at = [](const char* time) {
    return QDateTime(QDate(2026, 11, 17), QTime::fromString(QString::fromLatin1(time)));
  };
  const std::deque<AlarmEvent> expected = {
      {at("08:00:00"), studio, AlarmKind::Silent},
      {at("08:02:30"), studio, AlarmKind::Acknowledged},
      {at("08:05:00"), studio, AlarmKind::AudioBack},
      {at("09:00:00"), studio, AlarmKind::MonitoringOff},
      {at("09:30:00"), studio, AlarmKind::MonitoringOn},
      {at("10:00:00"), studio, AlarmKind::Silent},
      {at("10:00:20"), QString(), AlarmKind::Cancelled},
      {at("10:10:00"), QString(), AlarmKind::NoLink},
      {at("10:10:45"), QString(), AlarmKind::LinkBack},
      {at("11:00:00"), QStringLiteral("Drive Time"), AlarmKind::Silent},
      {at("11:01:00"), QStringLiteral("Drive Time"), AlarmKind::AudioBack},
  };
  EXPECT_EQ(read.Events(), expected);

  // How long each state lasted; the silence since 10:00 still holds at noon.
  EXPECT_EQ(read.Durations(clock.Now()),
            (std::vector<qint64>{150, 150, -1, 1800, -1, 7200, -1, 45, -1, 60, -1}));
  const std::vector<TimelineRow> timeline = Timeline(read, clock.Now(), QStringLiteral("0012"));
  ASSERT_EQ(timeline.size(), 1u);
  EXPECT_EQ(timeline[0].spans, (std::vector<TimelineSpan>{
                                   {at("08:00:00"), at("08:02:30"), TimelineState::Silent},
                                   {at("08:02:30"), at("08:05:00"), TimelineState::Acknowledged},
                                   {at("09:00:00"), at("09:30:00"), TimelineState::MonitoringOff},
                                   {at("10:00:00"), at("10:00:20"), TimelineState::Silent},
                                   {at("10:00:20"), at("12:00:00"), TimelineState::Cancelled},
                               }));
  EXPECT_EQ(Timeline(read, clock.Now())[0].spans,
            (std::vector<TimelineSpan>{{at("10:10:00"), at("10:10:45"), TimelineState::NoLink}}));
}

TEST_F(AlarmHistoryTest, IsBoundedAndForgetsWhatIsADayOld) {
  At("00:00:00");
  for (std::size_t i = 0; i < AlarmHistory::kMaxEvents + 10; ++i) {
    live.Record(clock.Now(), QStringLiteral("Loss Alarm Report Canceled"));
  }
  EXPECT_EQ(live.Events().size(), AlarmHistory::kMaxEvents);
  live.Record(clock.Now().addSecs(AlarmHistory::kKeptSeconds + 1),
              QStringLiteral("Server Module Connected"));
  EXPECT_EQ(live.Events().size(), 1u);
  live.Record(clock.Now(), QStringLiteral("Studio A [0012] Loss Alarm Report On"));
  EXPECT_EQ(live.Events().size(), 1u) << "lines the history does not keep";
}

// The operator narrows the table by output and by kind, as typed into the window.
TEST_F(AlarmHistoryTest, WindowFiltersByOutputAndKind) {
  ManualClock windowClock(QDateTime(QDate(2026, 11, 17), QTime(12, 0, 0)));
  Monitor monitor(QString(), &windowClock);
  AlarmHistory history;
  const QDateTime t(QDate(2026, 11, 17), QTime(9, 0, 0));
  for (const char* line :
       {"Studio A [0012] Silence Alarm Status ON!", "Studio B [0013] Silence Alarm Status ON!",
        "Studio A [0012] Loss Alarm Canceled - User", "Studio A [0012] Silence Alarm Status OFF!",
        "Server Module Not Connected"}) {
    history.Record(t, QString::fromLatin1(line));
  }
  AlarmHistoryWindow window(monitor, history);
  test::Person person;
  person.Open(window);
  ASSERT_EQ(window.Table()->rowCount(), 5);
  EXPECT_EQ(window.Table()->item(0, 2)->text(), QStringLiteral("no link"));

  person.Click(QStringLiteral("Output:"));
  person.Type(QStringLiteral("0012"));
  EXPECT_EQ(window.Table()->rowCount(), 3);
  EXPECT_EQ(window.TimelineView()->Rows().size(), 1u);

  QWidget* kind = person.Find(QStringLiteral("Kind:"));
  ASSERT_NE(kind, nullptr);
  kind->setFocus(Qt::TabFocusReason);
  person.Type(QStringLiteral("ack"));
  ASSERT_EQ(qobject_cast<QComboBox*>(kind)->currentText(), QStringLiteral("acknowledged"));
  ASSERT_EQ(window.Table()->rowCount(), 1);
  EXPECT_EQ(window.Table()->item(0, 1)->text(), QStringLiteral("Studio A [0012]"));
  EXPECT_EQ(window.Table()->item(0, 3)->text(), QStringLiteral("0 s"));

  const QString csv = QDir(dir.path()).filePath(QStringLiteral("h.csv"));
  QString failure;
  ASSERT_TRUE(window.ExportTo(csv, &failure)) << qPrintable(failure);
  QFile file(csv);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(QString::fromUtf8(file.readAll()),
            QStringLiteral("Time,Output or show,What happened,Seconds\r\n"
                           "2026-11-17 09:00:00,Studio A [0012],acknowledged,0\r\n"));
}

}  // namespace
}  // namespace zrn
