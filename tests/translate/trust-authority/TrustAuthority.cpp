// Puts the test authority into the user's store of trusted roots, or takes it out again:
//   trust_authority add|remove FILE.pem
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

}  // namespace

int main(int argc, char** argv) {
  const std::string order = argc == 3 ? argv[1] : "";
  if (order != "add" && order != "remove") {
    std::fprintf(stderr, "usage: trust_authority add|remove FILE.pem\n");
    return 2;
  }
  const std::vector<BYTE> bytes = ReadCertificate(argv[2]);
  const PCCERT_CONTEXT certificate = CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(),
                                                                  static_cast<DWORD>(bytes.size()));
  const HCERTSTORE store =
      CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
  const bool done =
      certificate != nullptr && store != nullptr && Change(store, order == "add", certificate);
  if (store != nullptr) CertCloseStore(store, 0);
  if (certificate != nullptr) CertFreeCertificateContext(certificate);
  if (!done) std::fprintf(stderr, "trust_authority: cannot %s %s\n", order.c_str(), argv[2]);
  return done ? 0 : 1;
}
