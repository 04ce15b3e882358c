#pragma once

#include <QObject>
#include <functional>

class QComboBox;
class QKeyEvent;

namespace zrn {

struct TypedChannelOptions {
  // U picks "Undefined" (item 0) at once.
  bool undefinedKey = false;
  // The item of typed channel n, or -1 when n names none. Left empty: item n, for
  // 1 <= n <= the list's channel count.
  std::function<int(int n)> itemOf;
};

// Lets the operator pick a channel of an editable list ("Undefined", then the channels) by
// typing its number: digits collect in the list's text, Enter or leaving the list selects the
// channel's item, and anything else goes back to the item chosen before, as Escape does. A
// typed choice is told like a choice made with the mouse (activated).
//
// The filter sits on the combo box itself: an editable combo box keeps the focus and hands keys
// and focus changes to its line edit by calling it directly, past any filter there.
class TypedChannelList final : public QObject {
 public:
  TypedChannelList(QComboBox* list, TypedChannelOptions options);

  // Shows the chosen item's text again, dropping what was typed.
  void Restore();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  bool Key(const QKeyEvent& key);
  void Take();
  void Choose(int item);
  int ItemOf(int n) const;

  QComboBox* list_;
  TypedChannelOptions options_;
};

// Makes list an editable channel list driven by typing (see TypedChannelOptions).
void MakeTypedChannelList(QComboBox* list, bool undefinedKey = false,
                          std::function<int(int n)> itemOf = {});

}  // namespace zrn
