#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTreeWidget>
#include <stdexcept>

#include "schedule/schedule_rules.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "ui/broadcast_style.h"
#include "ui/schedule_dialog.h"

namespace zrn {
namespace {

using test::ScriptedPrompt;

template <class T>
T* Child(const QWidget& parent, const QString& name) {
  T* child = parent.findChild<T*>(name);
  if (child == nullptr) {
    throw std::runtime_error("no control " + name.toStdString());
  }
  return child;
}

ScheduledEvent Event(const QString& time, int days, bool active = true, int source = kNone) {
  ScheduledEvent e;
  e.Time = time;
  e.Days = static_cast<qint16>(days);
  e.Active = active;
  e.Connect = source != kNone;
  e.Source = static_cast<qint16>(source);
  return e;
}

class ScheduleDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    ApplyBroadcastStyle(*qApp);
    s.prompt = &prompt;
    s.OutputNames[11] = QStringLiteral("Studio A");
    for (int i = 0; i < 8; ++i) {
      s.InputNames[i] = QStringLiteral("Mic %1").arg(i + 1);
    }
    s.Outputs[0].Output = 12;
    s.SelectedOutput = 0;
    // Wednesday noon.
    s.Today = 2;
    s.CurrentTime = QTime(12, 0, 0);
  }
  void SetEvents(std::vector<ScheduledEvent> events) {
    s.Outputs[0].EventCount = static_cast<qint16>(events.size());
    s.Outputs[0].Events = std::move(events);
  }
  void Open() {
    dialog = std::make_unique<ScheduleDialog>(s);
    person.Open(*dialog);
  }
  QStringList Row(int i) const {
    const QTreeWidgetItem* item = List()->topLevelItem(i);
    QStringList texts;
    for (int c = 0; item != nullptr && c < 4; ++c) {
      texts << item->text(c);
    }
    return texts;
  }
  QTreeWidget* List() const { return Child<QTreeWidget>(*dialog, QStringLiteral("lvEvents")); }
  QLineEdit* TimeBox() const { return Child<QLineEdit>(*dialog, QStringLiteral("txtAutoTime")); }
  QCheckBox* Day(int d) const {
    return Child<QCheckBox>(*dialog, QStringLiteral("chkAutoDay%1").arg(d));
  }
  QCheckBox* Connect() const { return Child<QCheckBox>(*dialog, QStringLiteral("chkConnect")); }
  QComboBox* Sources() const { return Child<QComboBox>(*dialog, QStringLiteral("cmbAutoSource")); }
  // On the box itself: a stretched check box does not react to a click beyond its text.
  static void Tick(QAbstractButton* box) {
    QTest::mouseClick(box, Qt::LeftButton, {}, QPoint(8, box->height() / 2));
  }
  void Click(int button) { QTest::mouseClick(dialog->AutoButton(button), Qt::LeftButton); }
  void ClickOk() {
    QTest::mouseClick(Child<QPushButton>(*dialog, QStringLiteral("cmdOk")), Qt::LeftButton);
  }
  void TypeTime(const QString& keys) {
    TimeBox()->clear();
    QTest::keyClicks(TimeBox(), keys);
  }

  ScriptedPrompt prompt;
  test::Person person;
  std::unique_ptr<ScheduleDialog> dialog;
};

