#include "tests/support/FakeBrowser.h"

#include <QFile>

using namespace Qt::StringLiterals;

FakeBrowser::FakeBrowser(const TestProfile &profile)
    : folder(profile.path(u"browser"_s)), notePath(profile.path(u"opened-url"_s)), pathBefore(qgetenv("PATH")) {
  install();
  qputenv("PATH", QFile::encodeName(folder) + ':' + pathBefore);
  qunsetenv("BROWSER");
}

void FakeBrowser::install(const QByteArray &afterwards) const {
  const QString script = folder + u"/xdg-open"_s;
  const QByteArray note = QFile::encodeName(notePath);
  // Renamed into place, so that nobody reads half a URL.
  writeFile(script, "#!/bin/sh\nprintf $$ >'" + note
                        + ".process'; printf '%s' \"$XDG_ACTIVATION_TOKEN|$DESKTOP_STARTUP_ID\" >'" + note
                        + ".token'; printf '%s' \"$1\" >'" + note + ".new' && mv '" + note + ".new' '" + note + "'\n"
                        + afterwards);
  QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QString FakeBrowser::lastToken() const {
  return QString::fromUtf8(contentOf(notePath + u".token"_s));
}

void FakeBrowser::hang() const {
  install("exec sleep 20\n");
}

pid_t FakeBrowser::hangingProcess() const {
  return contentOf(notePath + u".process"_s).toInt();
}

void FakeBrowser::fail() const {
  install("exit 1\n");
}

FakeBrowser::~FakeBrowser() {
  qputenv("PATH", pathBefore);
}

bool FakeBrowser::hasUrl() const {
  return QFile::exists(notePath);
}

std::optional<QString> FakeBrowser::takeUrl() const {
  if (!waitFor([this] { return hasUrl(); })) return std::nullopt;
  const QString url = QString::fromUtf8(contentOf(notePath));
  QFile::remove(notePath);
  return url;
}

void FakeBrowser::uninstall() const {
  QFile::remove(folder + u"/xdg-open"_s);
  qputenv("PATH", QFile::encodeName(folder));
}
