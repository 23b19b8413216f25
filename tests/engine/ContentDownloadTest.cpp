#include "engine/KeptCopies.h"
#include "identity/KaLinkageUtility.h"
#include "tests/engine/EngineFixture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

const QByteArray kWhole(5000, 'p');

class ContentDownload : public EngineTest {
protected:
  void addNamed(std::initializer_list<const char *> names) {
    for (const char *name : names)
      add(image(u"10"_s, QString::fromLatin1(name)));
  }
  KaContentTarget sorting() const {
    KaContentTarget sorted = target();
    sorted.bExpandExif = true;
    return sorted;
  }
  KaContentTarget expanding() const {
    KaContentTarget expanded = target();
    expanded.bExpandContent = true;
    return expanded;
  }
  static sandbox::LibraryObject sorted(const QString &name, const QByteArray &rules) {
    sandbox::LibraryObject object = image(u"10"_s, name);
    object.expandMetadataDocument =
        R"({"captureTime":"2024-04-30T12:00:00.000Z","sortation":{"matchedRules":)" + rules + "}}";
    return object;
  }
  qint64 modified(const QString &file) const {
    return QFileInfo(profile.picturesFolder() + u'/' + file).lastModified().toSecsSinceEpoch();
  }
  QString path(const QString &file) const { return profile.picturesFolder() + u'/' + file; }

  EngineParts parts{delegate};
};

TEST_F(ContentDownload, fetchesInOrderOverAllDevicesAndRecords) {
  sandbox::LibraryObject other = image(u"09"_s, u"Z.JPG"_s);
  other.deviceId = u"dev2"_s;
  add(other);
  add(image(u"11"_s, u"B.JPG"_s));
  add(image(u"10"_s, u"C.JPG"_s));
  add(image(u"11"_s, u"A.JPG"_s));
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(fetched(), (QStringList{u"Z.JPG"_s, u"C.JPG"_s, u"A.JPG"_s, u"B.JPG"_s}));
  EXPECT_EQ(files(), (QStringList{u"A.JPG"_s, u"B.JPG"_s, u"C.JPG"_s, u"Z.JPG"_s}));
  EXPECT_EQ(record(), (KaDownloadData{u"20240501/11"_s, {u"A"_s, u"B"_s}}));
  EXPECT_EQ(parts.content.downloadSuccessCount(), 4U);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).first(), u"GetContentLoop Start|ContentId=Z"_s);
  EXPECT_EQ(logged(u"[OK] 009: Download"_s).last(),
            u"[OK] 009: Download|ContentId=B|FilePath=%1/B.JPG|FileSize=5000"_s.arg(profile.picturesFolder()));

  EXPECT_EQ(parts.content.getContentsProcess({}, target()), KaResultCode::Success);
  EXPECT_EQ(parts.content.downloadSuccessCount(), 0U);
}

TEST_F(ContentDownload, handsAWaitingCodeVerifierInFirst) {
  KaLinkageUtility::saveCodeVerifier(u"verifier"_s);
  EXPECT_EQ(parts.content.getContentsProcess({}, target()), KaResultCode::Success);
  EXPECT_EQ(service.requestCount(Endpoint::TokenCode), 1);
}

TEST_F(ContentDownload, renewsASessionThatExpiresWithinTenMinutes) {
  service.setCredentialLifetime(std::chrono::seconds(590));
  addNamed({"A.JPG", "B.JPG"});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 3);
  EXPECT_EQ(service.requestCount(Endpoint::Sts), 3);
}

TEST_F(ContentDownload, keepsASessionThatLastsLonger) {
  service.setCredentialLifetime(std::chrono::seconds(660));
  addNamed({"A.JPG", "B.JPG"});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
  EXPECT_EQ(files().size(), 2);
}

