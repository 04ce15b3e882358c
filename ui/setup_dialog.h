#pragma once

#include <QDialog>
#include <array>
#include <functional>
#include <vector>

#include "core/state.h"
#include "monitor/setup_rules.h"

class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace zrn {

class ChannelPicker;
class RecordNavigation;

// The editors Setup opens, each shown modally and returning when closed. The defaults open
// the program's dialogs; an editor left empty turns its button off.
struct SetupEditors {
  // Edits the schedule of Outputs[SelectedOutput].
  std::function<void(State&, QWidget* parent)> schedule;
  // Silence detection of a switcher output (0-based).
  std::function<void(State&, int output, QWidget* parent)> silenceDetect;
  // The show editor, from show SelectedShow.
  std::function<void(State&, QWidget* parent)> shows;
  // The outputs shows may borrow for silence detection.
  std::function<void(State&, QWidget* parent)> silenceOutputs;
};
SetupEditors DefaultSetupEditors();

// frmSetup: the configuration and the list of watched outputs. It edits a copy of the list;
// OK takes over everything once the address, port and display length pass, Cancel leaves the
// watched outputs as they were when it opened. Nothing is saved here: after OK
// (DialogAccepted) the caller runs SetupAccepted.
//
//   s.DialogAccepted = false;
//   SetupDialog dialog(s, DefaultSetupEditors(), mainWindow);
//   dialog.exec();
//   if (s.DialogAccepted) SetupAccepted(s);
class SetupDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit SetupDialog(State& s, SetupEditors editors = DefaultSetupEditors(),
                       QWidget* parent = nullptr);

  // Shows the controls of a program mode: the watched outputs in output mode (0), the show
  // buttons in show mode (1).
  void DisplayProgramMode(int mode);

  int Position() const { return position_; }
  const std::vector<SetupEntry>& Entries() const { return entries_; }

  void accept() override;
  // Cancel, Escape and the close button: the list edits are discarded.
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QWidget* BuildSettings();
  QGroupBox* BuildOutputGroup();
  QLayout* BuildShowButtons();
  void Fill();

  void DisplayEntry();
  void SetEditing(bool on);
  void UpdateListButtons();
  void GoTo(int position);
  void AddEntry();
  void InsertEntry();
  void RemoveEntry();

  void OutputChosen(int item);
  void StoreCustomLabel();
  void DisplayOptionChosen(int option);

  void ConfigureSchedule();
  void ConfigureSilenceDetect();
  void ConfigureShows();
  void ConfigureSilenceOutputs();
  // Runs a nested editor without letting it decide this dialog's outcome.
  void RunEditor(const std::function<void()>& open);

  SetupSettings ReadSettings() const;
  void Refused(const SetupRefusal& refusal);
  SetupEntry& Current() { return entries_[static_cast<std::size_t>(position_)]; }

  State& s_;
  SetupEditors editors_;
  std::vector<SetupEntry> entries_;
  std::vector<qint16> relays_;
  int position_ = 0;
  // The watched outputs as Setup found them, for Cancel.
  std::vector<OutputEntry> opened_;
  qint16 openedCount_ = 0;
  // Set once the list went into the live table (for the schedule editor); then liveOrigin_
  // gives, per live entry, its place when Setup opened (-1 for one added since).
  bool liveEdited_ = false;
  std::vector<int> liveOrigin_;
  // Set while the dialog fills its own controls, so their change handlers stay quiet.
  bool loading_ = false;

  QLineEdit* txtIpAddress_ = nullptr;
  QLineEdit* txtIPPort_ = nullptr;
  QLineEdit* txtMaxSize_ = nullptr;
  QLineEdit* txtMaxDisplay_ = nullptr;
  QComboBox* cmbRelay_ = nullptr;
  std::array<QRadioButton*, 2> optView_{};
  std::array<QRadioButton*, 2> optProgramMode_{};
  QGroupBox* frOutputSelect_ = nullptr;
  QLineEdit* txtCount_ = nullptr;
  ChannelPicker* cmbOutputSelect_ = nullptr;
  std::array<QRadioButton*, 3> optDisplay_{};
  QLineEdit* txtCustom_ = nullptr;
  RecordNavigation* nav_ = nullptr;
  QPushButton* cmdAdd_ = nullptr;
  QPushButton* cmdInsert_ = nullptr;
  QPushButton* cmdRemove_ = nullptr;
  QPushButton* cmdEdit_ = nullptr;
  QPushButton* cmdConfigSchedule_ = nullptr;
  QPushButton* cmdConfigure_ = nullptr;
  QPushButton* cmdConfigShow_ = nullptr;
  QPushButton* cmdShowMonOutConfig_ = nullptr;
  bool editing_ = false;
};

}  // namespace zrn
