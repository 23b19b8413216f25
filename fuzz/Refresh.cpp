// The answers that bring a token code or a new ID token. NONCE in the input stands for the nonce that was asked with.
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "fuzz/LinkedEngine.h"

#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

QByteArray withNonceOf(const HttpRequest &request, QByteArray input) {
  const QJsonObject asked = QJsonDocument::fromJson(request.body.value_or(QByteArray())).object();
  return input.replace("NONCE", asked.value("nonce"_L1).toString().toUtf8());
}

} // namespace

void tryInput(const QByteArray &input) {
  answerWith([&](const HttpRequest &request) {
    const QByteArray account = LinkedEngine::accountAnswer(request.url);
    return answered(account.isEmpty() ? withNonceOf(request, input) : account);
  });
  LinkedEngine engine;
  const TokenCodeAnswer told = engine.pieces.request.getTokenCode(u"verifier"_s, u"token"_s);
  require(told.result == KaResultCode::Success || told.tokenCode.isEmpty(), "a failure brings no token code");

  const QString signedText = QString::fromUtf8(sampleToken("valid")).section(u'.', 0, 1);
  const bool isRefreshed = engine.pieces.session.refreshIdToken() == KaResultCode::Success;
  require(!isRefreshed || input.contains("NONCE"), "an answer to another question is refused");
  require(engine.link.idToken().value_or(QString()).section(u'.', 0, 1) == signedText,
          "no answer replaces a token by one that does not hold");
  const auto code = engine.link.tokenCode(engine.link.number());
  require(!code || *code == told.tokenCode || input.contains("NONCE"), "a token code is the one that was told");
  KaLink restarted;
  require(restarted.load() && restarted.idToken() == engine.link.idToken(), "a restart finds the same token");
}