TEST_F(ScheduleDialogTest, EmptyScheduleStartsFromTheBlankPlaceholder) {
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Scheduling for [0012]Studio A"));
  EXPECT_EQ(List()->topLevelItemCount(), 0);
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("24:00:00"));
  EXPECT_TRUE(Child<QRadioButton>(*dialog, QStringLiteral("optAutoActive0"))->isChecked());
  EXPECT_EQ(Sources()->currentText(), QStringLiteral("Undefined"));
  EXPECT_EQ(Sources()->count(), 257);
  EXPECT_EQ(Sources()->itemText(3), QStringLiteral("[0003] Mic 3"));
  for (int d = 0; d < 7; ++d) {
    EXPECT_FALSE(Day(d)->isChecked());
    EXPECT_FALSE(Day(d)->isEnabled());
  }
  EXPECT_FALSE(dialog->AutoButton(1)->isEnabled()) << "nothing to edit";
  Click(1);
  EXPECT_FALSE(dialog->ChangesPending());

  // New Event: the colons come by themselves, and a full box takes no more digits.
  Click(0);
  EXPECT_TRUE(dialog->AutoButton(4)->isVisible());
  EXPECT_FALSE(dialog->AutoButton(0)->isVisible());
  TypeTime(QStringLiteral("0630"));
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("06:30:"));
  QTest::keyClicks(TimeBox(), QStringLiteral("001"));
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("06:30:00"));
  for (int d = 0; d < 5; ++d) {
    QTest::mouseClick(Day(d), Qt::LeftButton);
  }
  QTest::mouseClick(Child<QRadioButton>(*dialog, QStringLiteral("optAutoActive1")), Qt::LeftButton);
  Click(4);

  EXPECT_TRUE(prompt.informed.isEmpty()) << prompt.informed.join(QLatin1Char('|')).toStdString();
  ASSERT_EQ(List()->topLevelItemCount(), 1);
  EXPECT_EQ(Row(0), (QStringList{"06:30:00", "Active", "None", "MoTuWeThFr"}));
  EXPECT_EQ(List()->topLevelItem(0)->data(0, Qt::UserRole).toString(), QStringLiteral("Ch.0000"));
  EXPECT_EQ(s.Outputs[0].EventCount, 1);
  EXPECT_EQ(s.Outputs[0].Events[0].Days, 31);
  EXPECT_EQ(s.Outputs[0].NextEvent, 0) << "recomputed at once";
  EXPECT_TRUE(s.DialogAccepted);
  EXPECT_FALSE(TimeBox()->isEnabled());
  EXPECT_TRUE(dialog->AutoButton(0)->isVisible());

  ClickOk();
  EXPECT_TRUE(prompt.asked.isEmpty());
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(dialog->result(), QDialog::Accepted);
}

