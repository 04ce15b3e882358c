#include "ui/channel_list.h"

#include <QHeaderView>
#include <QSignalBlocker>

namespace zrn {

ChannelList::ChannelList(const QString& name, const QStringList& headers, SelectionMode selection,
                         QSize least) {
  setObjectName(name);
  setColumnCount(static_cast<int>(headers.size()));
  setHeaderLabels(headers);
  setRootIsDecorated(false);
  setUniformRowHeights(true);
  setAlternatingRowColors(true);
  setSelectionMode(selection);
  setMinimumSize(least);
}

void ChannelList::SetKeyColumn(int column) {
  keyColumn_ = column;
  header()->setStretchLastSection(false);
  header()->setSectionResizeMode(0, QHeaderView::Stretch);
  header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
}

void ChannelList::SetRows(const std::vector<QStringList>& rows, int current,
                          const QStringList& keys) {
  const QSignalBlocker quiet(this);
  clear();
  for (std::size_t i = 0; i < rows.size(); ++i) {
    auto* row = new QTreeWidgetItem(this, rows[i]);
    if (static_cast<qsizetype>(i) < keys.size()) {
      row->setData(0, Qt::UserRole, keys[static_cast<qsizetype>(i)]);
    }
  }
  setCurrentItem(current >= 0 && current < topLevelItemCount() ? topLevelItem(current) : nullptr);
}

void ChannelList::AddRow(const QStringList& texts) {
  addTopLevelItem(new QTreeWidgetItem(texts));
}

std::vector<int> ChannelList::SelectedRows() const {
  std::vector<int> rows;
  for (int i = 0; i < topLevelItemCount(); ++i) {
    if (topLevelItem(i)->isSelected()) {
      rows.push_back(i);
    }
  }
  return rows;
}

int ChannelList::FindKey(const QString& key) const {
  for (int i = 0; i < topLevelItemCount(); ++i) {
    if (topLevelItem(i)->text(keyColumn_) == key) {
      return i;
    }
  }
  return -1;
}

QStringList ChannelList::Keys() const {
  QStringList keys;
  for (int i = 0; i < topLevelItemCount(); ++i) {
    keys.push_back(topLevelItem(i)->text(keyColumn_));
  }
  return keys;
}

}  // namespace zrn
