#include "service/KaListingAhead.h"

#include "log/ExceptionGuard.h"
#include "platform/ThreadName.h"
#include "service/HttpStatus.h"
#include "service/KaKeptConnections.h"
#include "service/KaServerRequest.h"
#include "service/StorageRequests.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::size_t kPagesAhead = 2;

bool isSame(const ListParameters &left, const ListParameters &right) {
  return left.prefix == right.prefix && left.startAfter == right.startAfter && left.delimiter == right.delimiter;
}

} // namespace

KaListingAhead::KaListingAhead(Parts parts, std::vector<ListParameters> wanted, int most) : with(std::move(parts)) {
  for (ListParameters &first : wanted)
    listings.push_back({.first = std::move(first)});
  const auto count = std::min(listings.size(), static_cast<std::size_t>(most));
  for (std::size_t number = 0; number < count; ++number)
    threads.emplace_back([this] {
      platform::nameThisThread("listing");
      static_cast<void>(runGuarded([this] { work(); }));
    });
}

KaListingAhead::~KaListingAhead() {
  {
    const platform::MutexLock scope(lock);
    isEnding = true;
    changed.notify_all();
  }
  with.connections.cancel();
  for (std::thread &thread : threads)
    thread.join();
}

std::optional<ListingAnswer> KaListingAhead::next(const ListParameters &first) {
  const platform::MutexLock scope(lock);
  const auto listing = std::find_if(listings.begin(), listings.end(),
                                    [&](const Listing &candidate) { return isSame(candidate.first, first); });
  if (listing == listings.end() || threads.empty()) return std::nullopt;
  while (listing->pages.empty() && !listing->isRead)
    changed.wait(lock);
  if (listing->pages.empty()) return std::nullopt;
  ListingAnswer page = std::move(listing->pages.front());
  listing->pages.pop_front();
  changed.notify_all();
  return page;
}

void KaListingAhead::work() {
  for (;;) {
    Listing *listing = nullptr;
    {
      const platform::MutexLock scope(lock);
      if (isEnding || begun == listings.size()) return;
      listing = &listings[begun++];
    }
    read(*listing);
  }
}

void KaListingAhead::read(Listing &listing) {
  ListParameters parameters = listing.first; // nobody writes it
  for (bool goesOn = true; goesOn;) {
    std::optional<ListingAnswer> page = ask(parameters);
    const platform::MutexLock scope(lock);
    goesOn = page && page->nextContinuationToken && !isEnding;
    if (goesOn) parameters.continuationToken = *page->nextContinuationToken;
    if (page) listing.pages.push_back(std::move(*page));
    listing.isRead = !goesOn;
    changed.notify_all();
    while (goesOn && listing.pages.size() >= kPagesAhead && !isEnding)
      changed.wait(lock);
  }
}

/// Without a word in the log: that is for its turn.
std::optional<ListingAnswer> KaListingAhead::ask(const ListParameters &parameters) const {
  const KaCredential by = with.credential();
  if (by.accessKeyId.isEmpty()) return std::nullopt;
  const QString url = presignedListURL(by, contentBucket(), parameters);
  const ServerAnswer answer = KaServerRequest::presignedAnswer(
      with.connections.perform(presignedRequest(url, by), {}, [this] { return hasToEnd(); }));
  // "Not found" is Success too, but what it means for the listing is only said of a question asked in its turn.
  const bool isThere = meaningOf(answer.statusCode).document == StatusMeaning::Document::There;
  return isThere && answer.result == KaResultCode::Success ? listingPageIn(answer.data) : std::nullopt;
}

bool KaListingAhead::hasToEnd() const {
  const platform::MutexLock scope(lock);
  return isEnding || with.shallEnd();
}
