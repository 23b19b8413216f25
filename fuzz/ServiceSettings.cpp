// The settings object of the service: which devices a listing leaves out, and the version that is the latest.
#include "engine/VersionOrder.h"
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "fuzz/LinkedEngine.h"
#include "platform/JsonValue.h"

using namespace Qt::StringLiterals;

namespace {

const QStringList kDevices = {u"cam1"_s, u"cam2"_s};

QByteArray listingOf(const QString &url) {
  QByteArray document = "<R>";
  for (const QString &device : kDevices) {
    const QByteArray folder = "images/original/u-1/" + device.toUtf8() + '/';
    document += url.contains(u"delimiter=")
                    ? "<CommonPrefixes><Prefix>" + folder + "</Prefix></CommonPrefixes>"
                    : "<Key>" + folder + "20240501/10/" + device.toUtf8() + ".JPG</Key><Size>1</Size>";
  }
  return document + "</R>";
}

} // namespace

void tryInput(const QByteArray &input) {
  answerWith([&](const HttpRequest &request) {
    const QByteArray account = LinkedEngine::accountAnswer(request.url);
    if (!account.isEmpty()) return answered(account);
    return answered(request.url.contains(u"conf/settings.json") ? input : listingOf(request.url));
  });
  LinkedEngine engine;
  require(engine.pieces.session.getCredential() == KaResultCode::Success, "credentials are there");
  const KaListing listing = engine.pieces.listing.getContentsList(KaTargetStorage::Days30, {});
  const bool isObject = platform::parseJsonObject(input).has_value();
  require((listing.result == KaResultCode::Success) == isObject, "settings are an object, whatever it holds");
  require(listing.settings.has_value() == isObject, "what is no object decides nothing");
  if (!isObject) return;
  for (const QString &device : kDevices) {
    const bool isLeftOut = listing.settings->applicationAliasIds.contains(device);
    const bool isListed = std::any_of(listing.images.begin(), listing.images.end(),
                                      [&](const KaListedImage &image) { return image.key.contentId() == device; });
    require(isListed != isLeftOut, "a device is left out, or its images are listed");
  }
  const QString latest = listing.settings->latestVersion.value_or(QString());
  require(!isLaterVersion(latest, latest), "no version is later than itself");
  for (const QString &version : {u"1.0.0"_s, latest.chopped(latest.size() / 2), u""_s})
    require(!isLaterVersion(latest, version) || !isLaterVersion(version, latest), "of two versions one is later");
}
