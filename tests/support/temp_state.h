#pragma once

#include <gtest/gtest.h>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "core/ports.h"
#include "core/state.h"

namespace zrn::test {

// A state whose files live in a fresh temporary folder and whose clock stands still.
// The folder is kept when the test fails, so what was written can be inspected.
class TempStateTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(dir.isValid());
    s.AppPath = dir.path() + QLatin1Char('/');
    s.clock = &clock;
  }
  void TearDown() override {
    if (HasFailure()) {
      dir.setAutoRemove(false);
      std::fprintf(stderr, "kept test folder %s\n", qPrintable(dir.path()));
    }
  }

  QString PathOf(const QString& name) const { return s.AppPath + name; }
  QByteArray ReadAll(const QString& name) const {
    QFile f(PathOf(name));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
  }
  void WriteAll(const QString& name, const QByteArray& bytes) const {
    QFile f(PathOf(name));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
  }
  QStringList Files() const { return QDir(dir.path()).entryList(QDir::Files, QDir::Name); }
  // The lines of the error log after its header.
  QStringList ErrorLines() const {
    const QStringList all = QString::fromUtf8(ReadAll(QStringLiteral("Errorlog.txt")))
                                .split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
    const qsizetype rule = all.indexOf(QString(80, QLatin1Char('-')));
    return rule < 0 ? QStringList() : all.mid(rule + 1);
  }

  QTemporaryDir dir;
  ManualClock clock;
  State s;
};

}  // namespace zrn::test

namespace zrn::test {

// Makes a folder unwritable for as long as it lives, for root too: permissions first, and the
// immutable attribute when permissions do not bind the current user.
class ReadOnlyFolder {
 public:
  explicit ReadOnlyFolder(const QString& path);
  ~ReadOnlyFolder();
  ReadOnlyFolder(const ReadOnlyFolder&) = delete;
  ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;
  // False when neither way keeps this user from writing there.
  bool Active() const { return active_; }

 private:
  QString path_;
  QFile::Permissions permissions_;
  bool immutable_ = false;
  bool active_ = false;
};

// Limits the size of any file this process writes, as a full disk would; the signal a write
// beyond the limit raises is ignored meanwhile, so the write just fails.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(long long bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  long long savedCurrent_ = 0;
  void (*savedHandler_)(int) = nullptr;
};

}  // namespace zrn::test
