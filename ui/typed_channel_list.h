#pragma once

#include <QObject>

class QComboBox;

namespace zrn {

// Lets the operator pick a channel of an editable list ("Undefined", then item n for channel n)
// by typing its number: digits collect in the list's text, Enter or leaving the list selects
// channel n when 1 <= n <= the list's channel count, and anything else goes back to the item
// chosen before, as Escape does. With undefinedKey, U picks "Undefined" at once.
class TypedChannelList final : public QObject {
 public:
  TypedChannelList(QComboBox* list, bool undefinedKey);

  // Shows the chosen item's text again, dropping what was typed.
  void Restore();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Take();
  void Choose(int item);

  QComboBox* list_;
  bool undefinedKey_;
};

// Makes list an editable channel list driven by typing.
void MakeTypedChannelList(QComboBox* list, bool undefinedKey);

}  // namespace zrn
