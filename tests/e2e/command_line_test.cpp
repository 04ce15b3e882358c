#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "e2e/sim_process.h"
#include "support/temp_state.h"

namespace zrn {
namespace {

QString Built(const char* program) {
  return QCoreApplication::applicationDirPath() + QLatin1Char('/') + QLatin1String(program);
}

// An environment without any display, so a program that wanted one would fail.
QProcessEnvironment NoDisplay() {
  QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
    env.remove(QLatin1String(name));
  }
  return env;
}

using ProgramsWithSim = test::SimFixture;

// Asking for help or the version, or a mistyped or bad option, is answered on the terminal
// without a display, without a connection and without a file written beside the program.
TEST(ProgramCommandLine, HelpAndVersionAnswerAndLeaveTheFolderAlone) {
  struct Case {
    const char* program;
    QStringList args;
    int exitCode;
    const char* says;
  };
  const char* const sim = "zrn-switcher-sim";
  const Case cases[] = {
      {"zrn-pennaro", {"-h"}, 0, "--folder <dir>"},
      {"zrn-pennaro", {"--version"}, 0, "zrn-pennaro " ZRN_TEST_VERSION},
      {"zrn-pennaro", {"--bogus"}, 1, "Unknown option 'bogus'"},
      {"zrn-pennaro", {"--headless", "extra"}, 2, "unexpected argument: extra"},
      {sim, {"--help"}, 0, "input N silent|audio|toggle"},
      {sim, {"--version"}, 0, "zrn-switcher-sim " ZRN_TEST_VERSION},
      // Every refusal names the option at fault.
      {sim, {"--inputs", "0"}, 1, "--inputs: '0' is not a whole number from 1 to 16382"},
      {sim, {"--port", "http"}, 1, "--port: 'http' is not a whole number from 0 to 65535"},
      {sim, {"--control", "70000"}, 1, "--control: '70000' is not a whole number from 1 to 65535"},
      {sim, {"--listen", "nowhere"}, 1, "--listen: not an address: nowhere"},
      {sim, {"--scenario", "/nonexistent"}, 1, "--scenario: cannot read /nonexistent"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(
        QString(QLatin1String(c.program) + QLatin1Char(' ') + c.args.join(' ')).toStdString());
    QTemporaryDir dir;
    const QString copy = dir.filePath(QLatin1String(c.program));
    ASSERT_TRUE(QFile::copy(Built(c.program), copy));
    QProcess process;
    process.setProcessEnvironment(NoDisplay());
    process.setWorkingDirectory(dir.path());
    process.start(copy, c.args);
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), c.exitCode);
    const QString output =
        QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    EXPECT_TRUE(output.contains(QLatin1String(c.says))) << output.toStdString();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{QLatin1String(c.program)});
  }
}

// Two monitors configured with the same alarm relay, each watching its own output: one in a
// server rack (no window, no display, its folder named), one with a window, installed where the
// operator may not write, so that it keeps its files in the per-user data folder and says so
// once. The relay stays latched while either wants it, without a command storm, and SIGTERM
// ends each through its normal shut-down.
TEST_F(ProgramsWithSim, TwoMonitorsShareOneRelayCalmlyAndEndOnSigterm) {
  // Silence and audio are reported at once: what is measured is the monitors' own pace.
  ASSERT_NO_FATAL_FAILURE(StartSim({"--detect", "0", "--return", "0"}));
  const QString bin = dir.filePath(QStringLiteral("bin"));
  const QString data = dir.filePath(QStringLiteral("data"));
  const QString folders[2] = {dir.filePath(QStringLiteral("rack")),
                              data + QStringLiteral("/zrn-pennaro")};
  ASSERT_TRUE(QDir().mkpath(bin) && QDir().mkpath(folders[0]) && QDir().mkpath(folders[1]));
  ASSERT_TRUE(QFile::copy(Built("zrn-pennaro"), bin + QStringLiteral("/zrn-pennaro")));
  for (int m = 0; m < 2; ++m) {
    ASSERT_TRUE(test::WriteMonitorConfig(folders[m], {.port = port, .watched = 1, .first = 2 + m}));
  }
  test::ReadOnlyFolder readOnly(bin);
  ASSERT_TRUE(readOnly.Active());

  QProcess monitors[2];
  QProcessEnvironment env = NoDisplay();
  monitors[0].setProcessEnvironment(env);
  monitors[0].start(Built("zrn-pennaro"), {"--headless", "--folder", folders[0]});
  env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
  env.insert(QStringLiteral("XDG_DATA_HOME"), data);
  monitors[1].setProcessEnvironment(env);
  monitors[1].start(bin + QStringLiteral("/zrn-pennaro"), {});
  ASSERT_TRUE(monitors[0].waitForStarted(5000) && monitors[1].waitForStarted(5000));
  auto log = [&](int m) { return test::ReadText(folders[m] + QStringLiteral("/EventLog.txt")); };
  ASSERT_TRUE(QTest::qWaitFor(
      [&] { return sim->Status(QStringLiteral("connections")) == QStringLiteral("2"); }, 10000));
  QTest::qWait(2000);  // both exchanges complete

  // The first monitor wants the relay, the second does not: neither fights the other.
  sim->Command(QStringLiteral("input 2 silent"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return sim->RelayOn(); }, 10000));
  const qint64 before = sim->Status(QStringLiteral("relay_commands")).toLongLong();
  QElapsedTimer window;
  window.start();
  while (window.elapsed() < 5000) {
    ASSERT_TRUE(sim->RelayOn()) << "released after " << window.elapsed() << " ms";
    QTest::qWait(500);
  }
  EXPECT_LT(sim->Status(QStringLiteral("relay_commands")).toLongLong() - before, 10);

  // Both want it, then the one that latched it no longer does: it stays latched for the other.
  sim->Command(QStringLiteral("input 3 silent"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return log(1).contains("Loss Alarm Report On"); }, 10000));
  sim->Command(QStringLiteral("input 2 audio"));
  ASSERT_TRUE(QTest::qWaitFor([&] { return log(0).contains("Loss Alarm Report Off"); }, 10000));
  QTest::qWait(2000);
  EXPECT_TRUE(sim->RelayOn());
  sim->Command(QStringLiteral("input 3 audio"));
  EXPECT_TRUE(QTest::qWaitFor([&] { return !sim->RelayOn(); }, 10000));
  EXPECT_LT(sim->Status(QStringLiteral("relay_commands")).toLongLong(), 12);

  for (int m = 0; m < 2; ++m) {
    monitors[m].terminate();
    ASSERT_TRUE(monitors[m].waitForFinished(10000));
    EXPECT_EQ(monitors[m].exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(monitors[m].exitCode(), 0);
    EXPECT_TRUE(log(m).trimmed().endsWith(QStringLiteral("Monitor Closed")))
        << log(m).toStdString();
  }
  EXPECT_EQ(log(1).count(
                QStringLiteral("Files are kept in %1 (%2 is not writable)").arg(folders[1], bin)),
            1);
  EXPECT_EQ(QDir(bin).entryList(QDir::Files | QDir::Hidden), QStringList{"zrn-pennaro"});
}

}  // namespace
}  // namespace zrn
