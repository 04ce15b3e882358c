#include "ui/shows_dialog.h"
#include "shows/shows_pass.h"
#include "switcher/name_tables.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// Two shows in show mode; the clock stands on Monday 16 November 2026, 15:42:52.
class ShowsDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    s.ProgramMode = 1;
    s.Shows = {MakeNewShow(), MakeNewShow()};
    s.ShowCount = 2;
  }
  void Open(int selected = 0) {
    s.SelectedShow = static_cast<qint16>(selected);
    DialogTest::Open<ShowsDialog>();
  }
  void Edit() { person.Click(QStringLiteral("Edit the current show")); }
};

// Typing itself is tabled with the other time fields; an end before the start names the date.
TEST_F(ShowsDialogTest, EditedShowIsCheckedAndSavedOnlyByOkAndRemovalsUndoneByCancel) {
  Open();
  EXPECT_FALSE(Enabled(QStringLiteral("Start Time"))) << "browsing until Edit";
  Edit();
  person.Retype(QStringLiteral("Start Time"), QStringLiteral("123045"));
  person.Press(Qt::Key_Return);
  person.Retype(QStringLiteral("End Time"), QStringLiteral("126000"));
  person.Press(Qt::Key_Return);
  EXPECT_EQ(Shown(QStringLiteral("End Time")), QStringLiteral("24:00:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Enter never closes the editor";
  person.Pick(QStringLiteral("Silence Threshold"), 1);
  person.Pick(QStringLiteral("Return Time"), 12);
  person.Click(QStringLiteral("Wednesday"));
  person.Click(QStringLiteral("Sunday"));
  person.Click(QStringLiteral("End Date"));
  person.Type(QStringLiteral("12312024"));
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(prompt.informed, QStringList{QStringLiteral(
                                 "The End Date is before the Start Date.  Please enter an End "
                                 "Date on or after the Start Date.")});
  EXPECT_EQ(QApplication::focusWidget(), person.Find(QStringLiteral("End Date")));
  EXPECT_EQ(s.Shows[0].StartTime, QStringLiteral("24:00:00")) << "the live table waits for OK";
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNShows.dat"))));

  person.Type(QStringLiteral("06302026"));
  EXPECT_EQ(person.Find(QStringLiteral("Wednesday"))->toolTip(),
            QStringLiteral("Event happens every Wedensday"));
  person.Click(QStringLiteral(">"));
  EXPECT_FALSE(Checked(QStringLiteral("Wednesday")));
  person.Click(QStringLiteral("<"));
  EXPECT_TRUE(Checked(QStringLiteral("Wednesday")));
  person.Click(QStringLiteral("Every Day"));
  person.Click(QStringLiteral("OK"));
  State restarted;
  restarted.AppPath = s.AppPath;
  ASSERT_TRUE(ReadShows(restarted));
  const ShowRecord& saved = restarted.Shows.at(0);
  EXPECT_EQ((QStringList{saved.StartTime, saved.StartDate, saved.EndDate}),
            (QStringList{"12:30:45", "01/01/2025", "06/30/2026"}));
  EXPECT_EQ((QList<int>{saved.Days, saved.DetectLevel, saved.DetectTime2}),
            (QList<int>{127, 1224, 12}));

  // The sub-editors work on the current show.
  Open(1);
  Edit();
  test::WhenModal([](QDialog& pairs) {
    test::Person other;
    other.Open(pairs);
    other.Click(QStringLiteral("Edit"));
    other.Enter(QStringLiteral("Left Channel"), QStringLiteral("5"));
    other.Click(QStringLiteral("Save"));
    other.Click(QStringLiteral("OK"));
  });
  person.Click(QStringLiteral("Edit Show Outputs"));
  EXPECT_EQ(Rows(1), QStringList{QStringLiteral("TX 5, Not Defined, Not Defined")});
  EXPECT_EQ(person.Lists().value(1)->model()->index(0, 0).data(Qt::UserRole).toString(),
            QStringLiteral("Ch.0000"));

  test::WhenModal([](QDialog&) {});
  person.Click(QStringLiteral("Edit Scheduled Silence Windows"));
  EXPECT_TRUE(Rows(2).isEmpty()) << "closed without OK";
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(s.Shows[1].OutputLeft[0], 4);

  // Removing every show leaves nothing to edit until Add; Cancel then drops the new show.
  Open();
  Edit();
  person.Click(QStringLiteral("Remove"));
  person.Click(QStringLiteral("Remove"));
  EXPECT_TRUE(Seen(QStringLiteral("0 of 0")));
  for (const char* control : {"Show Title", "Start Time", "Edit Show Outputs", "Remove"}) {
    EXPECT_FALSE(Enabled(QLatin1String(control))) << control;
  }
  person.Click(QStringLiteral("Add"));
  EXPECT_EQ(Shown(QStringLiteral("Show Title")), QStringLiteral("New Show"));
  EXPECT_EQ(Rows(1), QStringList{QStringLiteral("Not Defined, Not Defined, Not Defined")});
  person.Retype(QStringLiteral("Show Title"), QStringLiteral("Late Show"));
  person.Press(Qt::Key_Return);
  person.Click(QStringLiteral("Cancel"));
  ASSERT_EQ(s.Shows.size(), 2u);
  EXPECT_EQ(s.Shows[0].StartTime, QStringLiteral("12:30:45"));
}

TEST_F(ShowsDialogTest, ReplacingTheTableOfAShowOnAirKeepsOneMonitorPerSource) {
  s.SilenceOuts.resize(3);
  for (int k = 0; k < 3; ++k) {
    s.SilenceOuts[k].Output = static_cast<qint16>(9 + k);
  }
  s.SilenceOutCount = 3;
  UpdateSilenceOutTable(s);
  PutShowOnAir();
  ShowsPass(s);

  Open();
  Edit();
  person.Enter(QStringLiteral("Downlink Source"), QStringLiteral("6"));
  ShowsPass(s);  // the poll timer goes on while the editor is open
  link.wire.clear();
  person.Click(QStringLiteral("OK"));
  // Started again at once on the edited table: the old downlink's output carries the new
  // downlink straight away, with no park in between.
  EXPECT_FALSE(link.wire.contains(QByteArray::fromHex("fe00007f7f090007ff")));
  ASSERT_EQ(s.ActiveShowCount, 1);
  ShowsPass(s);
  ExpectHeldThenFreed({5, 6, kNone}, ShowsPass);
  EXPECT_EQ(s.ActiveShowCount, 0);
}

}  // namespace
}  // namespace zrn
