#pragma once

#include <QDialog>
#include <array>
#include <vector>

#include "core/state.h"
#include "monitor/channel_pair_rules.h"
#include "ui/copy_editor_dialog.h"
#include "ui/message_box_prompt.h"

class QPushButton;

namespace zrn {

class ChannelList;
class ChannelPicker;

// frmChannelSelect2: the outputs (ChannelSelectMode 1) or studio sources (mode 2) of show
// EditShows[SelectedShow], each a left, right and cue channel. It edits a copy of the groups;
// OK writes them into the show editor's working copy, Cancel drops them.
//
//   s.ChannelSelectMode = 1;
//   s.SelectedShow = current;
//   ChannelPairDialog dialog(s, showEditor);
//   dialog.exec();
class ChannelPairDialog final : public CopyEditorDialog {
  Q_OBJECT

 public:
  explicit ChannelPairDialog(State& s, QWidget* parent = nullptr);

  // Opens only in mode 1 or 2, for a show of the working copy.
  int exec() override;
  void accept() override;

 private:
  void BuildControls();
  void Fill();
  void FillList(int select);
  void ShowGroup(int index);
  void RowChosen();
  void AddGroup();
  void DeleteGroups();
  void EditOrSave();
  void SaveGroup();
  void SetEditing(bool on);
  // The groups or the lists being edited differ from what the show holds.
  bool Changed() override;

  int mode_ = 0;
  int show_ = -1;
  std::vector<ChannelGroup> groups_;
  std::vector<ChannelGroup> opened_;
  int current_ = kNone;
  bool editing_ = false;
  // Set while the dialog fills its lists, so their handlers stay quiet.
  bool updating_ = false;

  ChannelList* lvList_ = nullptr;
  // Left, right, cue.
  std::array<ChannelPicker*, 3> cmbChan_{};
  QPushButton* cmdAdd_ = nullptr;
  QPushButton* cmdDelete_ = nullptr;
  QPushButton* cmdEdit_ = nullptr;
};

}  // namespace zrn
