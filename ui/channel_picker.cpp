#include "ui/channel_picker.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

namespace zrn {

namespace {

// Typed numbers from here on are no channel at all; nor are longer texts of leading zeros.
constexpr int kChannelLimit = 16384;
constexpr int kMostDigits = 5;

bool AllDigits(const QString& text) {
  return !text.isEmpty() &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
}

}  // namespace

ChannelPicker::ChannelPicker(const QString& name, ChannelPickerOptions options, QWidget* parent)
    : QComboBox(parent), options_(std::move(options)) {
  setObjectName(name);
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setCompleter(nullptr);
}

void ChannelPicker::Restore() {
  setEditText(itemText(currentIndex()));
}

void ChannelPicker::Select(int item) {
  setCurrentIndex(item);
  Restore();
}

void ChannelPicker::Choose(int item) {
  Select(item);
  emit activated(item);
}

int ChannelPicker::ItemOf(int n) const {
  if (options_.itemOf) {
    return options_.itemOf(n);
  }
  return n >= 1 && n < count() ? n : -1;
}

void ChannelPicker::Take() {
  const QString typed = lineEdit()->text().trimmed();
  const int item = AllDigits(typed) && typed.size() <= kMostDigits ? ItemOf(typed.toInt()) : -1;
  if (item > 0 && item < count()) {
    Choose(item);
  } else {
    Restore();
  }
}

bool ChannelPicker::event(QEvent* event) {
  if (lineEdit() != nullptr) {
    // Opening the list's own popup is not leaving it.
    if (event->type() == QEvent::FocusOut &&
        static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
      Take();
    }
    if (event->type() == QEvent::KeyPress && Key(*static_cast<QKeyEvent*>(event))) {
      return true;
    }
  }
  return QComboBox::event(event);
}

bool ChannelPicker::Key(const QKeyEvent& key) {
  QLineEdit* edit = lineEdit();
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      Take();
      return true;
    case Qt::Key_Escape:
      Restore();
      return true;
    case Qt::Key_Backspace: {
      const QString typed = edit->text();
      edit->setText(AllDigits(typed) ? typed.chopped(1) : QString());
      return true;
    }
    default:
      break;
  }
  if ((key.modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0) {
    return false;
  }
  const QString text = key.text();
  if (text.size() == 1 && text[0].isDigit()) {
    const QString typed = edit->text();
    const QString next = (AllDigits(typed) && !edit->hasSelectedText() ? typed : QString()) + text;
    if (next.size() > kMostDigits || next.toInt() >= kChannelLimit) {
      Restore();
    } else {
      edit->setText(next);
    }
    return true;
  }
  if (options_.undefinedKey && key.key() == Qt::Key_U) {
    Choose(0);
    return true;
  }
  // Other characters are no channel number; the caret and list keys keep working.
  return text.size() == 1 && text[0].isPrint();
}

}  // namespace zrn
