// Hands the files of a folder to a fuzz target where there is no fuzzer: each as it stands, cut off
// at some places and with some bytes changed.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kPlaces = 12;

void Hand(const std::string& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: " << argv[0] << " FOLDER\n";
    return 2;
  }
  std::size_t files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    std::ifstream file(entry.path(), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    Hand(bytes);
    for (std::size_t i = 1; i <= kPlaces && bytes.size() > kPlaces; ++i) {
      const std::size_t at = bytes.size() * i / (kPlaces + 1);
      Hand(bytes.substr(0, at));
      std::string changed = bytes;
      changed[at] = static_cast<char>(changed[at] ^ static_cast<char>(1u << (i % 8)));
      Hand(changed);
    }
    ++files;
  }
  std::cout << files << " files\n";
  return files == 0 ? 1 : 0;
}
