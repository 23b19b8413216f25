#include "service/KaServerRequest.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include "app/log/KaLogUtility.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace std::string_view_literals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

/// The four ways in which operations judge an answer.
enum class Manner { Plain, List, Object, Signed };
constexpr std::size_t kManners = 4;

struct Outcome {
  KaResultCode result;
  qint64 status;
  friend bool operator==(const Outcome &, const Outcome &) = default;
  friend void PrintTo(const Outcome &outcome, std::ostream *out) {
    *out << "result " << qint64(outcome.result) << ", status " << outcome.status;
  }
};

struct Operation {
  const char *name;
  Endpoint endpoint;
  Manner manner;
};

constexpr Operation kOperations[] = {
    {"getKaAppId", Endpoint::Configuration, Manner::Plain},
    {"getAwsTemporaryCredential", Endpoint::Sts, Manner::Plain},
    {"getAwsS3KeyList", Endpoint::ListItems, Manner::List},
    {"getAwsPreviewlList", Endpoint::PreviewList, Manner::List},
    {"getAwsS3Object", Endpoint::ObjectGet, Manner::Object},
    {"getAwsS3Preview", Endpoint::PreviewObject, Manner::Object},
    {"getAWSS3ObjectTag", Endpoint::ObjectTagging, Manner::Signed},
    {"headAWSS3Object", Endpoint::ObjectHead, Manner::Signed},
    {"checkObjectTagIs10GStorage", Endpoint::ObjectTagging, Manner::Signed},
};

struct BadInput {
  const char *name;
  std::optional<Fault> fault; ///< none: a bad certificate
  std::array<Outcome, kManners> expected;
};

using enum KaResultCode;

constexpr std::array<Outcome, kManners> everywhere(KaResultCode result, qint64 status) {
  return {Outcome{result, status}, Outcome{result, status}, Outcome{result, status}, Outcome{result, status}};
}

constexpr std::array<Outcome, kManners> noStatus(KaResultCode plain) {
  return {Outcome{plain, 0}, Outcome{NoHttpStatus, 0}, Outcome{NoHttpStatus, 0}, Outcome{ServerError, 0}};
}

Fault status(int code) {
  return {.kind = Fault::Kind::Status, .status = code};
}

const BadInput kBadInput[] = {
    {"status302", status(302), everywhere(ServerError, 302)},
    {"status400", status(400), everywhere(LinkInvalid, 400)},
    {"status401", status(401), everywhere(LinkInvalid, 401)},
    {"status403", status(403), everywhere(LinkInvalid, 403)},
    {"status404", status(404), {Outcome{Success, 404}, {Success, 404}, {NoBody, 404}, {Success, 404}}},
    {"status500", status(500), everywhere(RetryLater, 500)},
    {"status502", status(502), everywhere(ServerError, 502)},
    {"status503", status(503), everywhere(RetryLater, 503)},
    {"emptyBody",
     Fault{.kind = Fault::Kind::EmptyBody},
     {Outcome{NoBody, 200}, {NoBody, 200}, {NoBody, 200}, {Success, 200}}},
    {"malformedBody",
     Fault{.kind = Fault::Kind::MalformedBody},
     {Outcome{Success, 200}, {Success, 200}, {DefaultFileName, 200}, {Success, 200}}},
    {"truncatedBody", Fault{.kind = Fault::Kind::TruncatedBody}, noStatus(Offline)},
    {"droppedConnection", Fault{.kind = Fault::Kind::DroppedConnection}, noStatus(Offline)},
    {"silence", Fault{.kind = Fault::Kind::NoAnswer}, noStatus(Offline)},
    {"badCertificate", {}, noStatus(SecureConnectionFailed)},
};

class BadInputs : public ServiceTest, public testing::WithParamInterface<std::tuple<BadInput, Operation>> {
protected:
  BadInputs() {
    service.library().addRaw(sandbox::previewListBucket(), previewListKey, {.body = "{\"data\":[]}"});
    service.library().addRaw(sandbox::contentBucket(), previewKey, {.body = "preview"});
  }

