#include "history/alarm_history.h"

#include <QTableWidget>

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
  static QDateTime At(const char* time) {
    return QDateTime(QDate(2026, 11, 17), QTime::fromString(QString::fromLatin1(time)));
  }
  void Silence(quint8 status) {
    s.SilenceStatus[11].Status = status;
    DisplayMessage(s, QStringLiteral("Studio A [0012] Silence Alarm Status %1!")
                          .arg(status == 1 ? QStringLiteral("ON") : QStringLiteral("OFF")));
    UpdateStatus(s);
  }
  void Message(const char* text) { DisplayMessage(s, QString::fromLatin1(text)); }

  test::FakeLink link;
  AlarmHistory live;
};

TEST_F(AlarmHistoryTest, ReadBackAcrossRotationsEqualsWhatWasRecordedLive) {
  using enum AlarmKind;
  const QString studio = QStringLiteral("Studio A [0012]");
  const QString drive = QStringLiteral("Drive Time");
  // Each step at its time, the event it leaves and how long the state it began lasted.
  const struct {
    const char* at;
    std::function<void()> act;
    QString subject;
    AlarmKind kind;
    qint64 lasted;
  } steps[] = {
      {"08:00:00", [&] { Silence(1); }, studio, Silent, 150},
      {"08:02:30", [&] { ASSERT_TRUE(AcknowledgeLossAlarm(s, 0)); }, studio, Acknowledged, 150},
      {"08:05:00", [&] { Silence(0); }, studio, AudioBack, -1},
      {"09:00:00", [&] { mnuEnable_Click(s); }, studio, MonitoringOff, 1800},
      {"09:30:00", [&] { mnuEnable_Click(s); }, studio, MonitoringOn, -1},
      {"10:00:00", [&] { Silence(1); }, studio, Silent, 7200},  // still silent at noon
      {"10:00:20", [&] { cmdCancel_Click(s); }, {}, Cancelled, -1},
      {"10:10:00", [&] { CloseSwitcherLink(s); }, {}, NoLink, 45},
      {"10:10:45", [&] { OnConnected(s); }, {}, LinkBack, -1},
      {"11:00:00", [&] { Message("Drive Time Silence Alarm Status ON!"); }, drive, Silent, 60},
      {"11:01:00", [&] { Message("Drive Time Silence Alarm Status OFF!"); }, drive, AudioBack, -1},
  };
  // A day and more before the end: left out of both.
  clock.Set(At("06:00:00").addDays(-1));
  OnConnected(s);
  s.linkState.ExchangeComplete = true;
  Silence(1);
  Silence(0);
  std::deque<AlarmEvent> expected;
  std::vector<qint64> lasted;
  for (const auto& step : steps) {
    clock.Set(At(step.at));
    step.act();
    expected.push_back({At(step.at), step.subject, step.kind});
    lasted.push_back(step.lasted);
  }
  clock.Set(At("12:00:00"));

  const QStringList rotated = Files().filter(QStringLiteral("EventLog "));
  ASSERT_GE(rotated.size(), 2) << "the log was rotated in the middle";
  AlarmHistory read;
  EXPECT_EQ(read.ReadBack(s.AppPath, clock.Now()), rotated.size() + 1);
  live.Forget(clock.Now());
  EXPECT_EQ(live.Events(), expected);
  EXPECT_EQ(read.Events(), expected);
  EXPECT_EQ(read.Durations(clock.Now()), lasted);

  const std::vector<TimelineRow> timeline = Timeline(read, clock.Now(), QStringLiteral("0012"));
  ASSERT_EQ(timeline.size(), 1u);
  EXPECT_EQ(timeline[0].spans, (std::vector<TimelineSpan>{
                                   {At("08:00:00"), At("08:02:30"), TimelineState::Silent},
                                   {At("08:02:30"), At("08:05:00"), TimelineState::Acknowledged},
                                   {At("09:00:00"), At("09:30:00"), TimelineState::MonitoringOff},
                                   {At("10:00:00"), At("10:00:20"), TimelineState::Silent},
                                   {At("10:00:20"), At("12:00:00"), TimelineState::Cancelled},
                               }));
  EXPECT_EQ(Timeline(read, clock.Now())[0].spans,
            (std::vector<TimelineSpan>{{At("10:10:00"), At("10:10:45"), TimelineState::NoLink}}));
}

TEST_F(AlarmHistoryTest, IsBoundedAndForgetsWhatIsADayOld) {
  for (std::size_t i = 0; i < AlarmHistory::kMaxEvents + 10; ++i) {
    live.Record(At("00:00:00"), QStringLiteral("Loss Alarm Report Canceled"));
  }
  EXPECT_EQ(live.Events().size(), AlarmHistory::kMaxEvents);
  live.Record(At("00:00:00").addSecs(AlarmHistory::kKeptSeconds + 1),
              QStringLiteral("Server Module Connected"));
  EXPECT_EQ(live.Events().size(), 1u);
}

// The operator narrows the table by output and by kind, as typed into the window.
TEST_F(AlarmHistoryTest, WindowFiltersByOutputAndKind) {
  clock.Set(At("12:00:00"));
  Monitor monitor(QString(), &clock);
  AlarmHistory history;
  for (const char* line :
       {"Studio A [0012] Silence Alarm Status ON!", "Studio B [0013] Silence Alarm Status ON!",
        "Studio A [0012] Loss Alarm Canceled - User", "Studio A [0012] Silence Alarm Status OFF!",
        "Server Module Not Connected"}) {
    history.Record(At("09:00:00"), QString::fromLatin1(line));
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
  ASSERT_EQ(window.Table()->rowCount(), 1);
  EXPECT_EQ(window.Table()->item(0, 1)->text(), QStringLiteral("Studio A [0012]"));

  QString failure;
  ASSERT_TRUE(window.ExportTo(PathOf(QStringLiteral("h.csv")), &failure)) << qPrintable(failure);
  EXPECT_EQ(ReadAll(QStringLiteral("h.csv")),
            QByteArray("Time,Output or show,What happened,Seconds\r\n"
                       "2026-11-17 09:00:00,Studio A [0012],acknowledged,0\r\n"));
}

}  // namespace
}  // namespace zrn
