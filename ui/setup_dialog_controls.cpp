// The controls of the setup dialog and their layout.
#include "ui/setup_dialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

#include "ui/channel_picker.h"
#include "ui/dialog_controls.h"
#include "ui/record_navigation.h"

namespace zrn {

QWidget* SetupDialog::BuildSettings() {
  auto* box = new QWidget;
  auto* grid = new QGridLayout(box);
  grid->setContentsMargins(0, 0, 0, 0);

  auto* frServer = new QGroupBox(QStringLiteral("Server Module"));
  frServer->setObjectName(QStringLiteral("frServer"));
  auto* server = new QFormLayout(frServer);
  txtIpAddress_ = NumberField(QStringLiteral("txtIpAddress"), QStringLiteral("[0-9.]*"), 25);
  txtIPPort_ = NumberField(QStringLiteral("txtIPPort"), QStringLiteral("[0-9]*"), 5);
  txtIpAddress_->setFixedWidth(160);
  txtIPPort_->setFixedWidth(70);
  server->addRow(QStringLiteral("IP Address"), txtIpAddress_);
  server->addRow(QStringLiteral("IP Port"), txtIPPort_);
  grid->addWidget(frServer, 0, 0);

  auto* general = new QFormLayout;
  txtMaxSize_ = NumberField(QStringLiteral("txtMaxSize"), QStringLiteral("[0-9]*"), 5);
  txtMaxSize_->setToolTip(QStringLiteral("Maximum Log File Size - 0 means no limit."));
  txtMaxDisplay_ = NumberField(QStringLiteral("txtMaxDisplay"), QStringLiteral("[0-9]*"), 5);
  txtMaxSize_->setFixedWidth(70);
  txtMaxDisplay_->setFixedWidth(70);
  cmbRelay_ = new QComboBox;
  cmbRelay_->setMinimumWidth(220);
  cmbRelay_->setObjectName(QStringLiteral("cmbRelay"));
  general->addRow(QStringLiteral("Maximum Log File Size"), txtMaxSize_);
  general->addRow(QStringLiteral("Maximum Display"), txtMaxDisplay_);
  general->addRow(QStringLiteral("Alarm Relay"), cmbRelay_);
  grid->addLayout(general, 1, 0);

  auto* frmDefaultView = new QGroupBox(QStringLiteral("Default View"));
  frmDefaultView->setObjectName(QStringLiteral("frmDefaultView"));
  frmDefaultView->setToolTip(QStringLiteral("View used at program start"));
  auto* views = new QVBoxLayout(frmDefaultView);
  optView_[1] = new QRadioButton(QStringLiteral("Large View"));
  optView_[1]->setToolTip(QStringLiteral("Large silence indicators with no history window"));
  optView_[0] = new QRadioButton(QStringLiteral("Normal View"));
  optView_[0]->setToolTip(QStringLiteral("Small silence indicators with history window"));
  auto* frProgramMode = new QGroupBox(QStringLiteral("Program Mode"));
  frProgramMode->setObjectName(QStringLiteral("frProgramMode"));
  auto* modes = new QVBoxLayout(frProgramMode);
  optProgramMode_[1] = new QRadioButton(QStringLiteral("Show Monitor"));
  optProgramMode_[0] = new QRadioButton(QStringLiteral("Output Monitor"));
  for (int i : {1, 0}) {
    optView_[i]->setObjectName(QStringLiteral("optView%1").arg(i));
    views->addWidget(optView_[i]);
    optProgramMode_[i]->setObjectName(QStringLiteral("optProgramMode%1").arg(i));
    modes->addWidget(optProgramMode_[i]);
    connect(optProgramMode_[i], &QRadioButton::toggled, this, [this, i](bool on) {
      if (on) {
        DisplayProgramMode(i);
      }
    });
  }
  grid->addWidget(frmDefaultView, 0, 1);
  grid->addWidget(frProgramMode, 1, 1, Qt::AlignTop);
  return box;
}

QGroupBox* SetupDialog::BuildOutputGroup() {
  auto* group = new QGroupBox(QStringLiteral("Montior Outputs"));
  group->setObjectName(QStringLiteral("FrOutputSelect"));
  auto* layout = new QVBoxLayout(group);

  auto* top = new QHBoxLayout;
  txtCount_ = new QLineEdit;
  txtCount_->setObjectName(QStringLiteral("txtCount"));
  txtCount_->setReadOnly(true);
  txtCount_->setFocusPolicy(Qt::NoFocus);
  txtCount_->setMaximumWidth(60);
  top->addWidget(new QLabel(QStringLiteral("Output Count")));
  top->addWidget(txtCount_);
  top->addStretch(1);
  nav_ = new RecordNavigation(
      QStringLiteral("display panel"), this,
      [this] {
        return RecordNavigation::Place{position_, static_cast<int>(entries_.size())};
      },
      [this](int position) { GoTo(position); });
  for (QPushButton* button : nav_->Buttons()) {
    button->setMaximumWidth(40);
    top->addWidget(button);
  }
  layout->addLayout(top);

  auto* destination = new QHBoxLayout;
  auto* lblDestinationSelect = new QLabel(QStringLiteral("Monitor Destination"));
  lblDestinationSelect->setObjectName(QStringLiteral("lblDestinationSelect"));
  cmbOutputSelect_ =
      new ChannelPicker(QStringLiteral("cmbOutputSelect"), {.undefinedKey = true, .itemOf = {}});
  cmbOutputSelect_->setToolTip(QStringLiteral("Choose the output for the current window"));
  cmbOutputSelect_->setMinimumWidth(280);
  lblDestinationSelect->setBuddy(cmbOutputSelect_);
  connect(cmbOutputSelect_, &QComboBox::currentIndexChanged, this, &SetupDialog::OutputChosen);
  destination->addWidget(lblDestinationSelect);
  destination->addWidget(cmbOutputSelect_, 1);
  layout->addLayout(destination);

  auto* frDisplayLabel = new QGroupBox(QStringLiteral("Display Label"));
  frDisplayLabel->setObjectName(QStringLiteral("FrDisplayLabel"));
  auto* labels = new QHBoxLayout(frDisplayLabel);
  const std::array<QString, 3> captions{QStringLiteral("Destination Label"),
                                        QStringLiteral("Active Source"),
                                        QStringLiteral("Custom Label")};
  for (int i = 0; i < 3; ++i) {
    optDisplay_[i] = new QRadioButton(captions[i]);
    optDisplay_[i]->setObjectName(QStringLiteral("optDisplay%1").arg(i));
    labels->addWidget(optDisplay_[i]);
    connect(optDisplay_[i], &QRadioButton::toggled, this, [this, i](bool on) {
      if (on) {
        DisplayOptionChosen(i);
      }
    });
  }
  txtCustom_ = new QLineEdit;
  txtCustom_->setObjectName(QStringLiteral("txtCustom"));
  // A comma would cut the label in the configuration file.
  txtCustom_->setValidator(
      new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[^,]*")), txtCustom_));
  txtCustom_->installEventFilter(this);
  labels->addWidget(txtCustom_, 1);
  layout->addWidget(frDisplayLabel);

  auto* edits = new QHBoxLayout;
  cmdAdd_ = Button(QStringLiteral("CmdAdd"), QStringLiteral("&Add"),
                   QStringLiteral("Add an additional display panel"), this, &SetupDialog::AddEntry);
  cmdInsert_ = Button(QStringLiteral("CmdInsert"), QStringLiteral("&Insert"), QString(), this,
                      &SetupDialog::InsertEntry);
  cmdRemove_ = Button(QStringLiteral("cmdRemove"), QStringLiteral("&Remove"),
                      QStringLiteral("Removes the currently selected display panel"), this,
                      &SetupDialog::RemoveEntry);
  cmdEdit_ = Button(QStringLiteral("cmdEdit"), QStringLiteral("&Edit"),
                    QStringLiteral("Edit the output & control for the current display panel"));
  cmdConfigSchedule_ =
      Button(QStringLiteral("cmdConfigSchedule"), QStringLiteral("Configure Schedule"), QString(),
             this, &SetupDialog::ConfigureSchedule);
  cmdConfigure_ = Button(QStringLiteral("CmdConfigure"), QStringLiteral("Configure Silence Detect"),
                         QString(), this, &SetupDialog::ConfigureSilenceDetect);
  for (QPushButton* button : {cmdAdd_, cmdInsert_, cmdRemove_, cmdEdit_}) {
    edits->addWidget(button);
  }
  edits->addStretch(1);
  edits->addWidget(cmdConfigSchedule_);
  edits->addWidget(cmdConfigure_);
  connect(cmdEdit_, &QPushButton::clicked, this, [this] {
    SetEditing(true);
    cmbOutputSelect_->setFocus();
  });
  layout->addLayout(edits);
  return group;
}

QLayout* SetupDialog::BuildShowButtons() {
  auto* row = new QHBoxLayout;
  cmdConfigShow_ = Button(QStringLiteral("cmdConfigShow"), QStringLiteral("Configure Shows"),
                          QStringLiteral("Configure shows"), this, &SetupDialog::ConfigureShows);
  cmdShowMonOutConfig_ = Button(
      QStringLiteral("cmdShowMonOutConfig"), QStringLiteral("Configure Outputs for Silence Detect"),
      QStringLiteral("Configure outputs avaialable for use for silence detction for shows"), this,
      &SetupDialog::ConfigureSilenceOutputs);
  row->addWidget(cmdConfigShow_);
  row->addWidget(cmdShowMonOutConfig_);
  row->addStretch(1);
  cmdConfigSchedule_->setEnabled(static_cast<bool>(editors_.schedule));
  cmdConfigShow_->setEnabled(static_cast<bool>(editors_.shows));
  cmdShowMonOutConfig_->setEnabled(static_cast<bool>(editors_.silenceOutputs));
  return row;
}

}  // namespace zrn
