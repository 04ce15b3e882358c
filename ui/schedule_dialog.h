#pragma once

#include <QDialog>
#include <array>

#include "core/state.h"
#include "schedule/schedule_draft.h"
#include "schedule/schedule_rules.h"
#include "ui/message_box_prompt.h"

class QCheckBox;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace zrn {

class ChannelList;
class ChannelPicker;

// frmSchedule: edits the timed events of the watched output Outputs[SelectedOutput] as it was
// when the editor opened. Every saved or deleted event is in Outputs at once, with the output's
// next event recomputed, and sets DialogAccepted; the caller then writes the events file.
//
//   ScheduleDialog dialog(state, mainWindow);
//   dialog.exec();
//   ScheduleAccepted(state);
class ScheduleDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit ScheduleDialog(State& s, QWidget* parent = nullptr);

  // Closing by the close button, Escape or the title bar asks about unsaved changes first.
  void reject() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls();
  QLayout* BuildFields();
  void SetEditMode(bool on);
  void ShowEditButtons();
  void ShowBrowseButtons();
  void FillEventList();
  void ShowEvent(int index);
  bool SaveCurrentEvent();
  EventFields ReadFields() const;

  void NewEvent();
  void EditEvent();
  void DeleteEvent();
  void CancelEdit();
  void SaveClicked();
  void EveryDay();
  void CloseRequested();
  void RowChosen();

  bool TimeBoxKey(QKeyEvent* key);

  State& s_;
  // Index into Outputs of the edited output; -1 when SelectedOutput named none.
  int output_ = -1;
  ScheduleDraft draft_;
  // The event shown when "New Event" was pressed, shown again when it is cancelled.
  int shownBeforeNew_ = 0;
  bool changesPending_ = false;
  bool editing_ = false;
  bool saved_ = false;
  DialogPrompt ask_;

  ChannelList* lvEvents_ = nullptr;
  QLineEdit* txtAutoTime_ = nullptr;
  std::array<QRadioButton*, 2> optAutoActive_{};
  std::array<QCheckBox*, 7> chkAutoDay_{};
  std::array<QRadioButton*, 3> optDisplay_{};
  QLineEdit* txtCustom_ = nullptr;
  QCheckBox* chkConnect_ = nullptr;
  ChannelPicker* cmbAutoSource_ = nullptr;
  std::array<QPushButton*, 8> cmdAuto_{};
  QPushButton* cmdOk_ = nullptr;
};

}  // namespace zrn
