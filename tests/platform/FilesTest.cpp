#include "platform/FileDates.h"
#include "platform/FileIdentity.h"
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

using namespace Qt::StringLiterals;
using platform::UnpublishedFile;

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
  EXPECT_EQ(entries({}), QStringList{u"a.jpg"_s});
  EXPECT_EQ(file.publish(folder.filePath(u"a.jpg"_s)), UnpublishedFile::Publish::NameTaken);
  EXPECT_EQ(file.publish(folder.filePath(u"b.jpg"_s)), UnpublishedFile::Publish::NameTaken) << "a link to nowhere";
  EXPECT_FALSE(file.fault()) << "a taken name is none";
  EXPECT_EQ(file.publish(folder.filePath(u"c.jpg"_s)), UnpublishedFile::Publish::Published);
  EXPECT_EQ(entries(), (QStringList{u"a.jpg"_s, u"b.jpg"_s, u"c.jpg"_s}));
  EXPECT_EQ(contentOf(folder.filePath(u"a.jpg"_s)), "the user's");
  const QString ours = folder.filePath(u"c.jpg"_s);
  EXPECT_EQ(contentOf(ours), "ours");
  EXPECT_TRUE(platform::setFileDates(ours, QDateTime::fromMSecsSinceEpoch(-1500)));
  EXPECT_EQ(QFileInfo(ours).lastModified().toMSecsSinceEpoch(), -1500) << "also before 1970";
  const auto ofOthers = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
  EXPECT_EQ(QFile::permissions(ours) & ofOthers, QFile::ReadGroup) << "the user's mask holds";
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
  const std::tuple<std::vector<RefusedCall>, bool, Fault> cases[] = {
      {{noUnnamed}, true, {}},
      {{{SYS_openat, EISDIR, 2, O_TMPFILE}}, true, {}},
      {{{SYS_openat, EINVAL, 2, O_TMPFILE}}, true, {}},
      {{{SYS_openat, EACCES, 2, O_TMPFILE}}, false, platform::FileFault::Other},
      {{{SYS_openat, ENOSPC, 2, O_TMPFILE}}, false, platform::FileFault::DiskFull},
      {{noUnnamed, noLink}, true, {}},
      {{noUnnamed, {SYS_renameat2, EINVAL}}, true, {}},
      {{noUnnamed, {SYS_renameat2, ENOSYS}}, true, {}},
      {{noUnnamed, {SYS_renameat2, EINVAL}, noLink}, false, platform::FileFault::Other},
      {{noUnnamed, {SYS_renameat2, EACCES}}, false, platform::FileFault::Other},
      {{{SYS_linkat, EDQUOT}}, false, platform::FileFault::DiskFull},
      {{{SYS_fdatasync, EIO}}, false, platform::FileFault::Other},
      {{{SYS_fdatasync, ENOSPC}}, false, platform::FileFault::DiskFull},
      {{{SYS_flock, ENOLCK}, noUnnamed}, true, {}},
  };
  for (std::size_t row = 0; const auto &[refused, isPublished, fault] : cases) {
    SCOPED_TRACE(row++);
    const QTemporaryDir folder;
    const auto tryIt = [&] {
      auto file = UnpublishedFile::create(folder.path());
      const bool isReady = file.write("x", 1) && file.sync();
      EXPECT_EQ(isReady && file.publish(folder.filePath(u"a"_s)) == Published, isPublished);
      EXPECT_EQ(file.fault(), fault);
    };
    if (!withRefusedCalls(refused, tryIt)) GTEST_SKIP() << "this kernel refuses nothing on order";
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
              isPublished ? QStringList{u"a"_s} : QStringList());
  }
}

TEST(HiddenFiles, areSweptOnceTheirWriterIsGone) {
  const QTemporaryDir folder;
  const QString dead = folder.filePath(u".downloaderpictora-dead.part"_s);
  QFile busy(folder.filePath(u".downloaderpictora-busy.part"_s));
  for (const QString &path : {dead, busy.fileName(), folder.filePath(u"other.part"_s)})
    writeFile(path, "x");
  ASSERT_TRUE(busy.open(QFile::ReadWrite) && ::flock(busy.handle(), LOCK_EX) == 0);
  const auto file = UnpublishedFile::create(folder.path(), UnpublishedFile::Naming::Hidden);
  EXPECT_FALSE(QFile::exists(dead));
  EXPECT_TRUE(!file.fault() && busy.exists() && QFile::exists(folder.filePath(u"other.part"_s)));
}

constexpr int kMayNotMount = 77;
constexpr char kPlace[] = "/media"; // where desktops mount

/// In a process of its own, whose mounts nobody else sees.
[[noreturn]] void mountAndLook() {
  const auto isUnmountable = [] { return platform::fileSystemInfo(QString::fromLatin1(kPlace))->unmountable; };
  const bool apart = ::unshare(CLONE_NEWNS) == 0 || ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0;
  if (!apart || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) ::_exit(kMayNotMount);
  const bool before = isUnmountable();
  if (::mount("a-new-disk", kPlace, "tmpfs", 0, nullptr) != 0) ::_exit(kMayNotMount);
  const bool mounted = isUnmountable();
  ::umount(kPlace);
  ::_exit(!before && mounted && !isUnmountable() ? 0 : 1);
}

TEST(Volumes, areLookedAtAnewWhenOneIsMountedOrTakenAway) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  int status = -1;
  EXPECT_EXIT(
      mountAndLook(), [&](int ended) { return (status = WEXITSTATUS(ended)) == 0 || status == kMayNotMount; }, "");
  if (status == kMayNotMount) GTEST_SKIP() << "this system lets nobody mount";
}

TEST(FileIdentity, tellsAFileFromOthersFromLinksToItAndFromItsOtherStates) {
  const QTemporaryDir folder;
  const auto identityOf = [&](const QString &name) { return platform::fileIdentity(folder.filePath(name)); };
  const auto written = [&](const QString &name, const QByteArray &content, qint64 date = 1'700'000'000'500) {
    writeFile(folder.filePath(name), content);
    EXPECT_TRUE(platform::setFileDates(folder.filePath(name), QDateTime::fromMSecsSinceEpoch(date)));
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
