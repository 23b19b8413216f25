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
  writeFile(script,
            "#!/bin/sh\nprintf '%s' \"$1\" >'" + note + ".new' && mv '" + note + ".new' '" + note + "'\n" + afterwards);
  QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void FakeBrowser::hang() const {
  install("exec sleep 20\n");
}

void FakeBrowser::fail() const {
  install("exit 1\n");
}

FakeBrowser::~FakeBrowser() {
  qputenv("PATH", pathBefore);
}

std::optional<QString> FakeBrowser::takeUrl() const {
  if (!waitFor([this] { return QFile::exists(notePath); })) return std::nullopt;
  const QString url = QString::fromUtf8(contentOf(notePath));
  QFile::remove(notePath);
  return url;
}

void FakeBrowser::uninstall() const {
  QFile::remove(folder + u"/xdg-open"_s);
  qputenv("PATH", QFile::encodeName(folder));
}
