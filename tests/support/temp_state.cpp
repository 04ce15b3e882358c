#include "support/temp_state.h"

#include <sys/resource.h>
#include <QProcess>
#include <csignal>

namespace zrn::test {

namespace {

bool CanWriteIn(const QString& path) {
  QFile probe(path + QStringLiteral("/.probe"));
  if (!probe.open(QIODevice::WriteOnly)) {
    return false;
  }
  probe.close();
  probe.remove();
  return true;
}

bool Chattr(const QString& flag, const QString& path) {
  return QProcess::execute(QStringLiteral("chattr"), {flag, path}) == 0;
}

}  // namespace

ReadOnlyFolder::ReadOnlyFolder(const QString& path)
    : path_(path), permissions_(QFile(path).permissions()) {
  QFile(path).setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::ReadGroup |
                             QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
  if (CanWriteIn(path)) {
    immutable_ = Chattr(QStringLiteral("+i"), path);
  }
  active_ = !CanWriteIn(path);
}

ReadOnlyFolder::~ReadOnlyFolder() {
  if (immutable_) {
    Chattr(QStringLiteral("-i"), path_);
  }
  QFile(path_).setPermissions(permissions_);
}

FileSizeLimit::FileSizeLimit(long long bytes) {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  savedCurrent_ = static_cast<long long>(limit.rlim_cur);
  savedHandler_ = std::signal(SIGXFSZ, SIG_IGN);
  limit.rlim_cur = static_cast<rlim_t>(bytes);
  setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit() {
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = static_cast<rlim_t>(savedCurrent_);
  setrlimit(RLIMIT_FSIZE, &limit);
  std::signal(SIGXFSZ, savedHandler_);
}

}  // namespace zrn::test
