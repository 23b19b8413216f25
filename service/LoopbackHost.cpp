#include "service/LoopbackHost.h"

#include "service/KaApplicationConstants.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString withoutPort(const QString &host) {
  if (host.startsWith(u'[')) return host.section(u']', 0, 0).mid(1);
  return host.count(u':') == 1 ? host.section(u':', 0, 0) : host;
}

bool isLoopbackAddress(const QString &name) {
  if (name == u"::1") return true;
  const QStringList parts = name.split(u'.');
  const auto isByte = [](const QString &part) {
    bool isNumber = false;
    return part.toUInt(&isNumber) <= 255 && isNumber;
  };
  return parts.size() == 4 && parts[0] == u"127" && std::all_of(parts.begin(), parts.end(), isByte);
}

} // namespace

bool isLoopbackHost(const QString &host) {
  QString name = withoutPort(host).toLower();
  if (name.endsWith(u'.')) name.chop(1);
  return name == u"localhost" || name.endsWith(u".localhost") || isLoopbackAddress(name);
}

bool isServiceOnLoopback() {
  for (const QString &host :
       {KaApplicationConstants::strataHostName(), KaApplicationConstants::idTokenHostName(),
        KaApplicationConstants::awsStsHostName(), KaApplicationConstants::awsS3AccelerateHostName()})
    if (isLoopbackHost(host)) return true;
  return false;
}
