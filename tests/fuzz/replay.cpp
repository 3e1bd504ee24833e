// Runs a fuzz target on every file of the directories given: what fuzzing has found once is tested by any
// compiler.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

int main(int argc, char **argv) {
    int files = 0;
    for (int k = 1; k < argc; ++k)
        for (const auto &entry : std::filesystem::directory_iterator(argv[k])) {
            std::ifstream in(entry.path(), std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.data()), bytes.size());
            ++files;
        }
    std::printf("%d files\n", files);
    return files == 0;
}
