#include <functional>

#include "ui/channel_pair_dialog.h"
#include "ui/ignore_window_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// Show 0 of the working copy has two output groups and one studio group.
class ChannelPairDialogTest : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    ShowRecord show = MakeNewShow();
    show.OutputLeft = {0, 4};
    show.OutputRight = {kNone, 5};
    show.OutputCue = {kNone, 6};
    show.OutputCount = 2;
    show.StudioLeft[0].Channel = 11;
    s.EditShows = {show};
    s.SelectedShow = 0;
  }
  void Open(int mode) {
    s.ChannelSelectMode = static_cast<qint16>(mode);
    DialogTest::Open<ChannelPairDialog>();
  }
  QStringList Lists() {
    return {Shown(QStringLiteral("Left Channel")), Shown(QStringLiteral("Right Channel")),
            Shown(QStringLiteral("Cue Channel"))};
  }
};

TEST_F(ChannelPairDialogTest, ShowOutputsAndStudioSourcesListTheirChannelsByName) {
  Open(1);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Outputs"));
  EXPECT_EQ(Rows(), (QStringList{"TX 1(0001),  Not Defined(16383),  Not Defined(16383)",
                                 "TX 5(0005),  TX 6(0006),  TX 7(0007)"}));
  EXPECT_EQ(Lists(), (QStringList{"[0001] TX 1", "Undefined", "Undefined"}))
      << "the first group is shown";
  EXPECT_FALSE(Enabled(QStringLiteral("Left Channel")));
  person.ClickRow(person.Lists().value(0), 1);
  EXPECT_EQ(Lists(), (QStringList{"[0005] TX 5", "[0006] TX 6", "[0007] TX 7"}));

  Open(2);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Studio Sources"));
  EXPECT_EQ(Rows(), QStringList{"Mic 12(0012),  Not Defined(16383),  Not Defined(16383)"});
  EXPECT_EQ(Lists().front(), QStringLiteral("[0012] Mic 12"));
}

TEST_F(ChannelPairDialogTest, EditSaveAndOkWriteTheGroups) {
  Open(2);
  person.Click(QStringLiteral("Add"));
  person.Click(QStringLiteral("Edit"));
  EXPECT_EQ(Shown(QStringLiteral("Save")), QStringLiteral("Save")) << "Edit turns into Save";
  EXPECT_FALSE(Enabled(QStringLiteral("Add")));
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("3"));
  person.Enter(QStringLiteral("Right Channel"), QStringLiteral("17"));  // beyond the inputs
  person.Enter(QStringLiteral("Cue Channel"), QStringLiteral("16"));
  person.Click(QStringLiteral("Save"));
  EXPECT_TRUE(Enabled(QStringLiteral("Edit the current selection")));
  EXPECT_EQ(Rows().at(1), QStringLiteral("Mic 3(0003),  Not Defined(16383),  Mic 16(0016)"));
  person.Click(QStringLiteral("OK"));
  const ShowRecord& show = s.EditShows[0];
  ASSERT_EQ(show.StudioCount, 2);
  EXPECT_EQ(show.StudioLeft[1].Channel, 2);
  EXPECT_EQ(show.StudioRight[1].Channel, kNone);
  EXPECT_EQ(show.StudioCue[1].Channel, 15);
  EXPECT_EQ(show.OutputCount, 2) << "the outputs are not touched";
}

TEST_F(ChannelPairDialogTest, OkWhileEditingAnsweredNoKeepsTheGroupAndDeletingAllLeavesNone) {
  Open(1);
  person.Click(QStringLiteral("Edit"));
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("9"));
  prompt.answers = {Prompt::Answer::No};
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(prompt.asked, QStringList{"You are currently editing a selection.\nDo you wish to "
                                      "save these changes?"});
  EXPECT_EQ(s.EditShows[0].OutputLeft[0], 0);

  Open(1);
  person.ClickRow(person.Lists().value(0), 0);
  person.ClickRow(person.Lists().value(0), 1, Qt::ControlModifier);
  person.Click(QStringLiteral("Delete"));
  person.Click(QStringLiteral("Edit"));
  EXPECT_FALSE(Enabled(QStringLiteral("Left Channel"))) << "nothing to edit";
  person.Click(QStringLiteral("OK"));
  EXPECT_EQ(s.EditShows[0].OutputCount, 0);
}

// An editor called for something that is not there closes at once and logs why.
TEST_F(ChannelPairDialogTest, EditorsWithNothingToEditCloseAtOnce) {
  const struct {
    const char* name;
    int mode;
    int show;
    std::function<std::unique_ptr<QDialog>(State&)> make;
  } cases[] = {
      {"pairs in another mode", 3, 0,
       [](State& st) { return std::make_unique<ChannelPairDialog>(st); }},
      {"pairs of no show", 1, 4, [](State& st) { return std::make_unique<ChannelPairDialog>(st); }},
      {"windows of no show", 1, 5,
       [](State& st) { return std::make_unique<IgnoreWindowDialog>(st); }},
  };
  for (const auto& c : cases) {
    s.ChannelSelectMode = static_cast<qint16>(c.mode);
    s.SelectedShow = static_cast<qint16>(c.show);
    EXPECT_EQ(c.make(s)->exec(), QDialog::Rejected) << c.name;
  }
  EXPECT_GE(ErrorLines().size(), 2);
}

}  // namespace
}  // namespace zrn