TEST_F(ScheduleDialogTest, SavesAreCheckedFirstAndKeepTimeOrder) {
  SetEvents({Event(QStringLiteral("08:00:00"), 127), Event(QStringLiteral("18:00:00"), 96)});
  s.Outputs[0].Events[1].Days = 127;
  s.Outputs[0].Events.resize(4);  // spare elements the configuration sized
  Open();
  EXPECT_EQ(Row(1), (QStringList{"18:00:00", "Active", "None", "MoTuWeThFrSaSu"}));

  // A refused new event leaves nothing behind.
  Click(0);
  TimeBox()->setText(QStringLiteral("25:00:00"));
  Click(4);
  EXPECT_EQ(prompt.informed, QStringList{"Invalid Time entered.  Please enter as HH:MM:SS"});
  EXPECT_EQ(prompt.titles, QStringList{"Time Error"});
  EXPECT_EQ(s.Outputs[0].EventCount, 2);
  EXPECT_FALSE(s.DialogAccepted);
  EXPECT_TRUE(TimeBox()->isEnabled()) << "still editing";

  // Enter checks the time: a good one is kept in full form, a bad one left for correction.
  TimeBox()->setText(QStringLiteral("6:5"));
  QTest::keyClick(TimeBox(), Qt::Key_Return);
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("6:5"));
  TimeBox()->setText(QStringLiteral("6:05"));
  QTest::keyClick(TimeBox(), Qt::Key_Return);
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("06:05:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Enter never closes the editor";

  // An event on no day is refused, naming the days.
  for (int d = 0; d < 7; ++d) {
    Tick(Day(d));
  }
  Click(4);
  EXPECT_EQ(prompt.informed.last(),
            QStringLiteral("No day is ticked in Day Options.  Please tick at least one day."));
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Day Error"));
  EXPECT_EQ(s.Outputs[0].EventCount, 2);
  Click(7);

  // Routing needs a source; labels refuse commas.
  Tick(Connect());
  ASSERT_TRUE(Sources()->isEnabled());
  Click(4);
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Source Error"));
  person.Enter(QStringLiteral("Undefined"), QStringLiteral("3"));
  EXPECT_EQ(Sources()->currentIndex(), 3);
  Child<QLineEdit>(*dialog, QStringLiteral("txtCustom"))->setText(QStringLiteral("News, 6pm"));
  Click(4);
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Label Error"));
  EXPECT_EQ(s.Outputs[0].EventCount, 2);

  Child<QLineEdit>(*dialog, QStringLiteral("txtCustom"))->setText(QStringLiteral("News 6pm"));
  Click(5);
  ASSERT_EQ(s.Outputs[0].EventCount, 3);
  EXPECT_EQ(s.Outputs[0].Events.size(), 4u) << "the array only grows";
  EXPECT_EQ(Row(0), (QStringList{"06:05:00", "Active", "[0003] Mic 3", "MoTuWeThFrSaSu"}));
  EXPECT_EQ(dialog->CurrentIndex(), 0) << "follows the saved event";
  EXPECT_EQ(List()->currentItem(), List()->topLevelItem(0));
  EXPECT_EQ(s.Outputs[0].Events[0].Label, QStringLiteral("News 6pm"));
  EXPECT_EQ(s.Outputs[0].NextEvent, 2) << "18:00 today";

  // Unticking "Take Source to Dest" stores no source, whatever the list shows.
  Click(1);
  Tick(Connect());
  EXPECT_FALSE(Sources()->isEnabled());
  EXPECT_EQ(Sources()->currentIndex(), 3);
  Click(4);
  EXPECT_FALSE(s.Outputs[0].Events[0].Connect);
  EXPECT_EQ(s.Outputs[0].Events[0].Source, kNone);
  EXPECT_EQ(Row(0)[2], QStringLiteral("None"));
}

TEST_F(ScheduleDialogTest, ClosingWithPendingChangesAsksFirst) {
  SetEvents({Event(QStringLiteral("08:00:00"), 1)});
  Open();
  Click(0);
  TimeBox()->setText(QStringLiteral("10:00:00"));
  Click(4);
  ASSERT_EQ(s.Outputs[0].EventCount, 2);

  // Yes with a bad time keeps the window open; No then discards the edit only.
  QTest::mouseClick(List()->viewport(), Qt::LeftButton, {},
                    List()->visualItemRect(List()->topLevelItem(0)).center());
  ASSERT_EQ(dialog->CurrentIndex(), 0);
  Click(1);
  TimeBox()->setText(QStringLiteral("99:00:00"));
  prompt.answers = {Prompt::Answer::Yes, Prompt::Answer::No};
  ClickOk();
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(prompt.titles, (QStringList{"Save Changes?", "Time Error"}));
  EXPECT_EQ(prompt.asked,
            QStringList{"Event changes have not been saved, do you wish to Save these changes?"});
  QTest::keyClick(dialog.get(), Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(prompt.asked.size(), 2);
  EXPECT_EQ(s.Outputs[0].Events[0].Time, QStringLiteral("08:00:00"));
  EXPECT_EQ(s.Outputs[0].Events[1].Time, QStringLiteral("10:00:00")) << "saved earlier";
  EXPECT_TRUE(s.DialogAccepted);
}

TEST_F(ScheduleDialogTest, DeleteRemovesTheCurrentEventAndItsRunMemoryFollows) {
  SetEvents({Event(QStringLiteral("06:00:00"), 127), Event(QStringLiteral("12:00:00"), 127),
             Event(QStringLiteral("18:00:00"), 4, true, 2)});
  s.Outputs[0].Events[2].DisplayOption = 2;
  s.Outputs[0].Events[2].Label = QStringLiteral("Evening    ");
  const QDateTime ranAt(QDate(2026, 11, 18), QTime(18, 0, 0), Qt::UTC);
  s.Outputs[0].LastRun = {QDateTime(), QDateTime(), ranAt};
  s.Outputs[0].HoldOffEvent = 2;
  s.Outputs[0].HoldOffTicks = 100;
  Open();
  QTest::mouseClick(List()->viewport(), Qt::LeftButton, {},
                    List()->visualItemRect(List()->topLevelItem(1)).center());
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("12:00:00"));

  prompt.answers = {Prompt::Answer::No};
  Click(2);
  EXPECT_EQ(s.Outputs[0].EventCount, 3);
  prompt.answers = {Prompt::Answer::Yes};
  Click(2);
  EXPECT_EQ(prompt.asked.last(), QStringLiteral("Delete the event at 12:00:00?"));
  ASSERT_EQ(s.Outputs[0].EventCount, 2);
  EXPECT_EQ(s.Outputs[0].Events.size(), 3u);
  EXPECT_EQ(s.Outputs[0].Events[1].Time, QStringLiteral("18:00:00"));
  EXPECT_EQ(s.Outputs[0].LastRun[1], ranAt);
  EXPECT_EQ(s.Outputs[0].HoldOffEvent, 1);
  EXPECT_EQ(s.Outputs[0].NextEvent, 1) << "recomputed at once";
  EXPECT_EQ(Row(1), (QStringList{"18:00:00", "Active", "[0002] Mic 2", "We"}));
  EXPECT_EQ(TimeBox()->text(), QStringLiteral("18:00:00"));
  EXPECT_TRUE(s.DialogAccepted);

  const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/../screenshots");
  QDir().mkpath(folder);
  Click(1);
  EXPECT_TRUE(dialog->grab().save(folder + QStringLiteral("/schedule_dialog.png")));
}

