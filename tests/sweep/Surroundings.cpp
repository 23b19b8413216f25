// Preloaded into the agent of a sweep: what is around it, as the environment orders it.
//   KA_SWEEP_ROOTS   the folders that are watched, with ":" between
//   KA_SWEEP_END     the number of the change to what is below them at which the process dies, instead of making it
//   KA_SWEEP_COPY    a folder: it dies of a power cut, and this is where the roots are afterwards, by their numbers
//   KA_SWEEP_ALONE   the numbers of the roots of which the flushed names alone remain then
//   KA_SWEEP_PLAIN   the file system knows neither unnamed files nor links nor a rename that takes no name away
//   KA_SWEEP_SPEED   how many times as fast the time of waits goes by

#include "tests/support/FlushedDisk.h"

#include <QFile>
#include <QStringList>

#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

/// Set while this thread does something on behalf of this file.
thread_local bool isOurs = false;

class Surroundings {
public:
  /// Never destroyed: the process changes files to its very end.
  static Surroundings &get() {
    static auto *const made = new Surroundings;
    return *made;
  }

  [[nodiscard]] bool isPlain() const { return plain; }
  [[nodiscard]] long speed() const { return factor; }
  [[nodiscard]] bool watches(const QString &path) const {
    for (const QString &root : roots)
      if (path == root || path.startsWith(root + u'/')) return true;
    return false;
  }
  /// Whether that change makes a difference to how the process dies.
  [[nodiscard]] bool countsContents() const { return copy.isEmpty(); }
  /// A change is about to be made.
  void count() {
    if (++changes != endAt) return;
    if (!copy.isEmpty()) cutPower();
    ::kill(::getpid(), SIGKILL);
  }

  std::recursive_mutex order; ///< of all that is done to files
  FlushedDisk disk;

private:
  Surroundings() {
    endAt = qEnvironmentVariableIntValue("KA_SWEEP_END");
    factor = std::max(1, qEnvironmentVariableIntValue("KA_SWEEP_SPEED"));
    plain = qEnvironmentVariableIsSet("KA_SWEEP_PLAIN");
    copy = qEnvironmentVariable("KA_SWEEP_COPY");
    alone = qEnvironmentVariable("KA_SWEEP_ALONE");
    roots = qEnvironmentVariable("KA_SWEEP_ROOTS").split(u':', Qt::SkipEmptyParts);
    for (const QString &root : roots)
      if (!copy.isEmpty()) disk.keep(root);
    // Of this process alone, not of the programs that it starts.
    ::unsetenv("LD_PRELOAD");
  }

  void cutPower() const {
    for (qsizetype number = 0; number < roots.size(); ++number)
      disk.restore(roots[number], copy + u"/%1"_s.arg(number), alone.contains(QString::number(number)));
  }

  int endAt = 0;
  int factor = 1;
  bool plain = false;
  QString copy;
  QString alone;
  QStringList roots;
  int changes = 0;
};

QString pathOf(int descriptor) {
  return QFile::symLinkTarget(u"/proc/self/fd/%1"_s.arg(descriptor));
}

ino_t numberOf(int descriptor) {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 ? status.st_ino : 0;
}

/// Makes a change: counted and in order where it is one of what is watched, and noted afterwards by @p note.
template <class Watched, class Call, class Note>
auto changed(const Watched &isWatched, const Call &call, const Note &note) -> decltype(call()) {
  if (isOurs) return call();
  isOurs = true;
  Surroundings &all = Surroundings::get();
  const std::lock_guard scope(all.order);
  const bool counts = isWatched(all);
  if (counts) all.count();
  const auto result = call();
  const int reason = errno;
  if (counts) note(all, result);
  isOurs = false;
  errno = reason;
  return result;
}

template <class Call> auto changed(const char *path, const Call &call) {
  const QString name = QFile::decodeName(path);
  return changed([&](const Surroundings &all) { return all.watches(name); }, call, [](Surroundings &, auto) {});
}
/// Of what is in a file, or told about it: nothing of that is kept before it is flushed.
template <class Call> auto changed(int descriptor, const Call &call) {
  return changed([=](const Surroundings &all) { return all.countsContents() && all.watches(pathOf(descriptor)); }, call,
                 [](Surroundings &, auto) {});
}

/// Something loses its name, to another file or to nobody.
template <class Call> int replaced(const char *path, const Call &call) {
  const QString name = QFile::decodeName(path);
  ino_t gone = 0;
  return changed(
      [&](const Surroundings &all) {
        gone = FlushedDisk::numberOf(name);
        return all.watches(name);
      },
      call,
      [&](Surroundings &all, int result) {
        if (result == 0) all.disk.forget(gone);
      });
}

template <class Call> int flushed(int descriptor, const Call &call) {
  return changed([=](const Surroundings &all) { return all.watches(pathOf(descriptor)); }, call,
                 [=](Surroundings &all, int result) {
                   if (result == 0) all.disk.flush(descriptor);
                 });
}

int refused(int reason) {
  errno = reason;
  return -1;
}

int opened(const char *path, int flags, mode_t mode, int (*real)(const char *, int, ...)) {
  const bool isUnnamed = (flags & O_TMPFILE) == O_TMPFILE;
  if (!isUnnamed && !(flags & (O_CREAT | O_TRUNC))) return real(path, flags, mode);
  const QString name = QFile::decodeName(path);
  bool isNew = isUnnamed;
  return changed(
      [&](const Surroundings &all) {
        isNew |= FlushedDisk::numberOf(name) == 0;
        return all.watches(name);
      },
      [&] { return isUnnamed && Surroundings::get().isPlain() ? refused(EOPNOTSUPP) : real(path, flags, mode); },
      [&](Surroundings &all, int descriptor) {
        if (isNew && descriptor >= 0) all.disk.forget(numberOf(descriptor));
      });
}

