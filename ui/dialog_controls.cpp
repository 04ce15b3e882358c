#include "ui/dialog_controls.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRegularExpressionValidator>

namespace zrn {

QPushButton* Button(const QString& name, const QString& caption, const QString& tip) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setAutoDefault(false);
  return button;
}

QLineEdit* NumberField(const QString& name, const QString& pattern, int maxLength) {
  auto* field = new QLineEdit;
  field->setObjectName(name);
  field->setValidator(new QRegularExpressionValidator(QRegularExpression(pattern), field));
  field->setMaxLength(maxLength);
  return field;
}

QLabel* Caption(const QString& text, QWidget* buddy) {
  auto* label = new QLabel(text);
  label->setBuddy(buddy);
  return label;
}

QHBoxLayout* CloseRow(QDialog* dialog, const CloseRowOptions& options) {
  QPushButton* ok = nullptr;
  if (options.okIsDefault) {
    ok = new QPushButton(QStringLiteral("OK"));
    ok->setObjectName(QStringLiteral("cmdOk"));
    ok->setToolTip(options.okTip);
    ok->setDefault(true);
  } else {
    ok = Button(QStringLiteral("cmdOk"), QStringLiteral("OK"), options.okTip);
  }
  auto* cancel = Button(QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), options.cancelTip);
  QObject::connect(ok, &QPushButton::clicked, dialog, &QDialog::accept);
  if (options.cancelRunsReject) {
    QObject::connect(cancel, &QPushButton::clicked, dialog, &QDialog::reject);
  } else {
    QObject::connect(cancel, &QPushButton::clicked, dialog,
                     [dialog] { dialog->QDialog::reject(); });
  }
  auto* row = new QHBoxLayout;
  row->addStretch(1);
  row->addWidget(ok);
  row->addWidget(cancel);
  return row;
}

}  // namespace zrn
