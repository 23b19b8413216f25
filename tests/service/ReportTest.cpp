#include "app/log/KaLogUtility.h"
#include "service/KaServerRequest.h"
#include "tests/log/LogFile.h"
#include "tests/service/ServiceFixture.h"

#include <curl/curl.h>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;

namespace {

const QString kDocument =
    uR"({"logGroupName":"g", "logStreamName":"s", "logEvents":[{"timestamp":1,"message":"{\"UUID\":\"Grüße\"}"}]})"_s;

class Report : public ServiceTest {
protected:
  /// Sends the request that arrived as @p model once more, signed by libcurl. @return what that signed it with.
  [[nodiscard]] QByteArray signedByCurl(const sandbox::RequestRecord &model, const QByteArray &awsService) {
    const std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl(curl_easy_init(), &curl_easy_cleanup);
    curl_slist *headers = nullptr;
    for (const char *name :
         {"host", "content-type", "x-amz-content-sha256", "x-amz-date", "x-amz-security-token", "x-amz-target"})
      if (const QByteArray value = model.header(name); !value.isEmpty())
        headers = curl_slist_append(headers, (QByteArray(name) + ": " + value).constData());
    const auto set = [&](CURLoption option, auto value) { curl_easy_setopt(curl.get(), option, value); };
    const QByteArray target = url(model.host.section(u'.', 0, -2), QString::fromLatin1(model.target)).toLatin1();
    const QByteArray user = (by.accessKeyId + u':' + by.secretAccessKey).toLatin1();
    const QByteArray provider = "aws:amz:eu-west-1:" + awsService;
    set(CURLOPT_URL, target.constData());
    set(CURLOPT_CAINFO, service.trustAnchorsFile().toUtf8().constData());
    set(CURLOPT_PROXY, "");
    set(
        CURLOPT_WRITEFUNCTION, +[](char *, std::size_t size, std::size_t count, void *) { return size * count; });
    set(CURLOPT_AWS_SIGV4, provider.constData());
    set(CURLOPT_USERPWD, user.constData());
    set(CURLOPT_HTTPHEADER, headers);
    if (model.method == "POST") set(CURLOPT_POSTFIELDS, model.body.constData());
    if (model.method == "HEAD") set(CURLOPT_NOBODY, 1L);
    service.resetRequestCounts(); // so that what follows is curl's
    EXPECT_EQ(curl_easy_perform(curl.get()), CURLE_OK);
    curl_slist_free_all(headers);
    const sandbox::RequestRecord sent = service.requests().value(0);
    EXPECT_EQ(sent.target, model.target);
    EXPECT_EQ(sent.status, 200);
    return sent.header("authorization");
  }

  KaServerRequest request;
};

TEST_F(Report, isSignedAsAnotherImplementationDoes) {
  EXPECT_EQ(request.notifyDownloadCompletion(by, kDocument).result, KaResultCode::Success);
  const sandbox::RequestRecord sent = service.requests().last();
  EXPECT_EQ(sent.body, kDocument.toUtf8());
  EXPECT_EQ(sent.header("authorization"), signedByCurl(sent, "logs"));
  EXPECT_EQ(service.logEvents().size(), 2);
}

TEST_F(Report, hasCompanyInObjectTagsAndHeads) {
  image.fileName = u"0001"_s;
  service.library().add(image);
  const QString key = service.library().imageKey(image);
  EXPECT_EQ(request.getAWSS3ObjectTag(by, key).result, KaResultCode::Success);
  const sandbox::RequestRecord tagging = service.requests().last();
  EXPECT_EQ(tagging.header("authorization"), signedByCurl(tagging, "s3"));
  EXPECT_EQ(request.headAWSS3Object(by, key).contentLength, image.body.size());
  const sandbox::RequestRecord head = service.requests().last();
  EXPECT_EQ(head.header("authorization"), signedByCurl(head, "s3"));
}

TEST_F(Report, needsNoAnswerAndTellsTheLogNothingPrivateOfARefusal) {
  service.order(Endpoint::LogEvents, {.kind = sandbox::Fault::Kind::EmptyBody});
  EXPECT_EQ(request.notifyDownloadCompletion(by, kDocument).result, KaResultCode::Success);
  KaLogUtility::switchLogStatus();
  const QByteArray refusal = R"({"error":"E","errorDescription":"private"})";
  service.order(Endpoint::LogEvents, {.status = 400, .body = refusal});
  EXPECT_EQ(request.notifyDownloadCompletion(by, kDocument).result, KaResultCode::LinkInvalid);
  EXPECT_EQ(loggedLines(profile).mid(1), QStringList({u"    HTTP=400"_s, u"    ErrorCode=E"_s}));
}

} // namespace
