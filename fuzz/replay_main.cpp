// Replays inputs through a fuzz target's LLVMFuzzerTestOneInput without libFuzzer, so that the
// seed corpus and every crash once found and added to it run with the ordinary test suites, on
// both architectures and with any compiler. Arguments are files or folders of files.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

namespace fs = std::filesystem;

bool replayFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", file.c_str());
    return false;
  }
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
  // An empty vector's data() may be null; libFuzzer never passes null, so neither do we.
  static const uint8_t none = 0;
  LLVMFuzzerTestOneInput(bytes.empty() ? &none : bytes.data(), bytes.size());
  return true;
}

// Returns the number of inputs replayed, or -1 when one could not be read.
long replayPath(const fs::path& path) {
  if (!fs::is_directory(path)) {
    return replayFile(path) ? 1 : -1;
  }
  long count = 0;
  for (const auto& entry : fs::recursive_directory_iterator(path)) {
    if (!entry.is_regular_file()) {
      continue;
    }
    if (!replayFile(entry.path())) {
      return -1;
    }
    ++count;
  }
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  long total = 0;
  for (int i = 1; i < argc; ++i) {
    long count = replayPath(argv[i]);
    if (count < 0) {
      return 1;
    }
    total += count;
  }
  std::printf("replayed %ld inputs\n", total);
  return 0;
}
