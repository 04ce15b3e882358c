#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <filesystem>

#include "monitor/panel_update.h"
#include "monitor/poll_tick.h"
#include "monitor/setup_commands.h"
#include "monitor/startup.h"
#include "support/fake_link.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "switcher/link.h"
#include "switcher/switcher_connection.h"
#include "ui/setup_dialog.h"

namespace zrn {
namespace {

OutputEntry Watched(int output) {
  OutputEntry entry;
  entry.Output = static_cast<qint16>(output);
  entry.MonitoringEnabled = true;
  entry.CustomLabel = QStringLiteral("Studio");
  return entry;
}

ScheduledEvent Event(const QString& time, const QString& label) {
  ScheduledEvent event;
  event.Time = time;
  event.Active = true;
  event.DisplayOption = 2;
  event.Days = 0x7F;
  event.Label = label.leftJustified(12);
  return event;
}

// Setup over a switcher with 16 outputs and 4 relays, watching outputs 3, 7 and 12; output 7
// has two events.
class SetupDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.link = &link;
    s.SwitcherOutputCount = 16;
    s.OutputNames.clear();
    for (int k = 1; k <= 16; ++k) {
      s.OutputNames << QStringLiteral("PGM %1").arg(k);
    }
    s.SwitcherRelayCount = 4;
    s.RelayNames = {QStringLiteral("Tally A"), QStringLiteral("Tally B"),
                    QStringLiteral("Alarm Bell"), QStringLiteral("Beacon")};
    s.AlarmRelay = 3;
    s.Outputs = {Watched(3), Watched(7), Watched(12)};
    s.Outputs[1].Events = {Event(QStringLiteral("06:30:00"), QStringLiteral("Morning")),
                           Event(QStringLiteral("22:00:00"), QStringLiteral("Night"))};
    s.Outputs[1].EventCount = 2;
    s.OutputCount = 3;
    RefreshClock(s);
    UpdateOutputs(s);
  }

