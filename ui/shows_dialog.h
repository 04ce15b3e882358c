#pragma once

#include <QDate>
#include <QDialog>
#include <array>
#include <vector>

#include "core/state.h"
#include "ui/copy_editor_dialog.h"

class QCheckBox;
class QComboBox;
class QDateEdit;
class QGroupBox;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace zrn {

class ChannelPicker;
class RecordNavigation;

// frmShows: browses, adds, removes and edits the shows on the working copy EditShows, copied
// from Shows when the editor opens and starting at show SelectedShow. OK ends the shows on air,
// makes the copy the live table and saves the shows file; Cancel drops the copy. It opens the
// channel pair editor and the silence ignore window editor on the same working copy.
//
//   s.SelectedShow = 0;
//   ShowsDialog dialog(s, mainWindow);
//   dialog.exec();
class ShowsDialog final : public CopyEditorDialog {
  Q_OBJECT

 public:
  explicit ShowsDialog(State& s, QWidget* parent = nullptr);

  // Refuses a show that ends before it starts.
  void accept() override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void BuildControls();
  QGroupBox* BuildNavigation();
  QLayout* BuildShowFields();
  QGroupBox* BuildDays();
  QGroupBox* BuildDetect();
  QLayout* BuildLists();
  void FillLists();

  int Count() const { return static_cast<int>(s_.EditShows.size()); }
  ShowRecord* Current();
  void DisplayShowInfo(int index);
  void DisplayEmpty();
  void FillRows(QListWidget* list, const QStringList& rows);
  void EnableDisabelControls(bool on);
  void UpdateNavigation();
  void UpdateTempStruct();
  bool Changed() override;

  void GoTo(int index);
  void AddShow();
  void RemoveShow();
  void EditChannels(int mode);
  void EditIgnoreWindows();

  void StoreTitle();
  void TakeTime(QLineEdit* field);
  void RestoreTime(QLineEdit* field);
  void DownlinkChosen(int position);
  void DetectChosen(int list, int position);

  // The working copy as it was opened, to tell whether anything was changed.
  std::vector<ShowRecord> opened_;
  int current_ = 0;
  // The editing controls were unlocked by Edit or Add; they stay so until the dialog closes.
  bool editing_ = false;
  // Set while the controls are filled from a record, so their handlers do not write back.
  bool loading_ = false;
  // The dates the pickers showed for the record, so an untouched picker rewrites nothing.
  QDate shownStart_;
  QDate shownEnd_;

  QGroupBox* frNav_ = nullptr;
  RecordNavigation* nav_ = nullptr;
  QPushButton* cmdEdit_ = nullptr;
  QPushButton* cmdAdd_ = nullptr;
  QPushButton* cmdRemove_ = nullptr;
  QLineEdit* txtShowTitle_ = nullptr;
  QLineEdit* txtStartTime_ = nullptr;
  QLineEdit* txtEndTime_ = nullptr;
  QDateEdit* dtPickerStart_ = nullptr;
  QDateEdit* dtPickerEnd_ = nullptr;
  std::array<QCheckBox*, 7> chkAutoDay_{};
  QPushButton* cmdEveryDay_ = nullptr;
  ChannelPicker* cmbDownlinkSource_ = nullptr;
  // Index 1 threshold, 2 detect time, 3 return time; 0 unused.
  std::array<QComboBox*, 4> cmbDetect_{};
  QListWidget* lstStudioSource_ = nullptr;
  QListWidget* lstShowDests_ = nullptr;
  QListWidget* lstSilenceSched_ = nullptr;
  QPushButton* cmdStudio_ = nullptr;
  QPushButton* cmdEditDest_ = nullptr;
  QPushButton* cmdEditSched_ = nullptr;
};

}  // namespace zrn
