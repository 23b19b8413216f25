#include "engine/KaKeptCopies.h"
#include "tests/engine/EngineFixture.h"

#include <QFileInfo>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

using namespace Qt::StringLiterals;
using enum KaResultCode;
using sandbox::Endpoint;
using sandbox::Fault;

static bool takesOddFolders = true;

/// Stands before the C library's, for Qt, too.
int mkdir(const char *path, mode_t mode) noexcept {
  errno = QByteArray(path).contains('?') && !takesOddFolders ? EINVAL : 0;
  return errno != 0 ? -1 : static_cast<int>(::syscall(SYS_mkdir, path, mode));
}

namespace {

/// What becomes of the names in a folder.
class FolderWatch {
public:
  explicit FolderWatch(const QString &path) {
    ::inotify_add_watch(events, QFile::encodeName(path).constData(),
                        IN_CREATE | IN_MOVE | IN_DELETE | IN_ATTRIB | IN_MODIFY);
  }
  ~FolderWatch() { ::close(events); }
  FolderWatch(const FolderWatch &) = delete;
  FolderWatch &operator=(const FolderWatch &) = delete;

  /// Each change so far as the name that it is about; a file without one has "#" and its inode's number.
  [[nodiscard]] QStringList names() const {
    QStringList told;
    alignas(inotify_event) char bytes[4096];
    const ssize_t size = ::read(events, bytes, sizeof bytes);
    for (ssize_t at = 0; at < size;) {
      const auto *event = reinterpret_cast<const inotify_event *>(bytes + at);
      if (event->name[0] != '#') told << QString::fromUtf8(event->name);
      at += static_cast<ssize_t>(sizeof *event + event->len);
    }
    return told;
  }

private:
  const int events = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
};

class ContentDownload : public EngineTest {
protected:
  qint64 modified(const QString &file) const { return QFileInfo(path(file)).lastModified().toSecsSinceEpoch(); }
  int begun() const { return int(logged(u"GetContentLoop Start"_s).size()); }
  /// Makes a pass and holds it against its result, the objects asked for so far, the files and the ids recorded.
  void expectPass(const KaContentTarget &wanted, KaResultCode result, const char *asked, const char *there,
                  const char *recorded) {
    const KaPassOutcome outcome = parts.pass(wanted);
    EXPECT_EQ(outcome.result, result);
    savedCount = outcome.savedCount;
    EXPECT_EQ(fetched(), names(asked));
    EXPECT_EQ(files(), names(there));
    const QString key = uuidKey(service.library().userId(), wanted.targetStorage);
    EXPECT_EQ(delegate.answers().records[key].ContentIds, names(recorded));
  }

  const KaContentTarget longTerm = target({.childFolder = 4, .targetStorage = KaTargetStorage::LongTerm10G});
  EngineParts parts{delegate, link};
  quint64 savedCount = 0; ///< by the last pass
};

TEST_F(ContentDownload, fetchesInOrderOverAllDevicesAndRecords) {
  addImages("dev2/10/C.JPG 11/B.JPG 10/C.JPG 11/A.JPG");
  sandbox::LibraryObject early = image(u"23"_s, u"Z.JPG"_s);
  early.date = u"20240430"_s;
  add(early);
  expectPass(target(), Success, "Z.JPG C.JPG C.JPG A.JPG B.JPG", "A.JPG B.JPG C.JPG C_1.JPG Z.JPG", "A B");
  EXPECT_EQ(record().LastDateTime, u"20240501/11");
  EXPECT_EQ(savedCount, 5U);
  EXPECT_EQ(service.requestCount(Endpoint::ObjectTagging) + service.requestCount(Endpoint::ObjectHead), 0);
  EXPECT_EQ(parts.content.getContentsProcess({}, target()).savedCount, 0U);
}

TEST_F(ContentDownload, renewsASessionThatExpiresWithinTenMinutes) {
  addImages("A.JPG B.JPG");
  for (const auto &[seconds, refused, result, renewals, got] :
       {std::tuple(660, false, Success, 0, 2), {590, false, Success, 2, 2}, {590, true, RetryLater, 1, 0}}) {
    service.setCredentialLifetime(std::chrono::seconds(seconds));
    delegate.forgetTaken();
    EngineParts anew(delegate, link);
    service.resetRequestCounts();
    service.order(Endpoint::Sts, {.kind = Fault::Kind::Delay});
    if (refused) service.order(Endpoint::Sts, {.status = 503});
    EXPECT_EQ(anew.pass(target()).result, result);
    EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1 + renewals);
    EXPECT_EQ(service.requestCount(Endpoint::Sts), 1 + renewals);
    EXPECT_EQ(fetched().size(), got);
  }
}

