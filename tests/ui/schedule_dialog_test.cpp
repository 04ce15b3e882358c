#include "ui/schedule_dialog.h"
#include "ui/broadcast_style.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

ScheduledEvent Event(const char* time, qint16 days, qint16 source = kNone) {
  return {QLatin1String(time), true, 0, days, source != kNone, QString(), source};
}

const QString kTime = QStringLiteral("Event Time");
const QStringList kDays = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                           "Friday", "Saturday", "Sunday"};

// The schedule of output 12 on a Wednesday noon.
class ScheduleDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    ApplyBroadcastStyle(*qApp);
    NameChannels(256);
    s.Outputs[0].Output = 12;
    s.Today = 2;
    s.CurrentTime = QTime(12, 0, 0);
  }
  void SetEvents(std::vector<ScheduledEvent> events) {
    s.Outputs[0].EventCount = static_cast<qint16>(events.size());
    s.Outputs[0].Events = std::move(events);
  }
  void Open() { DialogTest::Open<ScheduleDialog>(); }
  QStringList Row(int row) const {
    QStringList texts;
    for (int c = 0; c < 4; ++c) {
      texts << Rows(0, c).value(row);
    }
    return texts;
  }
  void Click(const char* caption) { person.Click(QLatin1String(caption)); }
};

// Every save is checked before the array grows; a refused one leaves the schedule as it was.
TEST_F(ScheduleDialogTest, SavesAreCheckedFirstAndKeepTimeOrder) {
  SetEvents({Event("08:00:00", 127), Event("18:00:00", 127)});
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Scheduling for [0012]TX 12"));
  Click("New Event");
  person.Retype(kTime, QStringLiteral("250000"));
  Click("Save");
  EXPECT_EQ(prompt.informed, QStringList{"Invalid Time entered.  Please enter as HH:MM:SS"});

  // Enter checks the time: a good one is kept in full form, a bad one left for correction.
  person.Retype(kTime, QStringLiteral("99"));
  person.Press(Qt::Key_Return);
  EXPECT_EQ(Shown(kTime), QStringLiteral("99:"));
  person.Retype(kTime, QStringLiteral("0605"));
  person.Press(Qt::Key_Return);
  EXPECT_EQ(Shown(kTime), QStringLiteral("06:05:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Enter never closes the editor";

  for (const QString& day : kDays) {
    person.Click(day);
  }
  Click("Save");
  EXPECT_EQ(prompt.informed.last(),
            QStringLiteral("No day is ticked in Day Options.  Please tick at least one day."));
  Click("Every Day");

  // Routing needs a source; labels refuse commas.
  Click("Take Source to Dest");
  Click("Save");
  person.Enter(QStringLiteral("Undefined"), QStringLiteral("3"));
  Click("Custom Label");
  person.Press(Qt::Key_Tab);
  person.Type(QStringLiteral("News, 6pm"));
  Click("Save");
  EXPECT_EQ(prompt.titles, (QStringList{"Time Error", "Day Error", "Source Error", "Label Error"}));

  Click("Custom Label");
  person.Press(Qt::Key_Tab);
  person.Press(Qt::Key_A, Qt::ControlModifier);
  person.Type(QStringLiteral("News 6pm"));
  Click("Save as New");
  EXPECT_EQ(Row(0), (QStringList{"06:05:00", "Active", "[0003] Mic 3", "MoTuWeThFrSaSu"}));
  EXPECT_EQ(person.Lists().value(0)->currentIndex().row(), 0) << "follows the saved event";
  EXPECT_EQ(s.Outputs[0].Events[0].Label, QStringLiteral("News 6pm"));
  EXPECT_EQ(s.Outputs[0].NextEvent, 2) << "18:00 today";

  // Unticking "Take Source to Dest" stores no source, whatever the list shows.
  Click("Edit");
  Click("Take Source to Dest");
  Click("Save");
  EXPECT_EQ(s.Outputs[0].Events[0].Source, kNone);
  EXPECT_EQ(Row(0)[2], QStringLiteral("None"));
}

TEST_F(ScheduleDialogTest, DeleteTakesTheCurrentEventAndClosingWithAPendingEditAsks) {
  SetEvents({Event("06:00:00", 127), Event("12:00:00", 127), Event("18:00:00", 4, 2)});
  const QDateTime ranAt(QDate(2026, 11, 18), QTime(18, 0, 0), Qt::UTC);
  s.Outputs[0].LastRun = {QDateTime(), QDateTime(), ranAt};
  s.Outputs[0].HoldOffEvent = 2;
  s.Outputs[0].HoldOffTicks = 100;
  s.Outputs[0].Output = 300;
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Scheduling for [0300]Uknown"));
  person.ClickRow(person.Lists().value(0), 1);

  prompt.answers = {Prompt::Answer::No, Prompt::Answer::Yes};
  Click("Delete");
  Click("Delete");
  EXPECT_EQ(prompt.asked.last(), QStringLiteral("Delete the event at 12:00:00?"));
  ASSERT_EQ(s.Outputs[0].EventCount, 2);
  EXPECT_EQ(s.Outputs[0].Events.size(), 3u) << "the array only grows";
  EXPECT_EQ(s.Outputs[0].LastRun[1], ranAt);
  EXPECT_EQ(s.Outputs[0].HoldOffEvent, 1);
  EXPECT_EQ(s.Outputs[0].NextEvent, 1) << "recomputed at once";
  EXPECT_EQ(Row(1), (QStringList{"18:00:00", "Active", "[0002] Mic 2", "We"}));

  // OK with an edit pending asks; Yes with a bad time keeps the window open, No drops the edit.
  Click("Edit");
  person.Retype(kTime, QStringLiteral("990000"));
  prompt.answers = {Prompt::Answer::Yes, Prompt::Answer::No};
  Click("OK");
  EXPECT_TRUE(dialog->isVisible());
  EXPECT_EQ(
      prompt.asked.last(),
      QStringLiteral("Event changes have not been saved, do you wish to Save these changes?"));
  person.Press(Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(prompt.asked.size(), 4);
  EXPECT_EQ(s.Outputs[0].Events[1].Time, QStringLiteral("18:00:00"));
  EXPECT_TRUE(s.DialogAccepted) << "the deletion stands";

  s.SelectedOutput = 5;
  Open();
  EXPECT_FALSE(Enabled(QStringLiteral("New Event"))) << "no output, nothing to schedule";
}

}  // namespace
}  // namespace zrn
