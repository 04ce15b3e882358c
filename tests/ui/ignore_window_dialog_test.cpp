#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

#include "storage/shows_file.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"
#include "ui/ignore_window_dialog.h"

namespace zrn {
namespace {

class IgnoreWindowDialogTest : public test::TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.EditShows = {MakeNewShow(), MakeNewShow()};
    s.EditShows[1].Name = QStringLiteral("Drive Time");
    s.SelectedShow = 1;
  }
  void Open() {
    dialog = std::make_unique<IgnoreWindowDialog>(s);
    dialog->show();
  }
  template <class T>
  T* Get(const char* name) {
    T* widget = dialog->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return widget;
  }
  // Clears the field and types into it, then presses Enter.
  void Enter(const char* field, const QString& keys) {
    auto* edit = Get<QLineEdit>(field);
    edit->clear();
    QTest::keyClicks(edit, keys);
    QTest::keyClick(edit, Qt::Key_Return);
  }
  void Click(const char* name) { QTest::mouseClick(Get<QPushButton>(name), Qt::LeftButton); }
  QStringList Rows() {
    QStringList rows;
    auto* list = Get<QTreeWidget>("lstSilenceSched");
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
      rows << list->topLevelItem(i)->text(0);
    }
    return rows;
  }

  test::ScriptedPrompt prompt;
  std::unique_ptr<IgnoreWindowDialog> dialog;
};

TEST_F(IgnoreWindowDialogTest, AddedWindowIsStoredByOk) {
  Open();
  EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Silence Ignore Windows"));
  EXPECT_EQ(Get<QLineEdit>("txtStartTime")->text(), QStringLiteral("00:00:00"));
  Enter("txtStartTime", QStringLiteral("080000"));
  Enter("txtEndTime", QStringLiteral("0930"));
  EXPECT_EQ(Get<QLineEdit>("txtEndTime")->text(), QStringLiteral("09:30:00"));
  Click("cmdAdd");
  EXPECT_EQ(Rows(), QStringList{QStringLiteral("08:00:00 - 09:30:00")});
  EXPECT_TRUE(prompt.informed.isEmpty());
  Click("cmdOk");

  const ShowRecord& show = s.EditShows[1];
  ASSERT_EQ(show.IgnoreCount, 1);
  EXPECT_EQ(show.IgnoreWindows[0].StartTime, QStringLiteral("08:00:00"));
  EXPECT_EQ(show.IgnoreWindows[0].EndTime, QStringLiteral("09:30:00"));
  EXPECT_EQ(s.EditShows[0].IgnoreCount, 0) << "only the selected show";
}

TEST_F(IgnoreWindowDialogTest, BadEntriesAreRefusedWithTheirMessage) {
  Open();
  Enter("txtStartTime", QStringLiteral("250000"));
  EXPECT_EQ(Get<QLineEdit>("txtStartTime")->text(), QStringLiteral("24:00:00"));
  Click("cmdAdd");
  Enter("txtStartTime", QStringLiteral("120000"));
  QTest::keyClick(Get<QLineEdit>("txtEndTime"), Qt::Key_Escape);
  EXPECT_EQ(Get<QLineEdit>("txtEndTime")->text(), QStringLiteral("24:00:00"));
  EXPECT_TRUE(dialog->isVisible()) << "Escape in a field does not close the dialog";
  Click("cmdAdd");
  // Typed without Enter: the minutes are read by position.
  Get<QLineEdit>("txtEndTime")->setText(QStringLiteral("12:61:00"));
  Click("cmdAdd");
  EXPECT_EQ(prompt.informed,
            (QStringList{QStringLiteral("Invalid start time.  Hours must be less than 24"),
                         QStringLiteral("Invalid end time.  Hours must be less than 24"),
                         QStringLiteral("Invalid end time.  Minutes must be less than 60")}));
  EXPECT_EQ(prompt.titles.front(), QStringLiteral("Entry Error"));
  EXPECT_TRUE(Rows().isEmpty());
}

TEST_F(IgnoreWindowDialogTest, DeleteAndCancel) {
  s.EditShows[1].IgnoreWindows = {{QStringLiteral("12:00:00"), QStringLiteral("12:30:00")},
                                  {QStringLiteral("18:00:00"), QStringLiteral("18:05:00")}};
  s.EditShows[1].IgnoreCount = 2;
  Open();
  ASSERT_EQ(Rows().size(), 2);
  Click("cmdDelete");
  EXPECT_EQ(Rows().size(), 2) << "no row selected";
  Get<QTreeWidget>("lstSilenceSched")->topLevelItem(0)->setSelected(true);
  Click("cmdDelete");
  EXPECT_EQ(Rows(), QStringList{QStringLiteral("18:00:00 - 18:05:00")});
  Click("cmdCancel");
  EXPECT_EQ(s.EditShows[1].IgnoreCount, 2) << "Cancel changes nothing";

  Open();
  Get<QTreeWidget>("lstSilenceSched")->topLevelItem(1)->setSelected(true);
  Click("cmdDelete");
  Get<QTreeWidget>("lstSilenceSched")->topLevelItem(0)->setSelected(true);
  Click("cmdDelete");
  Click("cmdOk");
  EXPECT_EQ(s.EditShows[1].IgnoreCount, 0);
}

TEST_F(IgnoreWindowDialogTest, OpensOnlyForAShowOfTheWorkingCopy) {
  s.SelectedShow = 5;
  IgnoreWindowDialog lost(s);
  EXPECT_EQ(lost.exec(), QDialog::Rejected);
  EXPECT_FALSE(ErrorLines().isEmpty());
}
}  // namespace
}  // namespace zrn
