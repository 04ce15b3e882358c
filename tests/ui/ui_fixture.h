#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <memory>
#include <utility>

#include "storage/shows_file.h"
#include "support/fake_link.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"

namespace zrn::test {

// A connected switcher whose start-up exchange is complete: outputs "TX n" and inputs "Mic n",
// four relays; prompts are answered by script and a person sits at the keyboard.
class DialogTest : public TempStateTest {
 protected:
  void SetUp() override {
    TempStateTest::SetUp();
    s.prompt = &prompt;
    s.link = &link;
    s.Connected = true;
    s.linkState.ExchangeComplete = true;
    NameChannels(16);
    s.SwitcherRelayCount = 4;
    s.RelayNames = {QStringLiteral("Relay A"), QStringLiteral("Relay B"), QStringLiteral("Relay C"),
                    QStringLiteral("Relay D")};
  }
  void NameChannels(int count) {
    s.OutputNames.clear();
    s.InputNames.clear();
    for (int k = 1; k <= count; ++k) {
      s.OutputNames << QStringLiteral("TX %1").arg(k);
      s.InputNames << QStringLiteral("Mic %1").arg(k);
    }
    s.SwitcherOutputCount = static_cast<qint16>(count);
    s.SwitcherInputCount = static_cast<qint16>(count);
  }
  // One show with one output group, as the working copy of the show editor holds it.
  void OneShow(const QString& name = QStringLiteral("News")) {
    ShowRecord show = MakeNewShow();
    show.Name = name;
    show.OutputLeft = {0};
    show.OutputRight = {kNone};
    show.OutputCue = {kNone};
    show.OutputCount = 1;
    s.Shows = {show};
    s.ShowCount = 1;
    s.EditShows = s.Shows;
    s.SelectedShow = 0;
    s.ChannelSelectMode = 1;
  }

  template <class D, class... Args>
  D& Open(Args&&... args) {
    auto made = std::make_unique<D>(s, std::forward<Args>(args)...);
    D& shown = *made;
    dialog = std::move(made);
    person.Open(shown);
    return shown;
  }
  // What the control a caption names shows: a field's or a list's text, a label's words.
  QString Shown(const QString& caption) const {
    QWidget* control = person.Find(caption);
    if (auto* field = qobject_cast<QLineEdit*>(control)) {
      return field->text();
    }
    if (auto* list = qobject_cast<QComboBox*>(control)) {
      return list->currentText();
    }
    if (auto* label = qobject_cast<QLabel*>(control)) {
      return label->text();
    }
    return control != nullptr ? control->property("text").toString() : QString();
  }
  // Whether a button or frame of that caption is in sight, without failing when none is.
  bool Seen(const QString& caption) const {
    for (const QAbstractButton* button : dialog->findChildren<QAbstractButton*>()) {
      if (button->isVisible() && Person::Plain(button->text()) == caption) {
        return true;
      }
    }
    return Frames().contains(caption);
  }
  bool Enabled(const QString& caption) const {
    const QWidget* control = person.Find(caption);
    return control != nullptr && control->isEnabled();
  }
  // The words of every visible label that names no control.
  QStringList Words() const {
    QStringList words;
    for (const QLabel* label : dialog->findChildren<QLabel*>()) {
      if (label->isVisible() && label->buddy() == nullptr) {
        words << label->text();
      }
    }
    return words;
  }
  // The titles of the visible frames.
  QStringList Frames() const {
    QStringList titles;
    for (const QGroupBox* frame : dialog->findChildren<QGroupBox*>()) {
      if (frame->isVisible() && !frame->title().isEmpty()) {
        titles << frame->title();
      }
    }
    return titles;
  }
  QStringList Rows(int list = 0, int column = 0) const {
    return Person::Rows(person.Lists().value(list), column);
  }

  ScriptedPrompt prompt;
  FakeLink link;
  Person person;
  std::unique_ptr<QDialog> dialog;
};

}  // namespace zrn::test
