#include <QDialog>
#include <QFile>
#include <functional>
#include <memory>

#include "ui/channel_pair_dialog.h"
#include "ui/ignore_window_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

// An editor that works on a copy, and what an operator changes in it.
struct EditorCase {
  const char* name;
  std::function<std::unique_ptr<QDialog>(State&)> make;
  // Clicked in order, each an edit or the button that allows one.
  QStringList edits;
  // Clicked before Escape when nothing was edited: the time fields keep Escape for themselves.
  QString rest;
  // The show as the editor's caller sees it, to prove nothing was taken over.
  std::function<const ShowRecord&(const State&)> show;
};

void PrintTo(const EditorCase& c, std::ostream* os) {
  *os << c.name;
}

const EditorCase kEditors[] = {
    {"ShowEditor",
     [](State& s) { return std::make_unique<ShowsDialog>(s); },
     {"Edit the current show", "Monday", "Every Day"},
     {},
     [](const State& s) -> const ShowRecord& { return s.Shows.at(0); }},
    {"ChannelPairEditor",
     [](State& s) { return std::make_unique<ChannelPairDialog>(s); },
     {"Add"},
     {},
     [](const State& s) -> const ShowRecord& { return s.EditShows.at(0); }},
    {"IgnoreWindowEditor",
     [](State& s) { return std::make_unique<IgnoreWindowDialog>(s); },
     {"Add Listed Window"},
     "Delete",
     [](const State& s) -> const ShowRecord& { return s.EditShows.at(0); }},
};

// One show with one output, edited from its start.
class DiscardChangesTest : public test::DialogTest,
                           public ::testing::WithParamInterface<EditorCase> {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    OneShow();
  }
  void Open() {
    dialog = GetParam().make(s);
    person.Open(*dialog);
  }
};

TEST_P(DiscardChangesTest, EscapeAndTheCloseBoxAskBeforeChangesAreDropped) {
  const ShowRecord before = GetParam().show(s);
  Open();
  if (!GetParam().rest.isEmpty()) {
    person.Click(GetParam().rest);
  }
  person.Press(Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible()) << "nothing changed, nothing to ask";
  EXPECT_TRUE(prompt.asked.isEmpty());

  Open();
  for (const QString& edit : GetParam().edits) {
    person.Click(edit);
  }
  person.Press(Qt::Key_Escape);
  EXPECT_EQ(prompt.asked, QStringList{QStringLiteral("Discard changes?")});
  EXPECT_TRUE(dialog->isVisible()) << "No keeps the editor open";
  dialog->close();
  EXPECT_EQ(prompt.asked.size(), 2);
  EXPECT_TRUE(dialog->isVisible()) << "the close box asks too";

  prompt.answers = {Prompt::Answer::Yes};
  person.Press(Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(GetParam().show(s), before) << "the changes were dropped";
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNShows.dat"))));

  Open();
  for (const QString& edit : GetParam().edits) {
    person.Click(edit);
  }
  person.Click(QStringLiteral("Cancel"));
  EXPECT_FALSE(dialog->isVisible()) << "Cancel says what it does";
  EXPECT_EQ(prompt.asked.size(), 3);
}

INSTANTIATE_TEST_SUITE_P(EveryCopyEditor, DiscardChangesTest, ::testing::ValuesIn(kEditors),
                         [](const ::testing::TestParamInfo<EditorCase>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace
}  // namespace zrn
