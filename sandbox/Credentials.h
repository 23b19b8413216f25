#pragma once

#include "sandbox/Locked.h"
#include "sandbox/Service.h"

#include <QDateTime>
#include <QHash>
#include <QString>

#include <optional>

namespace sandbox {

/// A temporary credential and whose it is.
struct KnownCredential {
  TemporaryCredential credential{};
  QString userId{};
};

/// The temporary credentials in force. Any thread.
class Credentials {
public:
  /// A new one, unlike any other.
  [[nodiscard]] TemporaryCredential issue(const QString &userId, const QDateTime &expiration);
  void add(const KnownCredential &known);
  [[nodiscard]] std::optional<KnownCredential> find(const QString &accessKeyId) const;
  void revokeAll();

private:
  Locked<QHash<QString, KnownCredential>> known;
};

} // namespace sandbox
