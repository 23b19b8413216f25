#include "platform/AppInfo.h"

#include <QSysInfo>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace platform {

AppInfo appInfo() {
  return {u"Downloaderpictora"_s,   QStringLiteral(KA_VERSION), QStringLiteral(KA_VERSION),
          QStringLiteral(__DATE__), QStringLiteral(__TIME__),   u"Copyright © 2024 NORVALE INC"_s};
}

OperatingSystemVersion operatingSystemVersion() {
  const auto version = QVersionNumber::fromString(QSysInfo::kernelVersion());
  return {version.majorVersion(), version.minorVersion(), version.microVersion()};
}

} // namespace platform
