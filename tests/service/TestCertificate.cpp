#include "service/TestCertificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>

namespace quillmarch::service {

namespace {

void AddExtension(X509* certificate, int kind, const char* value) {
  const std::unique_ptr<X509_EXTENSION, decltype(&X509_EXTENSION_free)> extension(
      X509V3_EXT_conf_nid(nullptr, nullptr, kind, value), &X509_EXTENSION_free);
  X509_add_ext(certificate, extension.get(), -1);
}

template <typename Write>
std::string WriteFile(const std::string& path, Write write) {
  std::FILE* file = std::fopen(path.c_str(), "w");
  write(file);
  std::fclose(file);
  return path;
}

}  // namespace

TestCertificate MakeTestCertificate(const TempFolder& folder, const std::string& name) {
  const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_EC_gen("P-256"),
                                                                &EVP_PKEY_free);
  const std::unique_ptr<X509, decltype(&X509_free)> owned(X509_new(), &X509_free);
  X509* certificate = owned.get();
  X509_set_version(certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
  X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
  X509_gmtime_adj(X509_getm_notAfter(certificate), 24 * 3600);
  X509_set_pubkey(certificate, key.get());
  X509_NAME* subject = X509_get_subject_name(certificate);
  X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509_set_issuer_name(certificate, subject);
  AddExtension(certificate, NID_basic_constraints, "critical,CA:TRUE");
  AddExtension(certificate, NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1");
  X509_sign(certificate, key.get(), EVP_sha256());
  return {WriteFile(folder.Path(name + ".crt"),
                    [&](std::FILE* file) { PEM_write_X509(file, certificate); }),
          WriteFile(folder.Path(name + ".key"), [&](std::FILE* file) {
            PEM_write_PrivateKey(file, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
          })};
}

}  // namespace quillmarch::service