TEST_F(ContentDownload, takesTheExpandVariantWhereThereIsOne) {
  sandbox::LibraryObject expanded = image(u"10"_s, u"A.JPG"_s);
  expanded.expandBody = QByteArray(9000, 'x');
  add(expanded);
  addImages("B.JPG C.JPG");
  service.order(Endpoint::ObjectHead, {.status = 503, .pathContains = u"B.JPG"_s});
  expectPass(target({.childFolder = 4, .bExpandContent = true}), Success, "A.JPG C.JPG", "A.JPG C.JPG", "A C");
  EXPECT_EQ(contentOf(path(u"A.JPG"_s)), *expanded.expandBody);
}

TEST_F(ContentDownload, passesOverWhatFollowsAFailureButStopsWithoutAFolder) {
  addImages("A.JPG B.JPG");
  service.order(Endpoint::ObjectGet, {.status = 503});
  expectPass(target(), RetryLater, "A.JPG", "", "");
  EXPECT_EQ(begun(), 2);
  sandbox::LibraryObject huge = image(u"10"_s, u"A.JPG"_s);
  huge.listedSize = Q_INT64_C(1) << 60;
  add(huge);
  expectPass(target(), DiskFull, "A.JPG", "", "");
  EXPECT_EQ(begun(), 2 + 2);
  delegate.change([](auto &answers) { answers.folderVerdict = FolderNotSupported; });
  expectPass(target(), FileNotSaved, "A.JPG", "", "");
  EXPECT_EQ(begun(), 2 + 2 + 1);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).last(), u"GetContentLoop Start|ContentId=A"_s);
}

TEST_F(ContentDownload, triesTheNextRuleFolderWhileTheObjectIsMissing) {
  sandbox::LibraryObject sorted = image(u"10"_s, u"A.JPG"_s);
  sorted.expandMetadataDocument = R"({"sortation":{"matchedRules":["Birds","Trees","Hills"]}})";
  add(sorted);
  addImages("B.JPG C.JPG");
  service.order(Endpoint::ObjectGet, {.status = 404, .pathContains = u"A.JPG"_s});
  service.order(Endpoint::ObjectGet, {.status = 404, .pathContains = u"B.JPG"_s});
  expectPass(target({.childFolder = 4, .bExpandExif = true}), Success, "A.JPG A.JPG B.JPG C.JPG", "C.JPG Trees/A.JPG",
             "A C");
}

TEST_F(ContentDownload, fetchesUntilTheSizeIsRightAndNeverTouchesAFileThatIsThere) {
  writeFile(path(u"A.JPG"_s), "mine");
  addImages("A.JPG");
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Body, .body = QByteArray(4999, 'p'), .times = 3});
  const FolderWatch watch(profile.picturesFolder());
  expectPass(target(), Success, "A.JPG A.JPG A.JPG A.JPG", "A.JPG A_1.JPG", "A");
  EXPECT_EQ(watch.names(), names("A_1.JPG")) << "once, whole and with its date";
  EXPECT_EQ(modified(u"A_1.JPG"_s), 1714478400);
  EXPECT_EQ(contentOf(path(u"A.JPG"_s)), "mine");
  EXPECT_EQ(contentOf(path(u"A_1.JPG"_s)), QByteArray(5000, 'p'));
  EXPECT_EQ(savedCount, 1U);
}

