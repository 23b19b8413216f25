#include "tests/engine/EngineFixture.h"

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

constexpr auto kOk = KaResultCode::Success;
constexpr auto kNoBody = KaResultCode::NoBody;
constexpr auto kOffline = KaResultCode::Offline;
constexpr auto kRetry = KaResultCode::RetryLater;
constexpr auto kServer = KaResultCode::ServerError;
constexpr auto kNoStatus = KaResultCode::NoHttpStatus;
constexpr auto kInvalid = KaResultCode::LinkInvalid;
constexpr auto kSecure = KaResultCode::SecureConnectionFailed;

struct Disturbance {
  const char *name;
  Fault fault;
};

/// Everything that an endpoint can do wrong.
std::vector<Disturbance> disturbances() {
  std::vector<Disturbance> all;
  for (const int status : {400, 401, 403, 404, 500, 502, 503})
    all.push_back({"status", {.kind = Fault::Kind::Status, .status = status, .times = -1}});
  all.push_back({"empty", {.kind = Fault::Kind::EmptyBody, .times = -1}});
  all.push_back({"malformed", {.kind = Fault::Kind::MalformedBody, .times = -1}});
  all.push_back({"truncated", {.kind = Fault::Kind::TruncatedBody, .times = -1}});
  all.push_back({"dropped", {.kind = Fault::Kind::DroppedConnection, .times = -1}});
  all.push_back({"silent", {.kind = Fault::Kind::NoAnswer, .times = -1}});
  return all;
}

/// The results in the order of disturbances(), and how the log heads a failure of the step.
struct Endangered {
  const char *name;
  Endpoint endpoint;
  std::vector<KaResultCode> results;
  QString failure; ///< empty: none is written
};

class BadInput : public EngineTest, public testing::WithParamInterface<Endangered> {
protected:
  BadInput()
      : EngineTest(
          [](auto &) { return QHash{std::pair(u"timeoutIntervalForRequest"_s, QString::number(kSlowness))}; }) {
    add(image(u"10"_s, u"A.JPG"_s));
  }

  KaContentTarget expanding() const {
    KaContentTarget all = target();
    all.bExpandContent = true;
    all.bExpandExif = true;
    return all;
  }
  /// Nothing below the folder but the whole image or a copy that arrived whole and was kept unconfirmed.
  void expectNoBrokenFile(const EngineParts &parts) const {
    EXPECT_LE(files().size(), 1);
    if (!parts.content.keptInThisRun().isEmpty()) return;
    for (const QString &file : files())
      EXPECT_EQ(contentOf(file), QByteArray(5000, 'p')) << file.toStdString();
  }
  void forgetEverything(EngineParts &parts) {
    parts.content.beginRun();
    for (const QString &file : files())
      QFile::remove(profile.picturesFolder() + u'/' + file);
    delegate.change([](auto &answers) { answers.records.clear(); });
    service.clearFaults();
  }
};

TEST_P(BadInput, endsTheStepWithItsCode) {
  const Endangered &row = GetParam();
  const std::vector<Disturbance> all = disturbances();
  ASSERT_EQ(row.results.size(), all.size());
  EngineParts parts(delegate);
  for (std::size_t index = 0; index < all.size(); ++index) {
    SCOPED_TRACE(std::string(all[index].name) + " " + std::to_string(all[index].fault.status));
    service.order(row.endpoint, all[index].fault);
    const qsizetype failuresBefore = logged(row.failure).size();
    EXPECT_EQ(parts.pass(expanding()), row.results[index]);
    if (row.results[index] != kOk && !row.failure.isEmpty()) {
      EXPECT_GT(logged(row.failure).size(), failuresBefore);
    }
    expectNoBrokenFile(parts);
    forgetEverything(parts);
  }
  EXPECT_EQ(parts.pass(expanding()), kOk) << "the service is well again";
  EXPECT_EQ(files(), QStringList{u"A.JPG"_s});
}

