#include "window/alarm_history_window.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QTableWidget>
#include <QVBoxLayout>

#include "monitor/link_watch.h"
#include "monitor/monitor.h"
#include "window/csv_export.h"
#include "window/list_window.h"

namespace zrn {

namespace {

constexpr int kRowHeight = 18;
constexpr int kNameWidth = 180;
constexpr int kAxisHeight = 18;
// The kinds the table can be narrowed to; the first keeps every kind.
const AlarmKind kKinds[] = {AlarmKind::Silent,    AlarmKind::AudioBack,     AlarmKind::Acknowledged,
                            AlarmKind::Cancelled, AlarmKind::MonitoringOff, AlarmKind::MonitoringOn,
                            AlarmKind::NoLink,    AlarmKind::LinkBack};

QColor SpanColour(TimelineState state) {
  switch (state) {
    case TimelineState::Silent:
      return QColor(255, 0, 0);
    case TimelineState::Acknowledged:
      return QColor(255, 255, 0);
    case TimelineState::Cancelled:
      return QColor(255, 150, 0);
    case TimelineState::MonitoringOff:
      return QColor(0x60, 0x66, 0x6c);
    case TimelineState::NoLink:
      return QColor(0x8a, 0x92, 0x99);
  }
  return Qt::gray;
}

}  // namespace

TimelineWidget::TimelineWidget(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("timeline"));
  setMinimumWidth(kNameWidth + 240);
}

void TimelineWidget::SetRows(std::vector<TimelineRow> rows, const QDateTime& now) {
  rows_ = std::move(rows);
  now_ = now;
  setMinimumHeight(sizeHint().height());
  updateGeometry();
  update();
}

QSize TimelineWidget::sizeHint() const {
  return QSize(kNameWidth + 600, kAxisHeight + kRowHeight * static_cast<int>(rows_.size()) + 2);
}

void TimelineWidget::paintEvent(QPaintEvent* event) {
  QPainter p(this);
  p.setClipRegion(event->region());
  p.fillRect(rect(), palette().base());
  const int left = kNameWidth;
  const int width = std::max(1, this->width() - left - 8);
  const QDateTime from = now_.addSecs(-AlarmHistory::kKeptSeconds);
  const auto x = [&](const QDateTime& t) {
    const double part = static_cast<double>(from.secsTo(t)) / AlarmHistory::kKeptSeconds;
    return left + static_cast<int>(std::clamp(part, 0.0, 1.0) * width);
  };
  // Hours along the top, every three.
  p.setPen(palette().color(QPalette::Mid));
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * 0.85);
  p.setFont(small);
  const QDateTime firstHour(from.date(), QTime(from.time().hour(), 0));
  for (QDateTime t = firstHour.addSecs(3600); t <= now_; t = t.addSecs(3600)) {
    if (t.time().hour() % 3 != 0) {
      continue;
    }
    p.drawLine(x(t), kAxisHeight - 4, x(t), height());
    p.drawText(QRect(x(t) - 30, 0, 60, kAxisHeight - 4), Qt::AlignCenter,
               t.toString(QStringLiteral("HH:mm")));
  }
  for (int r = 0; r < static_cast<int>(rows_.size()); ++r) {
    const int top = kAxisHeight + r * kRowHeight;
    if (!event->region().intersects(QRect(0, top, this->width(), kRowHeight))) {
      continue;
    }
    const TimelineRow& row = rows_[static_cast<size_t>(r)];
    p.setPen(palette().color(QPalette::Text));
    p.drawText(QRect(4, top, kNameWidth - 8, kRowHeight), Qt::AlignLeft | Qt::AlignVCenter,
               p.fontMetrics().elidedText(row.subject, Qt::ElideRight, kNameWidth - 8));
    p.fillRect(QRect(left, top + 3, width, kRowHeight - 6), palette().alternateBase());
    for (const TimelineSpan& span : row.spans) {
      const QRect bar(x(span.from), top + 3, std::max(2, x(span.to) - x(span.from)),
                      kRowHeight - 6);
      p.fillRect(bar, SpanColour(span.state));
      if (span.state == TimelineState::NoLink) {
        p.fillRect(bar, QBrush(QColor(0x2b, 0x31, 0x37), Qt::BDiagPattern));
      }
    }
  }
}

