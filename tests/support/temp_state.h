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
