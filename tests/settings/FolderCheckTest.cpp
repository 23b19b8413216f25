#include "app/settings/FolderCheck.h"
#include "tests/support/TestProfile.h"

#include <QFile>

#include <gtest/gtest.h>

#include <unistd.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

struct Verdict {
  const char *name;
  QString path;
  std::function<void(FolderFacts &)> change;
  KaResultCode expected;
};

class FolderVerdict : public testing::TestWithParam<Verdict> {};

TEST_P(FolderVerdict, followsFromTheFacts) {
  FolderFacts facts{GetParam().path, platform::VolumeFacts(), true, true, true, {u"/usr"_s, u"/home/u/Applications"_s}};
  GetParam().change(facts);
  EXPECT_EQ(judgeDownloadFolder(GetParam().path, facts), GetParam().expected);
}

const auto kNothing = [](FolderFacts &) {};
const QString kFolder = u"/home/u/Pictures"_s;
using enum KaResultCode;

const std::vector<Verdict> kVerdicts{
    {"noVolume", kFolder, [](auto &facts) { facts.volume.reset(); }, FolderNotAccessible},
    {"removable", kFolder, [](auto &facts) { facts.volume->removable = true; }, FolderNotSupported},
    {"unmountable", kFolder, [](auto &facts) { facts.volume->unmountable = true; }, FolderNotSupported},
    {"networkVolume", kFolder, [](auto &facts) { facts.volume->network = true; }, FolderNotSupported},
    {"network", u"/Network/share"_s, kNothing, FolderNotSupported},
    {"systemBySpelling", u"/Systemx"_s, kNothing, FolderNotSupported},
    {"systemInside", u"/home/System"_s, kNothing, Success},
    {"besideReservedFolder", u"/usrlocal"_s, kNothing, Success},
    {"linkIntoReservedFolder", kFolder, [](auto &facts) { facts.resolvedPath = u"/usr"_s; }, FolderNotSupported},
    {"noFolder", kFolder, [](auto &facts) { facts.directory = false; }, FolderNotAccessible},
    {"unreadable", kFolder, [](auto &facts) { facts.readable = false; }, FolderNotAccessible},
    {"placeBeforeAccess", u"/usr"_s, [](auto &facts) { facts.writable = false; }, FolderNotSupported},
    {"accessBeforeLength", QString(201, u'/'), [](auto &facts) { facts.writable = false; }, FolderNotAccessible},
    {"length200InCharacters", u"/"_s + QString(199, u'写'), kNothing, Success},
    {"length201", u"/"_s + QString(200, u'p'), kNothing, FolderPathTooLong},
};

INSTANTIATE_TEST_SUITE_P(Settings, FolderVerdict, testing::ValuesIn(kVerdicts),
                         [](const auto &row) { return std::string(row.param.name); });

TEST(FolderOnDisk, isUsableWhenItIsTheUsersOwnOutsideTheSystemsPlaces) {
  const TestProfile profile;
  QFile file(profile.path(u"file"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly) && QFile::link(u"/usr/share"_s, profile.path(u"link"_s)));
  EXPECT_EQ(verifyDownloadFolder(profile.picturesFolder()), Success);
  for (const QString &path : {profile.path(u"missing"_s), file.fileName(), QString()})
    EXPECT_EQ(verifyDownloadFolder(path), FolderNotAccessible) << qPrintable(path);
  for (const QString &path : {u"/usr"_s, u"/etc"_s, u"/proc"_s, u"/home/../usr/share"_s, profile.path(u"link"_s)})
    EXPECT_EQ(verifyDownloadFolder(path), FolderNotSupported) << qPrintable(path);
  if (geteuid() == 0) return; // who may read and write everywhere
  for (const auto only : {QFile::ReadOwner, QFile::WriteOwner}) {
    QFile::setPermissions(profile.picturesFolder(), only | QFile::ExeOwner);
    EXPECT_EQ(verifyDownloadFolder(profile.picturesFolder()), FolderNotAccessible) << only;
  }
}

} // namespace