  /// The operation, asked for what is there.
  [[nodiscard]] Outcome perform(const Operation &operation) {
    KaServerRequest request;
    const KaCredential by = credential();
    const QString path = picture(u"default.JPG"_s);
    const auto outcome = [](const auto &answer) { return Outcome{answer.result, answer.statusCode}; };
    const QByteArray name = operation.name;
    if (name == "getKaAppId") return outcome(request.getKaAppId());
    if (name == "getAwsTemporaryCredential")
      return outcome(request.getAwsTemporaryCredential(towardsPort(url(u"sts"_s, u"/?Action=None"_s))));
    if (name == "getAwsS3KeyList")
      return outcome(request.getAwsS3KeyList(towardsPort(presigned(by, {}) + u"&list-type=2&prefix=images/original/"_s
                                                         + service.library().userId() + u'/'),
                                             by));
    if (name == "getAwsPreviewlList")
      return outcome(
          request.getAwsPreviewlList(towardsPort(presigned(by, previewListKey, sandbox::previewListBucket())), by));
    if (name == "getAwsS3Object") return saved(request.getAwsS3Object(towardsPort(presigned(by, imageKey)), by, path));
    if (name == "getAwsS3Preview")
      return saved(request.getAwsS3Preview(towardsPort(presigned(by, previewKey)), by, path, {}));
    if (name == "getAWSS3ObjectTag") return outcome(request.getAWSS3ObjectTag(by, imageKey));
    if (name == "headAWSS3Object") return outcome(request.headAWSS3Object(by, imageKey));
    const TagVerdict verdict = request.checkObjectTagIs10GStorage(by, imageKey);
    EXPECT_TRUE(verdict.bDownloadContent);
    // This operation has no status of its own; the row's stands for it.
    return {verdict.result, std::get<0>(GetParam()).expected[std::size_t(Manner::Signed)].status};
  }

  void useBadCertificate() {
    badPort = service.badlyCertifiedPort(sandbox::BadCertificate::UnknownAuthority);
    profile.writeUserDefaults(service.userDefaults(badPort));
  }

  const QString previewListKey = service.library().userId() + u".json"_s;
  const QString previewKey = u"images/preview/"_s + service.library().userId() + u"/dev01/20240501/10/0001"_s;

private:
  [[nodiscard]] QString towardsPort(QString target) const {
    return badPort == 0 ? target
                        : target.replace(u':' + QString::number(service.port()), u':' + QString::number(badPort));
  }

  static Outcome saved(const SavedObject &object) {
    EXPECT_EQ(object.outputFilePath.isEmpty(), object.result != DefaultFileName);
    return {object.result, object.statusCode};
  }

  quint16 badPort = 0;
};

TEST_P(BadInputs, haveTheirResultAndLeaveNoFile) {
  const auto &[input, operation] = GetParam();
  if (!input.fault)
    useBadCertificate();
  else if (input.fault->kind == Fault::Kind::NoAnswer)
    addUserDefaults({{u"timeoutIntervalForRequest"_s, u"0.2"_s}});
  KaLogUtility::switchLogStatus();
  if (input.fault) service.order(operation.endpoint, *input.fault);

  Outcome expected = input.expected[std::size_t(operation.manner)];
  // Nothing of an answer without a body can be cut off.
  if (operation.endpoint == Endpoint::ObjectHead && input.name == "truncatedBody"sv) expected = {Success, 200};
  EXPECT_EQ(perform(operation), expected);
  EXPECT_EQ(savedFiles(), expected.result == DefaultFileName ? QStringList(u"default.JPG"_s) : QStringList());
  EXPECT_EQ(loggedLines(profile).isEmpty(), operation.manner != Manner::Signed || expected.result == Success);
}

INSTANTIATE_TEST_SUITE_P(Service, BadInputs,
                         testing::Combine(testing::ValuesIn(kBadInput), testing::ValuesIn(kOperations)),
                         [](const auto &row) {
                           return std::string(std::get<1>(row.param).name) + '_' + std::get<0>(row.param).name;
                         });

