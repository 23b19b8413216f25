#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// What the program was started with: nothing, or one URL of its own scheme.
struct CommandLine {
  std::optional<QString> url;
};

/// @param arguments  the program's name first.
/// @return nothing when they are anything else.
[[nodiscard]] std::optional<CommandLine> parseCommandLine(const QStringList &arguments);
