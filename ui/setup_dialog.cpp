#include "ui/setup_dialog.h"

#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "monitor/panel_update.h"
#include "schedule/event_scheduler.h"
#include "storage/logs.h"
#include "ui/channel_picker.h"
#include "ui/channel_select_dialog.h"
#include "ui/dialog_controls.h"
#include "ui/record_navigation.h"
#include "ui/schedule_dialog.h"
#include "ui/shows_dialog.h"
#include "ui/silence_detect_dialog.h"

namespace zrn {

namespace {

const QString kErrorLocation = QStringLiteral("Error Initialzing Form");
const QString kErrorTitle = QStringLiteral("Setup Error");

}  // namespace

SetupEditors DefaultSetupEditors() {
  SetupEditors editors;
  editors.schedule = [](State& s, QWidget* parent) {
    ScheduleDialog dialog(s, parent);
    dialog.exec();
  };
  editors.silenceDetect = [](State& s, int output, QWidget* parent) {
    SilenceDetectDialog dialog(s, output, parent);
    dialog.exec();
  };
  editors.shows = [](State& s, QWidget* parent) {
    ShowsDialog dialog(s, parent);
    dialog.exec();
  };
  editors.silenceOutputs = [](State& s, QWidget* parent) {
    ChannelSelectDialog dialog(s, parent);
    dialog.exec();
  };
  return editors;
}

SetupDialog::SetupDialog(State& s, SetupEditors editors, QWidget* parent)
    : QDialog(parent), s_(s), editors_(std::move(editors)) {
  setObjectName(QStringLiteral("frmSetup"));
  setWindowTitle(QStringLiteral("Setup"));

  auto* root = new QVBoxLayout(this);
  root->setSizeConstraint(QLayout::SetFixedSize);
  root->addWidget(BuildSettings());
  frOutputSelect_ = BuildOutputGroup();
  root->addWidget(frOutputSelect_);
  root->addLayout(BuildShowButtons());
  CloseRowOptions close;
  close.okIsDefault = true;
  close.cancelRunsReject = true;
  root->addLayout(CloseRow(this, close));

  Trap(s_, kErrorLocation, kErrorTitle, [&] { Fill(); });
}

void SetupDialog::Fill() {
  // First, so every handler has an entry even if filling the controls fails.
  entries_ = CopySetupEntries(s_);
  opened_ = s_.Outputs;
  openedCount_ = s_.OutputCount;
  liveOrigin_.clear();
  position_ = 0;
  loading_ = true;
  txtIpAddress_->setText(s_.ServerAddress);
  txtIPPort_->setText(QString::number(s_.ServerPort));
  txtMaxSize_->setText(QString::number(s_.MaxLogFileSize));
  txtMaxDisplay_->setText(QString::number(s_.MaxDisplay));

  cmbOutputSelect_->addItems(OutputChoiceItems(s_));
  const RelayChoices relays = MakeRelayChoices(s_);
  cmbRelay_->addItems(relays.items);
  relays_ = relays.relays;
  cmbRelay_->setCurrentIndex(relays.current);
  loading_ = false;
  DisplayEntry();
  SetEditing(false);

  optView_[s_.DefaultViewLarge == 1 ? 1 : 0]->setChecked(true);
  const int mode = s_.ProgramMode == 1 ? 1 : 0;
  optProgramMode_[mode]->setChecked(true);
  DisplayProgramMode(mode);
}

void SetupDialog::DisplayProgramMode(int mode) {
  const bool shows = mode == 1;
  frOutputSelect_->setVisible(!shows);
  cmdConfigShow_->setVisible(shows);
  cmdShowMonOutConfig_->setVisible(shows);
}

void SetupDialog::DisplayEntry() {
  loading_ = true;
  const OutputEntry& entry = Current().edited;
  const int item = OutputChoiceIndex(s_, entry.Output);
  cmbOutputSelect_->Select(item);
  const bool known = entry.DisplayOption >= 0 && entry.DisplayOption < 3;
  for (int i = 0; i < 3; ++i) {
    // A stored option outside the three shows none checked rather than a wrong one.
    optDisplay_[i]->setAutoExclusive(known);
    optDisplay_[i]->setChecked(known && i == entry.DisplayOption);
    optDisplay_[i]->setAutoExclusive(true);
  }
  txtCustom_->setText(entry.CustomLabel);
  frOutputSelect_->setTitle(QStringLiteral("Monitor Outputs (%1)").arg(position_ + 1));
  txtCount_->setText(QString::number(entries_.size()));
  cmdConfigure_->setEnabled(item != 0 && static_cast<bool>(editors_.silenceDetect));
  loading_ = false;
  UpdateListButtons();
}

void SetupDialog::SetEditing(bool on) {
  editing_ = on;
  cmbOutputSelect_->setEnabled(on);
  for (QRadioButton* option : optDisplay_) {
    option->setEnabled(on);
  }
  txtCustom_->setEnabled(on);
}

void SetupDialog::UpdateListButtons() {
  const int count = static_cast<int>(entries_.size());
  cmdAdd_->setEnabled(count < kMaxWatchedOutputs);
  cmdInsert_->setEnabled(count < kMaxWatchedOutputs);
  cmdRemove_->setEnabled(count > 1);
  nav_->Update();
}

void SetupDialog::GoTo(int position) {
  StoreCustomLabel();
  position_ = std::clamp(position, 0, static_cast<int>(entries_.size()) - 1);
  SetEditing(false);
  DisplayEntry();
}

void SetupDialog::AddEntry() {
  if (static_cast<int>(entries_.size()) >= kMaxWatchedOutputs) {
    return;
  }
  StoreCustomLabel();
  entries_.push_back(NewSetupEntry());
  position_ = static_cast<int>(entries_.size()) - 1;
  DisplayEntry();
  SetEditing(true);
  cmbOutputSelect_->setFocus();
}

void SetupDialog::InsertEntry() {
  if (static_cast<int>(entries_.size()) >= kMaxWatchedOutputs) {
    return;
  }
  StoreCustomLabel();
  entries_.insert(entries_.begin() + position_, NewSetupEntry());
  DisplayEntry();
  SetEditing(true);
  cmbOutputSelect_->setFocus();
}

void SetupDialog::RemoveEntry() {
  if (entries_.size() <= 1) {
    return;
  }
  SetEditing(false);
  entries_.erase(entries_.begin() + position_);
  position_ = std::min(position_, static_cast<int>(entries_.size()) - 1);
  DisplayEntry();
}

void SetupDialog::OutputChosen(int item) {
  if (loading_ || item < 0) {
    return;
  }
  ChooseEntryOutput(Current(), item == 0 ? kNone : static_cast<qint16>(item));
  cmdConfigure_->setEnabled(item != 0 && static_cast<bool>(editors_.silenceDetect));
}

void SetupDialog::StoreCustomLabel() {
  if (loading_ || !editing_) {
    return;
  }
  Current().edited.CustomLabel = txtCustom_->text().remove(QLatin1Char(','));
}

void SetupDialog::DisplayOptionChosen(int option) {
  if (!loading_) {
    Current().edited.DisplayOption = static_cast<qint16>(option);
  }
}

bool SetupDialog::eventFilter(QObject* watched, QEvent* event) {
  if (watched == txtCustom_) {
    if (event->type() == QEvent::KeyPress) {
      auto* key = static_cast<QKeyEvent*>(event);
      if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        StoreCustomLabel();
        return true;
      }
      if (key->key() == Qt::Key_Escape) {
        txtCustom_->setText(Current().edited.CustomLabel);
        return true;
      }
    } else if (event->type() == QEvent::FocusOut) {
      StoreCustomLabel();
    }
  }
  return QDialog::eventFilter(watched, event);
}

