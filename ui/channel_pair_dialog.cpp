#include "ui/channel_pair_dialog.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/discard_changes.h"
#include "storage/logs.h"
#include "ui/channel_list.h"
#include "ui/channel_picker.h"
#include "ui/dialog_controls.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");
const QString kEditTip = QStringLiteral("Edit the current selection");
const QString kSaveTip =
    QStringLiteral("Save changes to the working copy of the current selection");

}  // namespace

ChannelPairDialog::ChannelPairDialog(State& s, QWidget* parent) : CopyEditorDialog(s, parent) {
  setObjectName(QStringLiteral("frmChannelSelect2"));
  BuildControls();
  Trap(s_, QStringLiteral("Error Loading Channel Selection"), QStringLiteral("Display Error"),
       [&] { Fill(); });
}

void ChannelPairDialog::BuildControls() {
  lvList_ = new ChannelList(QStringLiteral("lvList"), {QStringLiteral("Channel Alpha")},
                            QAbstractItemView::ExtendedSelection, QSize(520, 220));
  connect(lvList_, &QTreeWidget::itemSelectionChanged, this, &ChannelPairDialog::RowChosen);

  auto* frChannels = new QGroupBox;
  auto* channels = new QFormLayout(frChannels);
  const char* const names[] = {"cmbLeftChan", "cmbRightChan", "cmbCueChan"};
  const char* const captions[] = {"Left Channel", "Right Channel", "Cue Channel"};
  for (std::size_t i = 0; i < cmbChan_.size(); ++i) {
    cmbChan_[i] = new ChannelPicker(QLatin1String(names[i]), {.undefinedKey = true, .itemOf = {}});
    cmbChan_[i]->setMinimumWidth(300);
    cmbChan_[i]->setMaxVisibleItems(20);
    channels->addRow(QLatin1String(captions[i]), cmbChan_[i]);
  }

  cmdAdd_ = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add"),
                   QStringLiteral("Add an additional item"), this, &ChannelPairDialog::AddGroup);
  cmdDelete_ =
      Button(QStringLiteral("cmdDelete"), QStringLiteral("Delete"),
             QStringLiteral("Delete the selected item"), this, &ChannelPairDialog::DeleteGroups);
  cmdEdit_ = Button(QStringLiteral("cmdEdit"), QStringLiteral("Edit"), kEditTip, this,
                    &ChannelPairDialog::EditOrSave);
  auto* listButtons = new QVBoxLayout;
  listButtons->addWidget(cmdAdd_);
  listButtons->addWidget(cmdDelete_);
  listButtons->addStretch(1);
  listButtons->addWidget(cmdEdit_);

  auto* editRow = new QHBoxLayout;
  editRow->addWidget(frChannels, 1);
  editRow->addLayout(listButtons);

  CloseRowOptions close;
  close.okTip = QStringLiteral("Save changes and close the form");
  close.cancelTip = QStringLiteral("Abandon any changes and close the form");
  auto* root = new QVBoxLayout(this);
  root->addWidget(lvList_, 1);
  root->addLayout(editRow);
  root->addLayout(CloseRow(this, close));
}

void ChannelPairDialog::Fill() {
  mode_ = s_.ChannelSelectMode;
  setWindowTitle(ChannelPairTitle(mode_));
  if (ChannelPairTitle(mode_).isEmpty()) {
    return;
  }
  updating_ = true;
  const QStringList items = ChannelPairItems(s_, mode_);
  for (QComboBox* list : cmbChan_) {
    list->addItems(items);
    list->setCurrentIndex(0);
  }
  updating_ = false;
  SetEditing(false);
  groups_ = ShowChannelGroups(At(s_.EditShows, s_.SelectedShow), mode_);
  opened_ = groups_;
  show_ = s_.SelectedShow;
  FillList(groups_.empty() ? kNone : 0);
}

void ChannelPairDialog::FillList(int select) {
  std::vector<QStringList> rows;
  for (const ChannelGroup& group : groups_) {
    rows.push_back({ChannelGroupText(s_, mode_, group)});
  }
  lvList_->SetRows(rows, select);
  ShowGroup(select);
}

