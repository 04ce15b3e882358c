#pragma once

#include <QPointer>
#include <QWidget>

#include "core/ports.h"

namespace zrn {

// Message boxes and questions shown with QMessageBox. Every box of the dialogs carries the
// critical icon, as operators know them.
class MessageBoxPrompt final : public Prompt {
 public:
  explicit MessageBoxPrompt(QWidget* parent = nullptr) : parent_(parent) {}

  void Inform(const QString& title, const QString& text) override;
  Answer Ask(const QString& title, const QString& text, bool withCancel) override;

 private:
  QPointer<QWidget> parent_;
};

// The prompt a dialog asks through: the program's own (State::prompt) when there is one, else
// message boxes over the dialog. It follows State::prompt, which may be set after the dialog.
//
//   DialogPrompt ask_{s.prompt, this};
//   ask_().Inform(title, text);
class DialogPrompt {
 public:
  DialogPrompt(Prompt* const& chosen, QWidget* parent) : chosen_(chosen), boxes_(parent) {}

  Prompt& operator()() { return chosen_ != nullptr ? *chosen_ : boxes_; }

 private:
  Prompt* const& chosen_;
  MessageBoxPrompt boxes_;
};

}  // namespace zrn
