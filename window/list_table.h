#pragma once

#include <QStringList>

class QTableWidget;

namespace zrn {

// The table of a list window: read-only, whole rows selected, no row numbers, the last column
// taking the room left.
QTableWidget* NewListTable(const QStringList& headings);

// Writes the cells of one row of such a table.
void SetListRow(QTableWidget* table, int row, const QStringList& cells);

}  // namespace zrn
