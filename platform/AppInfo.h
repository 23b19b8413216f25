#pragma once

#include <QString>

namespace platform {

/// What the build knows of the program. Fixed texts: copying them costs nothing.
struct AppInfo {
  QString name;
  QString version;
  QString shortVersion;
  QString buildDate; ///< as "Sep  2 2024"
  QString buildTime; ///< as "10:59:53"
  QString copyright;
};

/// Any thread.
[[nodiscard]] AppInfo appInfo();

struct OperatingSystemVersion {
  qint64 major = 0;
  qint64 minor = 0;
  qint64 patch = 0;
};

[[nodiscard]] OperatingSystemVersion operatingSystemVersion();

/// Reverse-DNS name: desktop entries and the session bus know the program by it.
inline constexpr char16_t kApplicationId[] = u"com.norvale.Downloaderpictora";

} // namespace platform
