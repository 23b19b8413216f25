#include "service/SaveOrder.h"
#include "service/SavedFileName.h"
#include "tests/service/ServiceFixture.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>

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
static std::atomic<bool> endsWithName = false;
static std::atomic<bool> ended = false;

extern "C" int __real_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor);
extern "C" int __wrap_fdatasync(int descriptor) {
  if (endsWithSync) ended = true;
  return __real_fdatasync(descriptor);
}
// NOLINTEND(bugprone-reserved-identifier)

static qsizetype longestName = 0; ///< that the file system takes; 0: as it is
static bool takesOddNames = true; ///< with other characters than ASCII's, or "?"

/// These stand before the C library's.
int linkat(int from, const char *source, int to, const char *path, int flags) noexcept {
  if (endsWithName) ended = true;
  const QByteArray name = QByteArray(path).mid(QByteArray(path).lastIndexOf('/') + 1);
  const bool isOdd = name.contains('?') || std::any_of(name.begin(), name.end(), [](char c) { return c < 0; });
  errno = longestName > 0 && name.size() > longestName ? ENAMETOOLONG : isOdd && !takesOddNames ? EINVAL : 0;
  return errno != 0 ? -1 : static_cast<int>(::syscall(SYS_linkat, from, source, to, path, flags));
}
int statvfs(const char *path, struct statvfs *facts) noexcept {
  const int result = ::statvfs64(path, reinterpret_cast<struct statvfs64 *>(facts));
  if (longestName > 0) facts->f_namemax = static_cast<unsigned long>(longestName);
  return result;
}

namespace {

using enum KaResultCode;

struct Saving : ServiceTest {
  [[nodiscard]] SavedObject save() { return request.getAwsS3Object(presigned(imageKey), by, order()); }
  [[nodiscard]] SaveOrder order() const { return {picture(u"default.JPG"_s), image.body.size(), taken, true}; }

  const QDateTime taken = QDateTime::fromSecsSinceEpoch(1'000'000'000);
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

TEST_F(Saving, dropsWhatIsNotTheRightOneUnlessItIsToBeKept) {
  for (const bool isNamed : {true, false})
    for (const qint64 missing : {0, 1})
      for (const bool isKept : {true, false}) {
        image.fileNameMetadata = isNamed ? std::optional(sandbox::fileNameHeader(u"A.JPG"_s)) : std::nullopt;
        service.library().add(image);
        SaveOrder wanted = order();
        wanted.refFileSize += missing;
        wanted.bKeepWhatComes = isKept;
        const SavedObject saved = request.getAwsS3Object(presigned(imageKey), by, wanted);
        const bool isRight = isNamed && missing == 0;
        EXPECT_EQ(saved.result, isNamed ? Success : DefaultFileName);
        EXPECT_EQ(saved.outputFileSize, image.body.size());
        EXPECT_EQ(saved.bConfirmed, isRight);
        EXPECT_EQ(saved.bNew, isRight || isKept);
        EXPECT_EQ(QFileInfo(saved.outputFilePath).lastModified(), saved.bNew ? taken : QDateTime());
        EXPECT_EQ(QFile::remove(saved.outputFilePath), saved.bNew);
        EXPECT_EQ(savedFiles(), QStringList());
      }
}

TEST_F(Saving, findsThePictureWhereAFileOfTheSameBytesHasItsName) {
  const QByteArray other(image.body.size(), 'q');
  const struct {
    QByteArray first, second, third; ///< what has the name, and the name with 1 and 2 behind it
    QString saved;
    bool isNew;
  } cases[] = {{image.body, {}, {}, u"IMG_1.JPG"_s, false},
               {other, image.body, {}, u"IMG_1_1.JPG"_s, false},
               {other, {}, image.body, u"IMG_1_1.JPG"_s, true},
               {other, other, image.body, u"IMG_1_2.JPG"_s, false},
               {other, other, other, u"IMG_1_3.JPG"_s, true}};
  for (const auto &[first, second, third, name, isNew] : cases) {
    const std::pair<QString, QByteArray> there[] = {
        {u"IMG_1.JPG"_s, first}, {u"IMG_1_1.JPG"_s, second}, {u"IMG_1_2.JPG"_s, third}};
    for (const auto &[path, content] : there)
      if (!content.isEmpty()) writeFile(picture(path), content);
    const auto before = savedFiles().size();
    const SavedObject saved = save();
    EXPECT_TRUE(saved.bConfirmed && saved.bNew == isNew);
    EXPECT_EQ(saved.outputFilePath, picture(name));
    EXPECT_EQ(QFileInfo(saved.outputFilePath).lastModified() == taken, isNew) << "no date but a new file's";
    EXPECT_EQ(savedFiles().size(), before + (isNew ? 1 : 0));
    for (const QString &file : savedFiles())
      EXPECT_TRUE(QFile::remove(picture(file)));
  }
}

TEST_F(Saving, givesWhatTheFileSystemRefusesANameThatItTakes) {
  const QString longName = u"é"_s.repeated(30) + u".JPG"_s;
  const std::tuple<QString, qsizetype, bool, QString> cases[] = {{u"é?.JPG"_s, 0, true, u"é?.JPG"_s},
                                                                 {u"a?.JPG"_s, 0, false, u"a_.JPG"_s},
                                                                 {u"é?.JPG"_s, 0, false, u"__.JPG"_s},
                                                                 {longName, 41, true, longName.mid(12)}};
  for (const auto &[name, longest, isTaken, expected] : cases) {
    image.fileNameMetadata = sandbox::fileNameHeader(name);
    service.library().add(image);
    longestName = longest;
    takesOddNames = isTaken;
    const QFileInfo file(picture(expected));
    const QString second = file.completeBaseName().left(longest > 0 ? 17 : -1) + u"_1.JPG"_s;
    for (const QString &path : {picture(expected), picture(second)}) {
      EXPECT_EQ(save().outputFilePath, path);
      EXPECT_FALSE(save().bNew) << "the same each time";
      writeFile(path, "another's");
    }
  }
  for (const QString &file : savedFiles())
    QFile::remove(picture(file));
  longestName = 3;
  EXPECT_EQ(save().result, FileNotSaved) << "nothing is left to give up";
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

TEST_F(Saving, savesNothingOnceItsLinkHasEndedEvenWhileTheFileWentToDiskOrWasCompared) {
  KaServerRequest ending([] { return ended.load(); });
  EXPECT_EQ(ending.getAwsS3Object(presigned(imageKey), by, order()).result, Success);
  EXPECT_TRUE(QFile::remove(picture(u"IMG_1.JPG"_s)));
  for (const bool isCompared : {false, true}) {
    ended = false;
    (isCompared ? endsWithName : endsWithSync) = true;
    if (isCompared) writeFile(picture(u"IMG_1.JPG"_s), image.body);
    const SavedObject saved = ending.getAwsS3Object(presigned(imageKey), by, order());
    EXPECT_EQ(std::tuple(saved.result, saved.statusCode, saved.outputFilePath), std::tuple(NoHttpStatus, 0, QString()));
    EXPECT_EQ(savedFiles(), isCompared ? QStringList{u"IMG_1.JPG"_s} : QStringList());
    endsWithSync = false;
  }
  EXPECT_EQ(service.requestCount(Endpoint::ObjectGet), 3) << "all came whole";
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
