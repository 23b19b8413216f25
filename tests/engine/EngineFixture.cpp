#include "tests/engine/EngineFixture.h"

#include "identity/KaLinkageUtility.h"
#include "log/KaLogUtility.h"
#include "tests/log/LogFile.h"

#include <QUrl>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

EngineParts::EngineParts(FakeDelegate &delegate, KaLink &link) : KaDownloadPieces(delegate, link) {
  state.bLinkSetup = false;
  state.waitTimes = delegate.loadWaitTimeInfo({});
  session.begin(link.forRun().value());
}

KaResultCode EngineParts::open() {
  KaResultCode result = session.refreshIdToken();
  if (result == KaResultCode::Success) result = session.getCredential();
  if (result == KaResultCode::Success) bookkeeping.openLedger();
  return result;
}

KaPassOutcome EngineParts::pass(const KaContentTarget &target) {
  KaResultCode result = open();
  if (result != KaResultCode::Success) return {result};
  const KaListing found = listing.getContentsList(target.targetStorage, bookkeeping.lastDateTime(target.targetStorage));
  return found.result == KaResultCode::Success ? content.getContentsProcess(found.images, target)
                                               : KaPassOutcome{found.result};
}

EngineTest::EngineTest(const QHash<QString, QString> &defaults, const QString &account,
                       const sandbox::ServiceOptions &options)
    : service(options) {
  service.library().setUserId(account);
  QHash<QString, QString> values = service.userDefaults();
  values.insert(u"requestsAhead"_s, u"0"_s);
  values.insert(defaults);
  profile.writeUserDefaults(values);
  const sandbox::LinkedToken linked = service.issueLinkedToken();
  KaLinkageUtility::saveLinkageSetting(linked.idToken);
  KaLinkageUtility::saveTokenCode(linked.tokenCode);
  link.load();
  delegate.change([&](FakeDelegate::Answers &answers) {
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
    if (path.count(u'/') == 2) {
      object.deviceId = path.section(u'/', 0, 0);
      object.body.fill('d'); // another camera's picture
    }
    add(object);
  }
}

void EngineTest::takeLongTermStorageToo(const QString &folder) {
  QDir().mkpath(folder);
  delegate.change([&](FakeDelegate::Answers &answers) {
    answers.option.checkBox10GDownload = u"true"_s;
    answers.option.parent10GFolder = folder.isEmpty() ? profile.picturesFolder() : folder;
  });
  service.library().setSettingsObject(R"({"applicationAliasIds":[],"isEnableDownload10GStorage":true})");
}

void EngineTest::beginLogin(KaLink &link) {
  int noArguments = 0;
  const QCoreApplication application(noArguments, nullptr);
  link.beginLogin();
  EXPECT_TRUE(waitFor([] { return KaLinkageUtility::existCodeVerifier(); }));
}

QString EngineTest::signIn() {
  beginLogin(link);
  const QString callback = service.signIn(browser.takeUrl().value_or(QString()));
  return QUrlQuery(QUrl(callback)).queryItemValue(u"idToken"_s);
}

QStringList EngineTest::pairingFiles() const {
  return filesBelow(profile.dataFolder() + u"/NORVALE INC/Downloaderpictora Shared/PairingInfo"_s);
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
