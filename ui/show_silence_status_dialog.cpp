#include "ui/show_silence_status_dialog.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "shows/show_status.h"

namespace zrn {

namespace {

constexpr int kTwipsPerPixel = 15;
constexpr int kBoxPitch = 320;
// Boxes visible before the list scrolls.
constexpr int kVisibleBoxes = 12;

int Pixels(int twips) {
  return (twips + kTwipsPerPixel / 2) / kTwipsPerPixel;
}

void SetTextColour(QWidget* widget, const Rgb& colour) {
  QPalette palette = widget->palette();
  palette.setColor(QPalette::WindowText, QColor(colour.red, colour.green, colour.blue));
  widget->setPalette(palette);
}

}  // namespace

ShowSilenceStatusDialog::ShowSilenceStatusDialog(State& s, int show, QWidget* parent)
    : QDialog(parent), s_(s), show_(show) {
  setObjectName(QStringLiteral("frmShowSilenceStatus"));
  setWindowTitle(QStringLiteral("Show Silence Status"));
  s_.ShowStatusOpen = true;
  s_.SelectedShow = static_cast<qint16>(std::clamp(show, 0, static_cast<int>(kNone)));
  const ShowStatusModel model = UpdateSilenceDetectStatus(s_, show_);

  lblShow_ = new QLabel(this);
  lblShow_->setObjectName(QStringLiteral("lblShow"));
  QFont titleFont = lblShow_->font();
  titleFont.setBold(true);
  if (titleFont.pointSizeF() > 0) {
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.3);
  }
  lblShow_->setFont(titleFont);

  auto* boxes = new QWidget;
  const int count = static_cast<int>(model.sources.size());
  int widest = Pixels(3600);
  for (int k = 0; k < count; ++k) {
    auto* box = new QCheckBox(model.sources[k].caption, boxes);
    box->setObjectName(QStringLiteral("chkSource%1").arg(k));
    box->move(0, Pixels(k * kBoxPitch));
    box->adjustSize();
    widest = std::max(widest, box->width());
    // A source without a left channel has nothing to take.
    box->setEnabled(model.sources[k].selectable);
    connect(box, &QCheckBox::toggled, this, [this, k](bool checked) { SourceToggled(k, checked); });
    chkSource_.push_back(box);
  }
  boxes->setFixedSize(widest, Pixels(std::max(count, 1) * kBoxPitch));
  auto* area = new QScrollArea(this);
  area->setFrameShape(QFrame::NoFrame);
  area->setWidget(boxes);
  area->setMinimumWidth(widest + 24);
  area->setFixedHeight(Pixels(std::clamp(count, 1, kVisibleBoxes) * kBoxPitch) + 4);

  cmdTake_ = new QPushButton(QStringLiteral("Take Selected"), this);
  cmdTake_->setObjectName(QStringLiteral("cmdTake"));
  cmdTake_->setToolTip(QStringLiteral("Take Selected Studio to Show Outputs"));
  cmdClose_ = new QPushButton(QStringLiteral("Close"), this);
  cmdClose_->setObjectName(QStringLiteral("CmdClose"));
  cmdClose_->setAutoDefault(false);
  cmdTake_->setAutoDefault(false);
  connect(cmdTake_, &QPushButton::clicked, this, &ShowSilenceStatusDialog::Take);
  connect(cmdClose_, &QPushButton::clicked, this, &QDialog::reject);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(cmdTake_);
  buttons->addStretch();
  buttons->addWidget(cmdClose_);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(lblShow_);
  layout->addWidget(area);
  layout->addLayout(buttons);

  Refresh();
}

ShowSilenceStatusDialog::~ShowSilenceStatusDialog() {
  s_.ShowStatusOpen = false;
}

void ShowSilenceStatusDialog::done(int result) {
  s_.ShowStatusOpen = false;
  QDialog::done(result);
}

void ShowSilenceStatusDialog::Refresh() {
  const ShowStatusModel model = UpdateSilenceDetectStatus(s_, show_);
  if (!model.active) {
    // Its show went off air: nothing here can be taken any more.
    if (isVisible()) {
      done(QDialog::Rejected);
    }
    return;
  }
  lblShow_->setText(model.title);
  SetTextColour(lblShow_, model.titleColour);
  const size_t shown = std::min(chkSource_.size(), model.sources.size());
  for (size_t k = 0; k < shown; ++k) {
    chkSource_[k]->setText(model.sources[k].caption);
    SetTextColour(chkSource_[k], model.sources[k].colour);
  }
}

void ShowSilenceStatusDialog::showEvent(QShowEvent* event) {
  QDialog::showEvent(event);
  s_.ShowStatusOpen = true;
  if (!UpdateSilenceDetectStatus(s_, show_).active) {
    QMetaObject::invokeMethod(
        this, [this] { done(QDialog::Rejected); }, Qt::QueuedConnection);
  }
}

void ShowSilenceStatusDialog::SourceToggled(int index, bool /*checked*/) {
  if (clearing_) {
    return;
  }
  clearing_ = true;
  for (int k = 0; k < static_cast<int>(chkSource_.size()); ++k) {
    if (k != index) {
      chkSource_[k]->setChecked(false);
    }
  }
  clearing_ = false;
}

void ShowSilenceStatusDialog::Take() {
  int chosen = -1;
  for (int k = 0; k < static_cast<int>(chkSource_.size()) && chosen < 0; ++k) {
    if (chkSource_[k]->isChecked() && CanTakeStudioSource(s_, show_, k)) {
      chosen = k;
    }
  }
  if (chosen < 0) {
    if (s_.prompt != nullptr) {
      s_.prompt->Inform(QStringLiteral("Selection Error"),
                        QStringLiteral("No Studio Source Selected"));
    }
    return;
  }
  TakeStudioSource(s_, show_, chosen);
}

}  // namespace zrn
