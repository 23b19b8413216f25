#include "engine/ObjectKey.h"
#include "tests/engine/EngineFixture.h"

#include <thread>

using namespace Qt::StringLiterals;
using sandbox::Endpoint;
using sandbox::Fault;

namespace {

const QByteArray kCaptured = R"({"captureTime":"2024-05-01T10:00:00.000Z","n":1})";
const QByteArray kUndated = R"({"captureTime":7,"n":1})";

struct Reading {
  const char *name;
  bool expand;
  std::optional<QByteArray> plainDocument;
  std::optional<QByteArray> expandDocument;
  int refusals; ///< first answers that are 503
  KaResultCode result;
  bool read;         ///< whether the document came along
  int requestCount;  ///< of either kind
  QStringList lines; ///< the blocks of metadata in the log; P and E stand for the two keys
};

class Readings : public EngineTest, public testing::WithParamInterface<Reading> {};

TEST_P(Readings, areRetriedAndFallBack) {
  const Reading &row = GetParam();
  sandbox::LibraryObject object = image(u"10"_s, u"IMG_1.JPG"_s);
  object.metadataDocument = row.plainDocument;
  object.expandMetadataDocument = row.expandDocument;
  add(object);
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  if (row.refusals > 0) service.order(Endpoint::Metadata, {.status = 503, .times = row.refusals});

  const QString key = service.library().imageKey(object);
  const KaMetadata metadata = row.expand ? parts.metadata.getExpandExif(key) : parts.metadata.getExif(key);
  EXPECT_EQ(metadata.result, row.result);
  EXPECT_EQ(!metadata.document.isEmpty(), row.read);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata), row.requestCount);

  QStringList expected;
  for (QString line : row.lines)
    expected << line.replace(u"=P"_s, u'=' + exifPathFromImagePath(key, false))
                    .replace(u"=E"_s, u'=' + exifPathFromImagePath(key, true));
  const QStringList blocks = logBlocks();
  EXPECT_EQ(blocks.mid(blocks.size() - expected.size()), expected);
}

const QString kNg = u"[NG] 008: Get Exif|"_s;
const QString kOk = u"[OK] 008: Get Exif|"_s;
const QString kGivenUp = u"Use Upload Datetime"_s;

QString retry(int count) {
  return u"Retry CheckExif|RetryCount=%1"_s.arg(count);
}

