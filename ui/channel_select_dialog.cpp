#include "ui/channel_select_dialog.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "shows/channel_select_rules.h"
#include "storage/logs.h"
#include "ui/channel_list.h"
#include "ui/dialog_controls.h"

namespace zrn {

namespace {

const QString kListError = QStringLiteral("List Error");
// The channel number beside its name, which tells the rows apart.
constexpr int kKeyColumn = 1;

ChannelList* SilenceOutList(const QString& name) {
  auto* list = new ChannelList(name, {QStringLiteral("Channel Alpha"), QStringLiteral("Channel")},
                               QAbstractItemView::ExtendedSelection, QSize(280, 340));
  list->SetKeyColumn(kKeyColumn);
  return list;
}

}  // namespace

ChannelSelectDialog::ChannelSelectDialog(State& s, QWidget* parent) : QDialog(parent), s_(s) {
  setObjectName(QStringLiteral("frmChannelSelect"));
  setWindowTitle(QStringLiteral("Configure Available Silence Detect Outputs"));

  lvChannel_ = SilenceOutList(QStringLiteral("lvChannel"));
  lvList_ = SilenceOutList(QStringLiteral("lvList"));
  auto* cmdAdd = Button(QStringLiteral("cmdAdd"), QStringLiteral("&Add >>"),
                        QStringLiteral("Add Selected Items to Current Display Listy"), this,
                        &ChannelSelectDialog::AddSelected);
  auto* cmdRemove = Button(QStringLiteral("cmdRemove"), QStringLiteral("<< &Remove"),
                           QStringLiteral("Remove Selected Items from Current Display List"), this,
                           &ChannelSelectDialog::RemoveSelected);
  auto* cmdRemoveAll = Button(QStringLiteral("cmdRemoveAll"), QStringLiteral("<< Remove All"),
                              QStringLiteral("Remove Selected Items from Current Display List"),
                              this, &ChannelSelectDialog::RemoveAll);
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

  CloseRowOptions close;
  close.okIsDefault = true;
  auto* root = new QVBoxLayout(this);
  root->addLayout(lists, 1);
  root->addLayout(CloseRow(this, close));

  Trap(s_, QStringLiteral("Error Loading Channel Selection"), QStringLiteral("Display Error"),
       [&] { Fill(); });
}

void ChannelSelectDialog::Fill() {
  for (int k = 1; k <= s_.SwitcherOutputCount; ++k) {
    lvChannel_->AddRow({SilenceOutItemText(s_, k), SilenceOutKey(k)});
  }
  for (int channel : SilenceOutChannels(s_)) {
    lvList_->AddRow({SilenceOutItemText(s_, channel), SilenceOutKey(channel)});
  }
  ShowSelectedCount();
  lblRequired_->setText(QStringLiteral("Currently Required: %1").arg(CurrentlyRequired(s_)));
  lblMax_->setText(QStringLiteral("Max Required: %1").arg(s_.RequiredSilenceOutputs));
}

void ChannelSelectDialog::ShowSelectedCount() {
  lblOutCount_->setText(QStringLiteral("Selected: %1").arg(lvList_->topLevelItemCount()));
}

void ChannelSelectDialog::AddSelected() {
  Trap(s_, QStringLiteral("Error Adding item"), kListError, [&] {
    // In left-list order, whatever order the operator picked them in.
    for (int row : lvChannel_->SelectedRows()) {
      QTreeWidgetItem* item = lvChannel_->topLevelItem(row);
      if (lvList_->FindKey(item->text(kKeyColumn)) < 0) {
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
  for (const QString& key : lvList_->Keys()) {
    const int channel = ChannelOfKey(key);
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
