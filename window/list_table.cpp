#include "window/list_table.h"

#include <QHeaderView>
#include <QTableWidget>

namespace zrn {

QTableWidget* NewListTable(const QStringList& headings) {
  auto* table = new QTableWidget(0, static_cast<int>(headings.size()));
  table->setHorizontalHeaderLabels(headings);
  table->setEditTriggers(QAbstractItemView::NoEditTriggers);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->verticalHeader()->hide();
  table->horizontalHeader()->setStretchLastSection(true);
  return table;
}

void SetListRow(QTableWidget* table, int row, const QStringList& cells) {
  for (int c = 0; c < cells.size(); ++c) {
    table->setItem(row, c, new QTableWidgetItem(cells[c]));
  }
}

}  // namespace zrn
