#include "ui/channel_pair_dialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/discard_changes.h"
#include "storage/logs.h"
#include "ui/typed_channel_list.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");
const QString kEditTip = QStringLiteral("Edit the current selection");
const QString kSaveTip =
    QStringLiteral("Save changes to the working copy of the current selection");

QPushButton* Button(const QString& name, const QString& caption, const QString& tip) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setToolTip(tip);
  // Enter belongs to the channel lists.
  button->setAutoDefault(false);
  return button;
}

}  // namespace

ChannelPairDialog::ChannelPairDialog(State& s, QWidget* parent)
    : QDialog(parent), s_(s), fallbackPrompt_(this) {
  setObjectName(QStringLiteral("frmChannelSelect2"));
  BuildControls();
  Trap(s_, QStringLiteral("Error Loading Channel Selection"), QStringLiteral("Display Error"),
       [&] { Fill(); });
}

void ChannelPairDialog::BuildControls() {
  lvList_ = new QTreeWidget;
  lvList_->setObjectName(QStringLiteral("lvList"));
  lvList_->setHeaderLabels({QStringLiteral("Channel Alpha")});
  lvList_->setRootIsDecorated(false);
  lvList_->setUniformRowHeights(true);
  lvList_->setAlternatingRowColors(true);
  lvList_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  lvList_->setMinimumSize(520, 220);
  connect(lvList_, &QTreeWidget::itemSelectionChanged, this, &ChannelPairDialog::RowChosen);

  auto* frChannels = new QGroupBox;
  auto* channels = new QFormLayout(frChannels);
  const char* const names[] = {"cmbLeftChan", "cmbRightChan", "cmbCueChan"};
  const char* const captions[] = {"Left Channel", "Right Channel", "Cue Channel"};
  for (std::size_t i = 0; i < cmbChan_.size(); ++i) {
    cmbChan_[i] = new QComboBox;
    cmbChan_[i]->setObjectName(QLatin1String(names[i]));
    cmbChan_[i]->setMinimumWidth(300);
    cmbChan_[i]->setMaxVisibleItems(20);
    MakeTypedChannelList(cmbChan_[i], true);
    channels->addRow(QLatin1String(captions[i]), cmbChan_[i]);
  }

  cmdAdd_ = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add"),
                   QStringLiteral("Add an additional item"));
  cmdDelete_ = Button(QStringLiteral("cmdDelete"), QStringLiteral("Delete"),
                      QStringLiteral("Delete the selected item"));
  cmdEdit_ = Button(QStringLiteral("cmdEdit"), QStringLiteral("Edit"), kEditTip);
  connect(cmdAdd_, &QPushButton::clicked, this, &ChannelPairDialog::AddGroup);
  connect(cmdDelete_, &QPushButton::clicked, this, &ChannelPairDialog::DeleteGroups);
  connect(cmdEdit_, &QPushButton::clicked, this, &ChannelPairDialog::EditOrSave);
  auto* listButtons = new QVBoxLayout;
  listButtons->addWidget(cmdAdd_);
  listButtons->addWidget(cmdDelete_);
  listButtons->addStretch(1);
  listButtons->addWidget(cmdEdit_);

  auto* editRow = new QHBoxLayout;
  editRow->addWidget(frChannels, 1);
  editRow->addLayout(listButtons);

  auto* cmdOk = Button(QStringLiteral("cmdOk"), QStringLiteral("OK"),
                       QStringLiteral("Save changes and close the form"));
  auto* cmdCancel = Button(QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"),
                           QStringLiteral("Abandon any changes and close the form"));
  connect(cmdOk, &QPushButton::clicked, this, &ChannelPairDialog::accept);
  connect(cmdCancel, &QPushButton::clicked, this, [this] { QDialog::reject(); });
  auto* closeRow = new QHBoxLayout;
  closeRow->addStretch(1);
  closeRow->addWidget(cmdOk);
  closeRow->addWidget(cmdCancel);

  auto* root = new QVBoxLayout(this);
  root->addWidget(lvList_, 1);
  root->addLayout(editRow);
  root->addLayout(closeRow);
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
  {
    const QSignalBlocker quiet(lvList_);
    lvList_->clear();
    for (const ChannelGroup& group : groups_) {
      lvList_->addTopLevelItem(new QTreeWidgetItem({ChannelGroupText(s_, mode_, group)}));
    }
    if (select >= 0 && select < lvList_->topLevelItemCount()) {
      lvList_->setCurrentItem(lvList_->topLevelItem(select));
    } else {
      lvList_->setCurrentItem(nullptr);
    }
  }
  ShowGroup(select);
}

void ChannelPairDialog::ShowGroup(int index) {
  const bool known = index >= 0 && index < static_cast<int>(groups_.size());
  current_ = known ? index : kNone;
  const ChannelGroup group = known ? groups_[static_cast<std::size_t>(index)] : ChannelGroup{};
  const std::array<int, 3> channels{group.left, group.right, group.cue};
  updating_ = true;
  for (std::size_t i = 0; i < cmbChan_.size(); ++i) {
    const int item = ChannelPairItem(s_, mode_, channels[i]);
    cmbChan_[i]->setCurrentIndex(item);
    cmbChan_[i]->setEditText(cmbChan_[i]->itemText(item));
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
    std::vector<ChannelGroup> kept;
    for (int i = 0; i < static_cast<int>(groups_.size()); ++i) {
      const QTreeWidgetItem* row = lvList_->topLevelItem(i);
      if (row == nullptr || !row->isSelected()) {
        kept.push_back(groups_[static_cast<std::size_t>(i)]);
      }
    }
    groups_ = std::move(kept);
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

bool ChannelPairDialog::Changed() const {
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

void ChannelPairDialog::reject() {
  Prompt& prompt = s_.prompt != nullptr ? *s_.prompt : fallbackPrompt_;
  if (Changed() && !MayDiscardChanges(prompt, windowTitle())) {
    return;
  }
  QDialog::reject();
}

int ChannelPairDialog::exec() {
  if (show_ < 0) {
    return QDialog::Rejected;
  }
  return QDialog::exec();
}

void ChannelPairDialog::accept() {
  if (editing_) {
    Prompt& prompt = s_.prompt != nullptr ? *s_.prompt : fallbackPrompt_;
    const Prompt::Answer answer = prompt.Ask(
        QStringLiteral("Save Changes?"),
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
