// The list of previews.
#include "engine/KaImageKey.h"
#include "engine/OutputFolder.h"
#include "engine/PreviewList.h"
#include "fuzz/Fuzz.h"
#include "service/SavedFileName.h"

#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

std::vector<KaPreview> previewsIn(const QByteArray &document, qint64 threshold) {
  PreviewList list;
  // As it comes: in pieces.
  for (const QByteArray &piece : {document.left(document.size() / 2), document.mid(document.size() / 2)})
    require(list.takePiece(piece.constData(), std::size_t(piece.size())), "the document is kept");
  list.close(threshold);
  std::vector<KaPreview> previews;
  list.visit([&](const KaPreview &preview) {
    previews.push_back(preview);
    return true;
  });
  require(qsizetype(previews.size()) == list.count(), "as many come as were counted");
  return previews;
}

} // namespace

void tryInput(const QByteArray &input) {
  const QString folder = u"/home/Pictures"_s;
  const std::vector<KaPreview> previews = previewsIn(input, std::numeric_limits<qint64>::min());
  for (const KaPreview &preview : previews) {
    const QDateTime date(QDate(2024, 5, 1), QTime(), Qt::UTC);
    const QString beside = defaultFilePath(folder, date, KaImageKey(preview.preview_object_key).extension());
    requireFileIn(folder, targetFilePath(beside, preview.original_file_name));
  }
  require(previews.size() <= static_cast<std::size_t>(input.count('{')), "a preview is an object of the list");
  if (previews.empty()) return;
  const std::vector<KaPreview> rest = previewsIn(input, previews.front().index);
  require(rest.size() < previews.size(), "what was taken does not come again");
  require(rest.empty() || rest.front().index > previews.front().index, "what is left begins with one that is new");
}
