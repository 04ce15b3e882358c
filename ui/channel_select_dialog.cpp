#include "ui/channel_select_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "shows/channel_select_rules.h"
#include "storage/logs.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");
constexpr int kKeyColumn = 1;

QTreeWidget* ChannelList(const QString& name) {
  auto* list = new QTreeWidget;
  list->setObjectName(name);
  list->setColumnCount(2);
  list->setHeaderLabels({QStringLiteral("Channel Alpha"), QStringLiteral("Channel")});
  list->setRootIsDecorated(false);
  list->setUniformRowHeights(true);
  list->setAlternatingRowColors(true);
  list->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list->header()->setStretchLastSection(false);
  list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  list->header()->setSectionResizeMode(kKeyColumn, QHeaderView::ResizeToContents);
  list->setMinimumSize(280, 340);
  return list;
}

QPushButton* Button(const QString& name, const QString& caption, const QString& tip) {
  auto* button = new QPushButton(caption);
  button->setObjectName(name);
  button->setToolTip(tip);
  button->setAutoDefault(false);
  return button;
}

}  // namespace

ChannelSelectDialog::ChannelSelectDialog(State& s, QWidget* parent) : QDialog(parent), s_(s) {
  setObjectName(QStringLiteral("frmChannelSelect"));
  setWindowTitle(QStringLiteral("Configure Available Silence Detect Outputs"));

  lvChannel_ = ChannelList(QStringLiteral("lvChannel"));
  lvList_ = ChannelList(QStringLiteral("lvList"));
  auto* cmdAdd = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add >>"),
                        QStringLiteral("Add Selected Items to Current Display Listy"));
  auto* cmdRemove = Button(QStringLiteral("cmdRemove"), QStringLiteral("<< &Remove"),
                           QStringLiteral("Remove Selected Items from Current Display List"));
  auto* cmdRemoveAll = Button(QStringLiteral("cmdRemoveAll"), QStringLiteral("<< Remove All"),
                              QStringLiteral("Remove Selected Items from Current Display List"));
  connect(cmdAdd, &QPushButton::clicked, this, &ChannelSelectDialog::AddSelected);
  connect(cmdRemove, &QPushButton::clicked, this, &ChannelSelectDialog::RemoveSelected);
  connect(cmdRemoveAll, &QPushButton::clicked, this, &ChannelSelectDialog::RemoveAll);
  connect(lvChannel_, &QTreeWidget::itemDoubleClicked, this, &ChannelSelectDialog::AddSelected);
  connect(lvList_, &QTreeWidget::itemDoubleClicked, this, &ChannelSelectDialog::RemoveSelected);

  auto* moves = new QVBoxLayout;
  moves->addStretch(1);
  moves->addWidget(cmdAdd);
  moves->addWidget(cmdRemove);
  moves->addSpacing(12);
  moves->addWidget(cmdRemoveAll);
  moves->addStretch(2);

  lblOutCount_ = new QLabel;
  lblOutCount_->setObjectName(QStringLiteral("lblOutCount"));
  lblRequired_ = new QLabel;
  lblRequired_->setObjectName(QStringLiteral("lblRequired"));
  lblMax_ = new QLabel;
  lblMax_->setObjectName(QStringLiteral("lblMax"));
  auto* chosen = new QVBoxLayout;
  chosen->addWidget(lvList_, 1);
  auto* counts = new QHBoxLayout;
  counts->setSpacing(18);
  for (QLabel* label : {lblOutCount_, lblRequired_, lblMax_}) {
    counts->addWidget(label);
  }
  counts->addStretch(1);
  chosen->addLayout(counts);

  auto* lists = new QHBoxLayout;
  lists->addWidget(lvChannel_, 1);
  lists->addLayout(moves);
  lists->addLayout(chosen, 1);

  auto* cmdOk = new QPushButton(QStringLiteral("OK"));
  cmdOk->setObjectName(QStringLiteral("cmdOk"));
  cmdOk->setDefault(true);
  auto* cmdCancel = Button(QStringLiteral("cmdCancel"), QStringLiteral("&Cancel"), QString());
  connect(cmdOk, &QPushButton::clicked, this, &ChannelSelectDialog::accept);
  connect(cmdCancel, &QPushButton::clicked, this, &ChannelSelectDialog::reject);
  auto* closeRow = new QHBoxLayout;
  closeRow->addStretch(1);
  closeRow->addWidget(cmdOk);
  closeRow->addWidget(cmdCancel);

  auto* root = new QVBoxLayout(this);
  root->addLayout(lists, 1);
  root->addLayout(closeRow);

  Trap(s_, QStringLiteral("Error Loading Channel Selection"), QStringLiteral("Display Error"),
       [&] { Fill(); });
}

