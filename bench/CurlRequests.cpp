#include "bench/CurlRequests.h"

#include "sandbox/Library.h"
#include "service/StorageRequests.h"

using namespace Qt::StringLiterals;
using Kind = StorageQuestion::Kind;

namespace {

/// What all requests that follow have in common; curl takes it anew behind each "next".
QString commonPart(const HttpRequest &request, const QString &trustAnchors) {
  QString text = u"silent\ncacert = \"%1\"\n"_s.arg(trustAnchors);
  if (request.method == "HEAD") text += u"head\n"_s;
  for (const auto &[name, value] : request.headers)
    text += u"header = \"%1: %2\"\n"_s.arg(QString::fromUtf8(name), QString::fromUtf8(value));
  return text;
}

/// The library holds neither expand variants nor their metadata: both are asked for first, and missing.
std::vector<StorageQuestion> questions(const QString &imageKey, HomeSettings settings) {
  std::vector<StorageQuestion> all;
  if (settings == HomeSettings::Default)
    all = {{Kind::Head, sandbox::expandKey(imageKey)}, {Kind::Document, sandbox::metadataKey(imageKey, true)}};
  all.push_back({Kind::Document, sandbox::metadataKey(imageKey, false)});
  all.push_back({Kind::Content, imageKey});
  return all;
}

} // namespace

QString curlRequests(sandbox::Service &service, const KaCredential &credential, HomeSettings settings,
                     const QString &folder) {
  QString text;
  QString common;
  int number = 0;
  sandbox::ListPage page{.truncated = true};
  while (page.truncated) {
    page = service.library().list(sandbox::contentBucket(), {.prefix = "images/original/", .after = page.resumeAfter});
    for (const auto &object : page.objects) {
      for (const StorageQuestion &question : questions(QString::fromUtf8(object.key), settings)) {
        const HttpRequest request = requestFor(question, credential);
        const QString part = commonPart(request, service.trustAnchorsFile());
        if (part != common) text += (common.isEmpty() ? QString() : u"next\n"_s) + part;
        common = part;
        const QString output = question.kind == Kind::Content ? u"%1/%2"_s.arg(folder).arg(number++) : u"/dev/null"_s;
        text += u"url = \"%1\"\noutput = \"%2\"\n"_s.arg(request.url, output);
      }
    }
  }
  return text;
}
