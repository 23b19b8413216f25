#pragma once

#include "engine/KaContentListing.h"
#include "platform/ThreadBound.h"
#include "service/KaStorageAhead.h"

#include <QString>

#include <functional>

class KaDownloadSession;
class KaStorage;
struct KaContentTarget;
struct KaPreview;

/// Lets the storage's answers come before their turn, for as long as it lives: one object a pass. It knows what a pass
/// asks, and in which order; the pass goes on as if there was none. Download thread.
class KaLookAhead {
public:
  /// All of it outlives this object.
  struct Parts {
    KaStorage &storage;
    const KaDownloadSession &session;
  };
  /// So many items are looked at, the present one included.
  static constexpr qsizetype kItems = 32;

  /// For a pass over @p images, which outlive this object as @p target does.
  KaLookAhead(const Parts &parts, const KaListedImages &images, const KaContentTarget &target);
  /// For one over previews below @p parentFolder.
  KaLookAhead(const Parts &parts, const QString &parentFolder);
  ~KaLookAhead();
  KaLookAhead(const KaLookAhead &) = delete;
  KaLookAhead &operator=(const KaLookAhead &) = delete;

  /// The pass has come to the next item.
  void moveOn();
  /// A preview that follows those offered before.
  void offer(const KaPreview &preview);

private:
  void begin(const QString &parentFolder, std::function<AheadOrders(const AheadOrder &, const AheadFinding &)> then);

  const Parts with;
  const platform::ThreadBound thread;
  const KaListedImages *const images; ///< null in a pass over previews
  const KaContentTarget *const target;
  qsizetype offered = 0; ///< so many items
  qsizetype turn = -1;   ///< of the present one
};

/// What a pass asks about an image before it has any answer, as far as that is certain.
[[nodiscard]] AheadOrders firstQuestions(qsizetype turn, const KaListedImage &image, const KaContentTarget &target);
/// What it asks after an answer.
[[nodiscard]] AheadOrders questionsAfter(const AheadOrder &answered, const AheadFinding &finding,
                                         const KaListedImage &image, const KaContentTarget &target);
