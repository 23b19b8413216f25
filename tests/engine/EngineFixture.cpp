#include "tests/engine/EngineFixture.h"

#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "tests/log/LogFile.h"

using namespace Qt::StringLiterals;

EngineParts::EngineParts(FakeDelegate &toAsk) : delegate(toAsk) {
  state.bLinkSetup = false;
  delegate.loadWaitTimeInfo(state.waitTimes);
}

KaResultCode EngineParts::open() {
  auto token = delegate.loadLinkageSetting();
  const KaResultCode result = session.refreshIdToken(token);
  return result == KaResultCode::Success ? session.getCredential(*token) : result;
}

KaResultCode EngineParts::list(KaTargetStorage storage) {
  return listing.getContentsList(storage, /*notifyUserOfUpdate=*/false);
}

KaResultCode EngineParts::pass(const KaContentTarget &target) {
  KaResultCode result = open();
  if (result == KaResultCode::Success) result = list(target.targetStorage);
  return result == KaResultCode::Success ? content.getContentsProcess(listing.contentsDictionary(), target) : result;
}

EngineTest::EngineTest(const QHash<QString, QString> &defaults) {
  QHash<QString, QString> values = service.userDefaults();
  values.insert(defaults);
  profile.writeUserDefaults(values);
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  KaLinkageUtility::saveTokenCode(linked.tokenCode);
  delegate.change([&](FakeDelegate::Answers &answers) {
    answers.token = linked.idToken;
    answers.option.parentFolder = profile.picturesFolder();
    answers.option.checkBox10GDownload = u"false"_s;
    answers.option.checkBoxCreateSubfolder = u"false"_s;
    answers.option.checkBoxDownloadMetadata = u"false"_s;
  });
  service.library().setSettingsObject(R"({"applicationAliasIds":[],"isEnableDownload10GStorage":false})");
  KaLogUtility::switchLogStatus();
}

void EngineTest::addImages(const char *paths) {
  for (const QString &path : names(paths)) {
    sandbox::LibraryObject object = image(path.section(u'/', -2, -2), path.section(u'/', -1));
    if (object.hour.isEmpty()) object.hour = u"10"_s;
    if (path.count(u'/') == 2) object.deviceId = path.section(u'/', 0, 0);
    add(object);
  }
}

KaContentTarget EngineTest::target(KaContentTarget rest) const {
  rest.parentFolder = profile.picturesFolder();
  return rest;
}

QStringList EngineTest::logged(const QString &title) const {
  static const QRegularExpression titleLine(uR"(^\[TIME\] ([*=#-])\1\1 (.*?) ?\1*$)"_s);
  QStringList blocks;
  for (const QString &line : loggedLines(profile)) {
    const auto match = titleLine.match(line);
    if (match.hasMatch()) {
      blocks << match.captured(2);
    } else if (!blocks.isEmpty()) {
      blocks.last() += u'|' + line.mid(4);
    }
  }
  return blocks.filter(QRegularExpression(u'^' + QRegularExpression::escape(title) + u"([|:]|$)"_s));
}

QStringList EngineTest::fetched() const {
  QStringList names;
  for (const sandbox::RequestRecord &request : service.requests())
    if (request.endpoint == sandbox::Endpoint::ObjectGet)
      names << QString::fromUtf8(QByteArray::fromPercentEncoding(request.target.split('?').first().split('/').last()));
  return names;
}
