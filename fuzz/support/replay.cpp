// Feeds files to a fuzz target without libFuzzer, so that every compiler and data model can repeat
// the committed inputs. Arguments are files, or directories whose files are taken.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

namespace fs = std::filesystem;

void replay(const fs::path &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "replay: cannot read %s\n", path.c_str());
    std::exit(1);
  }
  const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
  // A block of exactly that size, so that the sanitizers see a read beyond the input.
  const auto input = std::make_unique<std::uint8_t[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), input.get());
  std::fprintf(stderr, "replay: %s, %zu bytes\n", path.filename().c_str(), bytes.size());
  LLVMFuzzerTestOneInput(input.get(), bytes.size());
}

} // namespace

int main(int argc, char **argv) {
  std::vector<fs::path> inputs;
  for (int i = 1; i < argc; ++i) {
    if (!fs::is_directory(argv[i])) {
      inputs.emplace_back(argv[i]);
      continue;
    }
    for (const auto &entry : fs::directory_iterator(argv[i]))
      if (entry.is_regular_file())
        inputs.push_back(entry.path());
  }
  for (const fs::path &path : inputs)
    replay(path);
  std::printf("%zu inputs replayed\n", inputs.size());
  return inputs.empty() ? 1 : 0; // a corpus that is not found must not look like a passed test
}