TEST_F(ContentDownload, passesEverythingOverOnceTheSessionCannotBeRenewed) {
  service.setCredentialLifetime(std::chrono::seconds(590));
  addNamed({"A.JPG", "B.JPG", "C.JPG"});
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  ASSERT_EQ(parts.list(), KaResultCode::Success);
  service.resetRequestCounts();
  service.order(Endpoint::Sts, {.status = 503});
  EXPECT_EQ(parts.content.getContentsProcess(parts.listing.contentsDictionary(), target()), KaResultCode::RetryLater);
  EXPECT_EQ(service.requestCount(Endpoint::RefreshToken), 1);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata) + service.requestCount(Endpoint::ObjectGet), 0);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).size(), 3);
}

TEST_F(ContentDownload, skipsWhatIsTaggedForTheOrdinaryStorage) {
  KaContentTarget longTerm = target();
  longTerm.targetStorage = KaTargetStorage::LongTerm10G;
  for (const auto &[name, period] : {std::pair("A.JPG", u"30"_s), {"B.JPG", u"365"_s}, {"C.JPG", QString()}}) {
    sandbox::LibraryObject object = image(u"10"_s, QString::fromLatin1(name));
    if (!period.isEmpty()) object.tags = {{u"x-strata-storage-period"_s, period}};
    add(object);
  }
  EXPECT_EQ(parts.pass(longTerm), KaResultCode::Success);
  EXPECT_EQ(files(), (QStringList{u"B.JPG"_s, u"C.JPG"_s}));
  EXPECT_EQ(logged(u"Skip Download"_s), QStringList{u"Skip Download|bDownloadContent:false"_s});
  EXPECT_EQ(delegate.answers().records[service.library().userId() + u"_(10G)"_s].ContentIds,
            (QStringList{u"B"_s, u"C"_s}));
  EXPECT_EQ(record(), KaDownloadData());
}

TEST_F(ContentDownload, asksForNoTagsOfTheOrdinaryStorage) {
  addNamed({"A.JPG"});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(service.requestCount(Endpoint::ObjectTagging) + service.requestCount(Endpoint::ObjectHead), 0);
}

TEST_F(ContentDownload, recoversFromAFailureWithTheNextTagsThatArrive) {
  KaContentTarget longTerm = target();
  longTerm.targetStorage = KaTargetStorage::LongTerm10G;
  addNamed({"A.JPG", "B.JPG"});
  service.order(Endpoint::ObjectTagging, {.status = 503});
  EXPECT_EQ(parts.pass(longTerm), KaResultCode::Success);
  EXPECT_EQ(files(), QStringList{u"B.JPG"_s});
}

TEST_F(ContentDownload, takesTheExpandVariantWhereThereIsOne) {
  sandbox::LibraryObject expanded = image(u"10"_s, u"A.JPG"_s);
  expanded.expandBody = QByteArray(9000, 'x');
  add(expanded);
  addNamed({"B.JPG"});
  EXPECT_EQ(parts.pass(expanding()), KaResultCode::Success);
  EXPECT_EQ(contentOf(u"A.JPG"_s), *expanded.expandBody);
  EXPECT_EQ(contentOf(u"B.JPG"_s), kWhole);
  EXPECT_EQ(record().ContentIds, (QStringList{u"A"_s, u"B"_s}));
}

TEST_F(ContentDownload, takesTheOriginalUnlessAskedForMore) {
  sandbox::LibraryObject expanded = image(u"10"_s, u"A.JPG"_s);
  expanded.expandBody = QByteArray(9000, 'x');
  add(expanded);
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(contentOf(u"A.JPG"_s), kWhole);
}

TEST_F(ContentDownload, recoversFromAFailureWithTheNextVariantCheck) {
  addNamed({"A.JPG", "B.JPG", "C.JPG"});
  service.order(Endpoint::ObjectHead, {.status = 503});
  service.order(Endpoint::ObjectGet, {.status = 503, .pathContains = u"B.JPG"_s});
  EXPECT_EQ(parts.pass(expanding()), KaResultCode::Success);
  EXPECT_EQ(fetched(), (QStringList{u"B.JPG"_s, u"C.JPG"_s}));
  EXPECT_EQ(files(), QStringList{u"C.JPG"_s});
}

