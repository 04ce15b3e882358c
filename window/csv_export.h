#pragma once

#include <QString>

class QWidget;

namespace zrn {

// Writes text as a CSV file in one go; false with the system's reason when it cannot, leaving
// any file that was there as it was.
bool SaveCsv(const QString& path, const QString& text, QString* failure);

// File > Export of a list window: asks where, offering fileName in the program's folder, saves
// what csv gives, and tells the operator when it could not.
void ExportCsv(QWidget* parent, const QString& caption, const QString& folder,
               const QString& fileName, const QString& csv);

}  // namespace zrn