TEST_F(ScheduleDialogTest, OutputOutsideTheNameTableIsTitledUknown) {
  s.Outputs[0].Output = 300;
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Scheduling for [0300]Uknown"));
  s.SelectedOutput = 5;
  ScheduleDialog none(s);
  EXPECT_FALSE(none.AutoButton(0)->isEnabled()) << "no output, nothing to schedule";
}

TEST(ScheduleRules, TimeTextsAndRowTexts) {
  EXPECT_EQ(NormaliseEventTime(QStringLiteral("6:30")), QStringLiteral("06:30:00"));
  EXPECT_EQ(NormaliseEventTime(QStringLiteral("06:30:")), QStringLiteral("06:30:00"));
  EXPECT_EQ(NormaliseEventTime(QStringLiteral("6:30 PM")), QStringLiteral("18:30:00"));
  EXPECT_EQ(NormaliseEventTime(QStringLiteral("25:00:00")), QStringLiteral("25:00:00"));
  EXPECT_TRUE(IsValidEventTime(QStringLiteral("23:59:59")));
  for (const char* bad :
       {"24:00:00", "12:60:00", "12:00:60", "1:00:000", "12-00-00", "ab:00:00", "+1:00:00"}) {
    EXPECT_FALSE(IsValidEventTime(QLatin1String(bad))) << bad;
  }
  EXPECT_EQ(DaysText(0x7F), QStringLiteral("MoTuWeThFrSaSu"));
  EXPECT_EQ(DaysText(0x41), QStringLiteral("MoSu"));
  State s;
  s.InputNames = {QStringLiteral("Sat 1")};
  EXPECT_EQ(EventRowTexts(s, Event(QStringLiteral("01:00:00"), 0, false, 1)),
            (QStringList{"01:00:00", "Inactive", "[0001] Sat 1", ""}));
  EXPECT_EQ(EventRowTexts(s, Event(QStringLiteral("01:00:00"), 0, false, 0))[2],
            QStringLiteral("None"));
  EXPECT_EQ(EventRowTexts(s, Event(QStringLiteral("01:00:00"), 0, false, 2))[2],
            QStringLiteral("[0002] Uknown"));
}

}  // namespace
}  // namespace zrn
