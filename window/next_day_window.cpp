#include "window/next_day_window.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "monitor/monitor.h"
#include "window/csv_export.h"
#include "window/list_window.h"

namespace zrn {

size_t ScheduleFingerprint(const State& s) {
  size_t seed = qHash(s.OutputCount);
  for (const OutputEntry& output : s.Outputs) {
    seed = qHashMulti(seed, output.Output, output.EventCount, output.DisplayOption);
    for (const ScheduledEvent& e : output.Events) {
      seed =
          qHashMulti(seed, e.Time, e.Days, e.Active, e.DisplayOption, e.Connect, e.Label, e.Source);
    }
  }
  return seed;
}

NextDayWindow::NextDayWindow(Monitor& monitor, QWidget* parent)
    : QWidget(parent, Qt::Window), monitor_(monitor) {
  setWindowTitle(QStringLiteral("Next 24 Hours"));
  setObjectName(QStringLiteral("nextDayWindow"));
  resize(760, 480);
  auto* layout = new QVBoxLayout(this);
  summary_ = new QLabel;
  layout->addWidget(summary_);
  table_ =
      ListTable({QStringLiteral("Time"), QStringLiteral("Output"), QStringLiteral("Monitoring"),
                 QStringLiteral("Label"), QStringLiteral("Source routed")});
  layout->addWidget(table_, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  export_ = new QPushButton(QStringLiteral("&Export CSV..."));
  buttons->addWidget(export_);
  layout->addLayout(buttons);
  connect(export_, &QPushButton::clicked, this, &NextDayWindow::Export);
  RefreshWhileShown(this, monitor_, [this] { Refresh(); });
  Refresh();
}

void NextDayWindow::Refresh() {
  const State& s = monitor_.state();
  const QDateTime now = Now(s);
  const QDateTime minute(now.date(), QTime(now.time().hour(), now.time().minute()));
  const size_t hash = ScheduleFingerprint(s);
  if (hash == scheduleHash_ && minute == computedFor_) {
    return;
  }
  scheduleHash_ = hash;
  computedFor_ = minute;
  events_ = NextDayEvents(s, now);
  Fill();
}

void NextDayWindow::Fill() {
  const State& s = monitor_.state();
  table_->setRowCount(static_cast<int>(events_.size()));
  const QDate today = Now(s).date();
  for (int r = 0; r < static_cast<int>(events_.size()); ++r) {
    const UpcomingEvent& e = events_[static_cast<size_t>(r)];
    const QString day =
        e.when.date() == today ? QString() : e.when.toString(QStringLiteral("ddd "));
    SetListRow(table_, r,
               {day + e.when.toString(QStringLiteral("HH:mm:ss")),
                QStringLiteral("%1 [%2]")
                    .arg(e.output + 1, 2, 10, QLatin1Char('0'))
                    .arg(e.channel, 4, 10, QLatin1Char('0')),
                e.monitoring ? QStringLiteral("on") : QStringLiteral("off"), e.label, e.source});
  }
  table_->resizeColumnsToContents();
  summary_->setText(
      events_.empty()
          ? QStringLiteral("No scheduled event in the next 24 hours.")
          : QStringLiteral("%1 scheduled events in the next 24 hours.").arg(events_.size()));
}

bool NextDayWindow::ExportTo(const QString& path, QString* failure) {
  return SaveCsv(path, UpcomingCsv(events_), failure);
}

void NextDayWindow::Export() {
  ExportCsv(this, QStringLiteral("Export the next 24 hours"), monitor_.state().AppPath,
            QStringLiteral("Next 24 hours.csv"), UpcomingCsv(events_));
}

}  // namespace zrn