void SetupDialog::RunEditor(const std::function<void()>& open) {
  const bool accepted = s_.DialogAccepted;
  open();
  s_.DialogAccepted = accepted;
}

void SetupDialog::ConfigureSchedule() {
  if (!editors_.schedule) {
    return;
  }
  StoreCustomLabel();
  // The schedule editor works on the live table, so it must hold what this dialog shows, and
  // the panels must follow it while the editor is open. Cancel later puts it all back.
  if (!liveEdited_) {
    liveEdited_ = true;
    liveOrigin_.resize(static_cast<std::size_t>(std::max<int>(openedCount_, 0)));
    for (std::size_t i = 0; i < liveOrigin_.size(); ++i) {
      liveOrigin_[i] = static_cast<int>(i);
    }
  }
  liveOrigin_ = FollowSetupEntries(liveOrigin_, entries_);
  ApplySetupEntries(s_, entries_);
  UpdateOutputs(s_);
  entries_ = CopySetupEntries(s_);
  const qint16 selected = s_.SelectedOutput;
  s_.SelectedOutput = static_cast<qint16>(position_);
  RunEditor([&] { editors_.schedule(s_, this); });
  s_.SelectedOutput = selected;
  entries_ = CopySetupEntries(s_);
  position_ = std::min(position_, static_cast<int>(entries_.size()) - 1);
  DisplayEntry();
}

