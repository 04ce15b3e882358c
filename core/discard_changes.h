#pragma once

#include <QString>

#include "core/ports.h"

namespace zrn {

// Escape and the close box ask before an edited copy is thrown away; true when it may go.
// (The Cancel button says what it does and goes without asking.)
inline bool MayDiscardChanges(Prompt& prompt, const QString& title) {
  return prompt.Ask(title, QStringLiteral("Discard changes?"), false) == Prompt::Answer::Yes;
}

}  // namespace zrn