AlarmHistoryWindow::AlarmHistoryWindow(Monitor& monitor, AlarmHistory& history, QWidget* parent)
    : QWidget(parent, Qt::Window), monitor_(monitor), history_(history) {
  setWindowTitle(QStringLiteral("Alarm History"));
  setObjectName(QStringLiteral("alarmHistoryWindow"));
  resize(900, 600);
  auto* layout = new QVBoxLayout(this);

  timeline_ = new TimelineWidget;
  auto* scroll = new QScrollArea;
  scroll->setWidget(timeline_);
  scroll->setWidgetResizable(true);
  scroll->setMinimumHeight(160);
  layout->addWidget(scroll, 2);

  auto* filters = new QHBoxLayout;
  auto* outputCaption = new QLabel(QStringLiteral("&Output:"));
  output_ = new QLineEdit;
  output_->setPlaceholderText(QStringLiteral("name or number"));
  output_->setClearButtonEnabled(true);
  outputCaption->setBuddy(output_);
  auto* kindCaption = new QLabel(QStringLiteral("&Kind:"));
  kind_ = new QComboBox;
  kind_->addItem(QStringLiteral("All"));
  for (const AlarmKind kind : kKinds) {
    kind_->addItem(KindText(kind));
  }
  kindCaption->setBuddy(kind_);
  filters->addWidget(outputCaption);
  filters->addWidget(output_, 1);
  filters->addWidget(kindCaption);
  filters->addWidget(kind_);
  export_ = new QPushButton(QStringLiteral("&Export CSV..."));
  filters->addWidget(export_);
  layout->addLayout(filters);

  table_ = ListTable({QStringLiteral("Time"), QStringLiteral("Output or show"),
                      QStringLiteral("What happened"), QStringLiteral("How long")});
  layout->addWidget(table_, 3);

  connect(output_, &QLineEdit::textChanged, this, &AlarmHistoryWindow::Fill);
  connect(kind_, &QComboBox::currentIndexChanged, this, &AlarmHistoryWindow::Fill);
  connect(export_, &QPushButton::clicked, this, &AlarmHistoryWindow::Export);
  RefreshWhileShown(this, monitor_, [this] { Refresh(); });
  Fill();
}

void AlarmHistoryWindow::Refresh() {
  const QDateTime now = Now(monitor_.state());
  const QDateTime front = history_.Events().empty() ? QDateTime() : history_.Events().front().when;
  // New events, forgotten ones, or the durations of what still holds moving on.
  if (history_.Events().size() != seenEvents_ || front != seenFront_ || !filledAt_.isValid() ||
      filledAt_.secsTo(now) >= 10) {
    Fill();
  }
}

void AlarmHistoryWindow::Fill() {
  const QDateTime now = Now(monitor_.state());
  history_.Forget(now);
  const std::deque<AlarmEvent>& events = history_.Events();
  seenEvents_ = events.size();
  seenFront_ = events.empty() ? QDateTime() : events.front().when;
  filledAt_ = now;

  const QString wanted = output_->text().trimmed();
  const int kindIndex = kind_->currentIndex();
  shown_.clear();
  for (std::size_t i = events.size(); i-- > 0;) {
    const AlarmEvent& e = events[i];
    if (kindIndex > 0 && e.kind != kKinds[kindIndex - 1]) {
      continue;
    }
    if (!wanted.isEmpty() && !e.subject.contains(wanted, Qt::CaseInsensitive)) {
      continue;
    }
    shown_.push_back(i);
  }
  const std::vector<qint64> lasted = history_.Durations(now);
  table_->setRowCount(static_cast<int>(shown_.size()));
  for (int r = 0; r < static_cast<int>(shown_.size()); ++r) {
    const std::size_t i = shown_[static_cast<size_t>(r)];
    const AlarmEvent& e = events[i];
    SetListRow(table_, r,
               {e.when.toString(QStringLiteral("ddd HH:mm:ss")),
                e.subject.isEmpty() ? QStringLiteral("(all)") : e.subject, KindText(e.kind),
                lasted[i] < 0 ? QString() : DurationText(lasted[i])});
  }
  table_->resizeColumnsToContents();
  timeline_->SetRows(Timeline(history_, now, wanted), now);
}

QString AlarmHistoryWindow::Csv() const {
  std::vector<std::size_t> oldestFirst(shown_.rbegin(), shown_.rend());
  return HistoryCsv(history_, oldestFirst, Now(monitor_.state()));
}

bool AlarmHistoryWindow::ExportTo(const QString& path, QString* failure) {
  return SaveCsv(path, Csv(), failure);
}

void AlarmHistoryWindow::Export() {
  ExportCsv(this, QStringLiteral("Export the alarm history"), monitor_.state().AppPath,
            QStringLiteral("Alarm history.csv"), Csv());
}

}  // namespace zrn
