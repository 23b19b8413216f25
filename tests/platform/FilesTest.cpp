#include "platform/FileIdentity.h"
#include "platform/FileNames.h"
#include "platform/UnpublishedFile.h"
#include "platform/VolumeFacts.h"
#include "platform/linux/BlockDevice.h"
#include "platform/linux/MountTable.h"
#include "tests/support/RefusedCalls.h"
#include "tests/support/TestProfile.h"

#include <gmock/gmock.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <utility>

using namespace Qt::StringLiterals;
using platform::UnpublishedFile;

namespace {

/// What happens while a name is reserved.
std::function<void()> onLookAtReservation; ///< once, before it is held against what was made
std::function<int()> onReplacement;        ///< before something is renamed over it; an error that it fails with, or 0

} // namespace

/// These stand before the C library's.
int lstat(const char *path, struct stat *facts) noexcept {
  const bool isThere = ::syscall(SYS_access, path, F_OK) == 0; // first it is asked whether the name is free
  if (const auto look = isThere ? std::exchange(onLookAtReservation, nullptr) : nullptr) look();
  return ::fstatat(AT_FDCWD, path, facts, AT_SYMLINK_NOFOLLOW);
}
int rename(const char *from, const char *to) noexcept {
  errno = onReplacement && ::syscall(SYS_access, to, F_OK) == 0 ? onReplacement() : 0;
  return errno != 0 ? -1 : static_cast<int>(::syscall(SYS_rename, from, to));
}

namespace {

class UnpublishedFileTest : public testing::TestWithParam<UnpublishedFile::Naming> {
protected:
  [[nodiscard]] UnpublishedFile written(const QByteArray &text) const {
    auto file = UnpublishedFile::create(folder.path(), GetParam());
    EXPECT_TRUE(file.write(text.constData(), static_cast<std::size_t>(text.size())) && file.sync() && !file.fault());
    return file;
  }
  [[nodiscard]] QStringList entries(QDir::Filters more = QDir::Hidden | QDir::System) const {
    return QDir(folder.path()).entryList(QDir::Files | more);
  }

