#pragma once

#include "engine/KaDownloadPieces.h"
#include "identity/KaLink.h"
#include "tests/engine/FakeDelegate.h"

/// The pieces of the download thread, linked by the sample token.
struct LinkedEngine {
  /// The answers of the identity provider, of the configuration and of STS that go with the sample token; empty for
  /// another URL.
  [[nodiscard]] static QByteArray accountAnswer(const QString &url);

  LinkedEngine();

  FakeDelegate delegate;
  KaLink link;
  KaDownloadPieces pieces{delegate, link};
};