void SetupDialog::ConfigureSilenceDetect() {
  const int item = cmbOutputSelect_->currentIndex();
  if (item <= 0 || !editors_.silenceDetect) {
    return;
  }
  RunEditor([&] { editors_.silenceDetect(s_, item - 1, this); });
}

void SetupDialog::ConfigureShows() {
  if (editors_.shows) {
    s_.SelectedShow = 0;
    RunEditor([&] { editors_.shows(s_, this); });
  }
}

void SetupDialog::ConfigureSilenceOutputs() {
  if (editors_.silenceOutputs) {
    s_.ChannelSelectMode = 3;
    RunEditor([&] { editors_.silenceOutputs(s_, this); });
  }
}

SetupSettings SetupDialog::ReadSettings() const {
  SetupSettings settings;
  settings.address = txtIpAddress_->text();
  settings.port = txtIPPort_->text();
  settings.maxLogSize = txtMaxSize_->text();
  settings.maxDisplay = txtMaxDisplay_->text();
  const int relay = cmbRelay_->currentIndex();
  settings.alarmRelay =
      relay > 0 && relay < static_cast<int>(relays_.size()) ? relays_[relay] : kNone;
  settings.largeView = optView_[1]->isChecked();
  settings.programMode = optProgramMode_[1]->isChecked() ? 1 : 0;
  return settings;
}

void SetupDialog::Refused(const SetupRefusal& refusal) {
  if (s_.prompt != nullptr) {
    s_.prompt->Inform(refusal.title, refusal.text);
  }
  QLineEdit* field = txtMaxDisplay_;
  if (refusal.field == SetupRefusal::Field::Address) {
    txtIpAddress_->setText(s_.ServerAddress);
    field = txtIpAddress_;
  } else if (refusal.field == SetupRefusal::Field::Port) {
    field = txtIPPort_;
  }
  field->setFocus();
  field->selectAll();
}

void SetupDialog::accept() {
  StoreCustomLabel();
  std::optional<SetupRefusal> refusal;
  const bool done = Trap(s_, kErrorLocation, kErrorTitle,
                         [&] { refusal = ApplySetup(s_, ReadSettings(), entries_); });
  if (refusal) {
    Refused(*refusal);
    return;
  }
  if (done) {
    s_.DialogAccepted = true;
    QDialog::accept();
  }
}

void SetupDialog::reject() {
  // Cancel discards the list edits with the rest. Only the schedule editor ever put them into
  // the live table; then the table and the panels go back to how Setup found them.
  if (liveEdited_) {
    Trap(s_, kErrorLocation, kErrorTitle, [&] {
      RestoreOpenedEntries(s_, opened_, openedCount_, liveOrigin_);
      UpdateOutputs(s_);
      GetNextEvent(s_, kNone);
    });
    liveEdited_ = false;
  }
  QDialog::reject();
}

}  // namespace zrn