QTreeWidgetItem* ChannelSelectDialog::MakeItem(int channel) const {
  auto* item = new QTreeWidgetItem({SilenceOutItemText(s_, channel), SilenceOutKey(channel)});
  return item;
}

void ChannelSelectDialog::Fill() {
  for (int k = 1; k <= s_.SwitcherOutputCount; ++k) {
    lvChannel_->addTopLevelItem(MakeItem(k));
  }
  for (int channel : SilenceOutChannels(s_)) {
    lvList_->addTopLevelItem(MakeItem(channel));
  }
  ShowSelectedCount();
  lblRequired_->setText(QStringLiteral("Currently Required: %1").arg(CurrentlyRequired(s_)));
  lblMax_->setText(QStringLiteral("Max Required: %1").arg(s_.RequiredSilenceOutputs));
}

void ChannelSelectDialog::ShowSelectedCount() {
  lblOutCount_->setText(QStringLiteral("Selected: %1").arg(lvList_->topLevelItemCount()));
}

QTreeWidgetItem* ChannelSelectDialog::FindKey(const QString& key) const {
  QTreeWidgetItem* found = nullptr;
  Trap(s_, QStringLiteral("Error Finding Key"), kListError, [&] {
    for (int i = 0; i < lvList_->topLevelItemCount() && found == nullptr; ++i) {
      if (lvList_->topLevelItem(i)->text(kKeyColumn) == key) {
        found = lvList_->topLevelItem(i);
      }
    }
  });
  return found;
}

void ChannelSelectDialog::AddSelected() {
  Trap(s_, QStringLiteral("Error Adding item"), kListError, [&] {
    // In left-list order, whatever order the operator picked them in.
    for (int i = 0; i < lvChannel_->topLevelItemCount(); ++i) {
      QTreeWidgetItem* item = lvChannel_->topLevelItem(i);
      if (item->isSelected() && FindKey(item->text(kKeyColumn)) == nullptr) {
        lvList_->addTopLevelItem(item->clone());
      }
    }
    ShowSelectedCount();
  });
}

void ChannelSelectDialog::RemoveSelected() {
  Trap(s_, QStringLiteral("Error Removing Item"), kListError, [&] {
    qDeleteAll(lvList_->selectedItems());
    ShowSelectedCount();
  });
}

void ChannelSelectDialog::RemoveAll() {
  Trap(s_, QStringLiteral("Error Removing All Items"), kListError, [&] {
    lvList_->clear();
    ShowSelectedCount();
  });
}

std::vector<int> ChannelSelectDialog::ChosenChannels() const {
  std::vector<int> channels;
  for (int i = 0; i < lvList_->topLevelItemCount(); ++i) {
    const int channel = ChannelOfKey(lvList_->topLevelItem(i)->text(kKeyColumn));
    if (channel > 0) {
      channels.push_back(channel);
    }
  }
  return channels;
}

void ChannelSelectDialog::accept() {
  // The table is replaced from fresh state: the shows may have moved on while this was open.
  ReplaceSilenceOuts(s_, ChosenChannels());
  QDialog::accept();
}

}  // namespace zrn
