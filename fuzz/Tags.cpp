// The tags of an object, which say how long it is stored.
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "service/KaServerRequest.h"

namespace {

bool belongsTo10G(const QByteArray &tags) {
  answerWith([&](const HttpRequest &) { return answered(tags); });
  KaServerRequest request;
  const TagVerdict verdict = request.checkObjectTagIs10GStorage({}, QStringLiteral("key"));
  require(verdict.result == KaResultCode::Success, "a document is no failure, whatever it says");
  return verdict.bDownloadContent;
}

} // namespace

void tryInput(const QByteArray &input) {
  const bool mayName = input.contains("storage-period") || input.contains('&') || input.contains("<!");
  require(belongsTo10G(input) || mayName || input.contains('\0'), "who does not name the period is of the 10G storage");
  const QByteArray told = "<T><Key>x-strata-storage-period</Key><Value>30</Value>";
  require(!belongsTo10G(told + input) || mayName, "what was told counts, whatever follows");
}
