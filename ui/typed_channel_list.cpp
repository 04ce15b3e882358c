#include "ui/typed_channel_list.h"

#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <algorithm>

namespace zrn {

namespace {

// More digits than any channel count needs are not collected.
constexpr int kMostDigits = 5;

bool AllDigits(const QString& text) {
  return !text.isEmpty() &&
         std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
}

}  // namespace

TypedChannelList::TypedChannelList(QComboBox* list, bool undefinedKey)
    : QObject(list), list_(list), undefinedKey_(undefinedKey) {
  list_->setEditable(true);
  list_->setInsertPolicy(QComboBox::NoInsert);
  list_->setCompleter(nullptr);
  list_->lineEdit()->installEventFilter(this);
}

void TypedChannelList::Restore() {
  list_->setEditText(list_->itemText(list_->currentIndex()));
}

void TypedChannelList::Choose(int item) {
  list_->setCurrentIndex(item);
  Restore();
}

void TypedChannelList::Take() {
  const QString typed = list_->lineEdit()->text().trimmed();
  const int channels = list_->count() - 1;
  const int n = AllDigits(typed) && typed.size() <= kMostDigits ? typed.toInt() : 0;
  if (n >= 1 && n <= channels) {
    Choose(n);
  } else {
    Restore();
  }
}

bool TypedChannelList::eventFilter(QObject* watched, QEvent* event) {
  if (watched != list_->lineEdit()) {
    return QObject::eventFilter(watched, event);
  }
  if (event->type() == QEvent::FocusOut) {
    // Opening the list's own popup is not leaving it.
    if (static_cast<QFocusEvent*>(event)->reason() != Qt::PopupFocusReason) {
      Take();
    }
    return false;
  }
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  auto* key = static_cast<QKeyEvent*>(event);
  QLineEdit* edit = list_->lineEdit();
  switch (key->key()) {
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
  if ((key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0) {
    return false;
  }
  const QString text = key->text();
  if (text.size() == 1 && text[0].isDigit()) {
    const QString typed = edit->text();
    const QString base = AllDigits(typed) && !edit->hasSelectedText() ? typed : QString();
    if (base.size() < kMostDigits) {
      edit->setText(base + text);
    }
    return true;
  }
  if (undefinedKey_ && (key->key() == Qt::Key_U)) {
    Choose(0);
    return true;
  }
  // Other characters are no channel number; the caret and list keys keep working.
  return text.size() == 1 && text[0].isPrint();
}

void MakeTypedChannelList(QComboBox* list, bool undefinedKey) {
  new TypedChannelList(list, undefinedKey);
}

}  // namespace zrn
