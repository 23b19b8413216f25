#include "identity/RsaSignature.h"

#include "identity/OpenSslHandle.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

namespace {

using BigNumber = OpenSslHandle<BIGNUM, &BN_free>;
using ParameterBuilder = OpenSslHandle<OSSL_PARAM_BLD, &OSSL_PARAM_BLD_free>;
using Parameters = OpenSslHandle<OSSL_PARAM, &OSSL_PARAM_free>;
using KeyContext = OpenSslHandle<EVP_PKEY_CTX, &EVP_PKEY_CTX_free>;
using Key = OpenSslHandle<EVP_PKEY, &EVP_PKEY_free>;
using DigestContext = OpenSslHandle<EVP_MD_CTX, &EVP_MD_CTX_free>;

/// Longer ones are no real keys, only work for whoever has to compute with them.
constexpr int kMaxModulusBits = 16384;
/// With a zero byte before it, which some encoders keep from signed numbers.
constexpr qsizetype kMaxNumberBytes = kMaxModulusBits / 8 + 1;

const unsigned char *bytesOf(const QByteArray &bytes) {
  return reinterpret_cast<const unsigned char *>(bytes.constData());
}

BigNumber makeNumber(const QByteArray &bytes) {
  if (bytes.isEmpty() || bytes.size() > kMaxNumberBytes) return nullptr;
  return BigNumber(BN_bin2bn(bytesOf(bytes), static_cast<int>(bytes.size()), nullptr));
}

Key makeKey(const RsaPublicKey &numbers) {
  const BigNumber modulus = makeNumber(numbers.modulus);
  const BigNumber exponent = makeNumber(numbers.exponent);
  if (!modulus || !exponent || BN_is_zero(modulus.get()) || BN_is_zero(exponent.get())) return nullptr;
  if (BN_num_bits(modulus.get()) > kMaxModulusBits) return nullptr;

  const ParameterBuilder builder(OSSL_PARAM_BLD_new());
  if (!builder || OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_N, modulus.get()) != 1
      || OSSL_PARAM_BLD_push_BN(builder.get(), OSSL_PKEY_PARAM_RSA_E, exponent.get()) != 1)
    return nullptr;
  const Parameters parameters(OSSL_PARAM_BLD_to_param(builder.get()));
  const KeyContext context(EVP_PKEY_CTX_new_from_name(nullptr, "RSA", nullptr));
  if (!parameters || !context || EVP_PKEY_fromdata_init(context.get()) != 1) return nullptr;
  EVP_PKEY *key = nullptr;
  if (EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, parameters.get()) != 1) return nullptr;
  return Key(key);
}

} // namespace

bool verifyRsaSha256(const RsaPublicKey &key, const QByteArray &message, const QByteArray &signature) {
  const OpenSslErrorScope errors;
  const Key publicKey = makeKey(key);
  const DigestContext context(EVP_MD_CTX_new());
  if (!publicKey || !context) return false;
  if (EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, publicKey.get()) != 1) return false;
  return EVP_DigestVerify(context.get(), bytesOf(signature), static_cast<size_t>(signature.size()), bytesOf(message),
                          static_cast<size_t>(message.size()))
         == 1;
}