  const QTemporaryDir folder;
};

TEST_P(UnpublishedFileTest, hasNoNameUntilPublishedAndNeverOverwrites) {
  writeFile(folder.filePath(u"a.jpg"_s), "the user's");
  ASSERT_TRUE(QFile::link(folder.filePath(u"nowhere"_s), folder.filePath(u"b.jpg"_s)));
  const auto usersMask = ::umask(027);
  auto file = written("ours");
  ::umask(usersMask);
  file.setDates(QDateTime::fromMSecsSinceEpoch(-1500));
  EXPECT_EQ(entries({}), QStringList{u"a.jpg"_s});
  EXPECT_EQ(file.publish(folder.filePath(u"a.jpg"_s)), UnpublishedFile::Publish::NameTaken);
  EXPECT_EQ(file.publish(folder.filePath(u"b.jpg"_s)), UnpublishedFile::Publish::NameTaken) << "a link to nowhere";
  EXPECT_FALSE(file.fault()) << "a taken name is none";
  EXPECT_EQ(file.publish(folder.filePath(u"c.jpg"_s)), UnpublishedFile::Publish::Published);
  EXPECT_EQ(entries(), (QStringList{u"a.jpg"_s, u"b.jpg"_s, u"c.jpg"_s}));
  EXPECT_EQ(contentOf(folder.filePath(u"a.jpg"_s)), "the user's");
  const QString ours = folder.filePath(u"c.jpg"_s);
  EXPECT_EQ(contentOf(ours), "ours");
  EXPECT_EQ(QFileInfo(ours).lastModified().toMSecsSinceEpoch(), -1500) << "also before 1970";
  const auto ofOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  EXPECT_EQ(QFile::permissions(ours) & ofOthers, QFile::ReadGroup) << "the user's mask holds";
}

TEST_P(UnpublishedFileTest, isHeldAgainstFilesByTheirBytes) {
  const QByteArray large(600'000, 'x');
  const auto file = written(large + '1');
  const std::pair<QByteArray, bool> contents[] = {
      {large + '1', true}, {large + '2', false}, {large, false}, {large + "1x", false}};
  const QString path = folder.filePath(u"a"_s);
  const QString pipe = folder.filePath(u"pipe"_s);
  for (const auto &[content, isSame] : contents) {
    writeFile(path, content);
    EXPECT_EQ(file.isSameAs(path, [] { return false; }), isSame);
  }
  writeFile(path, large + '1');
  ASSERT_TRUE(QFile::link(path, folder.filePath(u"link"_s))
              && ::mkfifo(QFile::encodeName(pipe).constData(), 0600) == 0);
  for (const QString &other : {folder.filePath(u"link"_s), pipe, folder.path(), folder.filePath(u"none"_s)})
    EXPECT_FALSE(file.isSameAs(other, [] { return false; })) << other.toStdString();
  int pieces = 0;
  EXPECT_FALSE(file.isSameAs(path, [&] { return ++pieces == 2; }));
  EXPECT_EQ(pieces, 2) << "it ends between pieces";
}

TEST_P(UnpublishedFileTest, leavesNothingWhenDiscardedAndSaysWhyItCannotBePublished) {
  {
    auto file = written("half a picture");
    EXPECT_EQ(file.publish(folder.filePath(u"missing/a.jpg"_s)), UnpublishedFile::Publish::Failed);
    EXPECT_EQ(file.fault(), platform::FileFault::Other);
    EXPECT_FALSE(file.sync());
  }
  EXPECT_THAT(entries(), testing::IsEmpty());
  auto nowhere = UnpublishedFile::create(folder.filePath(u"missing"_s), GetParam());
  EXPECT_FALSE(nowhere.write("x", 1) || nowhere.sync());
  EXPECT_EQ(nowhere.publish(folder.filePath(u"a.jpg"_s)), UnpublishedFile::Publish::Failed);
}

INSTANTIATE_TEST_SUITE_P(Naming, UnpublishedFileTest,
                         testing::Values(UnpublishedFile::Naming::Unnamed, UnpublishedFile::Naming::Hidden));

TEST(UnpublishedFiles, makeDoWithWhatTheFileSystemKnows) {
  using enum UnpublishedFile::Publish;
  using Fault = std::optional<platform::FileFault>;
  const RefusedCall noUnnamed{SYS_openat, EOPNOTSUPP, 2, O_TMPFILE};
  const RefusedCall noLink{SYS_link, EPERM};
  const RefusedCall noFlag{SYS_renameat2, EINVAL};
  const std::tuple<std::vector<RefusedCall>, bool, Fault> cases[] = {
      {{noUnnamed}, true, {}},
      {{{SYS_openat, EISDIR, 2, O_TMPFILE}}, true, {}},
      {{{SYS_openat, EINVAL, 2, O_TMPFILE}}, true, {}},
      {{{SYS_openat, EACCES, 2, O_TMPFILE}}, false, platform::FileFault::Other},
      {{{SYS_openat, ENOSPC, 2, O_TMPFILE}}, false, platform::FileFault::DiskFull},
      {{noUnnamed, noLink}, true, {}},
      {{noUnnamed, noFlag}, true, {}},
      {{noUnnamed, {SYS_renameat2, ENOSYS}}, true, {}},
      {{noUnnamed, {SYS_renameat2, EOPNOTSUPP}, {SYS_link, ENOSYS}}, true, {}},
      {{noUnnamed, noFlag, noLink}, true, {}},
      {{noUnnamed, noFlag, noLink, {SYS_rename, EIO}}, false, platform::FileFault::Other},
      {{{SYS_linkat, ENAMETOOLONG}}, false, {}},
      {{{SYS_linkat, EINVAL}}, false, {}},
      {{{SYS_linkat, ENOENT}}, false, {}}, // the folder is there
      {{noUnnamed, {SYS_renameat2, EACCES}}, false, platform::FileFault::Other},
      {{{SYS_linkat, EDQUOT}}, false, platform::FileFault::DiskFull},
      {{{SYS_fdatasync, EIO}}, false, platform::FileFault::Other},
      {{{SYS_fdatasync, ENOSPC}}, false, platform::FileFault::DiskFull},
      {{{SYS_flock, ENOLCK}, noUnnamed}, true, {}},
      {{{SYS_linkat, EPERM}}, true, {}},
      {{{SYS_linkat, EOPNOTSUPP}, {SYS_renameat2, EINVAL}, {SYS_link, EPERM}}, true, {}},
  };
  const QDateTime date = QDateTime::fromSecsSinceEpoch(1'000'000'000);
  for (std::size_t row = 0; const auto &[refused, isPublished, fault] : cases) {
    SCOPED_TRACE(row++);
    const QTemporaryDir folder;
    writeFile(folder.filePath(u"taken"_s), {});
    const auto tryIt = [&] {
      auto file = UnpublishedFile::create(folder.path());
      const bool isReady = file.write("x", 1) && file.sync();
      file.setDates(date);
      EXPECT_TRUE(!isPublished || file.publish(folder.filePath(u"taken"_s)) == NameTaken);
      EXPECT_EQ(isReady && file.publish(folder.filePath(u"a"_s)) == Published, isPublished);
      EXPECT_EQ(file.fault(), fault);
    };
    if (!withRefusedCalls(refused, tryIt)) GTEST_SKIP() << "this kernel refuses nothing on order";
    EXPECT_EQ(filesBelow(folder.path()), isPublished ? (QStringList{u"a"_s, u"taken"_s}) : QStringList{u"taken"_s});
    EXPECT_EQ(contentOf(folder.filePath(u"a"_s)), isPublished ? "x" : "");
    EXPECT_TRUE(!isPublished || QFileInfo(folder.filePath(u"a"_s)).lastModified() == date);
    EXPECT_EQ(contentOf(folder.filePath(u"taken"_s)), "");
  }
}

constexpr int kSystemRefuses = 77;

/// Where nothing but a reservation keeps from overwriting.
struct Reservation : testing::Test {
  [[nodiscard]] bool publish(UnpublishedFile::Publish expected) const {
    return withRefusedCalls({{SYS_openat, EOPNOTSUPP, 2, O_TMPFILE}, {SYS_renameat2, EINVAL}, {SYS_link, EPERM}}, [&] {
      auto file = UnpublishedFile::create(folder.path());
      EXPECT_TRUE(file.write("x", 1) && file.sync());
      EXPECT_EQ(file.publish(path), expected);
    });
  }
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.jpg"_s);
};

TEST_F(Reservation, isLeftToWhoeverPutsAFileThere) {
  const std::pair<bool, QByteArray> cases[] = {{true, "the user's"}, {false, "the user's"}, {true, ""}};
  for (const auto &[isReplaced, content] : cases) {
    const QString others = folder.filePath(u"others"_s);
    writeFile(others, content); // now: so that it is another file for sure
    onLookAtReservation = [&] {
      EXPECT_TRUE(!isReplaced || (QFile::remove(path) && QFile::rename(others, path)));
      if (!isReplaced) writeFile(path, content);
    };
    if (!publish(UnpublishedFile::Publish::Failed)) GTEST_SKIP() << "this kernel refuses nothing on order";
    QFile::remove(others);
    EXPECT_EQ(filesBelow(folder.path()), QStringList{u"a.jpg"_s});
    EXPECT_EQ(contentOf(path), content);
    EXPECT_TRUE(QFile::remove(path));
  }
}

TEST_F(Reservation, goesWhenItIsOfNoUse) {
  for (const int error : {EIO, EEXIST}) {
    onReplacement = [&] { return error; };
    if (!publish(UnpublishedFile::Publish::Failed)) GTEST_SKIP() << "this kernel refuses nothing on order";
    EXPECT_THAT(filesBelow(folder.path()), testing::IsEmpty());
  }
}

TEST_F(Reservation, isSweptWithItsFileAfterAKill) {
  writeFile(folder.filePath(u"empty.jpg"_s), {});
  const pid_t child = ::fork();
  if (child == 0) {
    onReplacement = []() -> int { ::_exit(0); };
    ::_exit(publish(UnpublishedFile::Publish::Published) ? 1 : kSystemRefuses);
  }
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  if (WEXITSTATUS(status) == kSystemRefuses) GTEST_SKIP() << "this kernel refuses nothing on order";
  ASSERT_EQ(status, 0);
  const QStringList left = filesBelow(folder.path());
  ASSERT_EQ(left.size(), 3) << "a reservation and its file";

  // A process looks once into a folder, so each case has one of its own.
  const std::tuple<bool, QByteArray, QStringList> cases[] = {
      {true, {}, left}, {false, "the user's", left.mid(1)}, {false, {}, {u"empty.jpg"_s}}};
  for (const auto &[isBusy, content, remaining] : cases) {
    const QTemporaryDir copy;
    for (const QString &name : left)
      writeFile(copy.filePath(name), name == u"a.jpg" ? content : QByteArray());
    QFile file(copy.filePath(left.first()));
    ASSERT_TRUE(file.open(QFile::ReadWrite) && (!isBusy || ::flock(file.handle(), LOCK_EX) == 0));
    EXPECT_FALSE(UnpublishedFile::create(copy.path(), UnpublishedFile::Naming::Hidden).fault());
    EXPECT_EQ(filesBelow(copy.path()), remaining);
  }

  // Also where a file takes its name that was made in another folder.
  const QTemporaryDir parent;
  for (const QString &name : left)
    writeFile(parent.filePath(u"day/"_s + name), {});
  auto file = UnpublishedFile::create(parent.path(), UnpublishedFile::Naming::Hidden);
  EXPECT_EQ(file.publish(parent.filePath(u"day/a.jpg"_s)), UnpublishedFile::Publish::Published);
  EXPECT_EQ(filesBelow(parent.path()), (QStringList{u"day/a.jpg"_s, u"day/empty.jpg"_s}));
}

TEST(HiddenFiles, areSweptOnceTheirWriterIsGone) {
  const QTemporaryDir folder;
  const QString dead = folder.filePath(u".downloaderpictora-dead.part"_s);
  QFile busy(folder.filePath(u".downloaderpictora-busy.part"_s));
  for (const QString &path : {dead, busy.fileName(), folder.filePath(u"other.part"_s)})
    writeFile(path, "x");
  ASSERT_TRUE(busy.open(QFile::ReadWrite) && ::flock(busy.handle(), LOCK_EX) == 0);
  const auto create = [&] { return UnpublishedFile::create(folder.path(), UnpublishedFile::Naming::Hidden); };
  EXPECT_FALSE(create().fault());
  EXPECT_FALSE(QFile::exists(dead));
  EXPECT_TRUE(busy.exists() && QFile::exists(folder.filePath(u"other.part"_s)));
  writeFile(dead, "x");
  EXPECT_FALSE(create().fault());
  EXPECT_TRUE(QFile::exists(dead)) << "a folder is looked through once";
}

TEST(FileNames, becomePlainerStepByStep) {
  const std::tuple<QString, QString, QString> cases[] = {
      {u"a b.c.JPG"_s, u"a b.c.JPG"_s, u"a b.c.JPG"_s},
      {u"é\"*:<>?\\|\t\x7f.JPG"_s, u"é__________.JPG"_s, u"___________.JPG"_s},
      {u" Birds. ."_s, u" Birds"_s, u" Birds"_s},
      {u". ."_s, u"_"_s, u"_"_s},
      {u"nul.JPG"_s, u"_nul.JPG"_s, u"_nul.JPG"_s},
      {u"COM1"_s, u"_COM1"_s, u"_COM1"_s},
      {u"nullify.con"_s, u"nullify.con"_s, u"nullify.con"_s},
      {u"写真.JPG"_s, u"__.JPG"_s, u"__.JPG"_s},
  };
  for (const auto &[name, first, last] : cases) {
    EXPECT_EQ(platform::plainerName(name), first);
    EXPECT_EQ(platform::plainerName(first), last);
  }
}

constexpr char kPlace[] = "/media"; // where desktops mount

/// In a process of its own, whose mounts nobody else sees.
[[noreturn]] void mountAndLook() {
  const auto isUnmountable = [] { return platform::fileSystemInfo(QString::fromLatin1(kPlace))->unmountable; };
  const bool apart = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
  if (!apart || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) ::_exit(kSystemRefuses);
  const bool before = isUnmountable();
  if (::mount("a-new-disk", kPlace, "tmpfs", 0, nullptr) != 0) ::_exit(kSystemRefuses);
  const bool mounted = isUnmountable();
  ::umount(kPlace);
  ::_exit(!before && mounted && !isUnmountable() ? 0 : 1);
}

TEST(Volumes, areLookedAtAnewWhenOneIsMountedOrTakenAway) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int status = -1;
  EXPECT_EXIT(
      mountAndLook(), [&](int ended) { return (status = WEXITSTATUS(ended)) == 0 || status == kSystemRefuses; }, "");
  if (status == kSystemRefuses) GTEST_SKIP() << "this system lets nobody mount";
}

TEST(FileIdentity, tellsAFileFromOthersFromLinksToItAndFromItsOtherStates) {
  const QTemporaryDir folder;
  const auto identityOf = [&](const QString &name) { return platform::fileIdentity(folder.filePath(name)); };
  const auto written = [&](const QString &name, const QByteArray &content, qint64 date = 1'700'000'000'500) {
    writeFile(folder.filePath(name), content);
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QFile::ReadWrite));
    EXPECT_TRUE(file.setFileTime(QDateTime::fromMSecsSinceEpoch(date), QFile::FileModificationTime));
    return identityOf(name);
  };
  const auto identity = written(u"a.jpg"_s, "same");
  ASSERT_TRUE(identity && QFile::link(folder.filePath(u"a.jpg"_s), folder.filePath(u"link.jpg"_s)));
  EXPECT_TRUE(identity != identityOf(u"link.jpg"_s) && !identityOf(u"missing.jpg"_s));
  EXPECT_NE(identity, written(u"other.jpg"_s, "same"));
  EXPECT_NE(identity, written(u"a.jpg"_s, "same", 1'700'000'000'501)) << "of another date";
  EXPECT_NE(identity, written(u"a.jpg"_s, "longer")) << "of another size";
  ASSERT_TRUE(QFile::rename(folder.filePath(u"a.jpg"_s), folder.filePath(u"moved.jpg"_s)));
  EXPECT_EQ(identity, written(u"moved.jpg"_s, "same")) << "by whatever name";
}