  void Open(SetupEditors editors = {}) {
    dialog = std::make_unique<SetupDialog>(s, std::move(editors));
    person.Open(*dialog);
  }
  template <class T>
  T* Get(const char* name) {
    T* widget = dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  void Click(const char* name) { QTest::mouseClick(Get<QAbstractButton>(name), Qt::LeftButton); }
  void Type(const char* field, const QString& text) {
    QLineEdit* edit = Get<QLineEdit>(field);
    edit->selectAll();
    QTest::keyClick(edit, Qt::Key_Backspace);
    QTest::keyClicks(edit, text);
  }
  void TypeChannel(const QString& digits) {
    person.Enter(QStringLiteral("Monitor Destination"), digits);
  }
  QString ChannelShown() { return Get<QComboBox>("cmbOutputSelect")->currentText(); }

  test::ScriptedPrompt prompt;
  test::FakeLink link;
  test::Person person;
  std::unique_ptr<SetupDialog> dialog;
};

TEST_F(SetupDialogTest, OpensOnTheConfigurationWithTheEntryLocked) {
  s.AlarmRelay = 7;           // configured, but the switcher reports only four relays
  s.Outputs[2].Output = 300;  // nor does it have an output 300
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Setup"));
  EXPECT_EQ(Get<QLineEdit>("txtIpAddress")->text(), QStringLiteral("127.0.0.1"));
  EXPECT_EQ(Get<QLineEdit>("txtCount")->text(), QStringLiteral("3"));
  EXPECT_EQ(Get<QGroupBox>("FrOutputSelect")->title(), QStringLiteral("Monitor Outputs (1)"));

  auto* relays = Get<QComboBox>("cmbRelay");
  ASSERT_EQ(relays->count(), 6);
  EXPECT_EQ(relays->itemText(3), QStringLiteral("[0003] Alarm Bell"));
  EXPECT_EQ(relays->currentText(), QStringLiteral("[0007] (not reported)"));

  auto* outputs = Get<QComboBox>("cmbOutputSelect");
  ASSERT_EQ(outputs->count(), 17);
  EXPECT_EQ(outputs->itemText(12), QStringLiteral("[0012] PGM 12"));
  EXPECT_EQ(ChannelShown(), QStringLiteral("[0003] PGM 3"));
  EXPECT_FALSE(outputs->isEnabled()) << "locked until Edit";
  Click("cmdEdit");
  EXPECT_TRUE(Get<QLineEdit>("txtCustom")->isEnabled());

  Click("cmdForward");
  EXPECT_EQ(ChannelShown(), QStringLiteral("[0007] PGM 7"));
  EXPECT_FALSE(outputs->isEnabled()) << "another entry is locked again";
  Click("cmdEnd");
  EXPECT_EQ(Get<QGroupBox>("FrOutputSelect")->title(), QStringLiteral("Monitor Outputs (3)"));
  EXPECT_EQ(ChannelShown(), QStringLiteral("Undefined"));

  Click("cmdOk");
  EXPECT_EQ(s.AlarmRelay, 7) << "the unreported relay is kept";
  EXPECT_EQ(s.Outputs[2].Output, 300) << "showing it as Undefined does not change it";
  EXPECT_TRUE(s.DialogAccepted);
  EXPECT_EQ(link.closes, 0) << "same address and port keep the link";
}

TEST_F(SetupDialogTest, RefusesAddressPortAndDisplayLengthBeforeApplyingAnything) {
  Open();
  Type("txtMaxDisplay", QStringLiteral("40"));
  Get<QComboBox>("cmbRelay")->setCurrentIndex(1);

  for (const QString& port : {QStringLiteral("0"), QStringLiteral("70000")}) {
    Type("txtIPPort", port);
    Click("cmdOk");
    EXPECT_EQ(prompt.informed.value(prompt.informed.size() - 1),
              QStringLiteral("Invalid IP Port #. Please reenter a number between 1 and 65535"));
    EXPECT_EQ(prompt.titles.last(), QStringLiteral("Port Error"));
  }
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(s.MaxDisplay, 100) << "nothing applied while the port is refused";
  EXPECT_EQ(s.AlarmRelay, 3);

  Type("txtIPPort", QStringLiteral("1250"));
  Type("txtIpAddress", QStringLiteral("10.0.0"));
  Click("cmdOk");
  EXPECT_EQ(prompt.informed.last(),
            QStringLiteral("Please Enter IP Address In The Following Format: 192.168.1.1"));
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Data Format Error"));
  EXPECT_EQ(Get<QLineEdit>("txtIpAddress")->text(), QStringLiteral("127.0.0.1"));

  Type("txtMaxDisplay", QStringLiteral("0"));
  Click("cmdOk");
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Maximum Display Error"));
  EXPECT_TRUE(dialog->isVisible());

  // Letters never reach the address.
  Type("txtIpAddress", QStringLiteral("1a9b2.168.001.300"));
  EXPECT_EQ(Get<QLineEdit>("txtIpAddress")->text(), QStringLiteral("192.168.001.300"));
  Type("txtMaxDisplay", QStringLiteral("40"));
  Click("cmdOk");
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
  EXPECT_EQ(s.ServerAddress, QStringLiteral("192.168.1.255"));
  EXPECT_EQ(s.MaxDisplay, 40);
  EXPECT_EQ(s.AlarmRelay, 1);
  EXPECT_EQ(link.closes, 1) << "a new address drops the link";
}

TEST_F(SetupDialogTest, NewPortDropsTheLinkAndTheNextPollTickConnectsThere) {
  QTcpServer first;
  QTcpServer second;
  ASSERT_TRUE(first.listen(QHostAddress::LocalHost));
  if (!second.listen(QHostAddress::LocalHost, 1251)) {
    ASSERT_TRUE(second.listen(QHostAddress::LocalHost)) << "1251 is taken here; any port will do";
  }
  SwitcherConnection connection(s);
  s.ServerPort = first.serverPort();
  ConnectToSwitcher(s);
  ASSERT_TRUE(first.waitForNewConnection(5000));
  QTcpSocket* oldPeer = first.nextPendingConnection();
  ASSERT_TRUE(QTest::qWaitFor([&] { return s.Connected; }, 5000));

  Open();
  Type("txtIPPort", QString::number(second.serverPort()));
  Click("cmdOk");
  EXPECT_EQ(s.ServerPort, second.serverPort());
  EXPECT_FALSE(s.Connected);
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return oldPeer->state() == QAbstractSocket::UnconnectedState; }, 5000));

  PollTick(s);
  ASSERT_TRUE(second.waitForNewConnection(5000));
  EXPECT_TRUE(QTest::qWaitFor([&] { return s.Connected; }, 5000));
}

