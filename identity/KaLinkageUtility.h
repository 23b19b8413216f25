#pragma once

#include <QString>

#include <functional>
#include <optional>

class QObject;

/// The link between this computer and the user's account: the browser pages that make and end it, and the three
/// enciphered files that keep it. Files that are missing, damaged or another user's read as absent; what was saved or
/// deleted stays so in a power cut. The files: any thread, one at a time for each; KaLink, which knows whose they are,
/// sees to that and is the only one to write them. The pages: main thread.
class KaLinkageUtility {
public:
  KaLinkageUtility() = delete;

  /// What became of a page that was to be opened, and its address: told once, from the event loop of the main thread,
  /// unless the receiver is gone.
  using PageVerdict = std::function<void(bool opened, const QString &url)>;

  /// Opens the login page.
  /// @return the login's code verifier, which nothing keeps yet; empty when no login can be made, and nothing opens.
  [[nodiscard]] static QString setupLinkage(const QString &nonce, const QObject *receiver, const PageVerdict &verdict);
  /// Opens the logout page.
  static void closeLinkage(const QObject *receiver, const PageVerdict &verdict);
  /// 86 random base64url characters. Any thread.
  [[nodiscard]] static QString GenerateNonce();

  static bool saveLinkageSetting(const QString &idToken);
  [[nodiscard]] static std::optional<QString> loadLinkageSetting();

  static bool saveCodeVerifier(const QString &codeVerifier);
  [[nodiscard]] static bool existCodeVerifier();
  /// Hands the verifier out once: the file is gone afterwards.
  [[nodiscard]] static std::optional<QString> loadCodeVerifier();

  static bool saveTokenCode(const QString &tokenCode);
  [[nodiscard]] static std::optional<QString> loadTokenCode();
  static void deleteTokenCode();

  static void deletePairingInfo();
  /// Removes what a kill has left of their saving, as deletePairingInfo does, too.
  static void sweepPairingFolder();
};
