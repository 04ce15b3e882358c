#include "window/list_window.h"

#include <QHeaderView>
#include <QTableWidget>

#include "monitor/monitor.h"

namespace zrn {

QTableWidget* ListTable(const QStringList& headers) {
  auto* table = new QTableWidget(0, static_cast<int>(headers.size()));
  table->setHorizontalHeaderLabels(headers);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setStretchLastSection(true);
  return table;
}

void RefreshWhileShown(QWidget* window, Monitor& monitor, std::function<void()> refresh) {
  QObject::connect(&monitor, &Monitor::changed, window, [window, refresh = std::move(refresh)] {
    if (window->isVisible()) {
      refresh();
    }
  });
}

void SetListRow(QTableWidget* table, int row, const QStringList& cells) {
  for (int c = 0; c < cells.size(); ++c) {
    table->setItem(row, c, new QTableWidgetItem(cells[c]));
  }
}

}  // namespace zrn
