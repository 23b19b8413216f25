// A whole pass over one image: its key, its name's header and its metadata, a line each. What it saves is on disk.
#include "fuzz/FixedAnswers.h"
#include "fuzz/Fuzz.h"
#include "fuzz/LinkedEngine.h"
#include "tests/support/TestProfile.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace {

HttpAnswer serviceAnswer(const QString &url, const QList<QByteArray> &lines) {
  const QByteArray account = LinkedEngine::accountAnswer(url);
  if (!account.isEmpty()) return answered(account);
  if (url.contains(u"/metadata")) return answered(lines.value(2, "{}"));
  HttpAnswer answer = answered("picture");
  if (!lines.value(1).isEmpty()) answer.headers = {{"x-amz-meta-file-name", lines[1]}};
  return answer;
}

} // namespace

void tryInput(const QByteArray &input) {
  const QList<QByteArray> lines = input.split('\n');
  answerWith([&](const HttpRequest &request) { return serviceAnswer(request.url, lines); });
  // So deep that a way out of it still ends in this home.
  const QString kParent = u"Pictures/1/2/3/4/5/6/7/8/Transferred"_s;
  LinkedEngine engine;
  require(engine.pieces.session.getCredential() == KaResultCode::Success, "credentials are there");
  QDir(home().picturesFolder()).removeRecursively();
  QDir().mkpath(home().path(kParent));
  const KaContentTarget target = {
      .parentFolder = home().path(kParent), .childFolder = input.size() % 5, .bExpandExif = true};
  const KaImageKey key(QString::fromUtf8(lines[0]));
  if (!key.hasUploadHour()) return; // no listing brings it
  const KaPassOutcome outcome = engine.pieces.content.getContentsProcess({{key, 7}}, target);

  const QStringList files = filesBelow(home().picturesFolder());
  for (const QString &file : files)
    require((u"Pictures/"_s + file).startsWith(kParent + u'/'), "no file lies outside of the parent folder");
  require(files.size() <= 1, "one image is one file");
  require(outcome.savedCount <= quint64(files.size()), "what is counted is on disk");
  require(outcome.result != KaResultCode::Success || !files.isEmpty(), "what did not fail is on disk");
  for (const QString &file : filesBelow(home().path()))
    require(file.startsWith(u"Pictures/") || !contentOf(home().path(file)).startsWith("picture"), "no picture strays");
}
