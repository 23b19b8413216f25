#include "service/KaTrustAnchors.h"

#include "log/KaLogUtility.h"

#include <QDir>
#include <QFile>

#include <curl/curl.h>
#include <openssl/err.h>
#include <openssl/x509_vfy.h>

using namespace Qt::StringLiterals;

namespace {

bool isHashed(const char *folder) {
  return folder && !QDir(QFile::decodeName(folder), u"*.0"_s, QDir::NoSort, QDir::Files).isEmpty();
}

/// A hashed folder is looked into when a certificate asks for it; parsing the whole bundle costs some 15 ms, so that
/// it is left for systems without such a folder.
bool addSystemAnchors(X509_STORE *store) {
  const curl_version_info_data *const built = curl_version_info(CURLVERSION_NOW);
  if (isHashed(built->capath)) return X509_STORE_load_path(store, built->capath) == 1;
  return built->cainfo && X509_STORE_load_file(store, built->cainfo) == 1;
}

} // namespace

KaTrustAnchors::KaTrustAnchors(const QString &extraFile) : store(X509_STORE_new()) {
  if (!store) return;
  // As libcurl does on its own: an anchor need not be self-signed.
  if (X509_STORE_set_flags(store.get(), X509_V_FLAG_PARTIAL_CHAIN) != 1) store.reset();
  if (!store) return;

  if (!addSystemAnchors(store.get())) KaLogUtility::writeErrorLog(u"System trust anchors not found"_s);
  if (!extraFile.isEmpty() && X509_STORE_load_file(store.get(), QFile::encodeName(extraFile).constData()) != 1)
    KaLogUtility::writeErrorLog(u"Trust anchors not read: "_s + extraFile);
  ERR_clear_error();
}

bool KaTrustAnchors::installInto(SSL_CTX *context) const {
  if (!store) return false;
  SSL_CTX_set1_cert_store(context, store.get());
  return true;
}
