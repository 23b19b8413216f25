#pragma once

#include "engine/KaBookkeeping.h"
#include "engine/KaContentDownload.h"
#include "engine/KaContentListing.h"
#include "engine/KaDownloadRun.h"
#include "engine/KaDownloadSession.h"
#include "engine/KaDownloadState.h"
#include "engine/KaFilledFolders.h"
#include "engine/KaImageMetadata.h"
#include "engine/KaLookBack.h"
#include "engine/KaPass.h"
#include "engine/KaPreviewDownload.h"
#include "service/KaServerRequest.h"
#include "service/KaStorage.h"

class KaDownloadProcessorDelegate;
class KaLink;

/// The pieces of the download thread and how they hang together.
struct KaDownloadPieces {
  /// Both outlive this object.
  KaDownloadPieces(KaDownloadProcessorDelegate &delegate, KaLink &link, const KaWaitClock &clock = {})
      : state(clock), session{{delegate, link, request, storage, state.endAppFlag}},
        bookkeeping{{delegate, session, filledFolders, clock}}, lookBack{{bookkeeping, clock}},
        passParts{delegate, session, filledFolders, storage}, run{{delegate, state, request, storage, session,
                                                                   bookkeeping, lookBack, listing, content, preview}} {}

  KaDownloadState state;
  KaServerRequest request{[this] { return session.isOver(); }};
  KaStorage storage{request};
  KaDownloadSession session;
  KaFilledFolders filledFolders;
  KaBookkeeping bookkeeping;
  KaLookBack lookBack;
  KaContentListing listing{{storage, session, bookkeeping}};
  KaImageMetadata metadata{{storage, session, state}};
  const KaPass::Parts passParts;
  KaContentDownload content{{passParts, storage, metadata, bookkeeping}};
  KaPreviewDownload preview{{passParts, storage, bookkeeping}};
  KaDownloadRun run;
};
