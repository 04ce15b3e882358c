#pragma once

#include <QDialog>
#include <vector>

#include "core/state.h"
#include "ui/copy_editor_dialog.h"

class QLabel;
class QLineEdit;

namespace zrn {

class ChannelList;

// frmSilenceIgnoreWindow: the daily periods in which silence of show EditShows[SelectedShow]
// is not shown as an alarm. It edits a copy; OK writes the windows into the show editor's
// working copy, which that editor's OK makes live.
//
//   s.SelectedShow = current;
//   IgnoreWindowDialog dialog(s, showEditor);
//   dialog.exec();
class IgnoreWindowDialog final : public CopyEditorDialog {
  Q_OBJECT

 public:
  explicit IgnoreWindowDialog(State& s, QWidget* parent = nullptr);

  // Opens only for a show of the working copy.
  int exec() override;
  void accept() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls();
  void FillList();
  void AddWindow();
  void DeleteWindow();
  bool TimeKey(QLineEdit* field, QKeyEvent* key);
  bool Changed() override;

  int show_ = -1;
  std::vector<IgnoreWindow> windows_;
  std::vector<IgnoreWindow> opened_;

  QLabel* lblShow_ = nullptr;
  QLineEdit* txtStartTime_ = nullptr;
  QLineEdit* txtEndTime_ = nullptr;
  ChannelList* lstSilenceSched_ = nullptr;
};

}  // namespace zrn
