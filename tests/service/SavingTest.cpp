#include "service/SavedFileName.h"
#include "tests/service/ServiceFixture.h"

#include <atomic>
#include <cerrno>
#include <sys/types.h>

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

static std::atomic<bool> endsWithSync = false;
static std::atomic<bool> ended = false;

extern "C" int __real_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor) {
  if (endsWithSync) ended = true;
  return __real_fdatasync(descriptor);
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

TEST_F(Saving, savesNothingOnceItsLinkHasEndedEvenWhileTheFileWentToDisk) {
  KaServerRequest ending([] { return ended.load(); });
  EXPECT_EQ(ending.getAwsS3Object(presigned(imageKey), by, defaultPath).result, Success);
  EXPECT_TRUE(QFile::remove(picture(u"IMG_1.JPG"_s)));
  endsWithSync = true;
  const SavedObject saved = ending.getAwsS3Object(presigned(imageKey), by, defaultPath);
  EXPECT_EQ(std::tuple(saved.result, saved.statusCode, saved.outputFilePath), std::tuple(NoHttpStatus, 0, QString()));
  EXPECT_EQ(savedFiles(), QStringList());
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 2) << "the second came whole";
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
