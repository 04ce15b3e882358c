#pragma once

#include <QDialog>

#include "alerts/alert_settings.h"
#include "ui/message_box_prompt.h"

class QCheckBox;
class QLineEdit;
class QSpinBox;

namespace zrn {

class Alerts;
struct State;

// File > Alerts...: what reaches people away from the screen. OK saves ZRNAlerts.ini and
// applies it at once; settings that cannot work (another address without a token, a webhook
// address that is not http) are refused with a message and the dialog stays open.
class AlertsDialog final : public QDialog {
  Q_OBJECT

 public:
  AlertsDialog(Alerts& alerts, State& s, QWidget* parent = nullptr);

 private:
  AlertSettings Edited() const;
  void Accept();

  Alerts& alerts_;
  DialogPrompt ask_;
  QCheckBox* tray_ = nullptr;
  QCheckBox* notifications_ = nullptr;
  QCheckBox* sound_ = nullptr;
  QCheckBox* http_ = nullptr;
  QLineEdit* address_ = nullptr;
  QSpinBox* port_ = nullptr;
  QLineEdit* token_ = nullptr;
  QLineEdit* url_ = nullptr;
  QLineEdit* secret_ = nullptr;
};

}  // namespace zrn
