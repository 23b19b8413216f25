#include "engine/KaLookAhead.h"

#include "engine/DiskSpace.h"
#include "engine/KaContentDownload.h"
#include "engine/KaDownloadSession.h"
#include "engine/PreviewList.h"
#include "service/KaStorage.h"

#include <utility>

using Kind = StorageQuestion::Kind;

KaLookAhead::KaLookAhead(const Parts &parts, const KaListedImages &listed, const KaContentTarget &aimedAt)
    : with(parts), images(&listed), target(&aimedAt) {
  begin(target->parentFolder, [this](const AheadOrder &answered, const AheadFinding &finding) {
    return questionsAfter(answered, finding, (*images)[static_cast<std::size_t>(answered.turn)], *target);
  });
}

KaLookAhead::KaLookAhead(const Parts &parts, const QString &parentFolder)
    : with(parts), images(nullptr), target(nullptr) {
  begin(parentFolder, [](const AheadOrder &, const AheadFinding &) { return AheadOrders(); });
}

void KaLookAhead::begin(const QString &parentFolder,
                        std::function<AheadOrders(const AheadOrder &, const AheadFinding &)> then) {
  with.storage.ahead().begin(
      {.folder = parentFolder,
       .then = std::move(then),
       .hasRoom = [parentFolder](qint64 bytes) { return checkDiskSpace(static_cast<float>(bytes), parentFolder); },
       .shallEnd = [this] { return with.session.isOver(); }});
}

KaLookAhead::~KaLookAhead() {
  with.storage.ahead().end();
}

void KaLookAhead::moveOn() {
  thread.check();
  ++turn;
  with.storage.ahead().reach(turn);
  if (!images) return;
  for (; offered < turn + kItems && offered < static_cast<qsizetype>(images->size()); ++offered)
    for (const AheadOrder &order : firstQuestions(offered, (*images)[static_cast<std::size_t>(offered)], *target))
      with.storage.ahead().offer(order);
}

void KaLookAhead::offer(const KaPreview &preview) {
  thread.check();
  with.storage.ahead().offer({offered++, {Kind::Content, preview.preview_object_key}, preview.file_size});
}

namespace {

AheadOrders questionsAboutContent(qsizetype turn, const KaListedImage &image, const KaContentTarget &target) {
  const AheadOrder document = {turn, {Kind::Document, image.key.exifPathFromImagePath(target.bExpandExif)}};
  if (!target.bExpandContent) return {document, {turn, {Kind::Content, image.key.path()}, image.size}};
  return {{turn, {Kind::Head, image.key.expandImagePathFromImagePath().path()}}, document};
}

} // namespace

AheadOrders firstQuestions(qsizetype turn, const KaListedImage &image, const KaContentTarget &target) {
  if (target.targetStorage == KaTargetStorage::LongTerm10G) return {{turn, {Kind::Tags, image.key.path()}}};
  return questionsAboutContent(turn, image, target);
}

AheadOrders questionsAfter(const AheadOrder &answered, const AheadFinding &finding, const KaListedImage &image,
                           const KaContentTarget &target) {
  const QString plainMetadata = image.key.exifPathFromImagePath(/*expand=*/false);
  switch (answered.question.kind) {
  case Kind::Tags:
    return finding.is10GStorage ? questionsAboutContent(answered.turn, image, target) : AheadOrders();
  case Kind::Head:
    if (!finding.isThere) return {{answered.turn, {Kind::Content, image.key.path()}, image.size}};
    return {{answered.turn, {Kind::Content, image.key.expandImagePathFromImagePath().path()}, finding.contentLength}};
  case Kind::Document:
    if (finding.isThere || answered.question.key == plainMetadata) return {};
    return {{answered.turn, {Kind::Document, plainMetadata}}};
  case Kind::Content:
    return {};
  }
  Q_UNREACHABLE();
}