class SignedOperations : public ServiceTest {
protected:
  SignedOperations() { KaLogUtility::switchLogStatus(); }

  /// Lines of the log without their fill and indentation.
  [[nodiscard]] QStringList plainLog() const {
    QStringList lines = loggedLines(profile);
    for (QString &line : lines)
      line = line.remove(u"[TIME] "_s).remove(QRegularExpression(u"^=+ | =+$"_s)).trimmed();
    return lines;
  }
};

TEST_F(SignedOperations, logARefusedTagRequest) {
  service.order(Endpoint::ObjectTagging, {.kind = Fault::Kind::Status, .status = 403, .body = "<no/>"});
  const KaCredential by = credential();
  EXPECT_EQ(KaServerRequest().getAWSS3ObjectTag(by, imageKey).data, "<no/>");
  const sandbox::RequestRecord sent = service.requests().constLast();
  const auto header = [&sent](const char *name) { return QString::fromUtf8(sent.header(name)); };
  EXPECT_EQ(plainLog(), QStringList({u"getAWSS3ObjectTag:Request"_s,
                                     u"url:"_s + url(u"strata-prd-content.s3"_s, u'/' + imageKey + u"?tagging="_s),
                                     u"xAmzDate:"_s + header("x-amz-date"), u"sessionToken:"_s + by.sessionToken,
                                     u"payload_hash:"_s + header("x-amz-content-sha256"),
                                     u"authorization:"_s + header("authorization"), u"getAWSS3ObjectTag:Response"_s,
                                     u"statuscode:403"_s, u"<no/>"_s}));
}

TEST_F(SignedOperations, logARefusedHeadRequest) {
  service.order(Endpoint::ObjectHead, {.kind = Fault::Kind::Status, .status = 503, .body = "12345"});
  const ObjectHead head = KaServerRequest().headAWSS3Object(credential(), imageKey);
  EXPECT_EQ(head.contentLength, 5);
  const QStringList log = plainLog();
  ASSERT_EQ(log.size(), 9);
  EXPECT_EQ(log[0], u"HeadAWSS3Object:Request"_s);
  EXPECT_EQ(log[1], u"url:"_s + url(u"strata-prd-content.s3"_s, u'/' + imageKey + u'?'));
  EXPECT_EQ(log.mid(6), QStringList({u"HeadAWSS3Object:Response"_s, u"statuscode:503"_s, u"expectedFileSize:5"_s}));
  EXPECT_EQ(service.requests().constLast().target, '/' + imageKey.toUtf8() + '?');
}

TEST_F(SignedOperations, tellTheLengthOfAnObject) {
  const ObjectHead head = KaServerRequest().headAWSS3Object(credential(), imageKey);
  EXPECT_EQ(head.result, Success);
  EXPECT_EQ(head.statusCode, 200);
  EXPECT_EQ(head.contentLength, image.body.size());
}

TEST_F(SignedOperations, leaveOutObjectsOfTheThirtyDaysStorage) {
  const QString period = u"x-strata-storage-period"_s;
  const std::pair<QHash<QString, QString>, bool> cases[] = {
      {{{period, u"30"_s}}, false}, {{{period, u"31"_s}}, true}, {{{u"other"_s, u"30"_s}}, true}, {{}, true}};
  for (const auto &[tags, expected] : cases) {
    sandbox::LibraryObject tagged = image;
    tagged.tags = tags;
    service.library().add(tagged);
    const TagVerdict verdict = KaServerRequest().checkObjectTagIs10GStorage(credential(), imageKey);
    EXPECT_EQ(verdict.result, Success);
    EXPECT_EQ(verdict.bDownloadContent, expected);
  }
  EXPECT_EQ(plainLog(), QStringList({u"checkObjectTagIs10GStorage: XMLParse Result"_s,
                                     u"targetKeys:x-strata-storage-period"_s, u"targetValues:30"_s}));
}

} // namespace
