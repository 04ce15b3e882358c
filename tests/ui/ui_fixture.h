#pragma once

#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLineEdit>
#include <memory>
#include <utility>

#include "monitor/poll_tick.h"
#include "storage/shows_file.h"
#include "support/fake_link.h"
#include "support/on_air.h"
#include "support/person.h"
#include "support/scripted_prompt.h"
#include "support/temp_state.h"

namespace zrn::test {

template <class D, auto... args>
std::unique_ptr<QDialog> Make(State& s) {
  return std::make_unique<D>(s, args...);
}

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
  // Show 0 on air all day, fed by input 5 with a studio on input 7; the outputs it may borrow
  // are set up by the test.
  void PutShowOnAir() {
    test::PutOnAir(s.Shows.at(0), QStringLiteral("00:00:00"), QStringLiteral("23:59:59"), 4);
    s.Shows[0].StudioLeft[0].Channel = 6;
    s.ProgramMode = 1;
    RefreshClock(s);
  }
  // The source each borrowed output carries, in table order; once the show is off air, none.
  void ExpectHeldThenFreed(const QList<int>& held, void (*pass)(State&)) {
    const auto carried = [this](bool show) {
      QList<int> values;
      for (const SilenceOut& e : s.SilenceOuts) {
        values << (show ? e.Show : e.Source);
      }
      return values;
    };
    EXPECT_EQ(carried(false), held);
    s.Shows[0].Days = 0;
    pass(s);
    EXPECT_EQ(carried(false) + carried(true), QList<int>(2 * held.size(), kNone));
  }

  template <class D, class... Args>
  void Open(Args&&... args) {
    dialog = std::make_unique<D>(s, std::forward<Args>(args)...);
    person.Open(*dialog);
  }
  // What the control a caption names shows: a list's current item, a field's or label's text.
  QString Shown(const QString& caption) const {
    QWidget* control = person.Find(caption);
    if (auto* list = qobject_cast<QComboBox*>(control)) {
      return list->currentText();
    }
    return control != nullptr ? control->property("text").toString() : QString();
  }
  // Whether a button, frame or label showing that text is in sight, without failing when none is.
  bool Seen(const QString& text) const {
    for (const QWidget* w : dialog->findChildren<QWidget*>()) {
      const char* name = qobject_cast<const QGroupBox*>(w) != nullptr ? "title" : "text";
      if (w->isVisible() && Person::Plain(w->property(name).toString()) == text) {
        return true;
      }
    }
    return false;
  }
  bool Checked(const QString& caption) const {
    const auto* box = qobject_cast<QAbstractButton*>(person.Find(caption));
    return box != nullptr && box->isChecked();
  }
  bool Enabled(const QString& caption) const {
    const QWidget* control = person.Find(caption);
    return control != nullptr && control->isEnabled();
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
