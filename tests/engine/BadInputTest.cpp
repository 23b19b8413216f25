#include "tests/engine/EngineFixture.h"

#include <array>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;
using enum sandbox::Fault::Kind;

namespace {

const QByteArray kCircle = "<L><NextContinuationToken>again</NextContinuationToken></L>";
const std::array kFaults{Fault{Status, 403, {}, {}, -1},      Fault{Status, 404, {}, {}, -1},
                         Fault{Status, 502, {}, {}, -1},      Fault{Status, 503, {}, {}, -1},
                         Fault{EmptyBody, 0, {}, {}, -1},     Fault{MalformedBody, 0, {}, {}, -1},
                         Fault{TruncatedBody, 0, {}, {}, -1}, Fault{DroppedConnection, 0, {}, {}, -1},
                         Fault{NoAnswer, 0, {}, {}, -1},      Fault{Body, 200, kCircle, {}, -1}};

struct Endangered {
  Endpoint endpoint;
  std::array<int, kFaults.size()> results; ///< of a pass, in the order of the faults
};

class BadInput : public EngineTest, public testing::WithParamInterface<Endangered> {
protected:
  BadInput() : EngineTest({{u"timeoutIntervalForRequest"_s, QString::number(kSlowness)}}) {}
};

TEST_P(BadInput, endsThePassWithItsCodeAndLeavesNoBrokenFile) {
  addImages("A.JPG");
  const KaContentTarget expanding = target({.bExpandContent = true, .bExpandExif = true});
  const auto &[endpoint, results] = GetParam();
  for (std::size_t index = 0; index < kFaults.size(); ++index) {
    SCOPED_TRACE(index);
    service.order(endpoint, kFaults[index]);
    EngineParts parts(delegate, link);
    EXPECT_EQ(parts.pass(expanding).result, KaResultCode(results[index]));
    // What arrived whole but could not be confirmed may stay.
    for (const QString &file : files()) {
      EXPECT_TRUE(contentOf(path(file)) == QByteArray(5000, 'p') || !parts.content.takeTrace().unsure.isEmpty());
      QFile::remove(path(file));
    }
    delegate.forgetTaken();
    service.clearFaults();
  }
}

INSTANTIATE_TEST_SUITE_P(
    Engine, BadInput,
    testing::Values(
        //                                     403 404 502 503 empty malformed truncated dropped silent circle
        // A body that is no JSON counts as no network here, and so does the error document of a 404.
        Endangered{Endpoint::RefreshToken, {16, 7, 12, 11, 7, 9, 9, 9, 9, 9}},
        // After a 404 there are no credentials, with which the listing is refused.
        Endangered{Endpoint::Sts, {16, 16, 12, 11, 7, 7, 9, 9, 9, 16}},
        Endangered{Endpoint::ListDevices, {16, 0, 12, 11, 7, 7, 15, 15, 15, 7}},
        Endangered{Endpoint::SettingsObject, {16, 0, 12, 11, 7, 7, 15, 15, 15, 7}},
        Endangered{Endpoint::ListItems, {16, 0, 12, 11, 7, 7, 15, 15, 15, 7}},
        // Without metadata the upload hour does.
        Endangered{Endpoint::Metadata, {}}, Endangered{Endpoint::ObjectHead, {16, 0, 12, 11, 0, 0, 0, 12, 12, 0}},
        Endangered{Endpoint::ObjectGet, {16, 0, 12, 11, 7, 0, 15, 15, 15, 0}}),
    [](const auto &row) { return sandbox::endpointName(row.param.endpoint).toStdString(); });

} // namespace
