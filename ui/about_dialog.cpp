#include "ui/about_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "monitor/menu_commands.h"

namespace zrn {

AboutDialog::AboutDialog(const State& s, QWidget* parent) : QDialog(parent) {
  setWindowTitle(QStringLiteral("About ZRN Pennaro"));
  auto* layout = new QVBoxLayout(this);
  const QStringList lines = AboutLines(s);
  for (int i = 0; i < lines.size(); ++i) {
    auto* label = new QLabel(lines[i]);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    if (i == 0) {
      QFont title = label->font();
      title.setPointSizeF(title.pointSizeF() * 1.6);
      title.setBold(true);
      label->setFont(title);
    }
    layout->addWidget(label);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  layout->addWidget(buttons);
}

}  // namespace zrn
