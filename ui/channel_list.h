#pragma once

#include <QSize>
#include <QStringList>
#include <QTreeWidget>
#include <vector>

namespace zrn {

// The list of every dialog that shows channels, channel groups or times as rows of text: no
// tree lines, rows of one height in alternating colours, a header per column. With a key
// column (a channel's number beside its name) the first column takes the spare width and the
// key column fits its numbers.
//
//   auto* list = new ChannelList(QStringLiteral("lvList"), {"Channel Alpha", "Channel"},
//                                QAbstractItemView::ExtendedSelection, QSize(280, 340));
//   list->SetKeyColumn(1);
class ChannelList final : public QTreeWidget {
 public:
  ChannelList(const QString& name, const QStringList& headers, SelectionMode selection,
              QSize least);

  void SetKeyColumn(int column);

  // Replaces the rows without telling of the selection changing on the way, and makes row
  // current the current one (none when out of range). key, when given, is stored with each
  // row (Qt::UserRole of column 0).
  void SetRows(const std::vector<QStringList>& rows, int current = -1,
               const QStringList& keys = {});
  void AddRow(const QStringList& texts);

  // The selected rows, in list order.
  std::vector<int> SelectedRows() const;
  // The row whose key column reads key; -1 for none.
  int FindKey(const QString& key) const;
  // The key column of every row, in list order.
  QStringList Keys() const;

 private:
  int keyColumn_ = 0;
};

}  // namespace zrn
