#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "storage/shows_file.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "ui/channel_pair_dialog.h"

namespace zrn {
namespace {

// A switcher of 16 outputs and 16 inputs; show 0 of the working copy is edited.
class ChannelPairDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.SwitcherOutputCount = 16;
    s.SwitcherInputCount = 16;
    s.OutputNames.clear();
    s.InputNames.clear();
    for (int k = 1; k <= 16; ++k) {
      s.OutputNames << QStringLiteral("TX %1").arg(k);
      s.InputNames << QStringLiteral("Studio %1").arg(k);
    }
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
    dialog = std::make_unique<ChannelPairDialog>(s);
    person.Open(*dialog);
  }
  template <class T>
  T* Get(const char* name) {
    T* widget = dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  void Click(const char* name) { QTest::mouseClick(Get<QPushButton>(name), Qt::LeftButton); }
  QStringList Lines() {
    QStringList lines;
    auto* list = Get<QTreeWidget>("lvList");
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
      lines << list->topLevelItem(i)->text(0);
    }
    return lines;
  }
  void Choose(int row) {
    auto* list = Get<QTreeWidget>("lvList");
    list->clearSelection();
    list->setCurrentItem(list->topLevelItem(row));
  }

  test::ScriptedPrompt prompt;
  test::Person person;
  std::unique_ptr<ChannelPairDialog> dialog;
};

TEST_F(ChannelPairDialogTest, ShowOutputsListTheirChannelsByName) {
  Open(1);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Outputs"));
  EXPECT_EQ(Lines(),
            (QStringList{QStringLiteral("TX 1(0001),  Not Defined(16383),  Not Defined(16383)"),
                         QStringLiteral("TX 5(0005),  TX 6(0006),  TX 7(0007)")}));
  auto* left = Get<QComboBox>("cmbLeftChan");
  ASSERT_EQ(left->count(), 17);
  EXPECT_EQ(left->itemText(0), QStringLiteral("Undefined"));
  EXPECT_EQ(left->itemText(16), QStringLiteral("[0016] TX 16"));
  EXPECT_EQ(left->currentIndex(), 1) << "the first group is shown";
  EXPECT_FALSE(left->isEnabled());
  Choose(1);
  EXPECT_EQ(Get<QComboBox>("cmbCueChan")->currentIndex(), 7);

  Open(2);
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Configure Show Studio Sources"));
  EXPECT_EQ(
      Lines(),
      QStringList{QStringLiteral("Studio 12(0012),  Not Defined(16383),  Not Defined(16383)")});
  EXPECT_EQ(Get<QComboBox>("cmbRightChan")->itemText(3), QStringLiteral("[0003] Studio 3"));
}

TEST_F(ChannelPairDialogTest, EditSaveAndOkWriteTheGroups) {
  Open(2);
  Click("cmdAdd");
  EXPECT_EQ(dialog->Current(), 1);
  Click("cmdEdit");
  EXPECT_EQ(Get<QPushButton>("cmdEdit")->text(), QStringLiteral("Save"));
  EXPECT_FALSE(Get<QPushButton>("cmdAdd")->isEnabled());
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("3"));
  person.Enter(QStringLiteral("Right Channel"),
               QStringLiteral("17"));  // beyond the inputs: stays undefined
  person.Enter(QStringLiteral("Cue Channel"), QStringLiteral("16"));
  Click("cmdEdit");
  EXPECT_EQ(Get<QPushButton>("cmdEdit")->toolTip(), QStringLiteral("Edit the current selection"));
  EXPECT_EQ(Lines().at(1), QStringLiteral("Studio 3(0003),  Not Defined(16383),  Studio 16(0016)"));
  Click("cmdOk");
  const ShowRecord& show = s.EditShows[0];
  ASSERT_EQ(show.StudioCount, 2);
  EXPECT_EQ(show.StudioLeft[1].Channel, 2);
  EXPECT_EQ(show.StudioRight[1].Channel, kNone);
  EXPECT_EQ(show.StudioCue[1].Channel, 15);
  EXPECT_EQ(show.OutputCount, 2) << "the outputs are not touched";
}

TEST_F(ChannelPairDialogTest, OkWhileEditingAnsweredNoKeepsTheGroup) {
  Open(1);
  Click("cmdEdit");
  person.Enter(QStringLiteral("Left Channel"), QStringLiteral("9"));
  prompt.answers = {Prompt::Answer::No};
  Click("cmdOk");
  EXPECT_EQ(prompt.asked, QStringList{QStringLiteral(
                              "You are currently editing a selection.\nDo you wish to save "
                              "these changes?")});
  EXPECT_EQ(prompt.titles, QStringList{QStringLiteral("Save Changes?")});
  EXPECT_EQ(s.EditShows[0].OutputLeft[0], 0);

  // Every group deleted: the show has no outputs.
  Open(1);
  auto* list = Get<QTreeWidget>("lvList");
  list->topLevelItem(0)->setSelected(true);
  list->topLevelItem(1)->setSelected(true);
  Click("cmdDelete");
  EXPECT_EQ(dialog->Current(), kNone);
  EXPECT_EQ(Get<QComboBox>("cmbLeftChan")->currentIndex(), 0);
  Click("cmdEdit");
  EXPECT_FALSE(dialog->Editing()) << "nothing to edit";
  Click("cmdOk");
  EXPECT_EQ(s.EditShows[0].OutputCount, 0);
  EXPECT_TRUE(s.EditShows[0].OutputLeft.empty());
}

TEST_F(ChannelPairDialogTest, OtherModesCloseAtOnce) {
  s.ChannelSelectMode = 3;
  ChannelPairDialog wrongMode(s);
  EXPECT_EQ(wrongMode.exec(), QDialog::Rejected);
  s.ChannelSelectMode = 1;
  s.SelectedShow = 4;
  ChannelPairDialog noShow(s);
  EXPECT_EQ(noShow.exec(), QDialog::Rejected);
  EXPECT_FALSE(ErrorLines().isEmpty());
}
}  // namespace
}  // namespace zrn
