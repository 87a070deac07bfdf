// Runs a fuzz target without a fuzzer, deterministically: on random bytes, on the files of a corpus, and on
// mutations of them. An input that fails is kept in the file "failed-input".

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "fuzz/Fuzz.h"

namespace {

constexpr int inputsPerSeed = 3000;

void run(const std::string& input) {
  std::ofstream("failed-input", std::ios::binary) << input;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
}

std::string mutated(std::string input, std::mt19937& random) {
  for (U64 edits = 1 + random() % 4; edits > 0; --edits) {
    // Replaces some bytes by one, or inserts one.
    input.replace(random() % (input.size() + 1), random() % 16, random() % 2, static_cast<char>(random()));
  }
  return input;
}

}  // namespace

int main(int argc, char** argv) {
  std::mt19937 random(1);
  for (int i = 0; i < inputsPerSeed; ++i) {
    std::string bytes(random() % 300, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    run(bytes);
  }
  for (int seed = 1; seed < argc; ++seed) {
    std::ifstream file(argv[seed], std::ios::binary);
    const std::string whole{std::istreambuf_iterator<char>(file), {}};
    run(whole);
    for (int i = 0; i < inputsPerSeed; ++i) run(mutated(whole, random));
  }
  std::filesystem::remove("failed-input");
  return 0;
}
