#include "ui/ignore_window_dialog.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/discard_changes.h"
#include "schedule/time_entry.h"
#include "shows/ignore_window_rules.h"
#include "storage/logs.h"
#include "ui/time_field.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");

QPushButton* Button(const QString& name, const QString& caption, const QString& tip) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setToolTip(tip);
  // Enter belongs to the time fields.
  button->setAutoDefault(false);
  return button;
}

QLineEdit* TimeField(const QString& name) {
  auto* field = new QLineEdit(QStringLiteral("00:00:00"));
  field->setObjectName(name);
  PrepareTimeField(field);
  return field;
}

}  // namespace

IgnoreWindowDialog::IgnoreWindowDialog(State& s, QWidget* parent)
    : QDialog(parent), s_(s), fallbackPrompt_(this) {
  setObjectName(QStringLiteral("frmSilenceIgnoreWindow"));
  setWindowTitle(QStringLiteral("Silence Ignore Windows"));
  BuildControls();
  Trap(s_, QStringLiteral("Error Display Ignore Windows"), QStringLiteral("Display Error"), [&] {
    const ShowRecord& show = At(s_.EditShows, s_.SelectedShow);
    show_ = s_.SelectedShow;
    windows_ = ShowIgnoreWindows(show);
    opened_ = windows_;
    lblShow_->setText(show.Name);
  });
  FillList();
}

void IgnoreWindowDialog::BuildControls() {
  txtStartTime_ = TimeField(QStringLiteral("txtStartTime"));
  txtEndTime_ = TimeField(QStringLiteral("txtEndTime"));
  txtStartTime_->installEventFilter(this);
  txtEndTime_->installEventFilter(this);
  auto* startCaption = new QLabel(QStringLiteral("Start Time"));
  startCaption->setBuddy(txtStartTime_);
  auto* endCaption = new QLabel(QStringLiteral("End Time"));
  endCaption->setBuddy(txtEndTime_);

  auto* cmdAdd = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add Listed Window"),
                        QStringLiteral("Add Listed Window"));
  auto* cmdDelete = Button(QStringLiteral("cmdDelete"), QStringLiteral("Delete"),
                           QStringLiteral("Delete Selected Winfow"));
  connect(cmdAdd, &QPushButton::clicked, this, &IgnoreWindowDialog::AddWindow);
  connect(cmdDelete, &QPushButton::clicked, this, &IgnoreWindowDialog::DeleteWindow);

  lblShow_ = new QLabel;
  lblShow_->setObjectName(QStringLiteral("lblShow"));
  QFont bold = lblShow_->font();
  bold.setBold(true);
  lblShow_->setFont(bold);

  auto* entry = new QGridLayout;
  entry->addWidget(startCaption, 0, 0);
  entry->addWidget(txtStartTime_, 1, 0);
  entry->addWidget(endCaption, 0, 1);
  entry->addWidget(txtEndTime_, 1, 1);
  entry->addWidget(cmdAdd, 1, 2);
  entry->setColumnStretch(3, 1);

  lstSilenceSched_ = new QTreeWidget;
  lstSilenceSched_->setObjectName(QStringLiteral("lstSilenceSched"));
  lstSilenceSched_->setHeaderLabels({QStringLiteral("Schedule")});
  lstSilenceSched_->setRootIsDecorated(false);
  lstSilenceSched_->setUniformRowHeights(true);
  lstSilenceSched_->setAlternatingRowColors(true);
  lstSilenceSched_->setSelectionMode(QAbstractItemView::SingleSelection);
  lstSilenceSched_->setMinimumSize(300, 200);

  auto* listColumn = new QVBoxLayout;
  listColumn->addWidget(cmdDelete);
  listColumn->addStretch(1);
  auto* listRow = new QHBoxLayout;
  listRow->addWidget(lstSilenceSched_, 1);
  listRow->addLayout(listColumn);

  auto* cmdOk = Button(QStringLiteral("cmdOk"), QStringLiteral("OK"), QString());
  auto* cmdCancel = Button(QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), QString());
  connect(cmdOk, &QPushButton::clicked, this, &IgnoreWindowDialog::accept);
  connect(cmdCancel, &QPushButton::clicked, this, [this] { QDialog::reject(); });
  auto* closeRow = new QHBoxLayout;
  closeRow->addStretch(1);
  closeRow->addWidget(cmdOk);
  closeRow->addWidget(cmdCancel);

  auto* root = new QVBoxLayout(this);
  root->addWidget(lblShow_);
  root->addLayout(entry);
  root->addLayout(listRow, 1);
  root->addLayout(closeRow);
}

void IgnoreWindowDialog::FillList() {
  lstSilenceSched_->clear();
  for (int i = 0; i < static_cast<int>(windows_.size()); ++i) {
    auto* row = new QTreeWidgetItem(lstSilenceSched_, {IgnoreRowText(windows_[i])});
    row->setData(0, Qt::UserRole, IgnoreRowKey(i));
  }
}

Prompt& IgnoreWindowDialog::Ask() {
  return s_.prompt != nullptr ? *s_.prompt : fallbackPrompt_;
}

void IgnoreWindowDialog::AddWindow() {
  Trap(s_, QStringLiteral("Error Recording Ignore time"), kListError, [&] {
    for (QLineEdit* field : {txtStartTime_, txtEndTime_}) {
      const QString error = IgnoreTimeError(field->text(), field == txtStartTime_);
      if (!error.isEmpty()) {
        Ask().Inform(QStringLiteral("Entry Error"), error);
        field->setFocus();
        field->selectAll();
        return;
      }
    }
    IgnoreWindow window;
    window.StartTime = *EnteredTime(txtStartTime_->text());
    window.EndTime = *EnteredTime(txtEndTime_->text());
    windows_.push_back(window);
    FillList();
  });
}

void IgnoreWindowDialog::DeleteWindow() {
  const QList<QTreeWidgetItem*> selected = lstSilenceSched_->selectedItems();
  if (selected.isEmpty()) {
    return;
  }
  const int row = lstSilenceSched_->indexOfTopLevelItem(selected.front());
  if (row >= 0 && row < static_cast<int>(windows_.size())) {
    windows_.erase(windows_.begin() + row);
    FillList();
  }
}

int IgnoreWindowDialog::exec() {
  if (show_ < 0) {
    return QDialog::Rejected;
  }
  return QDialog::exec();
}

void IgnoreWindowDialog::accept() {
  const bool stored = Trap(s_, QStringLiteral("Error Recording Ignore Windows"), kListError,
                           [&] { StoreIgnoreWindows(At(s_.EditShows, show_), windows_); });
  if (stored) {
    QDialog::accept();
  } else {
    QDialog::reject();
  }
}

void IgnoreWindowDialog::reject() {
  if (windows_ != opened_ && !MayDiscardChanges(Ask(), windowTitle())) {
    return;
  }
  QDialog::reject();
}

bool IgnoreWindowDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && (watched == txtStartTime_ || watched == txtEndTime_)) {
    return TimeKey(static_cast<QLineEdit*>(watched), static_cast<QKeyEvent*>(event));
  }
  return QDialog::eventFilter(watched, event);
}

bool IgnoreWindowDialog::TimeKey(QLineEdit* field, QKeyEvent* key) {
  switch (key->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      field->setText(EnteredTime(field->text()).value_or(kNoTime));
      return true;
    case Qt::Key_Escape:
      field->setText(kNoTime);
      return true;
    default:
      return TimeFieldKeyPress(field, key);
  }
}

}  // namespace zrn
