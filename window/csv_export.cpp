#include "window/csv_export.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QWidget>

#include "core/failure.h"
#include "storage/file_io.h"

namespace zrn {

bool SaveCsv(const QString& path, const QString& text, QString* failure) {
  try {
    SaveFileAtomically(path, text.toUtf8(), failure);
    return true;
  } catch (const Failure&) {
    return false;
  }
}

void ExportCsv(QWidget* parent, const QString& caption, const QString& folder,
               const QString& fileName, const QString& csv) {
  const QString path = QFileDialog::getSaveFileName(parent, caption, folder + fileName,
                                                    QStringLiteral("CSV files (*.csv)"));
  if (path.isEmpty()) {
    return;
  }
  if (QString failure; !SaveCsv(path, csv, &failure)) {
    QMessageBox::warning(parent, parent->windowTitle(),
                         QStringLiteral("%1 could not be saved: %2").arg(path, failure));
  }
}

}  // namespace zrn
