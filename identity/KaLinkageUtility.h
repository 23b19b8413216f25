#pragma once

#include <QString>

#include <optional>

/// The link between this computer and the user's account: the browser pages that make and end it, and the three
/// enciphered files that keep it. Files that are missing, damaged or another user's read as absent; what was saved or
/// deleted stays so in a power cut. Any thread, one at
/// a time for each file: KaLink, which knows whose they are, sees to that and is the only one to write them.
class KaLinkageUtility {
public:
  KaLinkageUtility() = delete;

  /// Opens the login page and keeps the login's code verifier. @return whether both went well; when the browser cannot
  /// be opened no verifier is kept. Main thread.
  static bool setupLinkage(const QString &nonce);
  /// Opens the logout page. Main thread.
  static bool closeLinkage();
  /// 86 random base64url characters.
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