TEST_F(ContentDownload, carriesAFailureOverToAllThatFollow) {
  addNamed({"A.JPG", "B.JPG", "C.JPG"});
  service.order(Endpoint::ObjectGet, {.status = 503});
  EXPECT_EQ(parts.pass(target()), KaResultCode::RetryLater);
  EXPECT_EQ(fetched(), QStringList{u"A.JPG"_s});
  EXPECT_EQ(service.requestCount(Endpoint::Metadata), 1);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).size(), 3);
  EXPECT_EQ(logged(u"[NG] 009: Download"_s), QStringList{u"[NG] 009: Download|ContentId=A|HTTP=503"_s});
}

TEST_F(ContentDownload, stopsAtOnceWhenTheFolderIsNotUsable) {
  addNamed({"A.JPG", "B.JPG"});
  delegate.change([](auto &answers) { answers.folderVerdict = KaResultCode::FolderNotSupported; });
  EXPECT_EQ(parts.pass(target()), KaResultCode::FileNotSaved);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata) + service.requestCount(Endpoint::ObjectGet), 0);
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).size(), 1);
}

TEST_F(ContentDownload, refusesWhatTheDiskCannotHold) {
  sandbox::LibraryObject huge = image(u"10"_s, u"A.JPG"_s);
  huge.listedSize = Q_INT64_C(1) << 60;
  add(huge);
  addNamed({"B.JPG"});
  EXPECT_EQ(parts.pass(target()), KaResultCode::DiskFull);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata) + service.requestCount(Endpoint::ObjectGet), 0);
  EXPECT_EQ(logged(u"ERROR"_s), QStringList{u"ERROR|ERR_DISK_FULL : No diskspace for save image"_s});
  EXPECT_EQ(logged(u"GetContentLoop Start"_s).size(), 2);
}

struct Dating {
  const char *name;
  std::optional<QByteArray> document;
  int refusals;
  QString folder;
  qint64 modified;
};

class Datings : public EngineTest, public testing::WithParamInterface<Dating> {
protected:
  // Nine hours ahead, so that an instant that moves back by the offset is the local time it was written as.
  const bool zoned = [] {
    qputenv("TZ", "JST-9");
    tzset();
    return true;
  }();
};

TEST_P(Datings, decideFolderAndDates) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.metadataDocument = GetParam().document;
  add(object);
  if (GetParam().refusals > 0) service.order(Endpoint::Metadata, {.status = 500, .times = GetParam().refusals});
  EngineParts parts(delegate);
  KaContentTarget dated = target();
  dated.childFolder = 3;
  EXPECT_EQ(parts.pass(dated), KaResultCode::Success);
  ASSERT_EQ(files(), QStringList{GetParam().folder + u"/A.JPG"_s});
  EXPECT_EQ(QFileInfo(profile.picturesFolder() + u'/' + files().first()).lastModified().toSecsSinceEpoch(),
            GetParam().modified);
  EXPECT_EQ(record().ContentIds, QStringList{u"A"_s});
}

constexpr qint64 kUploadHour = 1714557600; // 2024-05-01 10:00 UTC
const QString kUploadDay = u"2024/05/2024_05_01"_s;

INSTANTIATE_TEST_SUITE_P(
    ContentDownload, Datings,
    testing::Values(
        Dating{"captureTime", R"({"captureTime":"2024-04-30T23:30:00.000Z"})", 0, u"2024/04/2024_04_30"_s, 1714487400},
        Dating{"zoneInTheText", R"({"captureTime":"2024-04-30T23:30:00.000-02:00"})", 0, kUploadDay, 1714494600},
        Dating{"missing", "{}", 0, kUploadDay, kUploadHour},
        Dating{"unreadable", R"({"captureTime":"30.4.2024"})", 0, kUploadDay, kUploadHour},
        Dating{"wrongType", R"({"captureTime":20240430})", 0, kUploadDay, kUploadHour},
        Dating{"noMetadata", {}, 0, kUploadDay, kUploadHour},
        Dating{"metadataOutOfReach", R"({"captureTime":"2024-04-30T23:30:00.000Z"})", 4, kUploadDay, kUploadHour}),
    [](const auto &row) { return row.param.name; });

