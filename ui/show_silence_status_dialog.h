#pragma once

#include <QDialog>
#include <vector>

#include "core/state.h"

class QCheckBox;
class QLabel;
class QPushButton;

namespace zrn {

// "Show Silence Status": the downlink and studio sources of one active show, coloured by
// their silence state, and Take to put a studio source on the show's outputs. ShowStatusOpen
// is set from construction until the window is closed.
class ShowSilenceStatusDialog final : public QDialog {
  Q_OBJECT

 public:
  ShowSilenceStatusDialog(State& s, int show, QWidget* parent = nullptr);
  ~ShowSilenceStatusDialog() override;

  void done(int result) override;

 public slots:
  // Redraws from the state; closes the window once its show is no longer active.
  void Refresh();

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  void SourceToggled(int index, bool checked);
  void Take();

  State& s_;
  int show_;
  QLabel* lblShow_ = nullptr;
  std::vector<QCheckBox*> chkSource_;
  QPushButton* cmdTake_ = nullptr;
  QPushButton* cmdClose_ = nullptr;
  // Set while a tick clears the other boxes, so those changes are not taken as clicks.
  bool clearing_ = false;
};

}  // namespace zrn
