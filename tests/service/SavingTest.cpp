#include "service/SavedFileName.h"
#include "tests/service/ServiceFixture.h"

#include <atomic>
#include <cerrno>
#include <sys/types.h>
#include <thread>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;

// NOLINTBEGIN(bugprone-reserved-identifier): the names that the linker's --wrap gives.
static std::atomic<int> writeFailsWith = 0;

extern "C" ssize_t __real_write(int descriptor, const void *bytes, std::size_t count);
extern "C" ssize_t __wrap_write(int descriptor, const void *bytes, std::size_t count);
extern "C" ssize_t __wrap_write(int descriptor, const void *bytes, std::size_t count) {
  if (writeFailsWith == 0) return __real_write(descriptor, bytes, count);
  errno = writeFailsWith;
  return -1;
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

using enum KaResultCode;

struct Saving : ServiceTest {
  [[nodiscard]] SavedObject save() { return request.getAwsS3Object(presigned(imageKey), by, defaultPath); }

  const QString defaultPath = picture(u"default.JPG"_s);
};

TEST_F(Saving, usesTheNameThatCameWithTheObjectWhereItIsOne) {
  // "ÿ?ÿ>" holds both characters that differ between the base64 alphabets.
  const std::tuple<std::optional<QByteArray>, QString, KaResultCode> cases[] = {
      {{}, u"default.JPG"_s, DefaultFileName},
      {"YeWG", u"default.JPG"_s, DefaultFileName},  // half a character
      {"YQBi", u"default.JPG"_s, DefaultFileName},  // NUL
      {"YS5qc", u"default.JPG"_s, DefaultFileName}, // six bits too many
      {sandbox::fileNameHeader(u".."_s), u"default.JPG"_s, Success},
      {sandbox::fileNameHeader(u" 写真/é.JPG"_s), u"写真-é.JPG"_s, Success},
      {"w7 8_w\"78-YS5qcGc=", u"ÿ?ÿ>a.jpg"_s, Success},
  };
  for (const auto &[header, name, result] : cases) {
    image.fileNameMetadata = header;
    service.library().add(image);
    const SavedObject saved = save();
    EXPECT_EQ(saved.result, result);
    EXPECT_EQ(saved.outputFilePath, picture(name));
    EXPECT_EQ(saved.outputFileSize, image.body.size());
    EXPECT_EQ(contentOf(picture(name)), image.body);
    EXPECT_TRUE(QFile::remove(picture(name)));
  }
}

TEST(SavedFileName, isCutBetweenCharactersToWhatFileSystemsTake) {
  const auto n = [](int count) { return QString(count, u'n'); };
  // Of 255 bytes ".JPG" leaves 251: 62 characters of four bytes, and three bytes that no other fits into.
  const std::pair<QString, QString> cases[] = {
      {n(251) + u".JPG"_s, n(251) + u".JPG"_s},
      {n(252) + u".JPG"_s, n(251) + u".JPG"_s},
      {u"a."_s + n(300), u"a."_s + n(252) + u'.'},
      {u"😀"_s.repeated(80) + u".JPG"_s, u"😀"_s.repeated(62) + u".JPG"_s},
  };
  for (const auto &[given, expected] : cases)
    EXPECT_EQ(targetFilePath(u"/d.1/default.JPG"_s, given), u"/d.1/"_s + expected);
  EXPECT_EQ(targetFilePath(u'/' + n(252) + u".JPG"_s, {}), u'/' + n(251) + u".JPG"_s);
  EXPECT_EQ(numberedFilePath(u"/d.1/a.b.JPG"_s, 10), u"/d.1/a.b_10.JPG"_s);
  EXPECT_EQ(numberedFilePath(u'/' + n(250) + u".JPG"_s, 1), u'/' + n(249) + u"_1.JPG"_s);
  EXPECT_EQ(numberedFilePath(u'/' + n(255), 4'000'000'000), u'/' + n(243) + u"_4000000000"_s);
}

TEST_F(Saving, countsUpForATakenNameAndTouchesNoOtherFile) {
  ASSERT_TRUE(QFile::link(picture(u"elsewhere"_s), picture(u"IMG_1.JPG"_s)));
  ASSERT_TRUE(QFile(picture(u"IMG_1_2.JPG"_s)).open(QFile::WriteOnly));
  EXPECT_EQ(save().outputFilePath, picture(u"IMG_1_1.JPG"_s));
  EXPECT_EQ(save().outputFilePath, picture(u"IMG_1_3.JPG"_s));
  EXPECT_EQ(QFileInfo(picture(u"IMG_1_2.JPG"_s)).size(), 0);
  EXPECT_FALSE(QFile::exists(picture(u"elsewhere"_s)));
  EXPECT_EQ(savedFiles().size(), 4);
}

TEST_F(Saving, showsNoFileBeforeItIsWhole) {
  service.order(Endpoint::ObjectGet, {.kind = sandbox::Fault::Kind::SlowBody});
  std::thread other([this] {
    EXPECT_TRUE(service.waitForRequests(Endpoint::ObjectGet, 1, std::chrono::seconds(20)));
    for (const QString &name : savedFiles())
      EXPECT_TRUE(name.startsWith(u'.')) << name.toStdString();
    request.stopServerRequest();
  });
  EXPECT_EQ(save().result, NoHttpStatus);
  other.join();
  EXPECT_EQ(savedFiles(), QStringList());
}

TEST_F(Saving, leavesNoFileWhenTheDiskFails) {
  for (const int error : {ENOSPC, EDQUOT, EIO, 0}) {
    writeFailsWith = error;
    if (error == 0) QDir(profile.picturesFolder()).removeRecursively();
    const SavedObject saved = save();
    EXPECT_EQ(saved.result, error == ENOSPC || error == EDQUOT ? DiskFull : FileNotSaved);
    EXPECT_EQ(saved.statusCode, 200);
    EXPECT_EQ(saved.outputFilePath, QString());
    EXPECT_EQ(savedFiles(), QStringList());
  }
}

} // namespace
