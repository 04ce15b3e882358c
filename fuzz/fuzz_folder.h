// A temporary folder shared by the file-reading fuzz targets: each input is written into it as
// the file under test, and everything the reader leaves behind is removed after the run.
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

namespace zrn::fuzz {

// The folder with a trailing separator, as State::AppPath expects it.
inline const QString& FolderPath() {
  // Removed again when the fuzzer exits.
  static QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/zrn-fuzz-XXXXXX"));
  static const QString path = [] {
    if (!dir.isValid()) {
      __builtin_trap();
    }
    return dir.path() + QLatin1Char('/');
  }();
  return path;
}

// Replaces the file under test with the input.
inline void WriteInput(const QString& fileName, const uint8_t* data, size_t size) {
  QFile file(FolderPath() + fileName);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    __builtin_trap();
  }
  const auto length = static_cast<qint64>(size);
  if (file.write(reinterpret_cast<const char*>(data), length) != length) {
    __builtin_trap();
  }
}

// Removes every file in the folder: the input, set-aside ".bad-" copies and the error logs
// the failed reads wrote, so the folder does not grow from run to run.
inline void ClearFolder() {
  QDir dir(FolderPath());
  for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
    dir.remove(name);
  }
}

}  // namespace zrn::fuzz
