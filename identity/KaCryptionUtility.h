#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Enciphering for files that only this user on this machine shall read, and the hashes around it. Any thread.
class KaCryptionUtility {
public:
  KaCryptionUtility() = delete;

  /// AES-256 in ECB mode with PKCS#7 padding under secretKey(), as base64 with CR LF after every 64 characters that
  /// more follow. Absent on failure.
  [[nodiscard]] static std::optional<QString> encrypt(const QString &text);
  /// The reverse, under the keys of the user's earlier ids, too; absent when @p text is not ours or damaged. Characters
  /// outside the base64 alphabet are skipped.
  [[nodiscard]] static std::optional<QString> decrypt(const QString &text);

  /// The same under another key, of which the first 32 characters count; a shorter one fails.
  [[nodiscard]] static std::optional<QString> encrypt(const QString &text, const QString &key);
  [[nodiscard]] static std::optional<QString> decrypt(const QString &text, const QString &key);

  /// 64 characters made from the user's stable id in use (the first 32 are the key); empty when there is no such id.
  [[nodiscard]] static QString secretKey();

  [[nodiscard]] static QString toSHA256hash(const QString &text); ///< 64 lower-case hexadecimal characters
  [[nodiscard]] static QByteArray toSHA256DataFrom(const QString &text);
  /// The PKCE S256 challenge of a code verifier.
  [[nodiscard]] static QString GenerateCodeS256Challenge(const QString &verifier);
};
