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
    s.EditShows[1].Name = QStringLiteral("Drive Time");
    s.SelectedShow = 1;
  }
  void Add(const QString& start, const QString& end) {
    person.Retype(QStringLiteral("Start Time"), start);
    person.Retype(QStringLiteral("End Time"), end);
    person.Click(QStringLiteral("Add Listed Window"));
  }
};

TEST_F(IgnoreWindowDialogTest, AddedWindowIsStoredByOkAndBadTimesAreRefusedWithTheirMessage) {
  Open<IgnoreWindowDialog>();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Silence Ignore Windows"));
  EXPECT_EQ(Shown(QStringLiteral("Start Time")), QStringLiteral("00:00:00"));

  const struct {
    const char* start;
    const char* end;
    const char* message;
  } refused[] = {
      {"250000", "093000", "Invalid start time.  Hours must be less than 24"},
      {"120000", "240000", "Invalid end time.  Hours must be less than 24"},
      {"120000", "1261", "Invalid end time.  Minutes must be less than 60"},
  };
  for (const auto& r : refused) {
    Add(QLatin1String(r.start), QLatin1String(r.end));
    EXPECT_EQ(prompt.informed.value(prompt.informed.size() - 1), QLatin1String(r.message))
        << r.start << '-' << r.end;
    EXPECT_EQ(prompt.titles.last(), QStringLiteral("Entry Error"));
  }
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

  Add(QStringLiteral("080000"), QStringLiteral("0930"));
  EXPECT_EQ(Rows(), QStringList{QStringLiteral("08:00:00 - 09:30:00")});
  EXPECT_EQ(prompt.informed.size(), 3);
  person.Click(QStringLiteral("OK"));
  const ShowRecord& show = s.EditShows[1];
  ASSERT_EQ(show.IgnoreCount, 1);
  EXPECT_EQ(show.IgnoreWindows[0].StartTime, QStringLiteral("08:00:00"));
  EXPECT_EQ(show.IgnoreWindows[0].EndTime, QStringLiteral("09:30:00"));
  EXPECT_EQ(s.EditShows[0].IgnoreCount, 0) << "only the selected show";
}

TEST_F(IgnoreWindowDialogTest, DeleteTakesTheSelectedWindowAndCancelKeepsThem) {
  s.EditShows[1].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")},
                                  {QStringLiteral("18:00:00"), QStringLiteral("18:05:00")}};
  s.EditShows[1].IgnoreCount = 2;
  for (const bool keep : {false, true}) {
    Open<IgnoreWindowDialog>();
    ASSERT_EQ(Rows().size(), 2);
    person.Click(QStringLiteral("Delete"));
    EXPECT_EQ(Rows().size(), 2) << "no row selected";
    person.ClickRow(person.Lists().value(0), 0);
    person.Click(QStringLiteral("Delete"));
    EXPECT_EQ(Rows(), QStringList{QStringLiteral("18:00:00 - 18:05:00")});
    if (keep) {
      person.ClickRow(person.Lists().value(0), 0);
      person.Click(QStringLiteral("Delete"));
      person.Click(QStringLiteral("OK"));
      EXPECT_EQ(s.EditShows[1].IgnoreCount, 0);
    } else {
      person.Click(QStringLiteral("Cancel"));
      EXPECT_EQ(s.EditShows[1].IgnoreCount, 2) << "Cancel changes nothing";
    }
  }
}

}  // namespace
}  // namespace zrn
