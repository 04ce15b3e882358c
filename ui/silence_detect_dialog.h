#pragma once

#include <QDialog>
#include <array>
#include <vector>

#include "core/state.h"
#include "switcher/silence_detect_rules.h"
#include "ui/message_box_prompt.h"

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace zrn {

// frmSilenceDetect: shows the switcher's silence-detect configuration of one switcher output
// as last reported, and sends an edited one. It opens read-only; "&Edit" unlocks the fields and
// becomes "Send".
//
//   SilenceDetectDialog dialog(state, channel - 1, mainWindow);
//   dialog.exec();
class SilenceDetectDialog final : public QDialog {
  Q_OBJECT

 public:
  // output: the 0-based switcher output.
  SilenceDetectDialog(State& s, int output, QWidget* parent = nullptr);

  // Fills the dialog from SilenceStatus[output]; kNone keeps the output shown.
  void UpdateSilenceDetectConfig(int output);

  int Output() const { return output_; }
  QPushButton* EditButton() const { return cmdOk_; }
  QPushButton* CloseButton() const { return cmdClose_; }

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void BuildControls();
  void Browse();
  void EditOrSend();
  void Edit();
  void Send();
  void EnableDetectLists();
  void DeviceTypeChosen(int type);
  void RebuildDeviceList(int type, int device, bool keepUnreported);
  DetectMode ChosenMode() const;

  void RestoreDevice();

  State& s_;
  int output_ = kNone;
  bool editing_ = false;
  // Position of the alarm device in its list, as last chosen.
  int deviceSelection_ = 0;
  std::vector<DeviceItem> deviceItems_;
  DialogPrompt ask_;

  std::array<QCheckBox*, 2> chkDetect_{};
  std::array<QLabel*, 6> lblDetect_{};
  std::array<QComboBox*, 6> cmbDetect_{};
  std::array<QRadioButton*, 4> optDeviceType_{};
  std::array<QRadioButton*, 2> optAction_{};
  std::array<QRadioButton*, 2> optAssoc_{};
  QGroupBox* frDevice_ = nullptr;
  QPushButton* cmdOk_ = nullptr;
  QPushButton* cmdClose_ = nullptr;
};

}  // namespace zrn
