// The controls of the show editor and their layout.
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "schedule/time_entry.h"
#include "ui/channel_picker.h"
#include "ui/dialog_controls.h"
#include "ui/record_navigation.h"
#include "ui/shows_dialog.h"
#include "ui/time_field.h"

namespace zrn {

namespace {

QDateEdit* DatePicker(const QString& name) {
  auto* picker = new QDateEdit;
  picker->setObjectName(name);
  picker->setCalendarPopup(true);
  picker->setDisplayFormat(QStringLiteral("MM/dd/yyyy"));
  // Four-digit years only: the shows file holds exactly ten characters.
  picker->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
  return picker;
}

QListWidget* RowList(const QString& name) {
  auto* list = new QListWidget;
  list->setObjectName(name);
  list->setSelectionMode(QAbstractItemView::NoSelection);
  // Read-only: Tab moves on to its Edit button instead.
  list->setFocusPolicy(Qt::NoFocus);
  list->setAlternatingRowColors(true);
  list->setMinimumWidth(360);
  return list;
}

}  // namespace

void ShowsDialog::BuildControls() {
  auto* top = new QHBoxLayout;
  top->addWidget(BuildNavigation());
  top->addStretch(1);
  cmdEdit_ = Button(QStringLiteral("cmdEdit"), QStringLiteral("&Edit"),
                    QStringLiteral("Edit the current show"));
  cmdAdd_ = Button(QStringLiteral("CmdAdd"), QStringLiteral("&Add"),
                   QStringLiteral("Add an additional show"), this, &ShowsDialog::AddShow);
  cmdRemove_ =
      Button(QStringLiteral("cmdRemove"), QStringLiteral("&Remove"),
             QStringLiteral("Removes the currently selected show"), this, &ShowsDialog::RemoveShow);
  // Framed like the navigation, so both rows of buttons line up.
  auto* actions = new QGroupBox;
  auto* actionRow = new QHBoxLayout(actions);
  for (QPushButton* button : {cmdEdit_, cmdAdd_, cmdRemove_}) {
    actionRow->addWidget(button);
  }
  top->addWidget(actions, 0, Qt::AlignBottom);
  connect(cmdEdit_, &QPushButton::clicked, this, [this] {
    EnableDisabelControls(true);
    txtShowTitle_->setFocus();
  });

  auto* left = new QVBoxLayout;
  left->addLayout(BuildShowFields());
  left->addWidget(BuildDays());
  left->addWidget(BuildDetect());
  left->addStretch(1);

  auto* middle = new QHBoxLayout;
  middle->addLayout(left);
  middle->addSpacing(8);
  middle->addLayout(BuildLists(), 1);

  auto* root = new QVBoxLayout(this);
  root->addLayout(top);
  root->addLayout(middle, 1);
  root->addLayout(CloseRow(this));
}

QGroupBox* ShowsDialog::BuildNavigation() {
  frNav_ = new QGroupBox;
  frNav_->setObjectName(QStringLiteral("frNav"));
  auto* row = new QHBoxLayout(frNav_);
  nav_ = new RecordNavigation(
      QStringLiteral("show"), this,
      [this] {
        return RecordNavigation::Place{current_, Count()};
      },
      [this](int index) { GoTo(index); });
  for (QPushButton* button : nav_->Buttons()) {
    button->setFixedWidth(40);
    row->addWidget(button);
  }
  return frNav_;
}

QLayout* ShowsDialog::BuildShowFields() {
  txtShowTitle_ = new QLineEdit;
  txtShowTitle_->setObjectName(QStringLiteral("txtShowTitle"));
  // The shows file gives a name one length byte.
  txtShowTitle_->setMaxLength(255);
  txtShowTitle_->installEventFilter(this);
  txtStartTime_ = new QLineEdit;
  txtStartTime_->setObjectName(QStringLiteral("txtStartTime"));
  txtEndTime_ = new QLineEdit;
  txtEndTime_->setObjectName(QStringLiteral("txtEndTime"));
  for (QLineEdit* time : {txtStartTime_, txtEndTime_}) {
    PrepareTimeField(time);
    time->installEventFilter(this);
  }
  dtPickerStart_ = DatePicker(QStringLiteral("DTPickerStart"));
  dtPickerEnd_ = DatePicker(QStringLiteral("DTPickerEnd"));
  cmbDownlinkSource_ = new ChannelPicker(QStringLiteral("cmbDownlinkSource"));
  cmbDownlinkSource_->setMaxVisibleItems(20);
  connect(cmbDownlinkSource_, &QComboBox::currentIndexChanged, this, &ShowsDialog::DownlinkChosen);

  auto* grid = new QGridLayout;
  grid->addWidget(Caption(QStringLiteral("Show Title"), txtShowTitle_), 0, 0);
  grid->addWidget(txtShowTitle_, 0, 1, 1, 3);
  grid->addWidget(Caption(QStringLiteral("Start Time"), txtStartTime_), 1, 0);
  grid->addWidget(txtStartTime_, 1, 1);
  grid->addWidget(Caption(QStringLiteral("End Time"), txtEndTime_), 1, 2, Qt::AlignRight);
  grid->addWidget(txtEndTime_, 1, 3, Qt::AlignLeft);
  grid->addWidget(Caption(QStringLiteral("Start Date"), dtPickerStart_), 2, 0);
  grid->addWidget(dtPickerStart_, 2, 1);
  grid->addWidget(Caption(QStringLiteral("End Date"), dtPickerEnd_), 2, 2, Qt::AlignRight);
  grid->addWidget(dtPickerEnd_, 2, 3, Qt::AlignLeft);
  grid->addWidget(Caption(QStringLiteral("Downlink Source"), cmbDownlinkSource_), 3, 0);
  grid->addWidget(cmbDownlinkSource_, 3, 1, 1, 3);
  grid->setColumnStretch(3, 1);
  return grid;
}

QGroupBox* ShowsDialog::BuildDays() {
  static const char* const kDays[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                      "Friday", "Saturday", "Sunday"};
  static const char* const kTipDays[] = {"Monday", "Tuesday",  "Wedensday", "Thursday",
                                         "Friday", "Saturday", "Sunday"};
  auto* box = new QGroupBox(QStringLiteral("Day Options"));
  auto* grid = new QGridLayout(box);
  for (std::size_t d = 0; d < chkAutoDay_.size(); ++d) {
    chkAutoDay_[d] = new QCheckBox(QLatin1String(kDays[d]));
    chkAutoDay_[d]->setObjectName(QStringLiteral("chkAutoDay%1").arg(d));
    chkAutoDay_[d]->setToolTip(QStringLiteral("Event happens every ") + QLatin1String(kTipDays[d]));
    grid->addWidget(chkAutoDay_[d], static_cast<int>(d / 4), static_cast<int>(d % 4));
  }
  cmdEveryDay_ = Button(QStringLiteral("cmdAuto7"), QStringLiteral("Every Day"),
                        QStringLiteral("Set every day"));
  connect(cmdEveryDay_, &QPushButton::clicked, this, [this] {
    for (QCheckBox* day : chkAutoDay_) {
      day->setChecked(true);
    }
  });
  grid->addWidget(cmdEveryDay_, 1, 3);
  return box;
}

QGroupBox* ShowsDialog::BuildDetect() {
  auto* box = new QGroupBox(QStringLiteral("Silence Detect"));
  auto* grid = new QGridLayout(box);
  const char* const captions[] = {"", "Silence Threshold", "Detect Time", "Return Time"};
  for (int i = 1; i <= 3; ++i) {
    auto* list = new QComboBox;
    list->setObjectName(QStringLiteral("cmbDetect%1").arg(i));
    list->setMaxVisibleItems(20);
    list->setMinimumWidth(130);
    connect(list, &QComboBox::currentIndexChanged, this,
            [this, i](int position) { DetectChosen(i, position); });
    cmbDetect_[static_cast<std::size_t>(i)] = list;
    grid->addWidget(Caption(QLatin1String(captions[i]), list), 0, i - 1);
    grid->addWidget(list, 1, i - 1);
  }
  return box;
}

QLayout* ShowsDialog::BuildLists() {
  lstStudioSource_ = RowList(QStringLiteral("lstStudioSource"));
  lstShowDests_ = RowList(QStringLiteral("lstShowDests"));
  lstSilenceSched_ = RowList(QStringLiteral("lstSilenceSched"));
  cmdStudio_ = Button(QStringLiteral("cmdStudio"), QStringLiteral("Edit"),
                      QStringLiteral("Edit Show Studio Sources"));
  cmdEditDest_ = Button(QStringLiteral("cmdEditDest"), QStringLiteral("Edit"),
                        QStringLiteral("Edit Show Outputs"));
  cmdEditSched_ = Button(QStringLiteral("cmdEditSched"), QStringLiteral("Edit"),
                         QStringLiteral("Edit Scheduled Silence Windows"), this,
                         &ShowsDialog::EditIgnoreWindows);
  connect(cmdStudio_, &QPushButton::clicked, this, [this] { EditChannels(2); });
  connect(cmdEditDest_, &QPushButton::clicked, this, [this] { EditChannels(1); });

  auto* column = new QVBoxLayout;
  const std::array<std::pair<const char*, QListWidget*>, 3> lists{
      {{"Studio Sources", lstStudioSource_},
       {"Show Outputs", lstShowDests_},
       {"Scheduled Silence Windows", lstSilenceSched_}}};
  const std::array<QPushButton*, 3> edits{cmdStudio_, cmdEditDest_, cmdEditSched_};
  for (std::size_t i = 0; i < lists.size(); ++i) {
    auto* head = new QHBoxLayout;
    head->addWidget(Caption(QLatin1String(lists[i].first), lists[i].second));
    head->addStretch(1);
    head->addWidget(edits[i]);
    column->addLayout(head);
    column->addWidget(lists[i].second, 1);
  }
  return column;
}

}  // namespace zrn
