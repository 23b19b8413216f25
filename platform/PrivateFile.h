#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

namespace platform {

/// Small files of ours that only the user may read. Any thread.

/// More than this is none of ours where a file has no form that can grow. Bytes.
inline constexpr qint64 kSmallFileLimit = 1LL << 20;

/// Replaces @p path as a whole: after a crash or a power cut it holds the old content or the new one, and the new one
/// once this has returned. Its folder must exist.
[[nodiscard]] bool writePrivateFile(const QString &path, const QByteArray &content);
/// Absent when there is no such ordinary file, it cannot be read, or it holds more than @p limit bytes.
[[nodiscard]] std::optional<QByteArray> readPrivateFile(const QString &path, qint64 limit = kSmallFileLimit);

/// Removes what a kill has left of replacements of @p names in @p folder; everything else stays, links and folders
/// too. Only while nobody writes there.
void sweepReplacements(const QString &folder, const QStringList &names);

} // namespace platform