// Cancel discards every list edit, also those the schedule editor saw in the live table, and
// the panels stay on their own outputs; what the poll timer changed meanwhile stays.
TEST_F(SetupDialogTest, CancelLeavesTheWatchedOutputsAsSetupFoundThem) {
  SetupEditors editors;
  editors.schedule = [](State& st, QWidget*) {
    OutputEntry& entry = st.Outputs.at(static_cast<std::size_t>(st.SelectedOutput));
    entry.Events = {Event(QStringLiteral("12:00:00"), QStringLiteral("Noon"))};
    entry.EventCount = 1;
    st.DialogAccepted = true;
  };
  Open(editors);
  Click("CmdAdd");
  EXPECT_EQ(Get<QGroupBox>("FrOutputSelect")->title(), QStringLiteral("Monitor Outputs (4)"));
  ASSERT_TRUE(Get<QComboBox>("cmbOutputSelect")->isEnabled()) << "Add starts editing";
  TypeChannel(QStringLiteral("9"));
  Click("optDisplay2");
  Type("txtCustom", QStringLiteral("Tx,B"));
  QTest::keyClick(Get<QLineEdit>("txtCustom"), Qt::Key_Return);
  EXPECT_TRUE(dialog->isVisible()) << "Enter in the label stores it, it does not confirm";
  EXPECT_EQ(dialog->Entries()[3].edited.CustomLabel, QStringLiteral("TxB"))
      << "labels refuse commas";
  Click("CmdStart");
  Click("cmdRemove");
  Click("CmdInsert");
  TypeChannel(QStringLiteral("5"));
  Click("cmdConfigSchedule");
  ASSERT_EQ(s.Outputs[0].Output, 5) << "the schedule editor works on the list as shown";
  ASSERT_EQ(s.Outputs[1].Output, 7);
  s.Outputs[1].AlarmState = 1;  // a poll tick meanwhile

  Click("cmdCancel");
  EXPECT_FALSE(s.DialogAccepted);
  ASSERT_EQ(s.OutputCount, 3);
  ASSERT_EQ(s.Outputs.size(), 3u);
  const int channels[] = {3, 7, 12};
  const int events[] = {0, 2, 0};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(s.Outputs[i].Output, channels[i]);
    EXPECT_EQ(s.Outputs[i].EventCount, events[i]);
    EXPECT_EQ(s.Outputs[i].CustomLabel, QStringLiteral("Studio"));
  }
  EXPECT_EQ(s.Outputs[1].AlarmState, 1) << "the live acknowledgement stays";
  EXPECT_EQ(s.Outputs[1].Events[1].Label, QStringLiteral("Night       "));
  ASSERT_EQ(s.panels.outputs.size(), 3u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(
        s.panels.outputs[i].toolTip,
        QStringLiteral("PGM %1    [%2]").arg(channels[i]).arg(channels[i], 4, 10, QChar(u'0')))
        << "panel " << i + 1 << " names its own output";
  }
  EXPECT_TRUE(Files().isEmpty()) << "nothing is saved";
}

TEST_F(SetupDialogTest, ShowModeHidesTheOutputsAndOkRebuildsTheView) {
  s.DefaultViewLarge = 1;
  s.LargeViewActive = true;
  s.Outputs[1].NextEvent = kNone;
  Open();
  auto* group = Get<QGroupBox>("FrOutputSelect");
  EXPECT_TRUE(group->isVisibleTo(dialog.get()));
  EXPECT_FALSE(Get<QPushButton>("cmdConfigShow")->isVisibleTo(dialog.get()));
  Click("optProgramMode1");
  EXPECT_FALSE(group->isVisibleTo(dialog.get()));
  EXPECT_TRUE(Get<QPushButton>("cmdShowMonOutConfig")->isVisibleTo(dialog.get()));

  Click("cmdOk");
  EXPECT_EQ(s.ProgramMode, 1);
  EXPECT_FALSE(s.LargeViewActive) << "show mode runs in the normal view";
  EXPECT_NE(s.Outputs[1].NextEvent, kNone) << "next events recomputed";
}

TEST_F(SetupDialogTest, NewChannelEndsItsAcknowledgementWhileLiveChangesSurvive) {
  s.Outputs[0].AlarmState = 1;
  s.Outputs[1].AlarmState = 1;
  Open();
  Click("cmdEdit");
  TypeChannel(QStringLiteral("5"));
  // A poll tick while the dialog is open runs an event on another output.
  s.Outputs[2].DisplayOption = 1;
  s.Outputs[2].MonitoringEnabled = false;
  Click("cmdOk");

  EXPECT_EQ(s.Outputs[0].Output, 5);
  EXPECT_EQ(s.Outputs[0].AlarmState, 0);
  EXPECT_TRUE(s.Outputs[0].MonitoringEnabled);
  EXPECT_EQ(s.Outputs[1].AlarmState, 1) << "an unchanged channel keeps its acknowledgement";
  EXPECT_EQ(s.Outputs[2].DisplayOption, 1);
  EXPECT_FALSE(s.Outputs[2].MonitoringEnabled);
}

