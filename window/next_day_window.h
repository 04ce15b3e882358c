#pragma once

#include <QWidget>
#include <vector>

#include "history/next_day.h"

class QLabel;
class QPushButton;
class QTableWidget;

namespace zrn {

class Monitor;

// Every scheduled event due in the next 24 hours, in time order, kept up to date while open:
// worked out again when a schedule changes and each minute as the day moves on.
class NextDayWindow final : public QWidget {
  Q_OBJECT

 public:
  explicit NextDayWindow(Monitor& monitor, QWidget* parent = nullptr);

  QTableWidget* Table() const { return table_; }
  const std::vector<UpcomingEvent>& Events() const { return events_; }
  // Writes the list as CSV; false with the reason when it cannot be saved.
  bool ExportTo(const QString& path, QString* failure);
  // Recomputes when the schedules or the minute changed since the last time.
  void Refresh();

 private:
  void Fill();
  void Export();

  Monitor& monitor_;
  QTableWidget* table_ = nullptr;
  QLabel* summary_ = nullptr;
  QPushButton* export_ = nullptr;
  std::vector<UpcomingEvent> events_;
  size_t scheduleHash_ = 0;
  QDateTime computedFor_;
};

// A fingerprint of every watched output's schedule, to see that one changed.
size_t ScheduleFingerprint(const State& s);

}  // namespace zrn
