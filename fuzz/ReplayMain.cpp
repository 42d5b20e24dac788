// The main of a fuzz target built without libFuzzer: feeds every input named
// on the command line to LLVMFuzzerTestOneInput once, so that seed corpora
// and crash reproducers can be replayed with any compiler.
//
//   fuzz_<Name> FILE_OR_FOLDER...
//
// A folder stands for every regular file below it, in sorted path order. The
// program prints one line per folder or file and a total, and exits with 0
// after the last input; a failing input ends the process from inside the
// target (the target aborts), so the exit status tells the caller.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

// Returns the bytes of `path`; false when it cannot be read.
bool ReadFile(const fs::path& path, std::string& bytes) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  return !in.bad();
}

// Runs one input. An empty input is passed as a null pointer, as libFuzzer
// does.
void Run(const std::string& bytes) {
  LLVMFuzzerTestOneInput(
      bytes.empty() ? nullptr : reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::cerr << "usage: " << argv[0] << " FILE_OR_FOLDER...\n";
    return 2;
  }
  std::size_t total = 0;
  for (int i = 1; i < argc; ++i) {
    const fs::path argument(argv[i]);
    std::error_code error;
    std::vector<fs::path> inputs;
    if (fs::is_directory(argument, error)) {
      for (fs::recursive_directory_iterator it(argument, error), end; !error && it != end;
           it.increment(error)) {
        if (it->is_regular_file(error)) inputs.push_back(it->path());
      }
      if (error) {
        std::cerr << "cannot list " << argument << ": " << error.message() << "\n";
        return 2;
      }
      std::sort(inputs.begin(), inputs.end());
    } else {
      inputs.push_back(argument);
    }
    for (const fs::path& input : inputs) {
      std::string bytes;
      if (!ReadFile(input, bytes)) {
        std::cerr << "cannot read " << input << "\n";
        return 2;
      }
      Run(bytes);
    }
    std::cout << "replayed " << inputs.size() << " input(s) from " << argument.string() << "\n";
    total += inputs.size();
  }
  std::cout << "replayed " << total << " input(s), all passed\n";
  return 0;
}
