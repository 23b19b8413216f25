#pragma once

#include "platform/Mutex.h"
#include "platform/ThreadBound.h"
#include "service/KaCredential.h"
#include "service/KaStorageAhead.h"
#include "service/ServerAnswer.h"

#include <QString>

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

class KaListingAhead;
class KaServerRequest;
struct ListParameters;
struct SaveOrder;

/// So long before their end credentials are renewed, and nothing more is asked ahead.
inline constexpr std::chrono::seconds kRenewalLead(600);

/// The object store: holds the temporary credentials and answers in values. Keys are plain text here; how they travel
/// and are signed is decided below. Download thread, but for the credentials.
///
/// Without credentials everything fails with LinkInvalid, unasked; and so it does, by the service's word, once they
/// have expired.
class KaStorage {
public:
  /// Takes each page of a listing as it comes.
  using PageTaker = std::function<void(const ListingPage &page)>;
  /// Takes a document piece by piece; false ends the request.
  using PieceTaker = std::function<bool(const char *bytes, std::size_t count)>;

  /// @param request  outlives this object.
  explicit KaStorage(KaServerRequest &request);
  ~KaStorage();
  KaStorage(const KaStorage &) = delete;
  KaStorage &operator=(const KaStorage &) = delete;

  /// @name Credentials. Any thread.
  /// @{
  void setCredential(const KaCredential &credential) { held.set(credential); }
  void deleteCredential() { held.set({}); }
  /// All empty without one.
  [[nodiscard]] KaCredential credential() const { return held.get(); }
  /// Whether the credentials end within @p lead from now, or there are none.
  [[nodiscard]] bool expiresWithin(std::chrono::seconds lead) const;
  /// @}

  /// @name Listings, over all their pages. NoHttpStatus when no status arrived; NoBody, too, for a page that cannot be
  /// parsed and for pages that go round in circles.
  /// @{
  /// The names directly below @p prefix, which ends in "/".
  [[nodiscard]] ListingOutcome listDevices(const QString &prefix, const PageTaker &take);
  /// These listings of objects will be asked for, in this order, until endListings.
  struct ObjectListing {
    QString prefix{};
    QString startAfter{};
  };
  void beginListings(const std::vector<ObjectListing> &listings, std::function<bool()> shallEnd);
  void endListings();
  /// The objects whose keys begin with @p prefix and come after @p startAfter.
  [[nodiscard]] ListingOutcome listObjects(const QString &prefix, const QString &startAfter, const PageTaker &take);
  /// @}

  /// @name Documents. NoHttpStatus when no status arrived.
  /// @{
  [[nodiscard]] StoredDocument document(const QString &key);
  /// The list of previews of an account, of any length: its content goes to @p take. One that this refuses has Failed.
  [[nodiscard]] StoredDocument previewList(const QString &account, const PieceTaker &take);
  /// @}

  /// @name Objects
  /// @{
  /// No answer gives ServerError.
  [[nodiscard]] ObjectHead head(const QString &key);
  /// Whether an object belongs to the 10G storage. No answer gives ServerError, and a yes.
  [[nodiscard]] TagVerdict checkObjectTagIs10GStorage(const QString &key);
  /// Saves an object under the name that came with it; see KaServerRequest::getAwsS3Object.
  [[nodiscard]] SavedObject save(const QString &key, const SaveOrder &order);
  /// The same under a name given by the caller.
  [[nodiscard]] SavedObject savePreview(const QString &key, const SaveOrder &order,
                                        const std::optional<QString> &fileName);
  /// @}

  /// Where answers may be had before their turn: head, tags, documents and content that are here or under way are taken
  /// from it.
  [[nodiscard]] KaStorageAhead &ahead() { return asksAhead; }
  /// Drops what is ahead. @return whether that made room on the disk. To be asked before one is said to be full.
  [[nodiscard]] bool giveUpAhead() { return asksAhead.giveUp(); }
  /// Closes the connections that are kept. Any thread.
  void dropConnections();
  /// The same on news of the network, or of sleep, after which other proxies may be right. Any thread.
  void networkChanged();

private:
  struct PageRead;
  using Saving = std::function<SavedObject()>;
  using PlacingArrived = std::function<std::optional<SavedObject>(const ArrivedObject &arrived)>;

  [[nodiscard]] ListingOutcome readPages(ListParameters parameters, const PageTaker &take);
  [[nodiscard]] PageRead readPage(const KaCredential &by, const ListParameters &parameters);
  [[nodiscard]] SavedObject saveBy(const QString &key, qint64 size, const PlacingArrived &place, const Saving &save);

  KaServerRequest &toSend;
  const platform::ThreadBound downloadThread{};
  platform::Guarded<KaCredential> held;
  KaStorageAhead asksAhead;
  std::unique_ptr<KaListingAhead> listsAhead; ///< null while nothing is listed ahead
};
