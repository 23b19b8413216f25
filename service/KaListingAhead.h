#pragma once

#include "platform/Mutex.h"
#include "service/KaCredential.h"
#include "service/ListingXml.h"
#include "service/PresignedUrl.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <optional>
#include <thread>
#include <vector>

class KaKeptConnections;

/// Reads the pages of listings before they are asked for, on threads of its own, each a few pages ahead. A page that
/// failed was never asked for, nor were those behind it.
class KaListingAhead {
public:
  struct Parts {
    KaKeptConnections &connections;           ///< outlives this object
    std::function<KaCredential()> credential; ///< to ask with; empty where there is none. Any thread
    std::function<bool()> shallEnd;           ///< any thread
  };

  /// Begins. @param most  so many at a time.
  KaListingAhead(Parts parts, std::vector<ListParameters> listings, int most);
  /// Ends what is under way, at once.
  ~KaListingAhead();
  KaListingAhead(const KaListingAhead &) = delete;
  KaListingAhead &operator=(const KaListingAhead &) = delete;

  /// The next page of the listing that begins with @p first, waiting for it; absent when it was never asked for.
  [[nodiscard]] std::optional<ListingAnswer> next(const ListParameters &first);

private:
  struct Listing {
    ListParameters first{};
    std::deque<ListingAnswer> pages{};
    bool isRead = false; ///< nothing more comes
  };

  void work();
  void read(Listing &listing);
  [[nodiscard]] std::optional<ListingAnswer> ask(const ListParameters &parameters) const;
  [[nodiscard]] bool hasToEnd() const;

  const Parts with;
  mutable platform::Mutex lock;
  std::condition_variable_any changed;
  std::vector<Listing> listings KA_GUARDED_BY(lock); ///< as many as there were at the beginning
  std::size_t begun KA_GUARDED_BY(lock) = 0;
  bool isEnding KA_GUARDED_BY(lock) = false;
  std::vector<std::thread> threads;
};
