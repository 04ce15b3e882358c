#pragma once

#include <QComboBox>
#include <functional>

class QKeyEvent;

namespace zrn {

struct ChannelPickerOptions {
  // U picks "Undefined" (item 0) at once.
  bool undefinedKey = false;
  // The item of typed channel n, or -1 when n names none. Left empty: item n, for
  // 1 <= n <= the list's channel count.
  std::function<int(int n)> itemOf;
};

// The channel picker of every dialog: an editable list ("Undefined", then the channels) the
// operator picks from with the mouse or by typing the channel's number. Digits collect in the
// list's text, Enter or leaving the list selects the channel's item, and anything else goes
// back to the item chosen before, as Escape does. A typed choice is told like a choice made
// with the mouse (activated).
//
// The keys are taken here, before QComboBox: it keeps the focus and hands keys and focus changes
// to its line edit by calling it directly, past any filter there.
class ChannelPicker final : public QComboBox {
 public:
  explicit ChannelPicker(const QString& name, ChannelPickerOptions options = {},
                         QWidget* parent = nullptr);

  // Makes item the chosen one and shows its text, as filling a form does: currentIndexChanged
  // but no activated.
  void Select(int item);
  // Shows the chosen item's text again, dropping what was typed.
  void Restore();

 protected:
  bool event(QEvent* event) override;

 private:
  bool Key(const QKeyEvent& key);
  void Take();
  void Choose(int item);
  int ItemOf(int n) const;

  ChannelPickerOptions options_;
};

}  // namespace zrn