TEST_F(ContentDownload, keepsTheFourthCopyAndReplacesItUnlessTheUserTouchedIt) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.listedSize = 6000;
  const auto fetchAgain = [&](const KaContentTarget &wanted, const char *there) {
    object.body += '+'; // or it would be the picture that is there
    add(object);
    const KaPassOutcome outcome = parts.pass(wanted);
    EXPECT_EQ(outcome.result, Success);
    savedCount = outcome.savedCount;
    EXPECT_EQ(files(), names(there));
  };
  fetchAgain(target(), "A.JPG");
  EXPECT_EQ(modified(u"A.JPG"_s), 1714478400);
  EXPECT_EQ(savedCount + record().ContentIds.size(), 0U);
  object.body = "another";
  fetchAgain(target(), "A.JPG");
  EXPECT_EQ(contentOf(path(u"A.JPG"_s)), object.body);
  ASSERT_TRUE(QFile::remove(path(u"A.JPG"_s)));
  fetchAgain(target(), "A.JPG");
  object.fileNameMetadata = sandbox::fileNameHeader(u"H.JPG"_s);
  fetchAgain(target(), "H.JPG");
  writeFile(path(u"H.JPG"_s), "mine now");
  fetchAgain(target(), "H.JPG H_1.JPG");
  EXPECT_EQ(contentOf(path(u"H.JPG"_s)), "mine now");
  ASSERT_TRUE(QFile::rename(path(u"H_1.JPG"_s), path(u"I.JPG"_s)) && QFile::copy(path(u"I.JPG"_s), path(u"H_1.JPG"_s)));
  fetchAgain(target(), "H.JPG H_1.JPG H_2.JPG I.JPG");
  fetchAgain(longTerm, "H.JPG H_1.JPG H_2.JPG H_3.JPG I.JPG");
  object.listedSize = object.body.size() + 1;
  fetchAgain(target(), "H.JPG H_1.JPG H_2.JPG H_3.JPG I.JPG");
  EXPECT_EQ(record().ContentIds, names("A"));
  // With its name and inode reused and its dates set, a new file cannot be told from the copy that is gone.
  KaKeptCopies copies;
  copies.keep(u"key"_s, path(u"I.JPG"_s), true);
  EXPECT_EQ(copies.replaceKept(u"key"_s, path(u"I.JPG"_s), true), path(u"I.JPG"_s));
  EXPECT_TRUE(QFile::exists(path(u"I.JPG"_s)));
  for (const QString &copy : {u"H_10.JPG"_s, u"H_20.JPG"_s})
    writeFile(path(copy), copy.toUtf8());
  copies.keep(u"key"_s, path(u"H_10.JPG"_s), true);
  EXPECT_EQ(copies.replaceKept(u"key"_s, path(u"H_20.JPG"_s), true), path(u"H_10.JPG"_s));
}

TEST_F(ContentDownload, neverReplacesAFileThatWasThereThoughItIsLikeACopyThatStays) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.listedSize = 6000;
  const std::tuple<QByteArray, const char *, QByteArray> runs[] = {{"first", "A.JPG A_1.JPG", "first"},
                                                                   {"mine", "A_1.JPG", {}},
                                                                   {"third", "A.JPG A_1.JPG", "third"},
                                                                   {"third", "A.JPG A_1.JPG", "third"},
                                                                   {"fourth", "A.JPG A_1.JPG", "fourth"}};
  writeFile(path(u"A_1.JPG"_s), "mine");
  for (const auto &[body, there, copy] : runs) {
    object.body = body;
    add(object);
    EXPECT_EQ(parts.pass(target()).savedCount, 0U);
    EXPECT_EQ(parts.content.takeTrace().unsure.size(), 1);
    EXPECT_EQ(files(), names(there));
    EXPECT_EQ(contentOf(path(u"A.JPG"_s)), copy);
    EXPECT_EQ(contentOf(path(u"A_1.JPG"_s)), "mine");
  }
}