TEST_F(SetupDialogTest, NestedEditorsActOnTheShownEntry) {
  s.SelectedOutput = 2;
  int scheduleIndex = -1;
  int scheduleOutput = -1;
  int silenceOutput = -1;
  SetupEditors editors;
  editors.schedule = [&](State& st, QWidget*) {
    scheduleIndex = st.SelectedOutput;
    OutputEntry& entry = st.Outputs.at(static_cast<std::size_t>(st.SelectedOutput));
    scheduleOutput = entry.Output;
    entry.Events = {Event(QStringLiteral("12:00:00"), QStringLiteral("Noon"))};
    entry.EventCount = 1;
    st.DialogAccepted = true;
  };
  editors.silenceDetect = [&](State&, int output, QWidget*) { silenceOutput = output; };
  Open(editors);

  Click("cmdForward");
  Click("CmdInsert");
  EXPECT_FALSE(Get<QPushButton>("CmdConfigure")->isEnabled()) << "nothing to configure";
  TypeChannel(QStringLiteral("9"));
  ASSERT_TRUE(Get<QPushButton>("CmdConfigure")->isEnabled());
  Click("CmdConfigure");
  EXPECT_EQ(silenceOutput, 8);

  Click("cmdConfigSchedule");
  EXPECT_EQ(scheduleIndex, 1);
  EXPECT_EQ(scheduleOutput, 9);
  EXPECT_EQ(s.SelectedOutput, 2) << "the main window's selection is left alone";
  EXPECT_FALSE(s.DialogAccepted) << "only Setup's own OK confirms Setup";

  Click("cmdOk");
  ASSERT_EQ(s.OutputCount, 4);
  EXPECT_EQ(s.Outputs[1].Output, 9);
  EXPECT_EQ(s.Outputs[1].EventCount, 1);
  EXPECT_EQ(s.Outputs[2].Output, 7);
  EXPECT_EQ(s.Outputs[2].EventCount, 2);
}

TEST_F(SetupDialogTest, TheListKeepsBetweenOneAnd256Entries) {
  s.Outputs.resize(1);
  s.OutputCount = 1;
  Open();
  EXPECT_FALSE(Get<QPushButton>("cmdRemove")->isEnabled());

  s.Outputs.assign(255, Watched(1));
  s.OutputCount = 255;
  Open();
  Click("CmdAdd");
  EXPECT_FALSE(Get<QPushButton>("CmdAdd")->isEnabled());
  EXPECT_FALSE(Get<QPushButton>("CmdInsert")->isEnabled());
}

TEST_F(SetupDialogTest, ConfirmedSetupKeepsEachScheduleOnItsOutputAcrossARestart) {
  Open();
  Click("cmdForward");
  Click("CmdInsert");
  TypeChannel(QStringLiteral("5"));
  Click("cmdOk");
  ASSERT_TRUE(s.DialogAccepted);
  SetupAccepted(s);

  namespace fs = std::filesystem;
  const auto written = [&](const char* name) {
    return fs::last_write_time(fs::path(PathOf(QString::fromLatin1(name)).toStdString()));
  };
  EXPECT_LE(written("zrnconfig.ini"), written("ZRNShows.dat")) << "configuration first";

  State restarted;
  test::FakeLink otherLink;
  restarted.link = &otherLink;
  restarted.clock = &clock;
  Form_Load(restarted, dir.path());
  ASSERT_EQ(restarted.OutputCount, 4);
  EXPECT_EQ(restarted.Outputs[1].Output, 5);
  EXPECT_EQ(restarted.Outputs[1].EventCount, 0);
  EXPECT_EQ(restarted.Outputs[2].Output, 7);
  ASSERT_EQ(restarted.Outputs[2].EventCount, 2) << "output 7 keeps its events";
  EXPECT_EQ(restarted.Outputs[2].Events[0].Time, QStringLiteral("06:30:00"));
  EXPECT_EQ(restarted.Outputs[2].Events[1].Label, QStringLiteral("Night       "));
  EXPECT_TRUE(ErrorLines().isEmpty()) << ErrorLines().join(QLatin1Char('\n')).toStdString();
}

// A confirmed Setup that cannot be saved tells the operator which files and why, instead of
// closing without a word.
TEST_F(SetupDialogTest, ConfirmedSetupThatCannotBeSavedSaysWhichFileAndWhy) {
  Open();
  Click("cmdOk");
  ASSERT_TRUE(s.DialogAccepted);
  {
    test::ReadOnlyFolder readOnly(dir.path());
    if (!readOnly.Active()) {
      GTEST_SKIP() << "no way to make a folder read-only for this user";
    }
    SetupAccepted(s);
  }
  ASSERT_EQ(prompt.informed.size(), 3);
  const char* files[] = {"zrnconfig.ini", "ZRNShows.dat", "ZRNEvents.dat"};
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(prompt.titles[i], QStringLiteral("File Error"));
    const QString path = QDir::toNativeSeparators(PathOf(QString::fromLatin1(files[i])));
    EXPECT_TRUE(prompt.informed[i].startsWith(path + QStringLiteral(" could not be saved: ")))
        << prompt.informed[i].toStdString();
    EXPECT_FALSE(prompt.informed[i].contains(QStringLiteral("unknown error")));
  }
}

}  // namespace
}  // namespace zrn
