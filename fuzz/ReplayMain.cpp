// Runs a fuzz target over saved inputs without libFuzzer, in an optimised build, and fails when
// any input takes longer than the limit: the fuzzer finds the inputs, this times them fairly.
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: %s MAX_MILLISECONDS FILE_OR_DIRECTORY...\n", argv[0]);
        return 2;
    }
    const double limitMs = std::atof(argv[1]);
    std::vector<std::filesystem::path> files;
    for (int i = 2; i < argc; ++i) {
        if (std::filesystem::is_directory(argv[i])) {
            for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
                files.push_back(entry.path());
            }
        } else if (std::filesystem::exists(argv[i])) {
            files.emplace_back(argv[i]);
        }
    }
    double slowestMs = 0;
    std::string slowest;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
        // The best of three runs, so that a scheduling hiccup is not taken for a slow input.
        double best = 1e18;
        for (int run = 0; run < 3; ++run) {
            const auto start = std::chrono::steady_clock::now();
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                   bytes.size());
            best = std::min(best, std::chrono::duration<double, std::milli>(
                                      std::chrono::steady_clock::now() - start)
                                      .count());
        }
        if (best > slowestMs) {
            slowestMs = best;
            slowest = file.string();
        }
    }
    std::printf("%zu inputs, slowest %.3f ms (%s)\n", files.size(), slowestMs, slowest.c_str());
    return slowestMs > limitMs ? 1 : 0;
}
