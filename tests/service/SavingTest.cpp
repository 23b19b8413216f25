#include "app/log/KaLogUtility.h"
#include "service/KaServerRequest.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <QFile>

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <sys/types.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using sandbox::Endpoint;
using sandbox::Fault;

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker's --wrap gives.
static std::atomic<int> writeFailsWith = 0;

extern "C" ssize_t __real_write(int descriptor, const void *bytes, std::size_t count);
extern "C" ssize_t __wrap_write(int descriptor, const void *bytes, std::size_t count);
extern "C" ssize_t __wrap_write(int descriptor, const void *bytes, std::size_t count) {
  const int error = writeFailsWith;
  if (error == 0) return __real_write(descriptor, bytes, count);
  errno = error;
  return -1;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using enum KaResultCode;

class Saving : public ServiceTest {
protected:
  Saving() { KaLogUtility::switchLogStatus(); }

  [[nodiscard]] SavedObject save() {
    const KaCredential by = credential();
    return request.getAwsS3Object(presigned(by, imageKey), by, defaultPath);
  }

  [[nodiscard]] QByteArray contentOf(const QString &name) const {
    QFile file(picture(name));
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("not there");
  }

  void write(const QString &name, const QByteArray &content) const {
    QFile file(picture(name));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(content);
  }

  KaServerRequest request;
  const QString defaultPath = picture(u"default.JPG"_s);
};

TEST_F(Saving, usesTheObjectsOwnName) {
  const SavedObject saved = save();
  EXPECT_EQ(saved.result, Success);
  EXPECT_EQ(saved.statusCode, 200);
  EXPECT_EQ(saved.outputFileSize, image.body.size());
  EXPECT_EQ(saved.outputFilePath, picture(u"IMG_1.JPG"_s));
  EXPECT_EQ(savedFiles(), QStringList(u"IMG_1.JPG"_s));
  EXPECT_EQ(contentOf(u"IMG_1.JPG"_s), image.body);
}

struct Name {
  const char *name;
  std::optional<QByteArray> metadata;
  QString fileName;
  KaResultCode result;
};

class Names : public Saving, public testing::WithParamInterface<Name> {};

TEST_P(Names, becomeOneFileBesideTheDefaultPath) {
  sandbox::LibraryObject named = image;
  named.fileNameMetadata = GetParam().metadata;
  service.library().add(named);
  EXPECT_EQ(save().result, GetParam().result);
  EXPECT_EQ(savedFiles(), QStringList(GetParam().fileName));
}

INSTANTIATE_TEST_SUITE_P(
    Service, Names,
    testing::Values(Name{"none", {}, u"default.JPG"_s, DefaultFileName},
                    Name{"undecodable", "!", u"default.JPG"_s, Success},
                    Name{"notText", "_w", u"default.JPG"_s, DefaultFileName},
                    Name{"nul", sandbox::fileNameHeader(u"a\0b"_s), u"default.JPG"_s, DefaultFileName},
                    Name{"dotDot", sandbox::fileNameHeader(u".."_s), u"default.JPG"_s, Success},
                    Name{"slash", sandbox::fileNameHeader(u"a/b.JPG"_s), u"a-b.JPG"_s, Success},
                    Name{"scripts", sandbox::fileNameHeader(u"写真 é.JPG"_s), u"写真 é.JPG"_s, Success},
                    Name{"long300", sandbox::fileNameHeader(QString(296, u'n') + u".JPG"_s),
                         QString(251, u'n') + u".JPG"_s, Success}),
    [](const auto &row) { return row.param.name; });

TEST_F(Saving, countsUpForATakenNameAndTouchesNoOtherFile) {
  write(u"IMG_1.JPG"_s, "older");
  write(u"IMG_1_2.JPG"_s, "other");
  EXPECT_EQ(save().outputFilePath, picture(u"IMG_1_1.JPG"_s));
  EXPECT_EQ(save().outputFilePath, picture(u"IMG_1_3.JPG"_s));
  EXPECT_EQ(contentOf(u"IMG_1.JPG"_s), "older");
  EXPECT_EQ(contentOf(u"IMG_1_2.JPG"_s), "other");
  EXPECT_EQ(savedFiles().size(), 4);
}

TEST_F(Saving, doesNotFollowALinkThatTakesTheName) {
  ASSERT_TRUE(QFile::link(picture(u"elsewhere"_s), picture(u"IMG_1.JPG"_s)));
  EXPECT_EQ(save().outputFilePath, picture(u"IMG_1_1.JPG"_s));
  EXPECT_FALSE(QFile::exists(picture(u"elsewhere"_s)));
}

TEST_F(Saving, showsNoFileBeforeItIsWhole) {
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::SlowBody});
  std::thread other([this] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1, 20s));
    for (const QString &name : savedFiles())
      EXPECT_TRUE(name.startsWith(u'.')) << name.toStdString();
    request.stopServerRequest();
  });
  const SavedObject saved = save();
  other.join();
  EXPECT_EQ(saved.result, NoHttpStatus);
  EXPECT_EQ(savedFiles(), QStringList());
}

