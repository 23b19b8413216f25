#include "settings/FolderCheck.h"
#include "tests/support/TestProfile.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

using enum KaResultCode;

TEST(FolderVerdict, followsFromTheFacts) {
  struct Row {
    const char *name;
    QString path;
    std::function<void(FolderFacts &)> change;
    KaResultCode expected;
  };
  const auto nothing = [](FolderFacts &) {};
  const QString folder = u"/home/u/Pictures"_s;
  const Row rows[] = {
      {"removable", folder, [](auto &facts) { facts.volume->removable = true; }, FolderNotSupported},
      {"unmountable", folder, [](auto &facts) { facts.volume->unmountable = true; }, FolderNotSupported},
      {"networkVolume", folder, [](auto &facts) { facts.volume->network = true; }, FolderNotSupported},
      {"network", u"/Network/share"_s, nothing, FolderNotSupported},
      {"systemBySpelling", u"/Systemx"_s, nothing, FolderNotSupported},
      {"systemInside", u"/home/System"_s, nothing, Success},
      {"besideReservedFolder", u"/usrlocal"_s, nothing, Success},
      {"linkIntoReservedFolder", folder, [](auto &facts) { facts.resolvedPath = u"/usr"_s; }, FolderNotSupported},
      {"unreadable", folder, [](auto &facts) { facts.readable = false; }, FolderNotAccessible},
      {"placeBeforeAccess", u"/usr"_s, [](auto &facts) { facts.writable = false; }, FolderNotSupported},
      {"accessBeforeLength", QString(201, u'/'), [](auto &facts) { facts.writable = false; }, FolderNotAccessible},
      {"length200InCharacters", u"/"_s + QString(199, u'写'), nothing, Success},
      {"length201", u"/"_s + QString(200, u'p'), nothing, FolderPathTooLong},
  };
  for (const Row &row : rows) {
    FolderFacts facts{row.path, platform::VolumeFacts(), true, true, true, {u"/usr"_s, u"/home/u/Applications"_s}};
    row.change(facts);
    EXPECT_EQ(judgeDownloadFolder(row.path, facts), row.expected) << row.name;
  }
}

TEST(FolderOnDisk, isUsableWhenItIsTheUsersOwnOutsideTheSystemsPlaces) {
  const TestProfile profile;
  QFile file(profile.path(u"file"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly) && QFile::link(u"/usr/share"_s, profile.path(u"link"_s)));
  EXPECT_EQ(verifyDownloadFolder(profile.picturesFolder()), Success);
  for (const QString &path : {profile.path(u"missing"_s), file.fileName(), QString()})
    EXPECT_EQ(verifyDownloadFolder(path), FolderNotAccessible) << qPrintable(path);
  const QString programs = profile.path(u".local/bin/tools"_s), starters = profile.dataFolder() + u"/applications"_s;
  ASSERT_TRUE(QDir().mkpath(programs) && QDir().mkpath(starters));
  for (const QString &path : {u"/usr"_s, u"/etc"_s, u"/proc"_s, u"/opt"_s, u"/home/../usr/share"_s,
                              profile.path(u"link"_s), programs, starters})
    EXPECT_EQ(verifyDownloadFolder(path), FolderNotSupported) << qPrintable(path);
  if (geteuid() == 0) return; // who may read and write everywhere
  for (const auto only : {QFile::ReadOwner, QFile::WriteOwner}) {
    QFile::setPermissions(profile.picturesFolder(), only | QFile::ExeOwner);
    EXPECT_EQ(verifyDownloadFolder(profile.picturesFolder()), FolderNotAccessible) << only;
  }
}

} // namespace
