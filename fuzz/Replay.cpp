// Runs a fuzz target without a fuzzer: on the files of a corpus, on mutations of them and on random bytes,
// the same ones each time. An input that fails is left in the file "failed-input".

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

#include "fuzz/Fuzz.h"

namespace {

constexpr int mutationsPerSeed = 3000;
constexpr std::size_t mostRandomBytes = 300;

void run(const std::string& input) {
  std::ofstream("failed-input", std::ios::binary) << input;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::string mutated(std::string input, std::mt19937& random) {
  for (U64 edits = 1 + random() % 4; edits > 0; --edits) {
    const std::size_t at = input.empty() ? 0 : random() % input.size();
    const std::size_t size = random() % 16;
    switch (random() % 4) {
      case 0:
        input.insert(at, 1, static_cast<char>(random()));
        break;
      case 1:
        input.erase(at, size);
        break;
      case 2:
        input.insert(random() % (input.size() + 1), input.substr(at, size));
        break;
      default:
        input.replace(at, 1, 1, static_cast<char>(random()));
    }
  }
  return input;
}

std::string randomBytes(std::mt19937& random) {
  std::string bytes(random() % mostRandomBytes, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  std::mt19937 random(1);
  for (int i = 0; i < mutationsPerSeed; ++i) run(randomBytes(random));
  for (const char* corpus : std::vector<const char*>(argv + 1, argv + argc)) {
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string seed{std::istreambuf_iterator<char>(file), {}};
      run(seed);
      for (int i = 0; i < mutationsPerSeed; ++i) run(mutated(seed, random));
    }
  }
  std::filesystem::remove("failed-input");
  return 0;
}
