#include "ui/ignore_window_dialog.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/discard_changes.h"
#include "schedule/time_entry.h"
#include "shows/ignore_window_rules.h"
#include "storage/logs.h"
#include "ui/channel_list.h"
#include "ui/dialog_controls.h"
#include "ui/time_field.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");

QLineEdit* TimeField(const QString& name) {
  auto* field = new QLineEdit(QStringLiteral("00:00:00"));
  field->setObjectName(name);
  PrepareTimeField(field);
  return field;
}

}  // namespace

IgnoreWindowDialog::IgnoreWindowDialog(State& s, QWidget* parent) : CopyEditorDialog(s, parent) {
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

  auto* cmdAdd = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add Listed Window"),
                        QStringLiteral("Add Listed Window"), this, &IgnoreWindowDialog::AddWindow);
  auto* cmdDelete =
      Button(QStringLiteral("cmdDelete"), QStringLiteral("Delete"),
             QStringLiteral("Delete Selected Winfow"), this, &IgnoreWindowDialog::DeleteWindow);

  lblShow_ = new QLabel;
  lblShow_->setObjectName(QStringLiteral("lblShow"));
  QFont bold = lblShow_->font();
  bold.setBold(true);
  lblShow_->setFont(bold);

  auto* entry = new QGridLayout;
  entry->addWidget(Caption(QStringLiteral("Start Time"), txtStartTime_), 0, 0);
  entry->addWidget(txtStartTime_, 1, 0);
  entry->addWidget(Caption(QStringLiteral("End Time"), txtEndTime_), 0, 1);
  entry->addWidget(txtEndTime_, 1, 1);
  entry->addWidget(cmdAdd, 1, 2);
  entry->setColumnStretch(3, 1);

  lstSilenceSched_ =
      new ChannelList(QStringLiteral("lstSilenceSched"), {QStringLiteral("Schedule")},
                      QAbstractItemView::SingleSelection, QSize(300, 200));

  auto* listColumn = new QVBoxLayout;
  listColumn->addWidget(cmdDelete);
  listColumn->addStretch(1);
  auto* listRow = new QHBoxLayout;
  listRow->addWidget(lstSilenceSched_, 1);
  listRow->addLayout(listColumn);

  auto* root = new QVBoxLayout(this);
  root->addWidget(lblShow_);
  root->addLayout(entry);
  root->addLayout(listRow, 1);
  root->addLayout(CloseRow(this));
}

void IgnoreWindowDialog::FillList() {
  std::vector<QStringList> rows;
  QStringList keys;
  for (int i = 0; i < static_cast<int>(windows_.size()); ++i) {
    rows.push_back({IgnoreRowText(windows_[static_cast<std::size_t>(i)])});
    keys.push_back(IgnoreRowKey(i));
  }
  lstSilenceSched_->SetRows(rows, -1, keys);
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
  const std::vector<int> selected = lstSilenceSched_->SelectedRows();
  if (selected.empty()) {
    return;
  }
  const int row = selected.front();
  if (row < static_cast<int>(windows_.size())) {
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

bool IgnoreWindowDialog::Changed() {
  return windows_ != opened_;
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
