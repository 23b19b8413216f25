#pragma once

#include "identity/KaLinkState.h"
#include "platform/BootClock.h"
#include "platform/Mutex.h"
#include "platform/ThreadAnnotations.h"
#include "platform/ThreadBound.h"

#include <QObject>
#include <QString>

#include <atomic>
#include <chrono>
#include <functional>
#include <optional>

/// Tells one link of this process from every other; 0 is none.
using KaLinkNumber = quint64;

/// What a run takes with it: the link that it began with, and that link's ID token.
struct KaLinkSnapshot {
  KaLinkNumber number = 0;
  QString idToken{};
};

/// Who is linked, with which ID token, token code and code verifier, and whether a login is under way. The one owner
/// of all that; its files are KaLinkageUtility's.
///
/// Each link has a number. Whatever is asked for in a link's name (a refresh, a report to the user) is stored or told
/// with that number, and comes to nothing once it is not the present one. Readers get copies and never wait for a disk;
/// writers take turns. Operations that begin, complete or end a link belong to the main thread.
class KaLink {
public:
  /// @param loginPatience  so long a login that was begun keeps runs of the present link from beginning; a callback
  /// that comes later completes it all the same. Time asleep counts.
  explicit KaLink(std::chrono::milliseconds loginPatience = std::chrono::minutes(10));
  KaLink(const KaLink &) = delete;
  KaLink &operator=(const KaLink &) = delete;

  /// @name The life of a link. Main thread.
  /// @{
  /// At start: takes up the link that is stored, if there is none yet. @return whether there is one.
  bool load();
  /// Drops the pairing files and opens the login page, which is given a fresh nonce and a code challenge. The present
  /// link, if any, goes on in memory until the login completes, and its next refresh stores it again. The verifier is
  /// written once the page has opened.
  /// @param notOpened  told the page's address, from the event loop, when it could not be opened and the login is the
  /// last one still: it keeps no run waiting any more, but whoever opens the page by hand completes it.
  void beginLogin(const std::function<void(const QString &url)> &notOpened = {});
  /// The nonce of the login in progress. It counts once: absent from then on.
  [[nodiscard]] std::optional<QString> useNonce();
  /// Whether @p idToken is the present one, or completed the last login: browsers call back twice.
  [[nodiscard]] bool isRepeated(const QString &idToken) const KA_EXCLUDES(lock);
  /// A login's token was verified: makes a new link of it, which awaits its folders, and stores it.
  /// @return whether the token was stored on disk; the link is there either way.
  bool completeLogin(const QString &idToken);
  /// The login in progress cannot complete any more, its nonce being used: runs of the present link go on.
  /// @return whether it held them up.
  bool giveUpLogin() KA_EXCLUDES(lock);
  /// The user has seen the folders of a new link.
  void confirmFolders();
  /// Ends the link and any login, and deletes the files. No answer of before can bring them back.
  void close();
  /// @}

  /// @name Questions. Any thread.
  /// @{
  [[nodiscard]] KaLinkState state() const KA_EXCLUDES(lock);
  /// Whether there is a link, or one is being set up.
  [[nodiscard]] bool isLinkedOrBeingSetUp() const KA_EXCLUDES(lock);
  /// The last ID token of this process or, before there was any, the stored one. It outlives the link's end.
  [[nodiscard]] std::optional<QString> idToken() const KA_EXCLUDES(lock);
  /// The link that a run may begin with; absent while there is none, it awaits its folders, or a login is under way.
  [[nodiscard]] std::optional<KaLinkSnapshot> forRun() const KA_EXCLUDES(lock);
  /// How long a login under way still keeps runs from beginning; zero when nothing does but the lack of a link.
  [[nodiscard]] std::chrono::milliseconds loginRest() const KA_EXCLUDES(lock);
  [[nodiscard]] bool isCurrent(KaLinkNumber number) const { return number != 0 && currentNumber == number; }
  [[nodiscard]] KaLinkNumber number() const { return currentNumber; }
  /// What the next refresh has to show; empty when there is none, or the link is over.
  [[nodiscard]] std::optional<QString> tokenCode(KaLinkNumber of) const KA_EXCLUDES(lock);
  /// @}

  /// @name In a link's name. Any thread; they wait for whoever has the turn, a disk included.
  /// @{
  /// Hands the login's code verifier out, once, to the link that the login made.
  [[nodiscard]] std::optional<QString> takeCodeVerifier(KaLinkNumber by) KA_EXCLUDES(turn, lock);
  /// Takes one back that could not be exchanged yet.
  void returnCodeVerifier(KaLinkNumber of, const QString &codeVerifier) KA_EXCLUDES(turn, lock);
  /// @return whether it was stored on disk; never once the link is over. In memory it counts even when the disk fails.
  bool storeIdToken(KaLinkNumber of, const QString &idToken) KA_EXCLUDES(turn, lock);
  bool storeTokenCode(KaLinkNumber of, const QString &tokenCode) KA_EXCLUDES(turn, lock);
  /// Calls @p tell unless the link is over, and lets no link end or begin meanwhile: so what it posts to the main
  /// thread comes before what the end of the link posts. @p tell must be short and must not call back into this object.
  void whileCurrent(KaLinkNumber of, const std::function<void()> &tell) KA_EXCLUDES(turn);
  /// @}

private:
  using Clock = platform::BootClock;

  struct Values {
    KaLinkState state = KaLinkState::Unlinked;
    std::optional<QString> idToken{};             ///< of the last link
    std::optional<QString> tokenCode{};           ///< of the present link
    std::optional<QString> nonce{};               ///< of the login in progress
    std::optional<QString> codeVerifier{};        ///< of the login in progress, while it is not on disk
    std::optional<Clock::time_point> loginEnds{}; ///< while a login is under way: when its patience is over
    std::optional<QString> completedBy{};         ///< the token that completed the last login
    KaLinkNumber verifierOf = 0;                  ///< the link whose login the stored verifier belongs to
  };

  void makeCurrent(KaLinkState state, const QString &idToken, const std::optional<QString> &tokenCode)
      KA_REQUIRES(turn, lock);
  void forgetFilesFor(const QString &nonce) KA_EXCLUDES(turn, lock);
  void pageHasOpened(const QString &nonce) KA_EXCLUDES(turn, lock);
  [[nodiscard]] bool pageHasNotOpened(const QString &nonce) KA_EXCLUDES(lock);
  [[nodiscard]] Clock::duration restOfLogin() const KA_REQUIRES(lock);

  const std::chrono::milliseconds patience;
  const platform::ThreadBound mainThread{};
  std::atomic<KaLinkNumber> currentNumber = 0; ///< changed with `turn` and `lock` held
  KaLinkNumber lastNumber KA_GUARDED_BY(lock) = 0;
  platform::Mutex turn; ///< held by whoever changes the link, writes its files or speaks for it; taken before `lock`
  mutable platform::Mutex lock; ///< covers copying, and nothing is called under it
  Values values KA_GUARDED_BY(lock);
  const QObject pages; ///< hears what became of them, as long as this lives
};
