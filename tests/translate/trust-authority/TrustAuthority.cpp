// Puts the test authority into the user's store of trusted roots, tells by its exit code whether
// the system trusts it, or takes it out again:
//   trust_authority add|check|remove FILE.pem
// A program of its own, since a process that already runs does not see what was added.
#include <windows.h>

#include <wincrypt.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

// The certificate's binary form, as the store takes it.
std::vector<BYTE> ReadCertificate(const char* path) {
  std::ifstream file(path, std::ios::binary);
  const std::string pem{std::istreambuf_iterator<char>(file), {}};
  const auto length = static_cast<DWORD>(pem.size());
  DWORD size = 0;
  CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, nullptr, &size, nullptr,
                       nullptr);
  std::vector<BYTE> bytes(size);
  CryptStringToBinaryA(pem.data(), length, CRYPT_STRING_BASE64HEADER, bytes.data(), &size, nullptr,
                       nullptr);
  return bytes;
}

bool Change(HCERTSTORE store, bool add, PCCERT_CONTEXT certificate) {
  if (add) {
    return CertAddCertificateContextToStore(store, certificate, CERT_STORE_ADD_REPLACE_EXISTING,
                                            nullptr) != FALSE;
  }
  const PCCERT_CONTEXT found = CertFindCertificateInStore(store, X509_ASN_ENCODING, 0,
                                                          CERT_FIND_EXISTING, certificate, nullptr);
  return found != nullptr && CertDeleteCertificateFromStore(found) != FALSE;
}

// Whether the system builds a chain of trust that ends in this certificate.
bool IsTrusted(PCCERT_CONTEXT certificate) {
  CERT_CHAIN_PARA parameters{};
  parameters.cbSize = sizeof(parameters);
  PCCERT_CHAIN_CONTEXT chain = nullptr;
  if (CertGetCertificateChain(nullptr, certificate, nullptr, nullptr, &parameters, 0, nullptr,
                              &chain) == FALSE) {
    return false;
  }
  const bool trusted = chain->TrustStatus.dwErrorStatus == CERT_TRUST_NO_ERROR;
  CertFreeCertificateChain(chain);
  return trusted;
}

bool ChangeUsersRoots(bool add, PCCERT_CONTEXT certificate) {
  const HCERTSTORE store =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  if (store == nullptr) return false;
  const bool done = Change(store, add, certificate);
  CertCloseStore(store, 0);
  return done;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string order = argc == 3 ? argv[1] : "";
  if (order != "add" && order != "check" && order != "remove") {
    std::fprintf(stderr, "usage: trust_authority add|check|remove FILE.pem\n");
    return 2;
  }
  const std::vector<BYTE> bytes = ReadCertificate(argv[2]);
  const PCCERT_CONTEXT certificate = CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(),
                                                                  static_cast<DWORD>(bytes.size()));
  if (certificate == nullptr) {
    std::fprintf(stderr, "trust_authority: %s is no certificate\n", argv[2]);
    return 2;
  }
  const bool done =
      order == "check" ? IsTrusted(certificate) : ChangeUsersRoots(order == "add", certificate);
  CertFreeCertificateContext(certificate);
  if (!done && order != "check") {
    std::fprintf(stderr, "trust_authority: cannot %s %s\n", order.c_str(), argv[2]);
  }
  return done ? 0 : 1;
}
