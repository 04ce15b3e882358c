#include "ui/ignore_window_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// The second of two shows is edited.
class IgnoreWindowDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    s.EditShows = {MakeNewShow(), MakeNewShow()};
    s.SelectedShow = 1;
  }
  void Add(const char* start, const char* end) {
    person.Retype(QStringLiteral("Start Time"), QLatin1String(start));
    person.Retype(QStringLiteral("End Time"), QLatin1String(end));
    person.Click(QStringLiteral("Add Listed Window"));
  }
};

// The time rules are tabled with the other time fields; here each field names itself.
TEST_F(IgnoreWindowDialogTest, AddedWindowIsStoredByOkAndBadTimesAreRefusedWithTheirMessage) {
  Open<IgnoreWindowDialog>();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Silence Ignore Windows"));
  Add("250000", "093000");
  Add("120000", "240000");
  EXPECT_EQ(prompt.informed, (QStringList{"Invalid start time.  Hours must be less than 24",
                                          "Invalid end time.  Hours must be less than 24"}));
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Entry Error"));
  EXPECT_TRUE(Rows().isEmpty());

  // Enter shows a refused time as no time, a good one in full; Escape empties the field.
  person.Retype(QStringLiteral("Start Time"), QStringLiteral("250000"));
  person.Press(Qt::Key_Return);
  EXPECT_EQ(Shown(QStringLiteral("Start Time")), QStringLiteral("24:00:00"));
  person.Retype(QStringLiteral("End Time"), QStringLiteral("13"));
  person.Press(Qt::Key_Escape);
  EXPECT_EQ(Shown(QStringLiteral("End Time")), QStringLiteral("24:00:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Escape in a field does not close the dialog";
  person.Retype(QStringLiteral("End Time"), QStringLiteral("0930"));
  person.Press(Qt::Key_Return);
  EXPECT_EQ(Shown(QStringLiteral("End Time")), QStringLiteral("09:30:00"));

  Add("080000", "0930");
  EXPECT_EQ(Rows(), QStringList{QStringLiteral("08:00:00 - 09:30:00")});
  person.Click(QStringLiteral("OK"));
  ASSERT_EQ(s.EditShows[1].IgnoreCount, 1);
  EXPECT_EQ(s.EditShows[1].IgnoreWindows[0].EndTime, QStringLiteral("09:30:00"));
  EXPECT_EQ(s.EditShows[0].IgnoreCount, 0) << "only the selected show";
}

TEST_F(IgnoreWindowDialogTest, DeleteTakesTheSelectedWindowAndCancelKeepsThem) {
  s.EditShows[1].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")},
                                  {QStringLiteral("18:00:00"), QStringLiteral("18:05:00")}};
  s.EditShows[1].IgnoreCount = 2;
  for (const char* close : {"Cancel", "OK"}) {
    Open<IgnoreWindowDialog>();
    person.Click(QStringLiteral("Delete"));
    EXPECT_EQ(Rows().size(), 2) << "no row selected";
    person.ClickRow(person.Lists().value(0), 0);
    person.Click(QStringLiteral("Delete"));
    EXPECT_EQ(Rows(), QStringList{QStringLiteral("18:00:00 - 18:05:00")});
    person.Click(QLatin1String(close));
  }
  EXPECT_EQ(s.EditShows[1].IgnoreCount, 1) << "Cancel changed nothing, OK kept the other";
}

}  // namespace
}  // namespace zrn
