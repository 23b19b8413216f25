// The files of a link: as they lie on disk, and any text kept in them.
#include "fuzz/Fuzz.h"
#include "identity/KaLink.h"
#include "identity/KaLinkageUtility.h"
#include "tests/support/TestProfile.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  for (const QString &name : {u"PairingInfo"_s, u"PairingCode"_s, u"tmpFile"_s})
    writeFile(home().dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo/"_s + name, input);
  const auto token = KaLinkageUtility::loadLinkageSetting();
  require(token == KaLinkageUtility::loadTokenCode(), "the files have one form");
  require(KaLinkageUtility::existCodeVerifier() && token == KaLinkageUtility::loadCodeVerifier(),
          "the files have one form");
  require(!KaLinkageUtility::existCodeVerifier(), "a code verifier is handed out once");
  KaLink link;
  require(link.load() == token.has_value(), "a file that cannot be read is no link");

  const QString text = QString::fromUtf8(input);
  require(KaLinkageUtility::saveLinkageSetting(text) && KaLinkageUtility::loadLinkageSetting() == text,
          "a token is read as it was saved");
}
