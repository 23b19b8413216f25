// The credentials that STS hands out.
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "service/KaServerRequest.h"
#include "service/KaStorage.h"

#include <limits>

void tryInput(const QByteArray &input) {
  answerWith([&](const HttpRequest &) { return answered(input); });
  KaServerRequest request;
  const CredentialAnswer answer = request.getAwsTemporaryCredential(QStringLiteral("token"));
  require((answer.result == KaResultCode::NoBody) == input.isEmpty(), "no body is no answer");
  if (!answer.credential) return;

  const KaCredential &told = *answer.credential;
  bool isNumber = false;
  const qint64 expiry = told.expireUnixTime.toLongLong(&isNumber);
  require(isNumber && expiry == static_cast<qint32>(expiry), "an expiry is a number of 32 bits");
  for (const QString &text : {told.accessKeyId, told.secretAccessKey, told.sessionToken})
    require(text.isEmpty() || !text.trimmed().isEmpty(), "what is blank counts as missing");

  KaStorage storage(request);
  storage.setCredential(told);
  require(storage.expiresWithin(std::chrono::seconds(std::numeric_limits<qint32>::max())), "all credentials end");
}
