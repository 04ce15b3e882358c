#include <QTcpServer>
#include <QTcpSocket>
#include <filesystem>

#include "monitor/panel_update.h"
#include "monitor/setup_commands.h"
#include "monitor/startup.h"
#include "switcher/link.h"
#include "switcher/switcher_connection.h"
#include "ui/setup_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

OutputEntry Watched(qint16 output) {
  OutputEntry entry;
  entry.Output = output;
  entry.MonitoringEnabled = true;
  entry.CustomLabel = QStringLiteral("Studio");
  return entry;
}

ScheduledEvent Event(const char* time, const char* label) {
  return {QLatin1String(time), true, 2, 0x7F, false, QString::fromLatin1(label).leftJustified(12)};
}

// Setup over 16 outputs and 4 relays, watching outputs 3, 7 and 12; output 7 has two events.
class SetupDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    s.Connected = false;
    s.AlarmRelay = 3;
    s.Outputs = {Watched(3), Watched(7), Watched(12)};
    s.Outputs[1].Events = {Event("06:30:00", "Morning"), Event("22:00:00", "Night")};
    s.Outputs[1].EventCount = 2;
    s.OutputCount = 3;
    RefreshClock(s);
    UpdateOutputs(s);
  }
  void Open(SetupEditors editors = {}) { DialogTest::Open<SetupDialog>(std::move(editors)); }
  static QStringList Entries(const State& st) {
    QStringList rows;
    for (const OutputEntry& e : st.Outputs) {
      rows << QString::asprintf("%d %s events=%d ack=%d option=%d watched=%d", e.Output,
                                qPrintable(e.CustomLabel), e.EventCount, e.AlarmState,
                                e.DisplayOption, e.MonitoringEnabled);
    }
    return rows;
  }
};

TEST_F(SetupDialogTest, RefusesAddressPortAndDisplayLengthBeforeApplyingAnything) {
  Open();
  person.Retype(QStringLiteral("Maximum Display"), QStringLiteral("40"));
  person.Pick(QStringLiteral("Alarm Relay"), 1);
  const struct {
    // What is typed to mend a field; a refused address is put back by the dialog.
    const char *field, *typed, *title, *mend;
  } refused[] = {
      {"IP Port", "0", "Port Error", "1250"},
      {"IP Port", "70000", "Port Error", "1250"},
      {"IP Address", "10.0.0", "Data Format Error", nullptr},
      {"Maximum Display", "0", "Maximum Display Error", "40"},
  };
  for (const auto& r : refused) {
    SCOPED_TRACE(r.typed);
    person.Retype(QLatin1String(r.field), QLatin1String(r.typed));
    person.Click(QStringLiteral("OK"));
    EXPECT_EQ(prompt.titles.value(prompt.titles.size() - 1), QLatin1String(r.title));
    EXPECT_EQ(s.MaxDisplay, 100) << "nothing applied while a field is refused";
    if (r.mend != nullptr) {
      person.Retype(QLatin1String(r.field), QLatin1String(r.mend));
    }
  }
  EXPECT_EQ(Shown(QStringLiteral("IP Address")), QStringLiteral("127.0.0.1"));
  EXPECT_EQ(prompt.informed.mid(0, 3),
            QStringList(2, "Invalid IP Port #. Please reenter a number between 1 and 65535")
                << "Please Enter IP Address In The Following Format: 192.168.1.1");
  person.Retype(QStringLiteral("IP Address"), QStringLiteral("1a9b2.168.001.300"));  // no letters
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(std::tuple(s.ServerAddress, s.MaxDisplay, s.AlarmRelay, link.closes),
            std::tuple(QStringLiteral("192.168.1.255"), 40, 1, 1));  // a new address drops the link
}

