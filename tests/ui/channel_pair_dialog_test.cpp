// The show editor's sub-editors: its channel groups and its silence ignore windows.
#include "ui/channel_pair_dialog.h"
#include "ui/ignore_window_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// Show 1 of the working copy has two output groups and one studio group; show 0 is new.
class ShowSubEditorTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    ShowRecord show = MakeNewShow();
    show.OutputLeft = {0, 4};
    show.OutputRight = {kNone, 5};
    show.OutputCue = {kNone, 6};
    show.OutputCount = 2;
    show.StudioLeft[0].Channel = 11;
    s.EditShows = {MakeNewShow(), show};
    s.SelectedShow = 1;
  }
  void OpenPairs(int mode) {
    s.ChannelSelectMode = static_cast<qint16>(mode);
    Open<ChannelPairDialog>();
  }
  void AddWindow(const char* start, const char* end) {
    person.Retype(QStringLiteral("Start Time"), QLatin1String(start));
    person.Retype(QStringLiteral("End Time"), QLatin1String(end));
    person.Click(QStringLiteral("Add Listed Window"));
  }
};

// Edit, Save and OK write the studio groups; OK while editing asks, and No keeps the outputs.
TEST_F(ShowSubEditorTest, PairEditorWritesTheGroupsOnOkAndClosesWhenThereIsNothingToEdit) {
  OpenPairs(2);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Studio Sources"));
  person.Click(QStringLiteral("Add"));
  person.Click(QStringLiteral("Edit"));
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("3"));
  person.Enter(QStringLiteral("Right Channel"), QStringLiteral("17"));  // beyond the inputs
  person.Enter(QStringLiteral("Cue Channel"), QStringLiteral("16"));
  person.Click(QStringLiteral("Save"));
  EXPECT_EQ(Rows().at(1), QStringLiteral("Mic 3(0003),  Not Defined(16383),  Mic 16(0016)"));
  person.Click(QStringLiteral("OK"));
  const ShowRecord& show = s.EditShows[1];
  ASSERT_EQ(show.StudioCount, 2);
  EXPECT_EQ((QList<int>{show.StudioLeft[1].Channel, show.StudioRight[1].Channel,
                        show.StudioCue[1].Channel}),
            (QList<int>{2, kNone, 15}));

  OpenPairs(1);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Outputs"));
  EXPECT_EQ(Rows(), (QStringList{"TX 1(0001),  Not Defined(16383),  Not Defined(16383)",
                                 "TX 5(0005),  TX 6(0006),  TX 7(0007)"}));
  person.Click(QStringLiteral("Edit"));
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("9"));
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(prompt.asked, QStringList{"You are currently editing a selection.\nDo you wish to "
                                      "save these changes?"});
  EXPECT_EQ(s.EditShows[1].OutputLeft[0], 0);

  OpenPairs(1);
  person.ClickRow(person.Lists().value(0), 0);
  person.ClickRow(person.Lists().value(0), 1, Qt::ControlModifier);
  person.Click(QStringLiteral("Delete"));
  person.Click(QStringLiteral("Edit"));
  EXPECT_FALSE(Enabled(QStringLiteral("Left Channel"))) << "nothing to edit";
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(s.EditShows[1].OutputCount, 0);

  // Called for something that is not there, an editor closes at once and logs why.
  const struct {
    int mode, show;
    std::unique_ptr<QDialog> (*make)(State&);
  } cases[] = {
      {3, 1, test::Make<ChannelPairDialog>},
      {1, 4, test::Make<ChannelPairDialog>},
      {1, 5, test::Make<IgnoreWindowDialog>},
  };
  for (const auto& c : cases) {
    s.ChannelSelectMode = static_cast<qint16>(c.mode);
    s.SelectedShow = static_cast<qint16>(c.show);
    EXPECT_EQ(c.make(s)->exec(), QDialog::Rejected) << c.mode << " " << c.show;
  }
  EXPECT_GE(ErrorLines().size(), 2);
}

// The time rules are tabled with the other time fields; here each field names itself. Delete
// takes the selected window and only OK stores the list.
TEST_F(ShowSubEditorTest, IgnoreWindowsAreAddedAndDeletedAndOnlyOkStoresThem) {
  s.EditShows[1].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")}};
  s.EditShows[1].IgnoreCount = 1;
  Open<IgnoreWindowDialog>();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Silence Ignore Windows"));
  person.Click(QStringLiteral("Delete"));  // no row selected
  AddWindow("250000", "093000");
  AddWindow("120000", "240000");
  EXPECT_EQ(prompt.informed, (QStringList{"Invalid start time.  Hours must be less than 24",
                                          "Invalid end time.  Hours must be less than 24"}));
  EXPECT_EQ(prompt.titles.last(), QStringLiteral("Entry Error"));

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

  AddWindow("080000", "0930");
  EXPECT_EQ(Rows(), (QStringList{"12:00:00 - 12:30:00", "08:00:00 - 09:30:00"}));
  person.ClickRow(person.Lists().value(0), 0);
  person.Click(QStringLiteral("Delete"));
  person.Click(QStringLiteral("OK"));
  ASSERT_EQ(s.EditShows[1].IgnoreCount, 1);
  EXPECT_EQ(s.EditShows[1].IgnoreWindows[0].StartTime, QStringLiteral("08:00:00"));
  EXPECT_EQ(s.EditShows[0].IgnoreCount, 0) << "only the selected show";
}

}  // namespace
}  // namespace zrn