struct Rules {
  const char *name;
  QByteArray rules;
  QString file; ///< where it lands; empty: nowhere, with FileNotSaved
};

class RuleFolders : public EngineTest, public testing::WithParamInterface<Rules> {};

TEST_P(RuleFolders, receiveTheFile) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.expandMetadataDocument = R"({"sortation":{"matchedRules":)" + GetParam().rules + "}}";
  add(object);
  EngineParts parts(delegate);
  KaContentTarget sorted = target();
  sorted.childFolder = 0;
  sorted.bExpandExif = true;
  const bool saved = !GetParam().file.isEmpty();
  EXPECT_EQ(parts.pass(sorted), saved ? KaResultCode::Success : KaResultCode::FileNotSaved);
  EXPECT_EQ(files(), saved ? QStringList{GetParam().file} : QStringList());
  EXPECT_EQ(QDir(profile.path()).exists(u"out"_s), false);
}

INSTANTIATE_TEST_SUITE_P(ContentDownload, RuleFolders,
                         testing::Values(Rules{"one", R"(["Birds"])", u"Birds/2024_05_01/A.JPG"_s},
                                         Rules{"firstOnly", R"(["Birds","Trees"])", u"Birds/2024_05_01/A.JPG"_s},
                                         Rules{"nested", R"(["Birds/Small"])", u"Birds/Small/2024_05_01/A.JPG"_s},
                                         Rules{"verbatim", R"([" é*? "])", u" é*? /2024_05_01/A.JPG"_s},
                                         Rules{"none", "[]", u"2024_05_01/A.JPG"_s},
                                         Rules{"wrongType", R"("Birds")", u"2024_05_01/A.JPG"_s},
                                         Rules{"above", R"(["../out"])", QString()},
                                         Rules{"aboveFromBelow", R"(["a/../../out"])", QString()},
                                         Rules{"nul", R"(["a\u0000b"])", QString()},
                                         Rules{"tooLong", "[\"" + QByteArray(300, 'x') + "\"]", QString()}),
                         [](const auto &row) { return row.param.name; });

TEST_F(ContentDownload, sortsOnlyWhenAskedTo) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.metadataDocument = R"({"sortation":{"matchedRules":["Birds"]}})";
  add(object);
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
}

TEST_F(ContentDownload, sortsByThePlainMetadataWhereThereIsNoOther) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.metadataDocument = R"({"sortation":{"matchedRules":["Birds"]}})";
  add(object);
  EXPECT_EQ(parts.pass(sorting()), KaResultCode::Success);
  EXPECT_EQ(files(), QStringList{u"Birds/A.JPG"_s});
}

TEST_F(ContentDownload, failsWhereAFileStandsInTheWay) {
  QFile blocker(path(u"Birds"_s));
  ASSERT_TRUE(blocker.open(QFile::WriteOnly));
  blocker.close();
  add(sorted(u"A.JPG"_s, R"(["Birds","Trees"])"));
  add(sorted(u"B.JPG"_s, R"(["Trees"])"));
  EXPECT_EQ(parts.pass(sorting()), KaResultCode::FileNotSaved);
  EXPECT_EQ(files(), QStringList{u"Birds"_s});
  EXPECT_TRUE(fetched().isEmpty());
  const QStringList errors = logged(u"ERROR"_s);
  ASSERT_EQ(errors.size(), 1);
  EXPECT_TRUE(errors.first().startsWith(u"ERROR|ERR_DOWNLOAD : Create outputFolder failed|"_s));
  EXPECT_TRUE(errors.first().endsWith(u"|outputFolderPath: "_s + path(u"Birds"_s)));
}

