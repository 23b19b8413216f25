#include "bench/LinkedHome.h"

#include "identity/KaLinkageUtility.h"
#include "settings/SettingsFiles.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

using namespace Qt::StringLiterals;

void makeLinkedHome(const QString &folder, sandbox::Service &service, HomeSettings settings,
                    const QHash<QString, QString> &besides) {
  const QDir home(folder);
  qputenv("HOME", QFile::encodeName(home.path()));
  qputenv("XDG_CONFIG_HOME", QFile::encodeName(home.filePath(u".config"_s)));
  qputenv("XDG_DATA_HOME", QFile::encodeName(home.filePath(u".local/share"_s)));
  qputenv("XDG_STATE_HOME", QFile::encodeName(home.filePath(u".local/state"_s)));
  auto defaults = service.userDefaults();
  defaults.insert(besides);
  useDefaults(defaults);

  const auto link = service.issueLinkedToken();
  KaDownloadOption option = defaultDownloadOption();
  if (settings == HomeSettings::Plain) option.checkBoxCreateSubfolder = option.checkBoxDownloadMetadata = u"false"_s;
  if (!ensureAppFolder() || !saveDownloadOption(option)) throw std::runtime_error("cannot save settings");
  if (!KaLinkageUtility::saveLinkageSetting(link.idToken) || !KaLinkageUtility::saveTokenCode(link.tokenCode))
    throw std::runtime_error("cannot link");
}

void useDefaults(QHash<QString, QString> defaults) {
  defaults.insert(u"firstLaunch"_s, u"false"_s);
  const QString config = qEnvironmentVariable("XDG_CONFIG_HOME") + u"/NORVALE INC"_s;
  QFile file(config + u"/Downloaderpictora.conf"_s);
  if (!QDir().mkpath(config) || !file.open(QFile::WriteOnly)) throw std::runtime_error("cannot write");
  file.write("[General]\n");
  for (auto value = defaults.begin(); value != defaults.end(); ++value)
    file.write((value.key() + u'=' + value.value() + u'\n').toUtf8());
}
