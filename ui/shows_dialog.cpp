#include "ui/shows_dialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QFocusEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <algorithm>

#include "core/discard_changes.h"
#include "schedule/schedule_rules.h"
#include "schedule/time_entry.h"
#include "shows/show_editor_rules.h"
#include "storage/logs.h"
#include "storage/shows_file.h"
#include "switcher/silence_detect_rules.h"
#include "ui/channel_pair_dialog.h"
#include "ui/channel_picker.h"
#include "ui/ignore_window_dialog.h"
#include "ui/record_navigation.h"
#include "ui/time_field.h"

namespace zrn {

namespace {

const QString kUpdateError = QStringLiteral("Error Updating Show");
const QString kDisplayError = QStringLiteral("Error Display Show");

bool IsEnter(const QKeyEvent* key) {
  return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

}  // namespace

ShowsDialog::ShowsDialog(State& s, QWidget* parent) : CopyEditorDialog(s, parent) {
  setObjectName(QStringLiteral("frmShows"));
  setWindowTitle(QStringLiteral("Show Configuration"));
  BuildControls();
  Trap(s_, QStringLiteral("Error Loading Show Form"), QStringLiteral("Display Error"), [&] {
    s_.EditShows = ShowsForEditing(s_);
    opened_ = s_.EditShows;
    FillLists();
  });
  current_ = s_.SelectedShow >= 0 && s_.SelectedShow < Count() ? s_.SelectedShow : 0;
  DisplayShowInfo(current_);
  EnableDisabelControls(false);
}

void ShowsDialog::FillLists() {
  loading_ = true;
  cmbDownlinkSource_->addItems(SourceListTexts(s_));
  cmbDetect_[1]->addItems(ThresholdListTexts());
  cmbDetect_[2]->addItems(TimeListTexts());
  cmbDetect_[3]->addItems(TimeListTexts());
  loading_ = false;
}

ShowRecord* ShowsDialog::Current() {
  return current_ >= 0 && current_ < Count() ? &s_.EditShows[static_cast<std::size_t>(current_)]
                                             : nullptr;
}

void ShowsDialog::DisplayShowInfo(int index) {
  if (Count() == 0) {
    DisplayEmpty();
    return;
  }
  current_ = std::clamp(index, 0, Count() - 1);
  loading_ = true;
  Trap(s_, kDisplayError, QStringLiteral("Display Error"), [&] {
    const ShowRecord& show = *Current();
    txtShowTitle_->setText(show.Name);
    txtStartTime_->setText(show.StartTime);
    txtEndTime_->setText(show.EndTime);
    shownStart_ = ShowDate(show.StartDate);
    shownEnd_ = ShowDate(show.EndDate);
    if (!shownStart_.isValid() || !shownEnd_.isValid()) {
      WriteErrorLog(s_,
                    QStringLiteral("Dates of show %1 cannot be read: %2 - %3")
                        .arg(show.Name, show.StartDate, show.EndDate),
                    kDisplayError);
    }
    // An unreadable date shows the new-show range and stays stored until a date is chosen.
    shownStart_ = shownStart_.isValid() ? shownStart_ : QDate(2025, 1, 1);
    shownEnd_ = shownEnd_.isValid() ? shownEnd_ : QDate(2025, 12, 31);
    dtPickerStart_->setDate(shownStart_);
    dtPickerEnd_->setDate(shownEnd_);
    shownStart_ = dtPickerStart_->date();
    shownEnd_ = dtPickerEnd_->date();

    const int downlink = DownlinkPosition(s_, show.DownlinkSource);
    if (downlink == 0 && show.DownlinkSource != kNone) {
      WriteErrorLog(s_,
                    QStringLiteral("Downlink source %1 of show %2 is not a switcher input")
                        .arg(show.DownlinkSource + 1)
                        .arg(show.Name),
                    kDisplayError);
    }
    cmbDownlinkSource_->Select(downlink);
    cmbDetect_[1]->setCurrentIndex(ThresholdPosition(show.DetectLevel));
    cmbDetect_[2]->setCurrentIndex(TimePosition(show.DetectTime1));
    cmbDetect_[3]->setCurrentIndex(TimePosition(show.DetectTime2));

    FillRows(lstShowDests_, ShowOutputRows(s_, show));
    FillRows(lstStudioSource_, ShowStudioRows(s_, show));
    FillRows(lstSilenceSched_, IgnoreWindowRows(show));
    for (std::size_t d = 0; d < chkAutoDay_.size(); ++d) {
      chkAutoDay_[d]->setChecked((show.Days & (1 << d)) != 0);
    }
  });
  loading_ = false;
  UpdateNavigation();
}

void ShowsDialog::DisplayEmpty() {
  current_ = 0;
  loading_ = true;
  for (QLineEdit* field : {txtShowTitle_, txtStartTime_, txtEndTime_}) {
    field->clear();
  }
  cmbDownlinkSource_->setCurrentIndex(0);
  cmbDownlinkSource_->setEditText(QString());
  for (int i = 1; i <= 3; ++i) {
    cmbDetect_[static_cast<std::size_t>(i)]->setCurrentIndex(-1);
  }
  for (QListWidget* list : {lstShowDests_, lstStudioSource_, lstSilenceSched_}) {
    list->clear();
  }
  for (QCheckBox* day : chkAutoDay_) {
    day->setChecked(false);
  }
  loading_ = false;
  UpdateNavigation();
}

void ShowsDialog::FillRows(QListWidget* list, const QStringList& rows) {
  list->clear();
  for (int i = 0; i < rows.size(); ++i) {
    auto* row = new QListWidgetItem(rows[i], list);
    row->setData(Qt::UserRole, ShowRowKey(i));
  }
}

void ShowsDialog::EnableDisabelControls(bool on) {
  editing_ = on;
  // Nothing to edit while the working copy is empty.
  const bool enable = on && Count() > 0;
  for (QWidget* control : std::initializer_list<QWidget*>{
           txtShowTitle_, txtStartTime_, txtEndTime_, dtPickerStart_, dtPickerEnd_, cmdEveryDay_,
           cmbDownlinkSource_, cmbDetect_[1], cmbDetect_[2], cmbDetect_[3], cmdStudio_,
           cmdEditDest_, cmdEditSched_}) {
    control->setEnabled(enable);
  }
  for (QCheckBox* day : chkAutoDay_) {
    day->setEnabled(enable);
  }
}

void ShowsDialog::UpdateNavigation() {
  const int count = Count();
  frNav_->setTitle(QStringLiteral("%1 of %2").arg(count > 0 ? current_ + 1 : 0).arg(count));
  nav_->Update();
  cmdEdit_->setEnabled(count > 0);
  cmdRemove_->setEnabled(count > 0);
  if (count == 0) {
    EnableDisabelControls(editing_);
  }
}

void ShowsDialog::UpdateTempStruct() {
  ShowRecord* show = Current();
  if (show == nullptr) {
    return;
  }
  ShowFields fields;
  fields.name = txtShowTitle_->text();
  fields.startTime = txtStartTime_->text();
  fields.endTime = txtEndTime_->text();
  for (std::size_t d = 0; d < chkAutoDay_.size(); ++d) {
    if (chkAutoDay_[d]->isChecked()) {
      fields.days |= 1 << d;
    }
  }
  if (dtPickerStart_->date() != shownStart_) {
    fields.startDate = dtPickerStart_->date();
  }
  if (dtPickerEnd_->date() != shownEnd_) {
    fields.endDate = dtPickerEnd_->date();
  }
  StoreShowFields(*show, fields);
  shownStart_ = dtPickerStart_->date();
  shownEnd_ = dtPickerEnd_->date();
}

void ShowsDialog::GoTo(int index) {
  if (Count() == 0) {
    return;
  }
  UpdateTempStruct();
  DisplayShowInfo(std::clamp(index, 0, Count() - 1));
}

void ShowsDialog::AddShow() {
  UpdateTempStruct();
  const int index = Count();
  if (index >= 32767) {
    return;
  }
  s_.EditShows.emplace_back();
  NewShow(s_, index);
  DisplayShowInfo(index);
  EnableDisabelControls(true);
  txtShowTitle_->setFocus();
  txtShowTitle_->selectAll();
}

void ShowsDialog::RemoveShow() {
  if (Count() == 0) {
    return;
  }
  UpdateTempStruct();
  Trap(s_, QStringLiteral("Error Removing Show"), QStringLiteral("List Error"), [&] {
    At(s_.EditShows, current_);
    s_.EditShows.erase(s_.EditShows.begin() + current_);
  });
  DisplayShowInfo(0);
}

void ShowsDialog::EditChannels(int mode) {
  if (Current() == nullptr) {
    return;
  }
  UpdateTempStruct();
  s_.ChannelSelectMode = static_cast<qint16>(mode);
  s_.SelectedShow = static_cast<qint16>(current_);
  ChannelPairDialog dialog(s_, this);
  dialog.exec();
  DisplayShowInfo(current_);
}

void ShowsDialog::EditIgnoreWindows() {
  if (Current() == nullptr) {
    return;
  }
  UpdateTempStruct();
  s_.SelectedShow = static_cast<qint16>(current_);
  IgnoreWindowDialog dialog(s_, this);
  dialog.exec();
  DisplayShowInfo(current_);
}

void ShowsDialog::StoreTitle() {
  if (ShowRecord* show = Current(); show != nullptr && !loading_) {
    show->Name = txtShowTitle_->text();
  }
}

void ShowsDialog::TakeTime(QLineEdit* field) {
  ShowRecord* show = Current();
  if (show == nullptr || loading_) {
    return;
  }
  QString& stored = field == txtStartTime_ ? show->StartTime : show->EndTime;
  if (const std::optional<QString> time = EnteredTime(field->text())) {
    stored = *time;
  }
  field->setText(stored);
}

void ShowsDialog::RestoreTime(QLineEdit* field) {
  if (const ShowRecord* show = Current()) {
    field->setText(field == txtStartTime_ ? show->StartTime : show->EndTime);
  }
}

void ShowsDialog::DownlinkChosen(int position) {
  ShowRecord* show = Current();
  if (show != nullptr && !loading_ && position >= 0) {
    show->DownlinkSource = DownlinkOfPosition(position);
  }
}

void ShowsDialog::DetectChosen(int list, int position) {
  ShowRecord* show = Current();
  if (show == nullptr || loading_ || position < 0) {
    return;
  }
  switch (list) {
    case 1:
      show->DetectLevel = static_cast<qint16>(ThresholdCode(position));
      break;
    case 2:
      show->DetectTime1 = static_cast<qint16>(position);
      break;
    case 3:
      show->DetectTime2 = static_cast<qint16>(position);
      break;
    default:
      break;
  }
}

void ShowsDialog::accept() {
  UpdateTempStruct();
  if (const int wrong = FirstShowEndingBeforeItStarts(s_.EditShows); wrong >= 0) {
    DisplayShowInfo(wrong);
    EnableDisabelControls(true);
    Ask().Inform(QStringLiteral("Entry Error"),
                 QStringLiteral("The End Date is before the Start Date.  Please enter an End "
                                "Date on or after the Start Date."));
    dtPickerEnd_->setFocus();
    return;
  }
  const bool replaced =
      Trap(s_, kUpdateError, QStringLiteral("List Error"), [&] { ReplaceShows(s_, s_.EditShows); });
  if (!replaced) {
    return;
  }
  if (!SaveShows(s_)) {
    Ask().Inform(QStringLiteral("File Error"),
                 QStringLiteral("The shows could not be saved.  The changes are in use now but "
                                "will be lost when the program stops."));
  }
  QDialog::accept();
}

bool ShowsDialog::Changed() {
  UpdateTempStruct();
  return s_.EditShows != opened_;
}

bool ShowsDialog::eventFilter(QObject* watched, QEvent* event) {
  const bool time = watched == txtStartTime_ || watched == txtEndTime_;
  if (watched != txtShowTitle_ && !time) {
    return QDialog::eventFilter(watched, event);
  }
  auto* field = static_cast<QLineEdit*>(watched);
  if (event->type() == QEvent::FocusOut) {
    if (time) {
      TakeTime(field);
    } else {
      StoreTitle();
    }
    return false;
  }
  if (event->type() != QEvent::KeyPress) {
    return false;
  }
  auto* key = static_cast<QKeyEvent*>(event);
  if (IsEnter(key)) {
    if (time) {
      TakeTime(field);
    } else {
      StoreTitle();
    }
    return true;
  }
  if (key->key() == Qt::Key_Escape) {
    // Escape takes back what was typed; it does not throw away the whole editor.
    if (time) {
      RestoreTime(field);
    } else if (const ShowRecord* show = Current()) {
      field->setText(show->Name);
    }
    return true;
  }
  return time && TimeFieldKeyPress(field, key);
}

}  // namespace zrn