TEST_F(SetupDialogTest, NewPortDropsTheLinkAndTheNextPollTickConnectsThere) {
  QTcpServer first;
  QTcpServer second;
  ASSERT_TRUE(first.listen(QHostAddress::LocalHost));
  ASSERT_TRUE(second.listen(QHostAddress::LocalHost));
  s.link = nullptr;
  SwitcherConnection connection(s);
  s.ServerPort = first.serverPort();
  ConnectToSwitcher(s);
  ASSERT_TRUE(first.waitForNewConnection(5000));
  QTcpSocket* oldPeer = first.nextPendingConnection();
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.Connected; }, 5000));

  s.ProgramMode = 1;  // the link settings are the same in show mode
  Open();
  person.Retype(QStringLiteral("IP Port"), QString::number(second.serverPort()));
  person.Click(QStringLiteral("OK"));
  EXPECT_FALSE(s.Connected);
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return oldPeer->state() == QAbstractSocket::UnconnectedState; }, 5000));

  PollTick(s);
  ASSERT_TRUE(second.waitForNewConnection(5000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return s.Connected; }, 5000));
}

// The show buttons open the program's own editors, the show editor at the first show.
TEST_F(SetupDialogTest, ShowButtonsOpenTheEditorsAndOutputModeRebuildsTheView) {
  s.DefaultViewLarge = 1;
  s.Outputs[1].NextEvent = kNone;
  s.Shows = {MakeNewShow(), MakeNewShow()};
  s.ShowCount = 2;
  s.SelectedShow = 1;
  s.ProgramMode = 1;
  DialogTest::Open<SetupDialog>();
  EXPECT_FALSE(Seen(QStringLiteral("Monitor Outputs (3)")));
  QStringList seen;
  for (const char* button : {"Configure Shows", "Configure Outputs for Silence Detect"}) {
    test::WhenModal([&](QDialog& editor) { seen << editor.windowTitle(); });
    person.Click(QLatin1String(button));
  }
  EXPECT_EQ(seen,
            (QStringList{"Show Configuration", "Configure Available Silence Detect Outputs"}));
  EXPECT_EQ(s.SelectedShow, 0);

  person.Click(QStringLiteral("Output Monitor"));
  EXPECT_FALSE(Seen(QStringLiteral("Configure Shows")));

  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(s.ProgramMode, 0);
  EXPECT_TRUE(s.LargeViewActive) << "output mode takes the configured view";
  EXPECT_NE(s.Outputs[1].NextEvent, kNone) << "next events recomputed";
}

