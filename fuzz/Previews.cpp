// The list of previews.
#include "engine/KaImageKey.h"
#include "engine/OutputFolder.h"
#include "engine/PreviewList.h"
#include "fuzz/Fuzz.h"
#include "service/SavedFileName.h"

using namespace Qt::StringLiterals;

void tryInput(const QByteArray &input) {
  const QString folder = u"/home/Pictures"_s;
  const std::vector<KaPreview> previews = previewsIn(input);
  for (const KaPreview &preview : previews) {
    const QDateTime date(QDate(2024, 5, 1), QTime(), Qt::UTC);
    const QString beside = defaultFilePath(folder, date, KaImageKey(preview.preview_object_key).extension());
    requireFileIn(folder, targetFilePath(beside, preview.original_file_name));

    const std::vector<KaPreview> rest = withoutTaken(previews, preview.index);
    require(rest.size() <= previews.size() && (rest.empty() || rest.front().index > preview.index),
            "what is left begins with one that is new");
  }
  require(previews.size() <= static_cast<std::size_t>(input.count('{')), "a preview is an object of the list");
}