TEST_F(ContentDownload, passesAMissingObjectOver) {
  addNamed({"A.JPG", "B.JPG"});
  service.order(Endpoint::ObjectGet, {.status = 404, .times = -1, .pathContains = u"A.JPG"_s});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(files(), QStringList{u"B.JPG"_s});
  EXPECT_EQ(record().ContentIds, QStringList{u"B"_s});
  EXPECT_EQ(parts.content.downloadSuccessCount(), 1U);
  EXPECT_EQ(logged(u"[NG] 009: Download"_s), QStringList{u"[NG] 009: Download|ContentId=A|HTTP=404"_s});
  EXPECT_EQ(logged(u"Skip DownloadFile"_s),
            QStringList{u"Skip DownloadFile|A : Skip download because file not found."_s});
}

TEST_F(ContentDownload, triesTheNextRuleFolderWhileTheObjectIsMissing) {
  add(sorted(u"A.JPG"_s, R"(["Birds","Trees","Hills"])"));
  service.order(Endpoint::ObjectGet, {.status = 404});
  EXPECT_EQ(parts.pass(sorting()), KaResultCode::Success);
  EXPECT_EQ(files(), QStringList{u"Trees/A.JPG"_s});
  EXPECT_EQ(fetched().size(), 2);
}

TEST_F(ContentDownload, reportsAMissingObjectToItsCaller) {
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  EXPECT_EQ(parts.content.getContent({.objectKey = service.library().imageKey(image(u"10"_s, u"A.JPG"_s)),
                                      .refFileSize = 1,
                                      .utcCaptureTime = QDateTime::currentDateTimeUtc(),
                                      .outputFilePath = profile.picturesFolder()}),
            KaResultCode::ObjectMissing);
  EXPECT_TRUE(files().isEmpty());
}

TEST_F(ContentDownload, fetchesAgainUntilTheSizeIsRight) {
  addNamed({"A.JPG"});
  service.order(Endpoint::ObjectGet, {.kind = Fault::Kind::Body, .body = QByteArray(4999, 'p'), .times = 3});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(fetched().size(), 4);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  EXPECT_EQ(contentOf(u"A.JPG"_s), kWhole);
  EXPECT_EQ(record().ContentIds, QStringList{u"A"_s});
  EXPECT_EQ(parts.content.downloadSuccessCount(), 1U);
  EXPECT_EQ(logged(u"Retry DownloadFile"_s),
            (QStringList{u"Retry DownloadFile|RetryCount=1"_s, u"Retry DownloadFile|RetryCount=2"_s,
                         u"Retry DownloadFile|RetryCount=3"_s}));
  EXPECT_EQ(
      logged(u"[NG] 009: Download"_s).count(u"[NG] 009: Download|ContentId=A|ReferenceFileSize=5000|FileSize=4999"_s),
      3);
}

TEST_F(ContentDownload, keepsTheFourthCopyUnrecordedAndUncounted) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.listedSize = 5001;
  add(object);
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(fetched().size(), 4);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  EXPECT_EQ(modified(u"A.JPG"_s), 1714478400);
  EXPECT_EQ(record(), KaDownloadData());
  EXPECT_EQ(parts.content.downloadSuccessCount(), 0U);
  EXPECT_EQ(logged(u"[NG] 009: Download"_s).size(), 3);
  EXPECT_EQ(logged(u"[OK] 009: Download"_s),
            QStringList{u"[OK] 009: Download|ContentId=A|FilePath=%1|FileSize=5000"_s.arg(path(u"A.JPG"_s))});
  EXPECT_EQ(parts.content.keptInThisRun(), QSet<QString>{service.library().imageKey(object)});
  parts.content.beginRun();
  EXPECT_TRUE(parts.content.keptInThisRun().isEmpty());
}

TEST_F(ContentDownload, takesAnUnnamedFileForUnconfirmed) {
  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
  object.fileNameMetadata.reset();
  add(object);
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(fetched().size(), 4);
  EXPECT_EQ(files(), QStringList{u"2024-04-30.JPG"_s});
  EXPECT_EQ(record(), KaDownloadData());
  EXPECT_EQ(parts.content.downloadSuccessCount(), 0U);
}

TEST_F(ContentDownload, neverTouchesAFileThatIsThere) {
  QFile mine(path(u"A.JPG"_s));
  ASSERT_TRUE(mine.open(QFile::WriteOnly));
  mine.write("mine");
  mine.close();
  addNamed({"A.JPG"});
  EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  EXPECT_EQ(contentOf(u"A.JPG"_s), "mine");
  EXPECT_EQ(contentOf(u"A_1.JPG"_s), kWhole);
}

