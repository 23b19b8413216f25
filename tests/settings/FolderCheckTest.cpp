#include "app/settings/FolderCheck.h"
#include "tests/support/TestProfile.h"

#include <QDir>
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
  FolderFacts facts;
  facts.resolvedPath = GetParam().path;
  facts.volume = platform::VolumeFacts();
  facts.directory = facts.readable = facts.writable = true;
  facts.reservedFolders = {u"/usr"_s, u"/home/u/Applications"_s};
  GetParam().change(facts);
  EXPECT_EQ(judgeDownloadFolder(GetParam().path, facts), GetParam().expected);
}

void nothing(FolderFacts &) {
}

const QString kFolder = u"/home/u/Pictures"_s;
using enum KaResultCode;

INSTANTIATE_TEST_SUITE_P(
    Settings, FolderVerdict,
    testing::Values(
        Verdict{"usable", kFolder, nothing, Success},
        Verdict{"noVolume", kFolder, [](FolderFacts &facts) { facts.volume.reset(); }, FolderNotAccessible},
        Verdict{"removable", kFolder, [](FolderFacts &facts) { facts.volume->removable = true; }, FolderNotSupported},
        Verdict{"unmountable", kFolder, [](FolderFacts &facts) { facts.volume->unmountable = true; },
                FolderNotSupported},
        Verdict{"networkVolume", kFolder, [](FolderFacts &facts) { facts.volume->network = true; }, FolderNotSupported},
        Verdict{"network", u"/Network/share"_s, nothing, FolderNotSupported},
        Verdict{"systemBySpelling", u"/Systemx"_s, nothing, FolderNotSupported},
        Verdict{"systemInside", u"/home/System"_s, nothing, Success},
        Verdict{"reservedFolder", u"/usr"_s, nothing, FolderNotSupported},
        Verdict{"insideReservedFolder", u"/usr/share/p"_s, nothing, FolderNotSupported},
        Verdict{"besideReservedFolder", u"/usrlocal"_s, nothing, Success},
        Verdict{"applications", u"/home/u/Applications/p"_s, nothing, FolderNotSupported},
        Verdict{"linkIntoReservedFolder", kFolder, [](FolderFacts &facts) { facts.resolvedPath = u"/usr/p"_s; },
                FolderNotSupported},
        Verdict{"noFolder", kFolder, [](FolderFacts &facts) { facts.directory = false; }, FolderNotAccessible},
        Verdict{"unreadable", kFolder, [](FolderFacts &facts) { facts.readable = false; }, FolderNotAccessible},
        Verdict{"unwritable", kFolder, [](FolderFacts &facts) { facts.writable = false; }, FolderNotAccessible},
        Verdict{"placeComesBeforeAccess", u"/usr"_s, [](FolderFacts &facts) { facts.writable = false; },
                FolderNotSupported},
        Verdict{"accessComesBeforeLength", QString(201, u'/'), [](FolderFacts &facts) { facts.writable = false; },
                FolderNotAccessible},
        Verdict{"length200", u"/"_s + QString(199, u'p'), nothing, Success},
        Verdict{"length201", u"/"_s + QString(200, u'p'), nothing, FolderPathTooLong},
        Verdict{"lengthInCharactersNotBytes", u"/"_s + QString(199, u'写'), nothing, Success}),
    [](const auto &row) { return row.param.name; });

class FolderOnDisk : public testing::Test {
protected:
  [[nodiscard]] QString makeFolder(const QString &name) const {
    QDir().mkpath(profile.path(name));
    return profile.path(name);
  }
  const TestProfile profile;
};

TEST_F(FolderOnDisk, isUsableWhenItIsTheUsersOwn) {
  EXPECT_EQ(verifyDownloadFolder(makeFolder(u"mine"_s)), Success);
}

TEST_F(FolderOnDisk, isNotAccessibleWhenItIsMissingOrAFile) {
  QFile file(profile.path(u"file"_s));
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  EXPECT_EQ(verifyDownloadFolder(profile.path(u"missing"_s)), FolderNotAccessible);
  EXPECT_EQ(verifyDownloadFolder(file.fileName()), FolderNotAccessible);
  EXPECT_EQ(verifyDownloadFolder(QString()), FolderNotAccessible);
}

TEST_F(FolderOnDisk, isNotSupportedInTheSystemsPlaces) {
  const QString link = profile.path(u"link"_s);
  ASSERT_TRUE(QFile::link(u"/usr/share"_s, link));
  for (const QString &path : {u"/usr"_s, u"/etc"_s, u"/proc"_s, u"/home/../usr/share"_s, link})
    EXPECT_EQ(verifyDownloadFolder(path), FolderNotSupported) << qPrintable(path);
}

TEST_F(FolderOnDisk, isNotAccessibleWithoutPermission) {
  if (geteuid() == 0) GTEST_SKIP() << "root may read and write everywhere";
  const QString unreadable = makeFolder(u"unreadable"_s);
  const QString unwritable = makeFolder(u"unwritable"_s);
  QFile::setPermissions(unreadable, QFile::WriteOwner | QFile::ExeOwner);
  QFile::setPermissions(unwritable, QFile::ReadOwner | QFile::ExeOwner);
  EXPECT_EQ(verifyDownloadFolder(unreadable), FolderNotAccessible);
  EXPECT_EQ(verifyDownloadFolder(unwritable), FolderNotAccessible);
  QFile::setPermissions(unreadable, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

TEST_F(FolderOnDisk, mayHaveAPathOf200Characters) {
  const QString base = profile.path() + u'/';
  ASSERT_LT(base.size(), 190);
  const QString longest = makeFolder(QString(200 - base.size(), u'p'));
  const QString tooLong = makeFolder(QString(201 - base.size(), u'q'));
  EXPECT_EQ(verifyDownloadFolder(longest), Success);
  EXPECT_EQ(verifyDownloadFolder(tooLong), FolderPathTooLong);
}

} // namespace
