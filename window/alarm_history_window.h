#pragma once

#include <QDateTime>
#include <QWidget>
#include <vector>

#include "history/alarm_history.h"

class QComboBox;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace zrn {

class Monitor;

// The last 24 hours of the timeline of every output, show and the link, drawn from a list of
// rows: silent red, acknowledged yellow, cancelled orange, monitoring off dark grey, no link
// hatched.
class TimelineWidget final : public QWidget {
  Q_OBJECT

 public:
  explicit TimelineWidget(QWidget* parent = nullptr);
  void SetRows(std::vector<TimelineRow> rows, const QDateTime& now);
  const std::vector<TimelineRow>& Rows() const { return rows_; }
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<TimelineRow> rows_;
  QDateTime now_;
};

// The alarm history: the timeline above a table of events (time, output or show, what
// happened, how long), filtered by output and kind, exported as CSV.
class AlarmHistoryWindow final : public QWidget {
  Q_OBJECT

 public:
  AlarmHistoryWindow(Monitor& monitor, AlarmHistory& history, QWidget* parent = nullptr);

  QTableWidget* Table() const { return table_; }
  TimelineWidget* TimelineView() const { return timeline_; }
  // The history's event indexes the table shows, newest first.
  const std::vector<std::size_t>& Shown() const { return shown_; }
  bool ExportTo(const QString& path, QString* failure);
  void Refresh();

 private:
  void Fill();
  QString Csv() const;
  void Export();

  Monitor& monitor_;
  AlarmHistory& history_;
  TimelineWidget* timeline_ = nullptr;
  QLineEdit* output_ = nullptr;
  QComboBox* kind_ = nullptr;
  QTableWidget* table_ = nullptr;
  QPushButton* export_ = nullptr;
  std::vector<std::size_t> shown_;
  std::size_t seenEvents_ = 0;
  QDateTime seenFront_;
  QDateTime filledAt_;
};

}  // namespace zrn
