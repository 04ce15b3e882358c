#pragma once

#include <QDialog>

#include "core/ports.h"
#include "ui/message_box_prompt.h"

namespace zrn {

struct State;

// A dialog that edits a working copy. Escape and the close box ask before a changed copy is
// thrown away (see MayDiscardChanges); the Cancel button says what it does and goes without
// asking.
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
