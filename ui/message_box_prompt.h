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

}  // namespace zrn
