#include "main/CommandLine.h"

using namespace Qt::StringLiterals;

std::optional<CommandLine> parseCommandLine(const QStringList &arguments) {
  if (arguments.size() <= 1) return CommandLine{};
  const bool isUrl = arguments[1].startsWith(u"downloaderpictora:"_s, Qt::CaseInsensitive);
  if (arguments.size() > 2 || !isUrl) return std::nullopt;
  return CommandLine{arguments[1]};
}