// Unreported channels are kept; only a changed channel ends its acknowledgement. A failed save
// names each file; the next keeps each schedule on its output across a restart.
TEST_F(SetupDialogTest, ConfirmedSetupKeepsWhatItDidNotChangeAndIsSavedOrSaysWhyNot) {
  s.AlarmRelay = 7;           // the switcher reports only four relays
  s.Outputs[2].Output = 300;  // and no output 300
  s.Outputs[0].AlarmState = 1;
  s.Outputs[1].AlarmState = 1;
  s.SelectedOutput = 2;
  QStringList calls;
  SetupEditors editors;
  editors.schedule = [&](State& st, QWidget*) {  // leaves one event at noon
    calls << QStringLiteral("schedule of entry %1").arg(st.SelectedOutput);
    OutputEntry& entry = st.Outputs.at(static_cast<std::size_t>(st.SelectedOutput));
    entry.Events = {Event("12:00:00", "Noon")};
    entry.EventCount = 1;
    st.DialogAccepted = true;
  };
  editors.silenceDetect = [&](State&, int output, QWidget*) {
    calls << QStringLiteral("silence of output %1").arg(output);
  };
  // Cancel also undoes what the schedule editor put into the live table; poll tick changes stay.
  Open(editors);
  person.Click(QStringLiteral("Add"));
  person.Enter(QStringLiteral("Monitor Destination"), QStringLiteral("9"));
  person.Click(QStringLiteral("Custom Label"));
  person.Press(Qt::Key_Tab);
  person.Type(QStringLiteral("Tx,B"));
  person.Press(Qt::Key_Return);
  EXPECT_TRUE(dialog->isVisible()) << "Enter in the label stores it, it does not confirm";
  EXPECT_EQ(Shown(QStringLiteral("TxB")), QStringLiteral("TxB")) << "labels refuse commas";
  person.Click(QStringLiteral("|<"));
  person.Click(QStringLiteral("Remove"));
  person.Click(QStringLiteral("Insert"));
  person.Enter(QStringLiteral("Monitor Destination"), QStringLiteral("5"));
  person.Click(QStringLiteral("Configure Schedule"));
  s.Outputs[2].AlarmState = 1;  // a poll tick meanwhile
  person.Click(QStringLiteral("Cancel"));
  EXPECT_FALSE(s.DialogAccepted);
  EXPECT_EQ(Entries(s), (QStringList{"3 Studio events=0 ack=1 option=0 watched=1",
                                     "7 Studio events=2 ack=1 option=0 watched=1",
                                     "300 Studio events=0 ack=1 option=0 watched=1"}));
  EXPECT_EQ(s.panels.outputs.at(0).toolTip, QStringLiteral("TX 3    [0003]")) << "panels follow";
  EXPECT_TRUE(Files().isEmpty()) << "nothing is saved";

  Open(editors);
  EXPECT_EQ(Shown(QStringLiteral("Alarm Relay")), QStringLiteral("[0007] (not reported)"));
  EXPECT_FALSE(Enabled(QStringLiteral("Monitor Destination"))) << "locked until Edit";
  person.Click(QStringLiteral(">|"));
  EXPECT_EQ(Shown(QStringLiteral("Monitor Destination")), QStringLiteral("Undefined"));
  person.Click(QStringLiteral("|<"));
  person.Click(QStringLiteral("Edit"));
  person.Enter(QStringLiteral("Monitor Destination"), QStringLiteral("5"));
  person.Click(QStringLiteral(">"));
  person.Click(QStringLiteral("Insert"));
  EXPECT_FALSE(Enabled(QStringLiteral("Configure Silence Detect"))) << "nothing to configure";
  person.Enter(QStringLiteral("Monitor Destination"), QStringLiteral("9"));
  person.Click(QStringLiteral("Configure Silence Detect"));
  person.Click(QStringLiteral("Configure Schedule"));
  EXPECT_EQ(calls,
            (QStringList{"schedule of entry 0", "silence of output 8", "schedule of entry 1"}));
  EXPECT_EQ(s.SelectedOutput, 2) << "the main window's selection is left alone";
  s.Outputs[3].DisplayOption = 1;  // a poll tick runs an event on output 300
  s.Outputs[3].MonitoringEnabled = false;

  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(Entries(s), (QStringList{"5 Studio events=0 ack=0 option=0 watched=1",
                                     "9 None events=1 ack=0 option=0 watched=1",
                                     "7 Studio events=2 ack=1 option=0 watched=1",
                                     "300 Studio events=0 ack=1 option=1 watched=0"}));
  ASSERT_TRUE(s.DialogAccepted);
  EXPECT_EQ(std::tuple(s.AlarmRelay, link.closes), std::tuple(7, 0))
      << "same address keeps the link";
  const char* files[] = {"zrnconfig.ini", "ZRNShows.dat", "ZRNEvents.dat"};
  if (test::ReadOnlyFolder readOnly(dir.path()); readOnly.Active()) {
    SetupAccepted(s);
    EXPECT_EQ(prompt.titles, QStringList(3, QStringLiteral("File Error")));
    for (int i = 0; i < 3; ++i) {
      const QString path = QDir::toNativeSeparators(PathOf(QString::fromLatin1(files[i])));
      EXPECT_TRUE(prompt.informed.value(i).startsWith(path))
          << prompt.informed.value(i).toStdString();
    }
  }
  SetupAccepted(s);
  namespace fs = std::filesystem;
  const auto written = [&](const char* name) {
    return fs::last_write_time(fs::path(PathOf(QString::fromLatin1(name)).toStdString()));
  };
  EXPECT_LE(written(files[0]), written(files[1])) << "configuration first";

  State restarted;
  test::FakeLink otherLink;
  restarted.link = &otherLink;
  restarted.clock = &clock;
  Form_Load(restarted, dir.path());
  EXPECT_EQ(Entries(restarted), (QStringList{"5 Studio events=0 ack=0 option=0 watched=1",
                                             "9 Noon         events=1 ack=0 option=2 watched=1",
                                             "7 Morning      events=2 ack=0 option=2 watched=1",
                                             "300 Studio events=0 ack=0 option=1 watched=1"}));
  EXPECT_EQ(restarted.Outputs[2].Events.at(1).Label, QStringLiteral("Night       "));
}

}  // namespace
}  // namespace zrn
