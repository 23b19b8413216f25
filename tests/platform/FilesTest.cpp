#include "platform/FileDates.h"
#include "platform/UnpublishedFile.h"
#include "platform/VolumeFacts.h"
#include "platform/linux/BlockDevice.h"
#include "platform/linux/MountTable.h"

#include <gmock/gmock.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>

using namespace Qt::StringLiterals;
using platform::UnpublishedFile;

namespace {

QByteArray contentOf(const QString &path) {
  QFile file(path);
  return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

class UnpublishedFileTest : public testing::TestWithParam<UnpublishedFile::Naming> {
protected:
  [[nodiscard]] UnpublishedFile written(const char *text) const {
    auto file = UnpublishedFile::create(folder.path(), GetParam());
    EXPECT_TRUE(file && file->write(text, strlen(text)) && file->sync());
    return std::move(*file);
  }
  [[nodiscard]] QStringList entries() const {
    return QDir(folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
  }

  QTemporaryDir folder;
};

TEST_P(UnpublishedFileTest, hasNoVisibleNameUntilPublished) {
  auto file = written("picture");
  EXPECT_THAT(QDir(folder.path()).entryList(QDir::Files), testing::IsEmpty());
  EXPECT_EQ(file.publish(folder.filePath(u"a.jpg"_s)), UnpublishedFile::Publish::Published);
  EXPECT_EQ(entries(), QStringList{u"a.jpg"_s});
  EXPECT_EQ(contentOf(folder.filePath(u"a.jpg"_s)), "picture");
}

TEST_P(UnpublishedFileTest, neverOverwritesAndCanTakeAnotherName) {
  const QString taken = folder.filePath(u"a.jpg"_s);
  QFile users(taken);
  ASSERT_TRUE(users.open(QFile::WriteOnly) && users.write("the user's") > 0);
  users.close();
  auto file = written("ours");
  EXPECT_EQ(file.publish(taken), UnpublishedFile::Publish::NameTaken);
  EXPECT_EQ(file.publish(folder.filePath(u"a_1.jpg"_s)), UnpublishedFile::Publish::Published);
  EXPECT_EQ(contentOf(taken), "the user's");
  EXPECT_EQ(entries(), (QStringList{u"a.jpg"_s, u"a_1.jpg"_s}));
}

TEST_P(UnpublishedFileTest, leavesNothingWhenDiscarded) {
  { const auto file = written("half a picture"); }
  EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_P(UnpublishedFileTest, mayBeEmptyAndFollowsTheUsersMask) {
  const auto usersMask = ::umask(027);
  auto file = written("");
  const QString path = folder.filePath(u"empty"_s);
  EXPECT_EQ(file.publish(path), UnpublishedFile::Publish::Published);
  ::umask(usersMask);
  struct stat facts = {};
  ASSERT_EQ(::stat(QFile::encodeName(path).constData(), &facts), 0);
  EXPECT_EQ(facts.st_mode & 0777U, 0640U);
  EXPECT_EQ(facts.st_size, 0);
  EXPECT_EQ(facts.st_nlink, 1U);
}

TEST_P(UnpublishedFileTest, takesNoNameThatALinkToNowhereHas) {
  ASSERT_TRUE(QFile::link(folder.filePath(u"nowhere"_s), folder.filePath(u"a.jpg"_s)));
  auto file = written("x");
  EXPECT_EQ(file.publish(folder.filePath(u"a.jpg"_s)), UnpublishedFile::Publish::NameTaken);
}

TEST_P(UnpublishedFileTest, saysWhyItCannotBePublished) {
  auto file = written("x");
  EXPECT_EQ(file.publish(folder.filePath(u"missing/a.jpg"_s)), UnpublishedFile::Publish::Failed);
  EXPECT_EQ(file.error(), ENOENT);
}

TEST_P(UnpublishedFileTest, isNotMadeWhereThereIsNoFolder) {
  EXPECT_FALSE(UnpublishedFile::create(folder.filePath(u"missing"_s), GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Files, UnpublishedFileTest,
                         testing::Values(UnpublishedFile::Naming::Unnamed, UnpublishedFile::Naming::Hidden),
                         [](const auto &row) {
                           return row.param == UnpublishedFile::Naming::Unnamed ? "unnamed" : "hidden";
                         });

TEST(HiddenFiles, areSweptOnceTheirWriterIsGone) {
  const QTemporaryDir folder;
  const auto path = [&](const char *name) { return folder.filePath(QString::fromLatin1(name)); };
  for (const char *name : {".downloaderpictora-dead.part", ".downloaderpictora-busy.part", "other.part"}) {
    QFile file(path(name));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
  }
  QFile busy(path(".downloaderpictora-busy.part"));
  ASSERT_TRUE(busy.open(QFile::ReadWrite));
  ASSERT_EQ(::flock(busy.handle(), LOCK_EX), 0);

  const auto file = UnpublishedFile::create(folder.path(), UnpublishedFile::Naming::Hidden);
  ASSERT_TRUE(file);
  EXPECT_FALSE(QFile::exists(path(".downloaderpictora-dead.part")));
  EXPECT_TRUE(QFile::exists(path(".downloaderpictora-busy.part")));
  EXPECT_TRUE(QFile::exists(path("other.part")));
}

TEST(FileDates, stampTheModificationDateEvenBefore1970) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"a.jpg"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  for (const qint64 milliseconds : {qint64(1714557600123), qint64(-1500)}) {
    ASSERT_TRUE(platform::setFileDates(path, QDateTime::fromMSecsSinceEpoch(milliseconds)));
    EXPECT_EQ(QFileInfo(path).lastModified().toMSecsSinceEpoch(), milliseconds);
  }
  EXPECT_FALSE(platform::setFileDates(folder.filePath(u"missing"_s), QDateTime::currentDateTime()));
}

constexpr char kMountTable[] = "21 1 8:1 / / rw,relatime shared:1 - ext4 /dev/sda1 rw\n"
                               "22 21 0:5 / /proc rw - proc proc rw\n"
                               "30 21 8:17 / /media/u/My\\040Card rw shared:2 master:3 - vfat /dev/sdb1 rw\n"
                               "31 21 8:33 / /mnt/disk ro,nosuid - ext4 /dev/sdc1 rw\n"
                               "32 21 0:40 / /home/u/nas rw - nfs4 nas:/export rw\n"
                               "33 21 8:49 / /home/u/nas rw - ext4 /dev/sdd1 rw\n"
                               "a line of another kind\n";

TEST(MountTable, findsTheMountThatHoldsAPath) {
  const auto mounts = platform::parseMountTable(kMountTable);
  ASSERT_EQ(mounts.size(), 6);
  const auto typeAt = [&](const char *path) { return platform::mountOf(mounts, path)->type.toStdString(); };
  EXPECT_EQ(typeAt("/home/u/Pictures"), "ext4");
  EXPECT_EQ(typeAt("/media/u/My Card/DCIM"), "vfat");
  EXPECT_EQ(typeAt("/media/u/My Cards"), "ext4");
  EXPECT_EQ(typeAt("/proc"), "proc");
  EXPECT_TRUE(platform::mountOf(mounts, "/mnt/disk")->readOnly);
  EXPECT_EQ(platform::mountOf(mounts, "/mnt/disk")->minor, 33U);
  EXPECT_EQ(typeAt("/home/u/nas/x"), "ext4") << "the later mount on a point covers the earlier";
  EXPECT_FALSE(platform::mountOf({}, "/"));
}

TEST(MountTable, knowsWhatCanBeTakenAway) {
  for (const char *place : {"/media/u/card", "/run/media/u/card", "/run/user/1000/gvfs"}) {
    EXPECT_TRUE(platform::isUnmountablePlace(place)) << place;
  }
  for (const char *place : {"/", "/mnt/disk", "/mediathek", "/run/user/1000/doc"}) {
    EXPECT_FALSE(platform::isUnmountablePlace(place)) << place;
  }
  EXPECT_TRUE(platform::isHotPluggable(u"/sys/devices/pci0000:00/0000:00:14.0/usb2/2-1/host6/block/sdb"_s));
  EXPECT_TRUE(platform::isHotPluggable(u"/sys/devices/platform/soc/mmc_host/mmc0/mmc0:aaaa/block/mmcblk0"_s));
  EXPECT_FALSE(platform::isHotPluggable(u"/sys/devices/pci0000:00/0000:00:1f.2/ata1/host0/block/sda"_s));
  EXPECT_TRUE(platform::isNetworkFileSystem(u"cifs"_s));
  EXPECT_FALSE(platform::isNetworkFileSystem(u"ext4"_s));
}

/// A folder tree in the form of sysfs: a stick, an encrypted volume on its partition and a fixed disk.
class BlockDevices : public testing::Test {
protected:
  BlockDevices() {
    add("usb1/sdb/removable", "1\n");
    add("usb1/sdb/sdb1/partition", "1\n");
    add("ata1/sda/removable", "0\n");
    add("ata1/sda/sda2/partition", "2\n");
    QDir().mkpath(at("virtual/dm-0/slaves"));
    QFile::link(at("usb1/sdb/sdb1"), at("virtual/dm-0/slaves/sdb1"));
    QFile::link(at("ata1/sda/sda2"), at("virtual/dm-0/slaves/sda2"));
  }
  [[nodiscard]] QString at(const char *name) const {
    return QFileInfo(tree.path()).canonicalFilePath() + u'/' + QString::fromLatin1(name);
  }
  void add(const char *name, const char *text) const {
    QDir().mkpath(QFileInfo(at(name)).path());
    QFile file(at(name));
    ASSERT_TRUE(file.open(QFile::WriteOnly) && file.write(text) > 0);
  }

  QTemporaryDir tree;
};

TEST_F(BlockDevices, lieOnTheDisksBelowThem) {
  const QString stick = at("usb1/sdb");
  const QString fixed = at("ata1/sda");
  EXPECT_EQ(platform::disksOf(fixed), QStringList{fixed});
  EXPECT_EQ(platform::disksOf(at("ata1/sda/sda2")), QStringList{fixed});
  EXPECT_EQ(platform::disksOf(at("virtual/dm-0")), (QStringList{fixed, stick}));
  EXPECT_EQ(platform::disksOf(QString()), QStringList());
}

TEST_F(BlockDevices, areRemovableByTheirFlagOrTheirBus) {
  EXPECT_TRUE(platform::isRemovableDisk(at("usb1/sdb")));
  EXPECT_FALSE(platform::isRemovableDisk(at("ata1/sda")));
  add("ata1/sda/removable", "1\n");
  EXPECT_TRUE(platform::isRemovableDisk(at("ata1/sda")));
}

TEST(VolumeFacts, knowThePlacesThatExist) {
  const QTemporaryDir folder;
  const auto facts = platform::fileSystemInfo(folder.path());
  ASSERT_TRUE(facts);
  EXPECT_TRUE(facts->writable);
  EXPECT_FALSE(platform::fileSystemInfo(u"/"_s)->removable) << "the disk that the system runs from";
  EXPECT_FALSE(platform::fileSystemInfo(folder.filePath(u"missing"_s)));
  EXPECT_GT(platform::freeSpace(folder.path()).value_or(0), 0);
  EXPECT_FALSE(platform::freeSpace(folder.filePath(u"missing"_s)));
}

} // namespace