constexpr qint64 kUploadHour = 1714557600; // 2024-05-01 10:00 UTC
const QString kUploadDay = u"2024/05/2024_05_01"_s;

struct Placing {
  const char *name;
  QByteArray document;
  bool sorting;
  QString folder; ///< empty: nowhere, with FileNotSaved
  qint64 modified = kUploadHour;
  int refusals = 0;
  bool takesOddNames = true;
};

class Placings : public ContentDownload, public testing::WithParamInterface<Placing> {};

TEST_P(Placings, followTheMetadata) {
  // Nine hours ahead, so that an instant that moves back by the offset is the local time it was written as.
  qputenv("TZ", "JST-9");
  tzset();
  const auto &[name, document, sorting, folder, time, refusals, takesOddNames] = GetParam();
  takesOddFolders = takesOddNames;
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.metadataDocument = document;
  add(object);
  writeFile(path(u"Taken?"_s), "mine");
  if (refusals > 0) service.order(Endpoint::Metadata, {.status = 500, .times = refusals});
  const bool saved = !folder.isEmpty();
  EXPECT_EQ(parts.pass(target({.childFolder = 3, .bExpandExif = sorting})).result, saved ? Success : FileNotSaved);
  const QString file = folder + u"/A.JPG"_s;
  EXPECT_EQ(files(), saved ? (QStringList{file, u"Taken?"_s}) : names("Taken?"));
  EXPECT_EQ(fetched().size() + record().ContentIds.size(), saved ? 2 : 0);
  EXPECT_TRUE(!saved || modified(file) == time);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata), std::min(4, refusals + (sorting ? 2 : 1)));
  EXPECT_FALSE(QFile::exists(profile.path(u"out"_s)) || QFile::exists(profile.path(u"Pictures2"_s)));
}

QByteArray rules(const QByteArray &matched) {
  return R"({"sortation":{"matchedRules":)" + matched + "}}";
}

const QByteArray kLongRule = QByteArray("é").repeated(135);
const QString kCutRule = u"é"_s.repeated(127); // 254 bytes

INSTANTIATE_TEST_SUITE_P(
    ContentDownload, Placings,
    testing::Values(
        Placing{"local", R"({"captureTime":"2024-04-30T23:30:00.000Z"})", false, u"2024/04/2024_04_30"_s, 1714487400},
        Placing{"zoneAtLast", R"({"captureTime":"2024-04-30T23:30:00.000-02:00"})", false, kUploadDay, 1714494600, 3},
        Placing{"unreadable", R"({"captureTime":"30.4.2024"})", false, kUploadDay},
        Placing{"rulesOutOfReach", rules(R"(["Birds"])"), true, kUploadDay, kUploadHour, 4},
        Placing{"rulesAtLast", rules(R"(["Birds"])"), true, u"Birds/"_s + kUploadDay, kUploadHour, 2},
        Placing{"notSorting", rules(R"(["Birds"])"), false, kUploadDay},
        Placing{"firstRuleOnly", rules(R"(["Birds","Trees"])"), true, u"Birds/"_s + kUploadDay},
        Placing{"verbatim", rules(R"([1," é*?/Small "])"), true, u" é*?/Small /"_s + kUploadDay},
        Placing{"dots", rules(R"(["..a/b../c/../d"])"), true, u"..a/b../d/"_s + kUploadDay},
        Placing{"cut", rules("[\"A/" + kLongRule + "b/c\"]"), true, u"A/"_s + kCutRule + u"/c/"_s + kUploadDay},
        Placing{"refused", rules(R"(["A./?/b? ."])"), true, u"A./_/b_/"_s + kUploadDay, kUploadHour, 0, false},
        Placing{"above", rules(R"(["../out","Trees"])"), true, {}},
        Placing{"beside", rules(R"(["a/../../Pictures2"])"), true, {}},
        Placing{"fileInTheWay", rules(R"(["Taken?","Trees"])"), true, {}}),
    [](const auto &row) { return row.param.name; });

} // namespace
