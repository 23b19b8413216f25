#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

namespace sandbox {

/// An odd answer ordered for an endpoint. Write it with designated initialisers:
/// `{.kind = Fault::Kind::Status, .status = 503, .times = -1}`.
struct Fault {
  enum class Kind {
    // These seven take the place of the service, which does and checks nothing.
    Status,            ///< `status`, with `body` or the endpoint's usual kind of error document
    EmptyBody,         ///< 200 and no byte
    MalformedBody,     ///< 200 and neither XML nor JSON
    Body,              ///< `status` (200 when left 0) with `body`
    DroppedConnection, ///< closed without an answer
    NoAnswer,          ///< held until the client leaves, clearFaults() or the service's end; then closed
    // The rest let the service answer and spoil the delivery.
    Delay,          ///< the right answer after `delay`
    Interim,        ///< an answer 103 before the right one, with the header "x-interim"
    TruncatedBody,  ///< the right length announced, half of it sent, then closed
    SlowBody,       ///< the first half at once, the rest when clearFaults() lets it go
    Uncounted,      ///< neither length nor chunks; the TLS goodbye ends the body
    UncountedCut,   ///< the same without the goodbye
    Deflated,       ///< deflated as a transfer encoding, else like Uncounted
    DeflatedChunks, ///< deflated and then in chunks, as two header lines say
  };

  Kind kind = Kind::Status;
  int status = 0; ///< Status: 500 when left 0
  QByteArray body{};
  std::chrono::milliseconds delay{};
  int times = 1;          ///< how many requests it meets; -1 until cleared
  QString pathContains{}; ///< meets only requests whose path holds this, or a listing's prefix or start
};

/// Something wrong with what the account service hands out. Each kind waits for the next answer that it can spoil.
enum class TokenFault {
  // In the ID token of a login or a refresh.
  WrongAudience,
  AudienceArray,
  WrongIssuer,
  Expired,
  AlgorithmHs256, ///< a correct HMAC under the public modulus, for verifiers that believe the header
  AlgorithmNone,
  UnknownKeyId,
  BadSignature,
  NoSubject,
  PartLengthThreeModuloFour, ///< the payload part
  // The nonce: in the token of a login, in the answer of a refresh.
  WrongNonce,
  // In the answer of a refresh.
  MissingNonce,
  NonceOfWrongType,
  MissingIdToken,
  IdTokenOfWrongType,
  // In the answer of a refresh or of a token code exchange.
  MissingTokenCode,
  TokenCodeOfWrongType,
  AnswerIsArray, ///< a JSON array around the right answer
};

} // namespace sandbox