/// An image whose copy stays unconfirmed, fetched once.
class KeptCopy : public ContentDownload {
protected:
  KeptCopy() {
    object.listedSize = 5001;
    add(object);
    EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
    EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  }
  void again(const sandbox::LibraryObject &changed) {
    service.library().remove(object);
    add(changed);
    parts.content.beginRun();
    EXPECT_EQ(parts.pass(target()), KaResultCode::Success);
  }

  sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
};

TEST_F(KeptCopy, isReplacedByTheNextUnconfirmedOne) {
  object.body = QByteArray(4000, 'q');
  again(object);
  again(object);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  EXPECT_EQ(contentOf(u"A.JPG"_s), object.body);
  EXPECT_EQ(modified(u"A.JPG"_s), 1714478400);
}

TEST_F(KeptCopy, isReplacedByAWholeOne) {
  again(image(u"10"_s, u"A.JPG"_s));
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  EXPECT_EQ(record().ContentIds, QStringList{u"A"_s});
  EXPECT_EQ(logged(u"[OK] 009: Download"_s).last(),
            u"[OK] 009: Download|ContentId=A|FilePath=%1|FileSize=5000"_s.arg(path(u"A.JPG"_s)));
}

TEST_F(KeptCopy, givesWayToOneOfAnotherName) {
  sandbox::LibraryObject renamed = image(u"10"_s, u"A.JPG"_s);
  renamed.fileNameMetadata = sandbox::fileNameHeader(u"Holiday.JPG"_s);
  again(renamed);
  EXPECT_EQ(files(), QStringList{u"Holiday.JPG"_s});
}

TEST_F(KeptCopy, staysBesideThatOfAnotherStorage) {
  KaContentTarget longTerm = target();
  longTerm.parentFolder = path(u"10G"_s);
  longTerm.targetStorage = KaTargetStorage::LongTerm10G;
  ASSERT_TRUE(QDir().mkpath(longTerm.parentFolder));
  EXPECT_EQ(parts.pass(longTerm), KaResultCode::Success);
  EXPECT_EQ(files(), (QStringList{u"10G/A.JPG"_s, u"A.JPG"_s}));
}

TEST_F(KeptCopy, staysWhenTheUserChangedIt) {
  QFile file(path(u"A.JPG"_s));
  ASSERT_TRUE(file.open(QFile::Append));
  file.write("+");
  file.close();
  again(object);
  EXPECT_EQ(files(), (QStringList{u"A.JPG"_s, u"A_1.JPG"_s}));
  EXPECT_EQ(contentOf(u"A.JPG"_s), kWhole + "+");
}

TEST_F(KeptCopy, staysWhenTheUserReplacedIt) {
  ASSERT_TRUE(QFile::rename(path(u"A.JPG"_s), path(u"moved.JPG"_s)));
  ASSERT_TRUE(QFile::copy(path(u"moved.JPG"_s), path(u"A.JPG"_s)));
  again(object);
  EXPECT_EQ(files(), (QStringList{u"A.JPG"_s, u"A_1.JPG"_s, u"moved.JPG"_s}));
}

TEST_F(KeptCopy, isFetchedAnewOnceTheUserRemovedIt) {
  ASSERT_TRUE(QFile::remove(path(u"A.JPG"_s)));
  again(object);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
  again(object);
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
}

TEST(KeptCopies, leaveAFileAloneThatLooksLikeTheOldOne) {
  // With its name and inode reused and its dates set, a new file cannot be told from the copy that is gone.
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"A.JPG"_s);
  QFile file(path);
  ASSERT_TRUE(file.open(QFile::WriteOnly));
  file.close();
  KeptCopies copies;
  copies.keep(u"key"_s, path);
  EXPECT_EQ(copies.replaceKept(u"key"_s, path), path);
  EXPECT_TRUE(QFile::exists(path));
}

} // namespace
