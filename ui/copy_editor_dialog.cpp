#include "ui/copy_editor_dialog.h"

#include "core/discard_changes.h"
#include "core/state.h"

namespace zrn {

CopyEditorDialog::CopyEditorDialog(State& s, QWidget* parent)
    : QDialog(parent), s_(s), ask_(s.prompt, this) {}

void CopyEditorDialog::reject() {
  if (Changed() && !MayDiscardChanges(Ask(), windowTitle())) {
    return;
  }
  QDialog::reject();
}

Prompt& CopyEditorDialog::Ask() {
  return ask_();
}

}  // namespace zrn
