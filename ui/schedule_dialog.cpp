#include "ui/schedule_dialog.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/channel_list.h"
#include "ui/channel_picker.h"
#include "ui/dialog_controls.h"

namespace zrn {

namespace {

enum AutoButton { kNewEvent = 0, kEdit, kDelete, kCancel, kSave, kSaveAsNew, kEveryDay = 7 };

const char* const kDayNames[] = {"Monday", "Tuesday",  "Wednesday", "Thursday",
                                 "Friday", "Saturday", "Sunday"};
const char* const kButtonCaptions[] = {"New Event", "Edit",        "Delete", "Cancel",
                                       "Save",      "Save as New", "",       "Every Day"};
const char* const kButtonTips[] = {"",
                                   "Edit the Current Event",
                                   "Delete the Current Event",
                                   "Cancel Changes",
                                   "Save the Current Event",
                                   "Save the Current Event as a New Event",
                                   "",
                                   ""};

bool IsEnter(const QKeyEvent* key) {
  return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

}  // namespace

ScheduleDialog::ScheduleDialog(State& s, QWidget* parent)
    : QDialog(parent), s_(s), ask_(s.prompt, this) {
  BuildControls();
  const int index = s_.SelectedOutput;
  const bool known = index >= 0 && index < static_cast<int>(s_.Outputs.size());
  const OutputEntry output = known ? s_.Outputs[static_cast<size_t>(index)] : OutputEntry{};
  setWindowTitle(ScheduleTitle(s_, output));
  cmbAutoSource_->addItems(SourceListTexts(s_));
  if (known) {
    output_ = index;
    draft_ = DraftOf(output);
  } else {
    draft_ = DraftOf(OutputEntry{});
  }
  draft_.current = 0;
  ShowBrowseButtons();
  SetEditMode(false);
  FillEventList();
}

void ScheduleDialog::BuildControls() {
  setObjectName(QStringLiteral("frmSchedule"));
  lvEvents_ = new ChannelList(QStringLiteral("lvEvents"),
                              {QStringLiteral("Time"), QStringLiteral("Status"),
                               QStringLiteral("Source"), QStringLiteral("Days")},
                              QAbstractItemView::SingleSelection, QSize(440, 300));
  // A plain table of events, its rows picked as a whole.
  lvEvents_->setAlternatingRowColors(false);
  lvEvents_->setAllColumnsShowFocus(true);
  connect(lvEvents_, &QTreeWidget::currentItemChanged, this, [this] { RowChosen(); });

  for (int i : {kNewEvent, kEdit, kDelete, kCancel, kSave, kSaveAsNew, kEveryDay}) {
    cmdAuto_[static_cast<size_t>(i)] =
        Button(QStringLiteral("cmdAuto%1").arg(i), QLatin1String(kButtonCaptions[i]),
               QLatin1String(kButtonTips[i]));
  }
  cmdOk_ = Button(QStringLiteral("cmdOk"), QStringLiteral("OK"));

  connect(cmdAuto_[kNewEvent], &QPushButton::clicked, this, &ScheduleDialog::NewEvent);
  connect(cmdAuto_[kEdit], &QPushButton::clicked, this, &ScheduleDialog::EditEvent);
  connect(cmdAuto_[kDelete], &QPushButton::clicked, this, &ScheduleDialog::DeleteEvent);
  connect(cmdAuto_[kCancel], &QPushButton::clicked, this, &ScheduleDialog::CancelEdit);
  connect(cmdAuto_[kSave], &QPushButton::clicked, this, &ScheduleDialog::SaveClicked);
  connect(cmdAuto_[kSaveAsNew], &QPushButton::clicked, this, &ScheduleDialog::SaveClicked);
  connect(cmdAuto_[kEveryDay], &QPushButton::clicked, this, &ScheduleDialog::EveryDay);
  connect(cmdOk_, &QPushButton::clicked, this, &ScheduleDialog::CloseRequested);

  auto* top = new QHBoxLayout;
  top->addWidget(lvEvents_, 3);
  top->addLayout(BuildFields(), 2);

  auto* buttons = new QHBoxLayout;
  for (int i : {kNewEvent, kEdit, kDelete, kCancel, kSave, kSaveAsNew}) {
    buttons->addWidget(cmdAuto_[static_cast<size_t>(i)]);
  }
  buttons->addStretch(1);
  buttons->addWidget(cmdOk_);

  auto* root = new QVBoxLayout(this);
  root->addLayout(top, 1);
  root->addLayout(buttons);
}

QLayout* ScheduleDialog::BuildFields() {
  auto* fields = new QVBoxLayout;

  txtAutoTime_ = new QLineEdit(this);
  txtAutoTime_->setObjectName(QStringLiteral("txtAutoTime"));
  txtAutoTime_->setToolTip(
      QStringLiteral("Current event time.  Enter new time to change - 00:00:00"));
  txtAutoTime_->setFixedWidth(
      txtAutoTime_->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00 PM")) + 16);
  txtAutoTime_->installEventFilter(this);
  auto* timeCaption = new QLabel(QStringLiteral("Event Time"), this);
  timeCaption->setBuddy(txtAutoTime_);

  auto* monitoring = new QGroupBox(QStringLiteral("Monitoring"), this);
  auto* monitoringRow = new QHBoxLayout(monitoring);
  const char* const activeCaptions[] = {"Inactive", "Active"};
  const char* const activeTips[] = {"Event is inactive", "Event is active"};
  for (size_t i = 0; i < optAutoActive_.size(); ++i) {
    optAutoActive_[i] = new QRadioButton(QLatin1String(activeCaptions[i]), monitoring);
    optAutoActive_[i]->setObjectName(QStringLiteral("optAutoActive%1").arg(i));
    optAutoActive_[i]->setToolTip(QLatin1String(activeTips[i]));
    monitoringRow->addWidget(optAutoActive_[i]);
  }
  monitoringRow->addStretch(1);

  auto* timeRow = new QHBoxLayout;
  timeRow->addWidget(timeCaption);
  timeRow->addWidget(txtAutoTime_);
  timeRow->addSpacing(12);
  timeRow->addWidget(monitoring, 1);
  fields->addLayout(timeRow);

  auto* days = new QGroupBox(QStringLiteral("Day Options"), this);
  auto* dayGrid = new QGridLayout(days);
  for (size_t d = 0; d < chkAutoDay_.size(); ++d) {
    chkAutoDay_[d] = new QCheckBox(QLatin1String(kDayNames[d]), days);
    chkAutoDay_[d]->setObjectName(QStringLiteral("chkAutoDay%1").arg(d));
    chkAutoDay_[d]->setToolTip(QStringLiteral("Event happens every ") +
                               QLatin1String(kDayNames[d]));
    dayGrid->addWidget(chkAutoDay_[d], static_cast<int>(d / 4), static_cast<int>(d % 4));
  }
  dayGrid->addWidget(cmdAuto_[kEveryDay], 1, 3);
  fields->addWidget(days);

  auto* display = new QGroupBox(QStringLiteral("Display Label"), this);
  auto* displayGrid = new QGridLayout(display);
  auto* displayGroup = new QButtonGroup(display);
  const char* const displayCaptions[] = {"Destination Label", "Active Source", "Custom Label"};
  for (size_t i = 0; i < optDisplay_.size(); ++i) {
    optDisplay_[i] = new QRadioButton(QLatin1String(displayCaptions[i]), display);
    optDisplay_[i]->setObjectName(QStringLiteral("optDisplay%1").arg(i));
    displayGroup->addButton(optDisplay_[i], static_cast<int>(i));
    displayGrid->addWidget(optDisplay_[i], static_cast<int>(i), 0);
  }
  txtCustom_ = new QLineEdit(display);
  txtCustom_->setObjectName(QStringLiteral("txtCustom"));
  txtCustom_->setMaxLength(kMaxEventLabel);
  displayGrid->addWidget(txtCustom_, 2, 1);
  displayGrid->setColumnStretch(1, 1);
  fields->addWidget(display);

  auto* route = new QGroupBox(this);
  auto* routeColumn = new QVBoxLayout(route);
  chkConnect_ = new QCheckBox(QStringLiteral("Take Source to Dest"), route);
  chkConnect_->setObjectName(QStringLiteral("chkConnect"));
  connect(chkConnect_, &QCheckBox::toggled, this,
          [this](bool on) { cmbAutoSource_->setEnabled(editing_ && on); });
  cmbAutoSource_ = new ChannelPicker(QStringLiteral("cmbAutoSource"), {}, route);
  cmbAutoSource_->setMaxVisibleItems(20);
  routeColumn->addWidget(chkConnect_);
  routeColumn->addWidget(cmbAutoSource_);
  fields->addWidget(route);
  fields->addStretch(1);
  return fields;
}

void ScheduleDialog::SetEditMode(bool on) {
  editing_ = on;
  for (QRadioButton* option : optDisplay_) {
    option->setEnabled(on);
  }
  for (QCheckBox* day : chkAutoDay_) {
    day->setEnabled(on);
  }
  for (QRadioButton* option : optAutoActive_) {
    option->setEnabled(on);
  }
  txtAutoTime_->setEnabled(on);
  txtCustom_->setEnabled(on);
  chkConnect_->setEnabled(on);
  // Without "Take Source to Dest" the source is not stored, so the list is not offered.
  cmbAutoSource_->setEnabled(on && chkConnect_->isChecked());
  cmdAuto_[kEveryDay]->setEnabled(on);
  // Choosing another row while editing would put the fields onto that event.
  lvEvents_->setEnabled(!on);
}

void ScheduleDialog::ShowEditButtons() {
  for (int i : {kSaveAsNew, kSave, kCancel}) {
    cmdAuto_[static_cast<size_t>(i)]->show();
  }
  for (int i : {kEdit, kNewEvent, kDelete}) {
    cmdAuto_[static_cast<size_t>(i)]->hide();
  }
}

void ScheduleDialog::ShowBrowseButtons() {
  for (int i : {kSaveAsNew, kSave, kCancel}) {
    cmdAuto_[static_cast<size_t>(i)]->hide();
  }
  for (int i : {kEdit, kNewEvent, kDelete}) {
    cmdAuto_[static_cast<size_t>(i)]->show();
  }
  const bool known = output_ >= 0;
  cmdAuto_[kNewEvent]->setEnabled(known);
  cmdAuto_[kEdit]->setEnabled(known && draft_.count > 0);
  cmdAuto_[kDelete]->setEnabled(known && draft_.count > 0);
}

void ScheduleDialog::FillEventList() {
  if (draft_.count == 0) {
    draft_.events.front() = BlankEvent();
  }
  std::vector<QStringList> rows;
  QStringList keys;
  for (int i = 0; i < draft_.count; ++i) {
    rows.push_back(EventRowTexts(s_, draft_.events[static_cast<size_t>(i)]));
    keys.push_back(EventRowKey(i));
  }
  lvEvents_->SetRows(rows, -1, keys);
  for (int column = 0; column < 3; ++column) {
    lvEvents_->resizeColumnToContents(column);
    lvEvents_->setColumnWidth(column, lvEvents_->columnWidth(column) + 18);
  }
  ShowEvent(draft_.current);
}

void ScheduleDialog::ShowEvent(int index) {
  if (index < 0 || index >= static_cast<int>(draft_.events.size())) {
    index = 0;
  }
  const EventFields fields = FieldsOfEvent(draft_.events[static_cast<size_t>(index)]);
  txtAutoTime_->setText(fields.time);
  optDisplay_[static_cast<size_t>(std::clamp(fields.displayOption, 0, 2))]->setChecked(true);
  optAutoActive_[fields.active ? 1 : 0]->setChecked(true);
  const int position = fields.sourcePosition < cmbAutoSource_->count() ? fields.sourcePosition : 0;
  cmbAutoSource_->Select(position);
  txtCustom_->setText(fields.label);
  chkConnect_->setChecked(fields.connect);
  for (size_t d = 0; d < chkAutoDay_.size(); ++d) {
    chkAutoDay_[d]->setChecked((fields.days & (1 << d)) != 0);
  }
  const QSignalBlocker quiet(lvEvents_);
  if (index < lvEvents_->topLevelItemCount()) {
    lvEvents_->setCurrentItem(lvEvents_->topLevelItem(index));
  } else {
    lvEvents_->clearSelection();
    lvEvents_->setCurrentItem(nullptr);
  }
}

EventFields ScheduleDialog::ReadFields() const {
  EventFields fields;
  fields.time = txtAutoTime_->text();
  fields.active = optAutoActive_[1]->isChecked();
  for (size_t i = 0; i < optDisplay_.size(); ++i) {
    if (optDisplay_[i]->isChecked()) {
      fields.displayOption = static_cast<int>(i);
    }
  }
  for (size_t d = 0; d < chkAutoDay_.size(); ++d) {
    if (chkAutoDay_[d]->isChecked()) {
      fields.days |= 1 << d;
    }
  }
  fields.label = txtCustom_->text();
  fields.connect = chkConnect_->isChecked();
  fields.sourcePosition = cmbAutoSource_->currentIndex();
  return fields;
}

bool ScheduleDialog::SaveCurrentEvent() {
  const EventFields fields = ReadFields();
  // Checked before anything is stored, so a refused new event leaves nothing behind.
  if (const std::optional<FieldError> error = CheckEventFields(fields)) {
    ask_().Inform(error->title, error->text);
    QWidget* culprit = cmbAutoSource_;
    if (error->title == QStringLiteral("Time Error")) {
      culprit = txtAutoTime_;
    } else if (error->title == QStringLiteral("Day Error")) {
      culprit = chkAutoDay_.front();
    } else if (error->title == QStringLiteral("Label Error")) {
      culprit = txtCustom_;
    }
    culprit->setFocus();
    return false;
  }
  ScheduleDraft next = draft_;
  PutEvent(next, EventFromFields(fields));
  if (!StoreDraft(s_, output_, next)) {
    ask_().Inform(QStringLiteral("Save Error"),
                  QStringLiteral("This output is no longer configured.  The event was not saved."));
    return false;
  }
  draft_ = std::move(next);
  FillEventList();
  s_.DialogAccepted = true;
  saved_ = true;
  return true;
}

void ScheduleDialog::NewEvent() {
  shownBeforeNew_ = draft_.current;
  draft_.current = draft_.count;
  changesPending_ = true;
  ShowEditButtons();
  SetEditMode(true);
  // The new event is not in the list yet.
  const QSignalBlocker quiet(lvEvents_);
  lvEvents_->clearSelection();
  lvEvents_->setCurrentItem(nullptr);
  txtAutoTime_->setFocus();
  txtAutoTime_->selectAll();
}

void ScheduleDialog::EditEvent() {
  // The blank placeholder of an empty schedule is not an event to edit.
  if (draft_.count <= 0) {
    return;
  }
  changesPending_ = true;
  ShowEditButtons();
  SetEditMode(true);
  txtAutoTime_->setFocus();
}

void ScheduleDialog::DeleteEvent() {
  if (editing_ || draft_.current < 0 || draft_.current >= draft_.count) {
    return;
  }
  const QString time = draft_.events[static_cast<size_t>(draft_.current)].Time;
  if (ask_().Ask(QStringLiteral("Delete Event?"),
                 QStringLiteral("Delete the event at ") + time + QLatin1Char('?'),
                 false) != Prompt::Answer::Yes) {
    return;
  }
  ScheduleDraft next = draft_;
  RemoveCurrentEvent(next);
  if (!StoreDraft(s_, output_, next)) {
    return;
  }
  draft_ = std::move(next);
  FillEventList();
  ShowBrowseButtons();
  s_.DialogAccepted = true;
  saved_ = true;
}

void ScheduleDialog::CancelEdit() {
  changesPending_ = false;
  if (draft_.current >= draft_.count) {
    // A new event was abandoned: back to the event shown before it.
    draft_.current = std::clamp(shownBeforeNew_, 0, std::max(draft_.count - 1, 0));
  }
  ShowEvent(draft_.current);
  SetEditMode(false);
  ShowBrowseButtons();
}

void ScheduleDialog::SaveClicked() {
  if (SaveCurrentEvent()) {
    SetEditMode(false);
    ShowBrowseButtons();
    changesPending_ = false;
  }
}

void ScheduleDialog::EveryDay() {
  for (QCheckBox* day : chkAutoDay_) {
    day->setChecked(true);
  }
}

void ScheduleDialog::CloseRequested() {
  if (changesPending_) {
    const Prompt::Answer answer = ask_().Ask(
        QStringLiteral("Save Changes?"),
        QStringLiteral("Event changes have not been saved, do you wish to Save these changes?"),
        false);
    if (answer == Prompt::Answer::Yes) {
      if (!SaveCurrentEvent()) {
        return;
      }
      SetEditMode(false);
      ShowBrowseButtons();
    }
    changesPending_ = false;
  }
  done(saved_ ? QDialog::Accepted : QDialog::Rejected);
}

void ScheduleDialog::reject() {
  CloseRequested();
}

void ScheduleDialog::RowChosen() {
  const QTreeWidgetItem* row = lvEvents_->currentItem();
  if (row == nullptr || editing_) {
    return;
  }
  bool ok = false;
  const int index = row->data(0, Qt::UserRole).toString().mid(3).toInt(&ok);
  if (ok && index >= 0 && index < draft_.count) {
    draft_.current = index;
    ShowEvent(index);
  }
}

bool ScheduleDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    auto* key = static_cast<QKeyEvent*>(event);
    if (watched == txtAutoTime_) {
      return TimeBoxKey(key);
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool ScheduleDialog::TimeBoxKey(QKeyEvent* key) {
  if (IsEnter(key)) {
    const QString time = NormaliseEventTime(txtAutoTime_->text());
    if (IsValidEventTime(time)) {
      txtAutoTime_->setText(time);
    } else {
      QApplication::beep();
    }
    return true;
  }
  const QString typed = key->text();
  if (typed.size() != 1 || !typed[0].isPrint()) {
    return false;
  }
  const QString text = txtAutoTime_->text();
  if (txtAutoTime_->hasSelectedText()) {
    return false;
  }
  if (text.size() >= 8) {
    return true;
  }
  // After the first digit of the hours or the minutes the colon follows by itself.
  if ((text.size() == 1 || text.size() == 4) && txtAutoTime_->cursorPosition() == text.size()) {
    txtAutoTime_->setText(text + typed + QLatin1Char(':'));
    return true;
  }
  return false;
}

}  // namespace zrn
