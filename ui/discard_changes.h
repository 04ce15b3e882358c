#pragma once

#include <QDialog>
#include <QString>

#include "core/ports.h"
#include "ui/message_box_prompt.h"

namespace zrn {

struct State;

// Escape and the close box ask before an edited copy is thrown away; true when it may go.
// (The Cancel button says what it does and goes without asking.)
inline bool MayDiscardChanges(Prompt& prompt, const QString& title) {
  return prompt.Ask(title, QStringLiteral("Discard changes?"), false) == Prompt::Answer::Yes;
}

// A dialog that edits a working copy and asks as above before a changed one is dropped.
class CopyEditorDialog : public QDialog {
  Q_OBJECT

 public:
  CopyEditorDialog(State& s, QWidget* parent);

  // Escape and the close box.
  void reject() override;

 protected:
  // The copy differs from what it was made from (the show editor takes in its fields first).
  virtual bool Changed() = 0;
  Prompt& Ask();

  State& s_;

 private:
  DialogPrompt ask_;
};

}  // namespace zrn
