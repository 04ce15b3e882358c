// Behaviour every dialog shares: channels typed into their lists, and copies not dropped
// without a question.
#include "ui/channel_pair_dialog.h"
#include "ui/ignore_window_dialog.h"
#include "ui/setup_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/silence_detect_dialog.h"
#include "ui/ui_fixture.h"

namespace zrn {
namespace {

using MakeDialog = std::unique_ptr<QDialog> (*)(State&);
using test::Make;

// One dialog with a channel list, found by its caption or what it shows on opening and
// unlocked by a click: a channel typed and the item then shown; another, taken by leaving the
// list, and its item; a number with no item; what is clicked to keep the edit.
struct ListCase {
  const char* name;
  MakeDialog make;
  const char *list, *unlock, *typed, *chosen, *left, *leftShown, *beyond;
  bool undefinedKey;
  const char* confirm;
  int (*stored)(const State&);
  int leftStored;
};

std::unique_ptr<QDialog> MakeSetup(State& s) {
  return std::make_unique<SetupDialog>(s, SetupEditors{});
}

const ListCase kCases[] = {
    {"Setup", MakeSetup, "Monitor Destination", "Edit", "150", "[0150] TX 150", "7", "[0007] TX 7",
     "257", true, "OK", [](const State& s) { return int{s.Outputs.at(0).Output}; }, 7},
    {"SilenceDetect", Make<SilenceDetectDialog, 5>, "Device", "Edit", "4", "Relay D [0004]", "1",
     "Relay A [0001]", "5", true, "Send",
     [](const State& s) { return int{s.SilenceStatus.at(5).Device}; }, 0},
    {"ShowEditor", Make<ShowsDialog>, "Downlink Source", "Edit the current show", "6",
     "[0006] Mic 6", "16", "[0016] Mic 16", "257", false, "OK",
     [](const State& s) { return int{s.Shows.at(0).DownlinkSource}; }, 15},
};

// 256 inputs and outputs; output 3 is watched, output 6 has a relay as silence alarm device,
// and one show takes input 3 as its downlink.
class EveryDialog : public test::DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    NameChannels(256);
    s.Outputs.resize(1);
    s.Outputs[0].Output = 3;
    s.SilenceStatus[5].Mode = 0x10A;
    s.SilenceStatus[5].Device = 1;
    s.Shows = {MakeNewShow()};
    s.Shows[0].DownlinkSource = 2;
    s.ShowCount = 1;
    s.EditShows = s.Shows;
    s.ChannelSelectMode = 1;
  }
};

class TypedChannelListTest : public EveryDialog, public ::testing::WithParamInterface<ListCase> {};

TEST_P(TypedChannelListTest, TypedNumberIsTakenByEnterOrLeavingTheListAndEscapeTakesItBack) {
  const ListCase& c = GetParam();
  dialog = c.make(s);
  person.Open(*dialog);
  person.Click(QLatin1String(c.unlock));
  auto* list = qobject_cast<QComboBox*>(person.Find(QLatin1String(c.list)));
  ASSERT_NE(list, nullptr);
  person.Click(list);
  ASSERT_EQ(QApplication::focusWidget(), list);

  // Keys typed, then pressed, and what the list shows after; it keeps Enter and Escape, letters
  // and numbers beyond its channels are refused, and leaving it takes what was typed.
  const QString chosen = QLatin1String(c.chosen);
  const struct {
    QString keys;
    Qt::Key press;
    QString shown;
  } steps[] = {
      {QLatin1String(c.typed), Qt::Key_Return, chosen},
      {QStringLiteral("9x"), Qt::Key_unknown, QStringLiteral("9")},
      {QString(), Qt::Key_Escape, chosen},
      {QLatin1String(c.beyond), Qt::Key_Return, chosen},
      {QStringLiteral("16384"), Qt::Key_unknown, chosen},
      {QStringLiteral("u"), Qt::Key_unknown, c.undefinedKey ? QStringLiteral("Undefined") : chosen},
      {QLatin1String(c.typed), Qt::Key_Enter, chosen},
      {QLatin1String(c.left), Qt::Key_Tab, QLatin1String(c.leftShown)},
  };
  for (const auto& step : steps) {
    person.Type(step.keys);
    if (step.press != Qt::Key_unknown) {
      person.Press(step.press);
    }
    EXPECT_EQ(list->currentText(), step.shown) << "after " << step.keys.toStdString();
    EXPECT_TRUE(dialog->isVisible()) << "after " << step.keys.toStdString();
  }
  person.Click(QLatin1String(c.confirm));
  EXPECT_EQ(c.stored(s), c.leftStored);
}

INSTANTIATE_TEST_SUITE_P(EveryDialog, TypedChannelListTest, ::testing::ValuesIn(kCases),
                         [](const auto& info) { return std::string(info.param.name); });

// An editor that works on a copy: what an operator changes in it ('|' between clicks), and
// what is clicked before Escape when nothing was edited, as time fields keep Escape.
struct EditorCase {
  const char* name;
  MakeDialog make;
  const char *edits, *rest;
};

const EditorCase kEditors[] = {
    {"ShowEditor", Make<ShowsDialog>, "Edit the current show|Monday|Every Day", nullptr},
    {"ChannelPairEditor", Make<ChannelPairDialog>, "Add", nullptr},
    {"IgnoreWindowEditor", Make<IgnoreWindowDialog>, "Add Listed Window", "Delete"},
};

class DiscardChangesTest : public EveryDialog, public ::testing::WithParamInterface<EditorCase> {
 protected:
  void Open(bool edit) {
    dialog = GetParam().make(s);
    person.Open(*dialog);
    const char* clicks = edit ? GetParam().edits : GetParam().rest;
    for (const QString& caption : QString::fromLatin1(clicks).split(u'|', Qt::SkipEmptyParts)) {
      person.Click(caption);
    }
  }
  // The show as the editor's caller sees it.
  const ShowRecord& Show() const {
    return GetParam().make == Make<ShowsDialog> ? s.Shows.at(0) : s.EditShows.at(0);
  }
};

TEST_P(DiscardChangesTest, EscapeAndTheCloseBoxAskBeforeChangesAreDropped) {
  const ShowRecord before = Show();
  Open(false);
  person.Press(Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible()) << "nothing changed, nothing to ask";

  Open(true);
  person.Press(Qt::Key_Escape);
  EXPECT_EQ(prompt.asked, QStringList{QStringLiteral("Discard changes?")});
  EXPECT_TRUE(dialog->isVisible()) << "No keeps the editor open";
  dialog->close();
  EXPECT_EQ(prompt.asked.size(), 2);
  EXPECT_TRUE(dialog->isVisible()) << "the close box asks too";

  prompt.answers = {Prompt::Answer::Yes};
  person.Press(Qt::Key_Escape);
  EXPECT_FALSE(dialog->isVisible());
  EXPECT_EQ(Show(), before) << "the changes were dropped";
  EXPECT_FALSE(QFile::exists(PathOf(QStringLiteral("ZRNShows.dat"))));

  Open(true);
  person.Click(QStringLiteral("Cancel"));
  EXPECT_FALSE(dialog->isVisible()) << "Cancel says what it does";
  EXPECT_EQ(prompt.asked.size(), 3);
}

INSTANTIATE_TEST_SUITE_P(EveryCopyEditor, DiscardChangesTest, ::testing::ValuesIn(kEditors),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace zrn
