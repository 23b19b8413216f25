#pragma once

#include <QString>

#include <optional>

namespace sandbox {

/// Goes the way of a person in a browser: opens the agent's login URL, follows it to the login page, presses the
/// button.
/// @param trustAnchorsFile  PEM file of the authority to trust.
/// @param problem  why there is no callback URL.
[[nodiscard]] std::optional<QString> signInLikeABrowser(const QString &loginUrl, const QString &trustAnchorsFile,
                                                        QString &problem);

} // namespace sandbox
