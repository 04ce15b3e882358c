#include "ui/silence_detect_dialog.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

#include "core/failure.h"
#include "storage/logs.h"
#include "switcher/commands.h"
#include "ui/channel_picker.h"

namespace zrn {

namespace {

const QString kLocation = QStringLiteral("Error Display Silence Detect");
const QString kCategory = QStringLiteral("CrossPoint Grid Error");

// The lists by their index: 0 the alarm device, 1 silence threshold, 2 detect time, 3 return
// time, 4 peak threshold, 5 hold time.
enum List { kDevice = 0, kSilenceThreshold, kDetectTime, kReturnTime, kPeakThreshold, kHoldTime };

QRadioButton* MakeOption(const QString& caption, const QString& name, QButtonGroup* group, int id,
                         QWidget* parent) {
  auto* option = new QRadioButton(caption, parent);
  option->setObjectName(name);
  group->addButton(option, id);
  return option;
}

// A frame of two options, one above the other, with ids 0 and 1 and named prefix0, prefix1.
QGroupBox* OptionPair(const QString& title, const std::array<QString, 2>& captions,
                      const QString& prefix, std::array<QRadioButton*, 2>& options,
                      QWidget* parent) {
  auto* box = new QGroupBox(title, parent);
  auto* column = new QVBoxLayout(box);
  auto* group = new QButtonGroup(box);
  for (int i = 0; i < 2; ++i) {
    const auto at = static_cast<std::size_t>(i);
    options[at] = MakeOption(captions[at], prefix + QString::number(i), group, i, box);
    column->addWidget(options[at]);
  }
  return box;
}

}  // namespace

SilenceDetectDialog::SilenceDetectDialog(State& s, int output, QWidget* parent)
    : QDialog(parent), s_(s), ask_(s.prompt, this) {
  BuildControls();
  UpdateSilenceDetectConfig(output);
}

void SilenceDetectDialog::BuildControls() {
  setObjectName(QStringLiteral("frmSilenceDetect"));
  const char* const captions[] = {"Silence Threshold", "Detect Time", "Return Time",
                                  "PeakThreshold",     "Hold Time",   ""};
  // Devices are typed by number; an unreported one kept in the list has its own position.
  ChannelPickerOptions deviceKeys{.undefinedKey = true, .itemOf = [this](int n) {
                                    const int position = DevicePosition(deviceItems_, n - 1);
                                    return position > 0 ? position : -1;
                                  }};
  auto* devices = new ChannelPicker(QString(), std::move(deviceKeys), this);
  for (size_t i = 0; i < cmbDetect_.size(); ++i) {
    cmbDetect_[i] = i == kDevice ? devices : new QComboBox(this);
    cmbDetect_[i]->setObjectName(QStringLiteral("cmbDetect%1").arg(i));
    cmbDetect_[i]->setMaxVisibleItems(16);
    lblDetect_[i] = new QLabel(QLatin1String(captions[i]), this);
    lblDetect_[i]->setObjectName(QStringLiteral("lblDetect%1").arg(i));
    if (i >= 1) {
      lblDetect_[i - 1]->setBuddy(cmbDetect_[i]);
    }
  }
  for (int list : {kSilenceThreshold, kPeakThreshold}) {
    cmbDetect_[static_cast<size_t>(list)]->addItems(ThresholdListTexts());
  }
  for (int list : {kDetectTime, kReturnTime, kHoldTime}) {
    cmbDetect_[static_cast<size_t>(list)]->addItems(TimeListTexts());
  }

  devices->setMinimumContentsLength(22);
  connect(devices, &QComboBox::activated, this, [this](int index) { deviceSelection_ = index; });

  const char* const detectCaptions[] = {"Silence Detect Enabled", "Peak Detect Enabled"};
  for (size_t i = 0; i < chkDetect_.size(); ++i) {
    chkDetect_[i] = new QCheckBox(QLatin1String(detectCaptions[i]), this);
    chkDetect_[i]->setObjectName(QStringLiteral("chkDetect%1").arg(i));
    connect(chkDetect_[i], &QCheckBox::toggled, this, [this] { EnableDetectLists(); });
  }

  auto* silence = new QGroupBox(QStringLiteral("Silence"), this);
  auto* silenceForm = new QFormLayout(silence);
  silenceForm->addRow(chkDetect_[0]);
  for (int list : {kSilenceThreshold, kDetectTime, kReturnTime}) {
    silenceForm->addRow(lblDetect_[static_cast<size_t>(list - 1)],
                        cmbDetect_[static_cast<size_t>(list)]);
  }
  auto* peak = new QGroupBox(QStringLiteral("Peak"), this);
  auto* peakForm = new QFormLayout(peak);
  peakForm->addRow(chkDetect_[1]);
  for (int list : {kPeakThreshold, kHoldTime}) {
    peakForm->addRow(lblDetect_[static_cast<size_t>(list - 1)],
                     cmbDetect_[static_cast<size_t>(list)]);
  }

  auto* deviceType = new QGroupBox(QStringLiteral("Alarm Device"), this);
  auto* typeGrid = new QGridLayout(deviceType);
  auto* typeGroup = new QButtonGroup(deviceType);
  const char* const typeCaptions[] = {"None", "Msg Only", "Relay", "Opto"};
  for (size_t i = 0; i < optDeviceType_.size(); ++i) {
    optDeviceType_[i] =
        MakeOption(QLatin1String(typeCaptions[i]), QStringLiteral("OptDeviceType%1").arg(i),
                   typeGroup, static_cast<int>(i), deviceType);
    typeGrid->addWidget(optDeviceType_[i], static_cast<int>(i / 2), static_cast<int>(i % 2));
  }
  connect(typeGroup, &QButtonGroup::idClicked, this, &SilenceDetectDialog::DeviceTypeChosen);

  QGroupBox* action =
      OptionPair(QStringLiteral("Action"), {QStringLiteral("Off"), QStringLiteral("On")},
                 QStringLiteral("OptAction"), optAction_, this);
  QGroupBox* assoc =
      OptionPair(QStringLiteral("Follows"), {QStringLiteral("Silence"), QStringLiteral("Peak")},
                 QStringLiteral("OptAssoc"), optAssoc_, this);

  frDevice_ = new QGroupBox(QStringLiteral("Device"), this);
  frDevice_->setObjectName(QStringLiteral("frDetect5"));
  auto* deviceRow = new QHBoxLayout(frDevice_);
  deviceRow->addWidget(devices, 1);
  // Showing and hiding the device frame must not make the window jump.
  QSizePolicy keepPlace = frDevice_->sizePolicy();
  keepPlace.setRetainSizeWhenHidden(true);
  frDevice_->setSizePolicy(keepPlace);

  QLabel* status = lblDetect_[5];
  QFont bold = status->font();
  bold.setBold(true);
  status->setFont(bold);
  status->setMinimumHeight(status->fontMetrics().height() + 6);

  cmdOk_ = new QPushButton(QStringLiteral("&Edit"), this);
  cmdOk_->setObjectName(QStringLiteral("cmdOk"));
  cmdClose_ = new QPushButton(QStringLiteral("&Close"), this);
  cmdClose_->setObjectName(QStringLiteral("cmdCLose"));
  for (QPushButton* button : {cmdOk_, cmdClose_}) {
    // Enter belongs to the device list, never to a button.
    button->setAutoDefault(false);
  }
  connect(cmdOk_, &QPushButton::clicked, this, &SilenceDetectDialog::EditOrSend);
  connect(cmdClose_, &QPushButton::clicked, this, &QDialog::reject);

  auto* detectRow = new QHBoxLayout;
  detectRow->addWidget(silence, 1);
  detectRow->addWidget(peak, 1);
  auto* alarmRow = new QHBoxLayout;
  alarmRow->addWidget(deviceType);
  alarmRow->addWidget(action);
  alarmRow->addWidget(assoc);
  alarmRow->addWidget(frDevice_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(status, 1);
  buttons->addWidget(cmdOk_);
  buttons->addWidget(cmdClose_);

  auto* root = new QVBoxLayout(this);
  root->addLayout(detectRow);
  root->addLayout(alarmRow);
  root->addLayout(buttons);
}

void SilenceDetectDialog::UpdateSilenceDetectConfig(int output) {
  if (output != kNone) {
    output_ = output;
  }
  setWindowTitle(SilenceDetectTitle(s_, output_));
  // An output the switcher has not reported shows empty settings and cannot be sent.
  SilenceStatusEntry entry;
  const bool known = Trap(s_, kLocation, kCategory, [&] { entry = At(s_.SilenceStatus, output_); });
  const DetectMode mode = SplitMode(entry.Mode);
  optDeviceType_[static_cast<size_t>(mode.deviceType)]->setChecked(true);
  RebuildDeviceList(mode.deviceType, entry.Device, true);
  deviceSelection_ = DevicePosition(deviceItems_, entry.Device);
  RestoreDevice();
  optAction_[mode.actionOn ? 1 : 0]->setChecked(true);
  optAssoc_[mode.followsPeak ? 1 : 0]->setChecked(true);
  chkDetect_[0]->setChecked(mode.silenceEnabled);
  chkDetect_[1]->setChecked(mode.peakEnabled);
  cmbDetect_[kSilenceThreshold]->setCurrentIndex(ThresholdPosition(entry.SilenceThreshold));
  cmbDetect_[kDetectTime]->setCurrentIndex(TimePosition(entry.DetectTime));
  cmbDetect_[kReturnTime]->setCurrentIndex(TimePosition(entry.ReturnTime));
  cmbDetect_[kPeakThreshold]->setCurrentIndex(ThresholdPosition(entry.PeakThreshold));
  cmbDetect_[kHoldTime]->setCurrentIndex(TimePosition(entry.HoldTime));
  lblDetect_[5]->setText(DetectStatusText(entry.Status));
  cmdOk_->setEnabled(known);
  EnableDetectLists();
}

void SilenceDetectDialog::showEvent(QShowEvent* event) {
  Browse();
  QDialog::showEvent(event);
}

void SilenceDetectDialog::Browse() {
  editing_ = false;
  for (QWidget* control :
       std::initializer_list<QWidget*>{optDeviceType_[0], optDeviceType_[1], optDeviceType_[2],
                                       optDeviceType_[3], optAction_[0], optAction_[1],
                                       optAssoc_[0], optAssoc_[1], chkDetect_[0], chkDetect_[1]}) {
    control->setEnabled(false);
  }
  for (QComboBox* list : cmbDetect_) {
    list->setEnabled(false);
  }
  cmdOk_->setText(QStringLiteral("&Edit"));
}

void SilenceDetectDialog::EditOrSend() {
  if (editing_) {
    Send();
  } else {
    Edit();
  }
}

void SilenceDetectDialog::Edit() {
  editing_ = true;
  for (QWidget* control : std::initializer_list<QWidget*>{
           optDeviceType_[0], optDeviceType_[1], optDeviceType_[2], optDeviceType_[3],
           optAction_[0], optAction_[1], optAssoc_[0], optAssoc_[1], chkDetect_[0], chkDetect_[1],
           cmbDetect_[kDevice]}) {
    control->setEnabled(true);
  }
  EnableDetectLists();
  cmdOk_->setText(QStringLiteral("Send"));
}

void SilenceDetectDialog::EnableDetectLists() {
  const bool silence = editing_ && chkDetect_[0]->isChecked();
  const bool peak = editing_ && chkDetect_[1]->isChecked();
  for (int list : {kSilenceThreshold, kDetectTime, kReturnTime}) {
    cmbDetect_[static_cast<size_t>(list)]->setEnabled(silence);
  }
  for (int list : {kPeakThreshold, kHoldTime}) {
    cmbDetect_[static_cast<size_t>(list)]->setEnabled(peak);
  }
}

DetectMode SilenceDetectDialog::ChosenMode() const {
  DetectMode mode;
  for (size_t i = 0; i < optDeviceType_.size(); ++i) {
    if (optDeviceType_[i]->isChecked()) {
      mode.deviceType = static_cast<int>(i);
    }
  }
  mode.actionOn = !optAction_[0]->isChecked();
  mode.followsPeak = !optAssoc_[0]->isChecked();
  mode.silenceEnabled = chkDetect_[0]->isChecked();
  mode.peakEnabled = chkDetect_[1]->isChecked();
  return mode;
}

void SilenceDetectDialog::Send() {
  SilenceStatusEntry before;
  const int device =
      deviceItems_[static_cast<size_t>(std::clamp<int>(cmbDetect_[kDevice]->currentIndex(), 0,
                                                       static_cast<int>(deviceItems_.size()) - 1))]
          .device;
  const bool stored = Trap(s_, kLocation, kCategory, [&] {
    SilenceStatusEntry& entry = At(s_.SilenceStatus, output_);
    before = entry;
    entry.SilenceThreshold =
        static_cast<qint16>(ThresholdCode(cmbDetect_[kSilenceThreshold]->currentIndex()));
    entry.DetectTime = static_cast<qint16>(cmbDetect_[kDetectTime]->currentIndex());
    entry.ReturnTime = static_cast<qint16>(cmbDetect_[kReturnTime]->currentIndex());
    entry.PeakThreshold =
        static_cast<qint16>(ThresholdCode(cmbDetect_[kPeakThreshold]->currentIndex()));
    entry.HoldTime = static_cast<qint16>(cmbDetect_[kHoldTime]->currentIndex());
    entry.Device = static_cast<qint16>(device);
    entry.Mode = static_cast<qint16>(ComposeMode(ChosenMode()));
  });
  if (!stored) {
    return;
  }
  if (SendSilenceDetectConfig(s_, 0, output_, 1)) {
    DisplayMessage(s_, SilenceConfigSentLine(s_, output_));
    Browse();
    return;
  }
  // Not sent: the table keeps what the switcher really has, and the edit stays open for another
  // try.
  Trap(s_, kLocation, kCategory, [&] {
    SilenceStatusEntry& entry = At(s_.SilenceStatus, output_);
    const quint8 status = entry.Status;
    entry = before;
    entry.Status = status;
  });
  ask_().Inform(QStringLiteral("Send Error"),
                s_.Connected ? QStringLiteral("The silence detect configuration could not be "
                                              "sent to the switcher.  Please try again.")
                             : QStringLiteral("The switcher is not connected.  The silence "
                                              "detect configuration was not sent."));
}

void SilenceDetectDialog::DeviceTypeChosen(int type) {
  const int device =
      deviceItems_[static_cast<size_t>(std::clamp<int>(deviceSelection_, 0,
                                                       static_cast<int>(deviceItems_.size()) - 1))]
          .device;
  RebuildDeviceList(type, device, false);
  deviceSelection_ = DevicePosition(deviceItems_, device);
  RestoreDevice();
}

void SilenceDetectDialog::RebuildDeviceList(int type, int device, bool keepUnreported) {
  deviceItems_ = DeviceListItems(s_, type, keepUnreported ? device : kNone);
  QComboBox* list = cmbDetect_[kDevice];
  list->clear();
  for (const DeviceItem& item : deviceItems_) {
    list->addItem(item.text);
  }
  frDevice_->setVisible(type == 2 || type == 3);
}

void SilenceDetectDialog::RestoreDevice() {
  auto* list = static_cast<ChannelPicker*>(cmbDetect_[kDevice]);
  deviceSelection_ = std::clamp(deviceSelection_, 0, std::max(list->count() - 1, 0));
  list->Select(deviceSelection_);
}

}  // namespace zrn
