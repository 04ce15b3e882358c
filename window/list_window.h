#pragma once

#include <QStringList>
#include <functional>

class QTableWidget;
class QWidget;

namespace zrn {

class Monitor;

// The read-only table of a list window: whole rows picked, no row numbers, the last column
// taking the spare width.
QTableWidget* ListTable(const QStringList& headers);

// Writes the cells of one row of such a table.
void SetListRow(QTableWidget* table, int row, const QStringList& cells);

// Runs refresh whenever the monitor changes while window is on screen.
void RefreshWhileShown(QWidget* window, Monitor& monitor, std::function<void()> refresh);

}  // namespace zrn