//                                             400       401       403       404       500     502      503     empty
//                                             malformed  truncated  dropped    silent
INSTANTIATE_TEST_SUITE_P(
    Engine, BadInput,
    testing::Values(
        // A body that is no JSON counts as no network here, and so does the error document of a 404.
        Endangered{"refresh",
                   Endpoint::RefreshToken,
                   {kInvalid, kInvalid, kInvalid, kNoBody, kRetry, kServer, kRetry, kNoBody, kOffline, kOffline,
                    kOffline, kOffline},
                   u"[NG] 003: Refresh NorvaleId"_s},
        // After a 404 there are no credentials, with which the listing is refused.
        Endangered{"credentials",
                   Endpoint::Sts,
                   {kInvalid, kInvalid, kInvalid, kInvalid, kRetry, kServer, kRetry, kNoBody, kNoBody, kOffline,
                    kOffline, kOffline},
                   {}},
        Endangered{"devices",
                   Endpoint::ListDevices,
                   {kInvalid, kInvalid, kInvalid, kOk, kRetry, kServer, kRetry, kNoBody, kNoBody, kNoStatus, kNoStatus,
                    kNoStatus},
                   u"[NG] 005: Get DeviceList"_s},
        Endangered{
            "settings",
            Endpoint::SettingsObject,
            {kInvalid, kInvalid, kInvalid, kOk, kRetry, kServer, kRetry, kNoBody, kOk, kNoStatus, kNoStatus, kNoStatus},
            u"[NG] 006: Get ExcludeDeviceList"_s},
        Endangered{"items",
                   Endpoint::ListItems,
                   {kInvalid, kInvalid, kInvalid, kOk, kRetry, kServer, kRetry, kNoBody, kNoBody, kNoStatus, kNoStatus,
                    kNoStatus},
                   u"[NG] 007: Get ImageList"_s},
        // Without metadata the upload hour does.
        Endangered{"metadata", Endpoint::Metadata, std::vector<KaResultCode>(12, kOk), u"[NG] 008: Get Exif"_s},
        Endangered{"variant",
                   Endpoint::ObjectHead,
                   {kInvalid, kInvalid, kInvalid, kOk, kRetry, kServer, kRetry, kOk, kOk, kOk, kServer, kServer},
                   u"HeadAWSS3Object:Request"_s},
        Endangered{
            "object",
            Endpoint::ObjectGet,
            {kInvalid, kInvalid, kInvalid, kOk, kRetry, kServer, kRetry, kNoBody, kOk, kNoStatus, kNoStatus, kNoStatus},
            u"[NG] 009: Download"_s}),
    [](const auto &row) { return row.param.name; });

class BadCertificates : public testing::WithParamInterface<sandbox::BadCertificate>, public EngineTest {
protected:
  BadCertificates()
      : EngineTest([](sandbox::Service &made) { return made.userDefaults(made.badlyCertifiedPort(GetParam())); }) {}
};

TEST_P(BadCertificates, areNotTalkedTo) {
  EngineParts parts(delegate);
  EXPECT_EQ(parts.open(), kSecure);
  EXPECT_EQ(parts.session.getCredential(*delegate.answers().token), kSecure);
  EXPECT_EQ(parts.list(), kNoStatus);
  EXPECT_TRUE(service.requests().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Engine, BadCertificates,
                         testing::Values(sandbox::BadCertificate::UnknownAuthority, sandbox::BadCertificate::WrongName,
                                         sandbox::BadCertificate::Expired),
                         [](const auto &row) {
                           switch (row.param) {
                           case sandbox::BadCertificate::UnknownAuthority:
                             return "unknownAuthority";
                           case sandbox::BadCertificate::WrongName:
                             return "wrongName";
                           case sandbox::BadCertificate::Expired:
                             return "expired";
                           }
                           return "";
                         });

} // namespace
