#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "monitor/poll_tick.h"
#include "shows/shows_pass.h"
#include "storage/shows_file.h"
#include "support/fake_link.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "switcher/name_tables.h"
#include "ui/channel_pair_dialog.h"
#include "ui/setup_dialog.h"
#include "ui/shows_dialog.h"

namespace zrn {
namespace {

ShowRecord Show(const QString& name) {
  ShowRecord show = MakeNewShow();
  show.Name = name;
  return show;
}

// A switcher of 16 inputs and outputs whose start-up exchange is complete, in show mode; the
// clock stands on Monday 16 November 2026, 15:42:52.
class ShowsDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.link = &link;
    s.Connected = true;
    s.linkState.ExchangeComplete = true;
    s.ProgramMode = 1;
    s.SwitcherInputCount = 16;
    s.SwitcherOutputCount = 16;
    s.InputNames.clear();
    s.OutputNames.clear();
    for (int k = 1; k <= 16; ++k) {
      s.InputNames << QStringLiteral("Line %1").arg(k);
      s.OutputNames << QStringLiteral("TX %1").arg(k);
    }
    SetShows({Show(QStringLiteral("One")), Show(QStringLiteral("Two")),
              Show(QStringLiteral("Three")), Show(QStringLiteral("Four")),
              Show(QStringLiteral("Five"))});
  }
  void SetShows(std::vector<ShowRecord> shows) {
    s.ShowCount = static_cast<qint16>(shows.size());
    s.Shows = std::move(shows);
  }
  void Open(int selected = 0) {
    s.SelectedShow = static_cast<qint16>(selected);
    dialog = std::make_unique<ShowsDialog>(s);
    person.Open(*dialog);
  }
  template <class T>
  T* Get(const char* name) {
    T* widget = dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  void Click(const char* name) { QTest::mouseClick(Get<QPushButton>(name), Qt::LeftButton); }
  QString Title() { return Get<QLineEdit>("txtShowTitle")->text(); }
  QString Caption() { return Get<QGroupBox>("frNav")->title(); }
  // Types into a field from empty and presses Enter.
  void Enter(QWidget* field, const QString& keys) {
    if (auto* edit = qobject_cast<QLineEdit*>(field)) {
      edit->clear();
    }
    QTest::keyClicks(field, keys);
    QTest::keyClick(field, Qt::Key_Return);
  }
  QStringList Rows(const char* list) {
    QStringList rows;
    auto* widget = Get<QListWidget>(list);
    for (int i = 0; i < widget->count(); ++i) {
      rows << widget->item(i)->text();
    }
    return rows;
  }

  test::ScriptedPrompt prompt;
  test::FakeLink link;
  test::Person person;
  std::unique_ptr<ShowsDialog> dialog;
};

TEST_F(ShowsDialogTest, TimesAreTypedDigitByDigitAndChecked) {
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Show Configuration"));
  auto* start = Get<QLineEdit>("txtStartTime");
  EXPECT_FALSE(start->isEnabled()) << "browsing until Edit";
  Click("cmdEdit");
  ASSERT_TRUE(start->isEnabled());
  start->clear();
  QTest::keyClicks(start, QStringLiteral("12"));
  EXPECT_EQ(start->text(), QStringLiteral("12:"));
  QTest::keyClicks(start, QStringLiteral("3x0"));
  EXPECT_EQ(start->text(), QStringLiteral("12:30:"));
  QTest::keyClicks(start, QStringLiteral("459"));
  EXPECT_EQ(start->text(), QStringLiteral("12:30:45"));
  QTest::keyClick(start, Qt::Key_Return);
  EXPECT_EQ(s.EditShows[0].StartTime, QStringLiteral("12:30:45"));

  Enter(start, QStringLiteral("250000"));
  EXPECT_EQ(start->text(), QStringLiteral("12:30:45")) << "25:00:00 is refused";
  auto* end = Get<QLineEdit>("txtEndTime");
  Enter(end, QStringLiteral("126000"));
  EXPECT_EQ(end->text(), QStringLiteral("24:00:00")) << "12:60:00 is refused";
  EXPECT_EQ(s.EditShows[0].EndTime, QStringLiteral("24:00:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Enter never closes the editor";
  EXPECT_EQ(s.Shows[0].StartTime, QStringLiteral("24:00:00")) << "the live table waits for OK";
}

TEST_F(ShowsDialogTest, NavigationStaysWithinTheShows) {
  Open(3);
  EXPECT_EQ(Title(), QStringLiteral("Four"));
  EXPECT_EQ(Caption(), QStringLiteral("4 of 5"));
  Click("cmdEnd");
  EXPECT_EQ(Caption(), QStringLiteral("5 of 5"));
  EXPECT_FALSE(Get<QPushButton>("cmdForward")->isEnabled());
  Click("cmdForward");
  EXPECT_EQ(Title(), QStringLiteral("Five"));
  Click("CmdStart");
  Click("cmdBack");
  EXPECT_EQ(Title(), QStringLiteral("One"));
  Click("cmdForward");
  EXPECT_EQ(Caption(), QStringLiteral("2 of 5"));
}

TEST_F(ShowsDialogTest, RemovingTheThirdOfFiveShowsTheFirst) {
  Open(2);
  Click("cmdRemove");
  ASSERT_EQ(s.EditShows.size(), 4u);
  EXPECT_EQ(s.EditShows[2].Name, QStringLiteral("Four"));
  EXPECT_EQ(s.EditShows[3].Name, QStringLiteral("Five"));
  EXPECT_EQ(Title(), QStringLiteral("One"));
  EXPECT_EQ(Caption(), QStringLiteral("1 of 4"));
  EXPECT_EQ(s.ShowCount, 5) << "the live table waits for OK";
}

TEST_F(ShowsDialogTest, RemovingTheOnlyShowLeavesAnEmptyDisabledForm) {
  SetShows({Show(QStringLiteral("Solo"))});
  Open();
  Click("cmdEdit");
  Click("cmdRemove");
  EXPECT_TRUE(s.EditShows.empty());
  EXPECT_EQ(Caption(), QStringLiteral("0 of 0"));
  EXPECT_TRUE(Title().isEmpty());
  for (const char* control : {"txtShowTitle", "txtStartTime", "cmdEditDest", "cmdRemove"}) {
    EXPECT_FALSE(Get<QWidget>(control)->isEnabled()) << control;
  }
  Click("cmdForward");
  Click("CmdAdd");
  EXPECT_EQ(Title(), QStringLiteral("New Show"));
  EXPECT_TRUE(Get<QWidget>("txtShowTitle")->isEnabled());
}

TEST_F(ShowsDialogTest, CancelAfterAddLeavesTheShowsAsTheyWere) {
  Open();
  Click("CmdAdd");
  EXPECT_EQ(Caption(), QStringLiteral("6 of 6"));
  EXPECT_EQ(Title(), QStringLiteral("New Show"));
  EXPECT_EQ(Rows("lstShowDests"),
            QStringList{QStringLiteral("Not Defined, Not Defined, Not Defined")});
  Enter(Get<QLineEdit>("txtShowTitle"), QStringLiteral("Late Show"));
  Click("cmdCancel");
  EXPECT_EQ(s.ShowCount, 5);
  EXPECT_EQ(s.Shows.size(), 5u);
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNShows.dat")))) << "Cancel saves nothing";
}

TEST_F(ShowsDialogTest, DetectListsAndDownlinkStoreTheirCodes) {
  s.Shows[0].DetectLevel = 824;
  s.Shows[0].DownlinkSource = 2;
  Open();
  auto* threshold = Get<QComboBox>("cmbDetect1");
  ASSERT_EQ(threshold->count(), 73);
  EXPECT_EQ(threshold->currentIndex(), 41);
  EXPECT_EQ(threshold->currentText(), QStringLiteral("-20 dB"));
  EXPECT_EQ(Get<QComboBox>("cmbDetect2")->currentText(), QStringLiteral("8 Seconds"));
  auto* downlink = Get<QComboBox>("cmbDownlinkSource");
  EXPECT_EQ(downlink->currentText(), QStringLiteral("[0003] Line 3"));

  Click("cmdEdit");
  threshold->setCurrentIndex(1);
  Get<QComboBox>("cmbDetect3")->setCurrentIndex(12);
  person.Enter(QStringLiteral("Downlink Source"), QStringLiteral("16"));
  EXPECT_EQ(downlink->currentText(), QStringLiteral("[0016] Line 16"));
  Click("cmdOk");

  EXPECT_EQ(s.Shows[0].DetectLevel, 1224);
  EXPECT_EQ(s.Shows[0].DetectTime2, 12);
  EXPECT_EQ(s.Shows[0].DownlinkSource, 15);
  State restarted;
  restarted.AppPath = s.AppPath;
  ASSERT_TRUE(ReadShows(restarted));
  ASSERT_EQ(restarted.ShowCount, 5);
  EXPECT_EQ(restarted.Shows[0].DetectLevel, 1224);
  EXPECT_EQ(restarted.Shows[0].DownlinkSource, 15);
}

TEST_F(ShowsDialogTest, DaysAndDatesSurviveMovingAway) {
  Open(1);
  Click("cmdEdit");
  Get<QCheckBox>("chkAutoDay2")->setChecked(true);
  Get<QCheckBox>("chkAutoDay6")->setChecked(true);
  Get<QDateEdit>("DTPickerEnd")->setDate(QDate(2026, 6, 30));
  EXPECT_EQ(Get<QCheckBox>("chkAutoDay2")->toolTip(),
            QStringLiteral("Event happens every Wedensday"));
  Click("cmdForward");
  EXPECT_FALSE(Get<QCheckBox>("chkAutoDay2")->isChecked());
  Click("cmdBack");
  EXPECT_TRUE(Get<QCheckBox>("chkAutoDay2")->isChecked());
  EXPECT_TRUE(Get<QCheckBox>("chkAutoDay6")->isChecked());
  EXPECT_EQ(Get<QDateEdit>("DTPickerEnd")->date(), QDate(2026, 6, 30));
  Click("cmdAuto7");
  Click("cmdOk");
  EXPECT_EQ(s.Shows[1].Days, 127);
  EXPECT_EQ(s.Shows[1].EndDate, QStringLiteral("06/30/2026"));
  EXPECT_EQ(s.Shows[1].StartDate, QStringLiteral("01/01/2025"));
}

TEST_F(ShowsDialogTest, AShowEndingBeforeItStartsIsRefusedNamingTheDate) {
  Open(1);
  person.Click(QStringLiteral("Edit the current show"));
  person.Click(QStringLiteral("End Date"));
  person.Type(QStringLiteral("12312024"));
  EXPECT_EQ(Get<QDateEdit>("DTPickerEnd")->date(), QDate(2024, 12, 31));
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(prompt.informed, QStringList{QStringLiteral(
                                 "The End Date is before the Start Date.  Please enter an End "
                                 "Date on or after the Start Date.")});
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(QApplication::focusWidget(), Get<QDateEdit>("DTPickerEnd"));
  EXPECT_EQ(s.Shows[1].EndDate, QStringLiteral("12/31/2025")) << "nothing taken over";
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNShows.dat"))));

  person.Click(QStringLiteral("End Date"));
  person.Type(QStringLiteral("06302026"));
  person.Click(QStringLiteral("OK"));
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(s.Shows[1].EndDate, QStringLiteral("06/30/2026"));
}

TEST_F(ShowsDialogTest, SubEditorsWorkOnTheCurrentShow) {
  Open(1);
  Click("cmdEdit");
  test::WhenModal([](QDialog& pairs) {
    EXPECT_EQ(pairs.windowTitle(), QStringLiteral("Configure Show Outputs"));
    pairs.findChild<QPushButton*>(QStringLiteral("cmdEdit"))->click();
    pairs.findChild<QComboBox*>(QStringLiteral("cmbLeftChan"))->setCurrentIndex(5);
    pairs.findChild<QPushButton*>(QStringLiteral("cmdEdit"))->click();
    pairs.accept();
  });
  Click("cmdEditDest");
  EXPECT_EQ(s.SelectedShow, 1);
  EXPECT_EQ(Rows("lstShowDests"), QStringList{QStringLiteral("TX 5, Not Defined, Not Defined")});
  EXPECT_EQ(Get<QListWidget>("lstShowDests")->item(0)->data(Qt::UserRole).toString(),
            QStringLiteral("Ch.0000"));

  test::WhenModal([](QDialog& windows) {
    EXPECT_EQ(windows.windowTitle(), QStringLiteral("Silence Ignore Windows"));
  });
  Click("cmdEditSched");
  EXPECT_TRUE(Rows("lstSilenceSched").isEmpty()) << "closed without OK";
  Click("cmdOk");
  EXPECT_EQ(s.Shows[1].OutputLeft[0], 4);
}

TEST_F(ShowsDialogTest, SetupOpensTheEditorAtTheFirstShow) {
  s.SelectedShow = 3;
  SetupDialog setup(s);
  int shown = -1;
  test::WhenModal([&](QDialog& editor) {
    if (auto* shows = qobject_cast<ShowsDialog*>(&editor)) {
      shown = shows->CurrentIndex();
    }
  });
  setup.findChild<QPushButton*>(QStringLiteral("cmdConfigShow"))->click();
  EXPECT_EQ(shown, 0);
}

TEST_F(ShowsDialogTest, ReplacingTheTableOfAShowOnAirKeepsOneMonitorPerSource) {
  s.SilenceOuts.resize(3);
  for (int k = 0; k < 3; ++k) {
    s.SilenceOuts[k].Output = static_cast<qint16>(9 + k);
  }
  s.SilenceOutCount = 3;
  UpdateSilenceOutTable(s);
  ShowRecord& news = s.Shows[0];
  news.StartTime = QStringLiteral("00:00:00");
  news.EndTime = QStringLiteral("23:59:59");
  news.StartDate = QStringLiteral("01/01/2026");
  news.EndDate = QStringLiteral("12/31/2026");
  news.Days = 127;
  news.DownlinkSource = 4;
  news.StudioLeft[0].Channel = 6;
  RefreshClock(s);
  ShowsPass(s);
  ASSERT_EQ(s.ActiveShowCount, 1);
  ASSERT_EQ(s.Shows[0].DownlinkMonitor, 9);

  Open();
  Click("cmdEdit");
  person.Enter(QStringLiteral("Downlink Source"), QStringLiteral("6"));
  ShowsPass(s);  // the poll timer goes on while the editor is open
  link.wire.clear();
  Click("cmdOk");
  // Started again at once on the edited table: the old downlink's output carries the new
  // downlink straight away, with no park in between.
  EXPECT_FALSE(link.wire.contains(QByteArray::fromHex("fe00007f7f090007ff")));
  ASSERT_EQ(s.ActiveShowCount, 1);

  ShowsPass(s);
  ASSERT_EQ(s.ActiveShowCount, 1);
  auto holding = [&](int source) {
    return std::count_if(s.SilenceOuts.begin(), s.SilenceOuts.end(),
                         [&](const SilenceOut& e) { return e.Source == source; });
  };
  EXPECT_EQ(holding(5), 1) << "the new downlink";
  EXPECT_EQ(holding(6), 1) << "the studio source";
  EXPECT_EQ(holding(4), 0) << "the old downlink is given back";

  s.Shows[0].Days = 0;
  ShowsPass(s);
  EXPECT_EQ(s.ActiveShowCount, 0);
  for (const SilenceOut& e : s.SilenceOuts) {
    EXPECT_EQ(e.Source, kNone) << "output " << e.Output << " still held";
  }
}
}  // namespace
}  // namespace zrn
