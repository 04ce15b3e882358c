#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>

#include "e2e/sim_process.h"

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
      {"zrn-pennaro", {"--help"}, 0, "--headless"},
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
    ASSERT_TRUE(dir.isValid());
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

// The monitor in a server rack: no window, no display; a silence latches the alarm relay, and
// SIGTERM ends it through its normal shut-down. With a window SIGTERM closes the window the same
// way.
TEST(ProgramCommandLine, SilenceLatchesTheRelayAndSigtermClosesCleanly) {
  const struct {
    QStringList args;
    const char* platform;
  } cases[] = {{{"--headless"}, nullptr}, {{}, "offscreen"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.args.isEmpty() ? "with a window" : "headless");
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const quint16 port = test::FreePort();
    test::SimProcess sim(port, {"--detect", "0", "--return", "0"});
    ASSERT_TRUE(sim.Start());
    const QString folder = dir.filePath(QStringLiteral("data"));
    ASSERT_TRUE(QDir().mkpath(folder));
    ASSERT_TRUE(test::WriteMonitorConfig(folder, {.port = port, .watched = 4}));

    QProcess monitor;
    QProcessEnvironment env = NoDisplay();
    if (c.platform != nullptr) {
      env.insert(QStringLiteral("QT_QPA_PLATFORM"), QLatin1String(c.platform));
    }
    monitor.setProcessEnvironment(env);
    monitor.start(Built("zrn-pennaro"), c.args + QStringList{QStringLiteral("--folder"), folder});
    ASSERT_TRUE(monitor.waitForStarted(5000));
    ASSERT_TRUE(QTest::qWaitFor(
        [&] { return sim.Status(QStringLiteral("connections")) == QStringLiteral("1"); }, 10000));
    QTest::qWait(1500);  // the start-up exchange
    sim.Command(QStringLiteral("input 2 silent"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return sim.RelayOn(); }, 15000));

    monitor.terminate();  // SIGTERM
    ASSERT_TRUE(monitor.waitForFinished(10000));
    EXPECT_EQ(monitor.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(monitor.exitCode(), 0);
    const QString log = test::ReadText(folder + QStringLiteral("/EventLog.txt"));
    EXPECT_TRUE(log.contains(QStringLiteral("Loss Alarm Report On"))) << log.toStdString();
    EXPECT_TRUE(log.trimmed().endsWith(QStringLiteral("Monitor Closed"))) << log.toStdString();
  }
}

// Installed where the operator may not write, the monitor keeps its files in the per-user data
// folder and says so once.
TEST(ProgramCommandLine, AnUnwritableProgramFolderFallsBackToTheUserDataFolder) {
  QTemporaryDir dir;
  ASSERT_TRUE(dir.isValid());
  const QString bin = dir.filePath(QStringLiteral("bin"));
  const QString home = dir.filePath(QStringLiteral("home"));
  ASSERT_TRUE(QDir().mkpath(bin) && QDir().mkpath(home));
  ASSERT_TRUE(QFile::copy(Built("zrn-pennaro"), bin + QStringLiteral("/zrn-pennaro")));
  // Root writes anywhere, so the program then runs as nobody.
  const bool asNobody = ::getuid() == 0;
  using P = QFileDevice;
  const QFileDevice::Permissions readable = P::ReadOwner | P::ExeOwner | P::ReadOther | P::ExeOther;
  ASSERT_TRUE(QFile::setPermissions(dir.path(), readable | P::WriteOwner));
  ASSERT_TRUE(QFile::setPermissions(bin, readable));
  ASSERT_TRUE(QFile::setPermissions(home, readable | P::WriteOwner | P::WriteOther));

  QProcess monitor;
  QProcessEnvironment env = NoDisplay();
  env.insert(QStringLiteral("HOME"), home);
  env.remove(QStringLiteral("XDG_DATA_HOME"));
  monitor.setProcessEnvironment(env);
  if (asNobody) {
    monitor.setChildProcessModifier([] {
      if (::setgid(65534) != 0 || ::setuid(65534) != 0) {
        ::_exit(99);
      }
    });
  }
  monitor.start(bin + QStringLiteral("/zrn-pennaro"), {QStringLiteral("--headless")});
  ASSERT_TRUE(monitor.waitForStarted(5000));
  const QString log = home + QStringLiteral("/.local/share/zrn-pennaro/EventLog.txt");
  EXPECT_TRUE(
      QTest::qWaitFor([&] { return test::ReadText(log).contains("is not writable"); }, 10000));
  monitor.terminate();
  ASSERT_TRUE(monitor.waitForFinished(10000));
  EXPECT_EQ(monitor.exitCode(), 0) << monitor.readAllStandardError().toStdString();
  const QString text = test::ReadText(log);
  EXPECT_EQ(text.count(QStringLiteral("Files are kept in ") + QFileInfo(log).path() +
                       QStringLiteral(" (") + bin + QStringLiteral(" is not writable)")),
            1)
      << text.toStdString();
  EXPECT_TRUE(text.trimmed().endsWith(QStringLiteral("Monitor Closed")));
  EXPECT_EQ(QDir(bin).entryList(QDir::Files | QDir::Hidden), QStringList{"zrn-pennaro"});
  QFile::setPermissions(bin, readable | P::WriteOwner);  // so the folder can be removed
}

}  // namespace
}  // namespace zrn
