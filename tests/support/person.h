#pragma once

#include <gtest/gtest.h>
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>
#include <ostream>

// Readable failure messages for texts.
inline void PrintTo(const QString& text, std::ostream* os) {
  *os << '"' << text.toStdString() << '"';
}

namespace zrn::test {

// Drives a window as an operator does: controls are found by what is written on or beside them,
// clicks land on the control, and keys go to whatever has the focus.
class Person {
 public:
  // Shows the window and waits until it is the active one, so keys reach its focus widget.
  void Open(QWidget& window) {
    window_ = &window;
    window.show();
    QApplication::setActiveWindow(&window);
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window)) << qPrintable(window.windowTitle());
  }

  // The visible control named by caption: the field a label stands for, the first field in a
  // frame of that title, a button of that text or tool tip or, failing those, a list or text
  // box showing that text. Fails the test when none, or more than one of a kind, matches.
  QWidget* Find(const QString& caption) const {
    if (window_ == nullptr) {
      ADD_FAILURE() << "no window open";
      return nullptr;
    }
    QList<QWidget*> found[5];  // by the way they match, first way first
    for (QWidget* w : window_->findChildren<QWidget*>()) {
      if (!w->isVisible()) {
        continue;
      }
      if (auto* label = qobject_cast<QLabel*>(w)) {
        if (label->buddy() != nullptr && Plain(label->text()) == caption) {
          found[0] << label->buddy();
        }
      } else if (auto* frame = qobject_cast<QGroupBox*>(w)) {
        for (QWidget* child : frame->findChildren<QWidget*>()) {
          if (Plain(frame->title()) == caption && child->isVisible() &&
              child->focusPolicy() != Qt::NoFocus && child->focusProxy() == nullptr) {
            found[1] << child;
            break;
          }
        }
      } else if (auto* button = qobject_cast<QAbstractButton*>(w)) {
        if (Plain(button->text()) == caption || button->toolTip() == caption) {
          found[Plain(button->text()) == caption ? 2 : 3] << button;
        }
      } else if (auto* list = qobject_cast<QComboBox*>(w)) {
        if (list->currentText() == caption) {
          found[4] << list;
        }
      } else if (auto* box = qobject_cast<QLineEdit*>(w)) {
        if (box->text() == caption && box->focusProxy() == nullptr) {
          found[4] << box;
        }
      }
    }
    for (const QList<QWidget*>& kind : found) {
      if (kind.size() > 1) {
        ADD_FAILURE() << kind.size() << " controls read \"" << caption.toStdString() << '"';
      }
      if (!kind.isEmpty()) {
        return kind.front();
      }
    }
    ADD_FAILURE() << "nothing on screen reads \"" << caption.toStdString() << '"';
    return nullptr;
  }

  // Clicks near the left edge: inside a check box's box, on a list's text, not its arrow.
  void Click(QWidget* control) const {
    if (control == nullptr) {
      return;
    }
    EXPECT_TRUE(control->isEnabled()) << qPrintable(control->objectName()) << " is greyed";
    QTest::mouseClick(control, Qt::LeftButton, {},
                      QPoint(std::min(8, control->width() / 2), control->height() / 2));
  }
  void Click(const QString& caption) const { Click(Find(caption)); }

  // Keys typed at the keyboard: each goes to the widget that has the focus when it is typed.
  void Type(const QString& keys) const {
    for (const QChar c : keys) {
      QWidget* focus = QApplication::focusWidget();
      ASSERT_NE(focus, nullptr) << "no control has the focus";
      QTest::keyClicks(focus, QString(c));
    }
  }
  void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) const {
    QWidget* focus = QApplication::focusWidget();
    ASSERT_NE(focus, nullptr) << "no control has the focus";
    QTest::keyClick(focus, key, modifiers);
  }
  // Clicks into a field, types there and presses Enter.
  void Enter(const QString& caption, const QString& keys) const {
    Click(caption);
    Type(keys);
    Press(Qt::Key_Return);
  }
  // Clicks into a field, takes back what it holds with Backspace and types anew.
  void Retype(QWidget* field, const QString& keys) const {
    Click(field);
    Press(Qt::Key_End);
    const auto* edit = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    for (qsizetype i = edit != nullptr ? edit->text().size() : 0; i > 0; --i) {
      Press(Qt::Key_Backspace);
    }
    Type(keys);
  }
  void Retype(const QString& caption, const QString& keys) const { Retype(Find(caption), keys); }
  // Picks a fixed list's item from the keyboard: a click for the focus (popup closed again),
  // Home, then Down.
  void Pick(QWidget* list, int index) const {
    Click(list);
    if (QWidget* popup = QApplication::activePopupWidget()) {
      QTest::keyClick(popup, Qt::Key_Escape);
    }
    Press(Qt::Key_Home);
    for (int i = 0; i < index; ++i) {
      Press(Qt::Key_Down);
    }
  }
  void Pick(const QString& caption, int index) const { Pick(Find(caption), index); }
  // Clicks a row of a list or table, with Ctrl to add it to the selection.
  void ClickRow(QAbstractItemView* view, int row, Qt::KeyboardModifiers modifiers = {}) const {
    const QModelIndex index = view->model()->index(row, 0);
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers,
                      view->visualRect(index).center());
  }
  // The texts of a list's rows in one column, as on screen.
  static QStringList Rows(const QAbstractItemView* view, int column = 0) {
    QStringList rows;
    for (int r = 0; view != nullptr && r < view->model()->rowCount(); ++r) {
      rows << view->model()->index(r, column).data().toString();
    }
    return rows;
  }
  // The visible lists of the window, in the order they were made.
  QList<QAbstractItemView*> Lists() const {
    QList<QAbstractItemView*> lists;
    for (QAbstractItemView* view : window_->findChildren<QAbstractItemView*>()) {
      if (view->isVisible() && qobject_cast<QHeaderView*>(view) == nullptr) {
        lists << view;
      }
    }
    return lists;
  }

  static QString Plain(QString text) { return text.remove(QLatin1Char('&')); }

 private:
  QWidget* window_ = nullptr;
};

// Runs act on the dialog the next exec() shows, once it is up; whatever is still modal after
// that is closed without a question, so a test never hangs on a dialog left open.
inline void WhenModal(std::function<void(QDialog&)> act) {
  QTimer::singleShot(0, [act] {
    if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      act(*dialog);
    }
    if (auto* still = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      still->done(QDialog::Rejected);
    }
  });
}

}  // namespace zrn::test