mode_t modeAfter(int flags, va_list rest) {
  const bool isMaking = (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE;
  return isMaking ? va_arg(rest, mode_t) : 0;
}

constexpr long kSecond = 1'000'000'000; ///< nanoseconds

long between(const timespec &from, const timespec &to) {
  return (to.tv_sec - from.tv_sec) * kSecond + to.tv_nsec - from.tv_nsec;
}

timespec later(const timespec &from, long nanoseconds) {
  const long rest = from.tv_nsec + nanoseconds;
  return {from.tv_sec + rest / kSecond, rest % kSecond};
}

/// The C library's own.
template <class Function> Function *real(const char *name) {
  return reinterpret_cast<Function *>(::dlsym(RTLD_NEXT, name));
}

} // namespace

#pragma GCC visibility push(default)

extern "C" {

int open(const char *path, int flags, ...) {
  static auto *const next = real<int(const char *, int, ...)>("open");
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = modeAfter(flags, rest);
  va_end(rest);
  return opened(path, flags, mode, next);
}
[[gnu::alias("open")]] int open64(const char *path, int flags, ...);
ssize_t write(int file, const void *bytes, size_t count) {
  static auto *const next = real<ssize_t(int, const void *, size_t)>("write");
  return changed(file, [=] { return next(file, bytes, count); });
}
int ftruncate(int file, off_t size) noexcept {
  static auto *const next = real<int(int, off_t)>("ftruncate");
  return changed(file, [=] { return next(file, size); });
}
[[gnu::alias("ftruncate")]] int ftruncate64(int file, off64_t size) noexcept;
int fchmod(int file, mode_t mode) noexcept {
  static auto *const next = real<int(int, mode_t)>("fchmod");
  return changed(file, [=] { return next(file, mode); });
}
int chmod(const char *path, mode_t mode) noexcept {
  static auto *const next = real<int(const char *, mode_t)>("chmod");
  return changed(path, [=] { return next(path, mode); });
}
int futimens(int file, const timespec dates[2]) noexcept {
  static auto *const next = real<int(int, const timespec *)>("futimens");
  return changed(file, [=] { return next(file, dates); });
}
int fsync(int file) {
  static auto *const next = real<int(int)>("fsync");
  return flushed(file, [=] { return next(file); });
}
int fdatasync(int file) {
  static auto *const next = real<int(int)>("fdatasync");
  return flushed(file, [=] { return next(file); });
}
int mkdir(const char *path, mode_t mode) noexcept {
  static auto *const next = real<int(const char *, mode_t)>("mkdir");
  return changed(path, [=] { return next(path, mode); });
}
int rmdir(const char *path) noexcept {
  static auto *const next = real<int(const char *)>("rmdir");
  return changed(path, [=] { return next(path); });
}
int link(const char *from, const char *to) noexcept {
  static auto *const next = real<int(const char *, const char *)>("link");
  return changed(to, [=] { return Surroundings::get().isPlain() ? refused(EPERM) : next(from, to); });
}
int linkat(int fromFolder, const char *from, int toFolder, const char *to, int flags) noexcept {
  static auto *const next = real<int(int, const char *, int, const char *, int)>("linkat");
  return changed(
      to, [=] { return Surroundings::get().isPlain() ? refused(EPERM) : next(fromFolder, from, toFolder, to, flags); });
}
int rename(const char *from, const char *to) noexcept {
  static auto *const next = real<int(const char *, const char *)>("rename");
  return replaced(to, [=] { return next(from, to); });
}
int renameat2(int fromFolder, const char *from, int toFolder, const char *to, unsigned flags) noexcept {
  static auto *const next = real<int(int, const char *, int, const char *, unsigned)>("renameat2");
  return replaced(to, [=] {
    return flags && Surroundings::get().isPlain() ? refused(EINVAL) : next(fromFolder, from, toFolder, to, flags);
  });
}
int unlink(const char *path) noexcept {
  static auto *const next = real<int(const char *)>("unlink");
  return replaced(path, [=] { return next(path); });
}

int clock_gettime(clockid_t clock, timespec *now) noexcept {
  static auto *const next = real<int(clockid_t, timespec *)>("clock_gettime");
  const int result = next(clock, now);
  const long speed = clock == CLOCK_BOOTTIME && result == 0 ? Surroundings::get().speed() : 1;
  if (speed == 1) return result;
  static const timespec first = *now;
  *now = later(first, between(first, *now) * speed);
  return result;
}
int pthread_cond_clockwait(pthread_cond_t *condition, pthread_mutex_t *mutex, clockid_t clock, const timespec *end) {
  using Wait = int(pthread_cond_t *, pthread_mutex_t *, clockid_t, const timespec *);
  static auto *const next = real<Wait>("pthread_cond_clockwait");
  timespec now{};
  ::clock_gettime(clock, &now);
  const timespec sooner = later(now, std::max(0L, between(now, *end)) / Surroundings::get().speed());
  return next(condition, mutex, clock, &sooner);
}

} // extern "C"

#pragma GCC visibility pop
