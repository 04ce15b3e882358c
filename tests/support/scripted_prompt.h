#pragma once

#include <QStringList>
#include <deque>

#include "core/ports.h"

namespace zrn::test {

// Answers questions from a script and remembers everything it was shown or asked.
class ScriptedPrompt final : public Prompt {
 public:
  void Inform(const QString& title, const QString& text) override {
    informed << text;
    titles << title;
  }
  Answer Ask(const QString& title, const QString& text, bool /*withCancel*/) override {
    asked << text;
    titles << title;
    if (answers.empty()) {
      return Answer::No;
    }
    const Answer next = answers.front();
    answers.pop_front();
    return next;
  }

  std::deque<Answer> answers;
  QStringList informed;
  QStringList asked;
  QStringList titles;
};

}  // namespace zrn::test