INSTANTIATE_TEST_SUITE_P(ImageMetadata, Readings,
                         testing::Values(Reading{"plain",
                                                 false,
                                                 kCaptured,
                                                 {},
                                                 0,
                                                 KaResultCode::Success,
                                                 true,
                                                 1,
                                                 {kOk + u"ExifPath=P|CaptureTime=2024-05-01T10:00:00.000Z"_s}},
                                         Reading{"plainUndated",
                                                 false,
                                                 kUndated,
                                                 {},
                                                 0,
                                                 KaResultCode::CaptureTimeMissing,
                                                 true,
                                                 1,
                                                 {kNg + u"ExifPath=P|StatusCode=200|CaptureTime=%nil"_s}},
                                         Reading{"plainNoJson",
                                                 false,
                                                 QByteArray("JFIF"),
                                                 {},
                                                 0,
                                                 KaResultCode::CaptureTimeMissing,
                                                 false,
                                                 1,
                                                 {kNg + u"ExifPath=P|StatusCode=200|CaptureTime=%nil"_s}},
                                         Reading{"plainMissing",
                                                 false,
                                                 {},
                                                 {},
                                                 0,
                                                 KaResultCode::CaptureTimeMissing,
                                                 false,
                                                 1,
                                                 {kNg + u"ExifPath=P|StatusCode=404|CaptureTime=%nil"_s}},
                                         Reading{"plainAtLast",
                                                 false,
                                                 kCaptured,
                                                 {},
                                                 3,
                                                 KaResultCode::Success,
                                                 true,
                                                 4,
                                                 {kNg + u"ExifPath=P|StatusCode=503"_s, retry(1),
                                                  kNg + u"ExifPath=P|StatusCode=503"_s, retry(2),
                                                  kNg + u"ExifPath=P|StatusCode=503"_s, retry(3),
                                                  kOk + u"ExifPath=P|CaptureTime=2024-05-01T10:00:00.000Z"_s}},
                                         Reading{"plainGivenUp",
                                                 false,
                                                 kCaptured,
                                                 {},
                                                 9,
                                                 KaResultCode::RetryLater,
                                                 false,
                                                 4,
                                                 {retry(3), kNg + u"ExifPath=P|StatusCode=503"_s, kGivenUp}},
                                         Reading{"expand",
                                                 true,
                                                 {},
                                                 kCaptured,
                                                 0,
                                                 KaResultCode::Success,
                                                 true,
                                                 1,
                                                 {kOk + u"ExpandExifPath=E|CaptureTime=2024-05-01T10:00:00.000Z"_s}},
                                         Reading{"expandUndated",
                                                 true,
                                                 kCaptured,
                                                 kUndated,
                                                 0,
                                                 KaResultCode::CaptureTimeMissing,
                                                 true,
                                                 1,
                                                 {kOk + u"ExpandExifPath=E|StatusCode=200|CaptureTime=nil"_s}},
                                         Reading{"expandMissing",
                                                 true,
                                                 kCaptured,
                                                 {},
                                                 0,
                                                 KaResultCode::Success,
                                                 true,
                                                 2,
                                                 {u"GetExpandExif:NotFound|ExpandExifPath=E|StatusCode=404"_s,
                                                  kOk + u"ExifPath=P|CaptureTime=2024-05-01T10:00:00.000Z"_s}},
                                         Reading{"expandGivenUp",
                                                 true,
                                                 kCaptured,
                                                 kCaptured,
                                                 9,
                                                 KaResultCode::RetryLater,
                                                 false,
                                                 4,
                                                 {retry(3), kNg + u"ContentId=IMG_1|StatusCode=503"_s, kGivenUp}},
                                         Reading{"expandMissingAfterRetries",
                                                 true,
                                                 kCaptured,
                                                 {},
                                                 2,
                                                 KaResultCode::Success,
                                                 true,
                                                 4,
                                                 {retry(2), u"GetExpandExif:NotFound|ExpandExifPath=E|StatusCode=404"_s,
                                                  kOk + u"ExifPath=P|CaptureTime=2024-05-01T10:00:00.000Z"_s}}),
                         [](const auto &row) { return row.param.name; });

class WaitingMetadata : public EngineTest {
protected:
  WaitingMetadata() {
    delegate.change([](auto &answers) { answers.waits.exifRetry = std::chrono::hours(1); });
    service.order(Endpoint::Metadata, {.status = 503});
    add(object);
  }

  const sandbox::LibraryObject object = image(u"10"_s, u"A.JPG"_s);
};

TEST_F(WaitingMetadata, goesOnWhenTheWaitIsCutShort) {
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  std::jthread waker([&] {
    parts.state.waitcnd.awaitWaiter();
    parts.state.waitcnd.signal();
  });
  EXPECT_EQ(parts.metadata.getExif(service.library().imageKey(object)).result, KaResultCode::Success);
}

TEST_F(WaitingMetadata, leavesWithTheFailureAtTheEnd) {
  EngineParts parts(delegate);
  ASSERT_EQ(parts.open(), KaResultCode::Success);
  std::jthread quitter([&] {
    parts.state.waitcnd.awaitWaiter();
    parts.state.endAppFlag = true;
    parts.state.waitcnd.signal();
  });
  EXPECT_EQ(parts.metadata.getExif(service.library().imageKey(object)).result, KaResultCode::RetryLater);
  EXPECT_EQ(service.requestCount(Endpoint::Metadata), 1);
}

} // namespace