void ChannelPairDialog::ShowGroup(int index) {
  const bool known = index >= 0 && index < static_cast<int>(groups_.size());
  current_ = known ? index : kNone;
  const ChannelGroup group = known ? groups_[static_cast<std::size_t>(index)] : ChannelGroup{};
  const std::array<int, 3> channels{group.left, group.right, group.cue};
  updating_ = true;
  for (std::size_t i = 0; i < cmbChan_.size(); ++i) {
    cmbChan_[i]->Select(ChannelPairItem(s_, mode_, channels[i]));
  }
  updating_ = false;
}

void ChannelPairDialog::RowChosen() {
  if (updating_ || editing_) {
    return;
  }
  QTreeWidgetItem* row = lvList_->currentItem();
  if (row != nullptr && row->isSelected()) {
    ShowGroup(lvList_->indexOfTopLevelItem(row));
  }
}

void ChannelPairDialog::AddGroup() {
  Trap(s_, QStringLiteral("Error adding item"), kListError, [&] {
    groups_.push_back(ChannelGroup{});
    FillList(static_cast<int>(groups_.size()) - 1);
  });
}

void ChannelPairDialog::DeleteGroups() {
  Trap(s_, QStringLiteral("Error deleting item"), kListError, [&] {
    const std::vector<int> selected = lvList_->SelectedRows();
    for (auto row = selected.rbegin(); row != selected.rend(); ++row) {
      if (*row < static_cast<int>(groups_.size())) {
        groups_.erase(groups_.begin() + *row);
      }
    }
    FillList(kNone);
  });
}

void ChannelPairDialog::SetEditing(bool on) {
  editing_ = on;
  for (QComboBox* list : cmbChan_) {
    list->setEnabled(on);
  }
  cmdEdit_->setText(on ? QStringLiteral("Save") : QStringLiteral("Edit"));
  cmdEdit_->setToolTip(on ? kSaveTip : kEditTip);
  cmdAdd_->setEnabled(!on);
  cmdDelete_->setEnabled(!on);
  // Another row chosen while editing would take the edit.
  lvList_->setEnabled(!on);
}

void ChannelPairDialog::EditOrSave() {
  if (editing_) {
    SaveGroup();
    SetEditing(false);
  } else if (current_ != kNone) {
    SetEditing(true);
    cmbChan_[0]->setFocus();
  }
}

void ChannelPairDialog::SaveGroup() {
  if (current_ < 0 || current_ >= static_cast<int>(groups_.size())) {
    return;
  }
  ChannelGroup& group = groups_[static_cast<std::size_t>(current_)];
  group.left = ChannelOfPairItem(cmbChan_[0]->currentIndex());
  group.right = ChannelOfPairItem(cmbChan_[1]->currentIndex());
  group.cue = ChannelOfPairItem(cmbChan_[2]->currentIndex());
  if (QTreeWidgetItem* row = lvList_->topLevelItem(current_)) {
    row->setText(0, ChannelGroupText(s_, mode_, group));
  }
}

bool ChannelPairDialog::Changed() {
  if (groups_ != opened_) {
    return true;
  }
  if (!editing_ || current_ < 0 || current_ >= static_cast<int>(groups_.size())) {
    return false;
  }
  const ChannelGroup& group = groups_[static_cast<std::size_t>(current_)];
  return ChannelGroup{ChannelOfPairItem(cmbChan_[0]->currentIndex()),
                      ChannelOfPairItem(cmbChan_[1]->currentIndex()),
                      ChannelOfPairItem(cmbChan_[2]->currentIndex())} != group;
}

int ChannelPairDialog::exec() {
  if (show_ < 0) {
    return QDialog::Rejected;
  }
  return QDialog::exec();
}

void ChannelPairDialog::accept() {
  if (editing_) {
    const Prompt::Answer answer =
        Ask().Ask(QStringLiteral("Save Changes?"),
                  QStringLiteral(
                      "You are currently editing a selection.\nDo you wish to save these changes?"),
                  false);
    if (answer == Prompt::Answer::Yes) {
      SaveGroup();
    }
    SetEditing(false);
  }
  if (show_ >= 0) {
    Trap(s_, QStringLiteral("Error Saving Channel Selection"), kListError,
         [&] { StoreChannelGroups(At(s_.EditShows, show_), mode_, groups_); });
  }
  QDialog::accept();
}

}  // namespace zrn