TEST_F(Saving, namesAPreviewAsTheCallerSays) {
  const KaCredential by = credential();
  const QString key = u"images/preview/"_s + service.library().userId() + u"/dev01/20240501/10/0001"_s;
  service.library().addRaw(sandbox::contentBucket(), key,
                           {.body = "2K", .fileNameMetadata = sandbox::fileNameHeader(u"ignored"_s)});
  const auto preview = [&](const std::optional<QString> &name) {
    return request.getAwsS3Preview(presigned(by, key), by, defaultPath, name);
  };
  EXPECT_EQ(preview(u" a b.JPG "_s).outputFilePath, picture(u"a b.JPG"_s));
  EXPECT_EQ(preview(u"../x.JPG"_s).outputFilePath, picture(u"..-x.JPG"_s));
  EXPECT_EQ(preview(u" "_s).result, Success);
  const SavedObject unnamed = preview({});
  EXPECT_EQ(unnamed.result, DefaultFileName);
  EXPECT_EQ(unnamed.outputFilePath, picture(u"default_1.JPG"_s));
}

struct DiskFault {
  const char *name;
  int error;
  KaResultCode expected;
};

class DiskFaults : public Saving, public testing::WithParamInterface<DiskFault> {};

TEST_P(DiskFaults, endTheDownloadWithoutAFile) {
  // From the first byte of the answer on: the log is written through another write.
  std::thread other([this] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1, 20s));
    writeFailsWith = GetParam().error;
  });
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Delay, .delay = 300ms});
  const SavedObject saved = save();
  other.join();
  writeFailsWith = 0;
  EXPECT_EQ(saved.result, GetParam().expected);
  EXPECT_EQ(saved.statusCode, 200);
  EXPECT_EQ(saved.outputFilePath, QString());
  EXPECT_EQ(savedFiles(), QStringList());
  EXPECT_EQ(loggedLines(profile).contains(u"    FilePath="_s + defaultPath), GetParam().expected == FileNotSaved);
}

INSTANTIATE_TEST_SUITE_P(Service, DiskFaults,
                         testing::Values(DiskFault{"diskFull", ENOSPC, DiskFull}, DiskFault{"quota", EDQUOT, DiskFull},
                                         DiskFault{"brokenDisk", EIO, FileNotSaved}),
                         [](const auto &row) { return row.param.name; });

TEST_F(Saving, reportsAFolderThatIsNotThere) {
  ASSERT_TRUE(QDir(profile.picturesFolder()).removeRecursively());
  EXPECT_EQ(save().result, FileNotSaved);
  EXPECT_TRUE(loggedLines(profile)[0].contains(u"Save File Error"_s));
  EXPECT_EQ(loggedLines(profile)[1], u"    FilePath="_s + defaultPath);
}

TEST_F(Saving, reportsAFolderThatVanishesMeanwhile) {
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::SlowBody});
  std::thread other([this] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1, 20s));
    EXPECT_TRUE(QDir(profile.picturesFolder()).removeRecursively());
    service.clearFaults();
  });
  const SavedObject saved = save();
  other.join();
  EXPECT_EQ(saved.result, FileNotSaved);
  EXPECT_EQ(saved.outputFilePath, QString());
  // The folder vanishes before the first byte or after it.
  const QStringList log = loggedLines(profile);
  EXPECT_TRUE(log.contains(u"    FilePath="_s + defaultPath)
              || log.contains(u"    FilePath="_s + picture(u"IMG_1.JPG"_s)));
}

} // namespace
