#include "ui/typed_channel_list.h"

#include <QComboBox>
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

TypedChannelList::TypedChannelList(QComboBox* list, TypedChannelOptions options)
    : QObject(list), list_(list), options_(std::move(options)) {
  list_->setEditable(true);
  list_->setInsertPolicy(QComboBox::NoInsert);
  list_->setCompleter(nullptr);
  list_->installEventFilter(this);
}

void TypedChannelList::Restore() {
  list_->setEditText(list_->itemText(list_->currentIndex()));
}

void TypedChannelList::Choose(int item) {
  list_->setCurrentIndex(item);
  Restore();
  emit list_->activated(item);
}

int TypedChannelList::ItemOf(int n) const {
  if (options_.itemOf) {
    return options_.itemOf(n);
  }
  return n >= 1 && n < list_->count() ? n : -1;
}

void TypedChannelList::Take() {
  const QString typed = list_->lineEdit()->text().trimmed();
  const int item = AllDigits(typed) && typed.size() <= kMostDigits ? ItemOf(typed.toInt()) : -1;
  if (item > 0 && item < list_->count()) {
    Choose(item);
  } else {
    Restore();
  }
}

bool TypedChannelList::eventFilter(QObject* watched, QEvent* event) {
  if (watched != list_ || list_->lineEdit() == nullptr) {
    return QObject::eventFilter(watched, event);
  }
  if (event->type() == QEvent::FocusOut) {
    // Opening the list's own popup is not leaving it.
    if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
      Take();
    }
    return false;
  }
  if (event->type() == QEvent::KeyPress) {
    return Key(*static_cast<QKeyEvent*>(event));
  }
  return false;
}

bool TypedChannelList::Key(const QKeyEvent& key) {
  QLineEdit* edit = list_->lineEdit();
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

void MakeTypedChannelList(QComboBox* list, bool undefinedKey, std::function<int(int n)> itemOf) {
  TypedChannelOptions options;
  options.undefinedKey = undefinedKey;
  options.itemOf = std::move(itemOf);
  new TypedChannelList(list, std::move(options));
}

}  // namespace zrn
