#include "tests/support/FakeBrowser.h"

#include <QDir>
#include <QFile>

#include <stdexcept>

using namespace Qt::StringLiterals;

FakeBrowser::FakeBrowser(const TestProfile &profile)
    : folder(profile.path(u"browser"_s)), notePath(profile.path(u"opened-url"_s)), pathBefore(qgetenv("PATH")) {
  QDir().mkpath(folder);
  QFile script(folder + u"/xdg-open"_s);
  if (!script.open(QFile::WriteOnly)) throw std::runtime_error("cannot write the browser");
  const QByteArray note = QFile::encodeName(notePath);
  // Renamed into place, so that nobody reads half a URL.
  script.write("#!/bin/sh\nprintf '%s' \"$1\" >'" + note + ".new' && mv '" + note + ".new' '" + note + "'\n");
  script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  script.close();
  qputenv("PATH", QFile::encodeName(folder) + ':' + pathBefore);
  qunsetenv("BROWSER");
}

FakeBrowser::~FakeBrowser() {
  qputenv("PATH", pathBefore);
}

std::optional<QString> FakeBrowser::takeUrl() const {
  if (!waitFor([this] { return QFile::exists(notePath); })) return std::nullopt;
  QFile note(notePath);
  if (!note.open(QFile::ReadOnly)) return std::nullopt;
  const QString url = QString::fromUtf8(note.readAll());
  note.remove();
  return url;
}

void FakeBrowser::uninstall() const {
  QFile::remove(folder + u"/xdg-open"_s);
  qputenv("PATH", QFile::encodeName(folder));
}
