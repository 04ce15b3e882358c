#pragma once

#include <QDialog>
#include <vector>

#include "core/state.h"

class QLabel;

namespace zrn {

class ChannelList;

// frmChannelSelect (mode 3): which switcher outputs shows may borrow for silence detection.
// Every switcher output on the left, the chosen ones on the right; OK replaces SilenceOuts.
//
//   s.ChannelSelectMode = 3;
//   ChannelSelectDialog dialog(s, setupDialog);
//   dialog.exec();
class ChannelSelectDialog final : public QDialog {
  Q_OBJECT

 public:
  explicit ChannelSelectDialog(State& s, QWidget* parent = nullptr);

  // The chosen channels (1-based), in list order.
  std::vector<int> ChosenChannels() const;

  void accept() override;

 private:
  void Fill();
  void AddSelected();
  void RemoveSelected();
  void RemoveAll();
  void ShowSelectedCount();

  State& s_;
  ChannelList* lvChannel_ = nullptr;
  ChannelList* lvList_ = nullptr;
  QLabel* lblOutCount_ = nullptr;
  QLabel* lblRequired_ = nullptr;
  QLabel* lblMax_ = nullptr;
};

}  // namespace zrn