/// On a folder tree in the form of sysfs: an encrypted volume on the partition of a stick.
TEST(Volumes, knowWhatCanBeTakenAway) {
  const auto mounts = platform::parseMountTable("21 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
                                                "30 21 8:17 / /media/u/My\\040Card rw shared:2 - vfat /dev/sdb1 rw\n"
                                                "32 21 0:40 / /home/u/nas rw - nfs4 nas:/export rw\n"
                                                "33 21 8:49 / /home/u/nas ro,nosuid - btrfs /dev/sdd1 rw\n");
  EXPECT_EQ(platform::mountOf(mounts, "/media/u/My Card/DCIM")->type, u"vfat"_s);
  EXPECT_EQ(platform::mountOf(mounts, "/media/u/My Cards")->type, u"ext4"_s);
  EXPECT_EQ(platform::mountOf(mounts, "/home/u/nas/x")->type, u"btrfs"_s) << "the later mount covers the earlier";
  for (const char *place : {"/media/u/card", "/run/media/u/card", "/run/user/1000/gvfs"})
    EXPECT_TRUE(platform::isUnmountablePlace(place)) << place;
  for (const char *place : {"/", "/mediathek", "/run/user/1000/doc"})
    EXPECT_FALSE(platform::isUnmountablePlace(place)) << place;
  EXPECT_TRUE(platform::isHotPluggable(u"/sys/devices/pci0000:00/0000:00:14.0/usb2/2-1/host6/block/sdb"_s));
  EXPECT_FALSE(platform::isHotPluggable(u"/sys/devices/platform/usb/fwnode"_s)) << "no number of a bus";
  EXPECT_FALSE(platform::isHotPluggable(u"/sys/devices/pci0000:00/0000:00:1f.2/ata1/host0/block/sda"_s));
  EXPECT_TRUE(platform::isNetworkFileSystem(u"cifs"_s) && !platform::isNetworkFileSystem(u"ext4"_s));

  const QTemporaryDir tree;
  const QString root = QFileInfo(tree.path()).canonicalFilePath();
  const QString stick = root + u"/usb1/sdb"_s;
  writeFile(stick + u"/removable"_s, "1\n");
  writeFile(stick + u"/sdb1/partition"_s, "1\n");
  QDir().mkpath(root + u"/virtual/dm-0/slaves"_s);
  QFile::link(stick + u"/sdb1"_s, root + u"/virtual/dm-0/slaves/sdb1"_s);
  EXPECT_EQ(platform::disksOf(root + u"/virtual/dm-0"_s), QStringList{stick});
  EXPECT_TRUE(platform::isRemovableDisk(stick));
  EXPECT_FALSE(platform::fileSystemInfo(u"/"_s)->removable) << "the disk that the system runs from";
}

} // namespace
