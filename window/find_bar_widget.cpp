#include "window/find_bar_widget.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>

namespace zrn {

FindBarWidget::FindBarWidget(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("findBar"));
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(6, 3, 6, 3);
  auto* caption = new QLabel(QStringLiteral("&Find output:"));
  text_ = new QLineEdit;
  text_->setPlaceholderText(QStringLiteral("number, name, label or source"));
  text_->setClearButtonEnabled(true);
  text_->setMaximumWidth(320);
  caption->setBuddy(text_);
  onlyAlarms_ = new QCheckBox(QStringLiteral("Only alarms"));
  layout->addWidget(caption);
  layout->addWidget(text_);
  layout->addWidget(onlyAlarms_);
  layout->addStretch(1);
  text_->installEventFilter(this);
  onlyAlarms_->installEventFilter(this);
  connect(text_, &QLineEdit::textChanged, this, &FindBarWidget::Changed);
  connect(onlyAlarms_, &QCheckBox::toggled, this, &FindBarWidget::Changed);
}

void FindBarWidget::Open() {
  show();
  text_->setFocus(Qt::ShortcutFocusReason);
  text_->selectAll();
}

void FindBarWidget::Changed() {
  emit filterChanged(text_->text(), onlyAlarms_->isChecked());
}

bool FindBarWidget::eventFilter(QObject* watched, QEvent* event) {
  if ((watched == text_ || watched == onlyAlarms_) && event->type() == QEvent::KeyPress &&
      static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
    // Every panel goes back to its place before the box goes away.
    text_->clear();
    onlyAlarms_->setChecked(false);
    hide();
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace zrn
