// SPDX-License-Identifier: MIT
// Runs a fuzz target over the files of a corpus, and over changes of them: a number of rounds, or
// for some seconds. The changes are the same in each run, so that a fault comes back.
//
//     fuzz_content [--rounds N | --seconds N] CORPUS
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostBytes = 4096;

std::vector<Bytes> ReadCorpus(const std::filesystem::path& folder) {
    std::vector<Bytes> corpus;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    // The order of a folder is chance.
    std::sort(corpus.begin(), corpus.end());
    return corpus;
}

/// Makes new inputs of old ones: bytes changed, dropped, repeated, or taken from another input.
class Mutator {
public:
    explicit Mutator(const std::vector<Bytes>& corpus) : mCorpus(corpus) {}

    Bytes Next() {
        Bytes input = mCorpus[Below(mCorpus.size())];
        for (std::size_t changes = 1 + Below(8); changes > 0; --changes) {
            Change(input);
        }
        input.resize(std::min(input.size(), kMostBytes));
        return input;
    }

private:
    std::size_t Below(std::size_t bound) { return mChance() % std::max<std::size_t>(bound, 1); }

    void Change(Bytes& input) {
        if (input.empty()) {
            input.push_back(static_cast<std::uint8_t>(mChance()));
        }
        const std::size_t start = Below(input.size());
        const std::size_t length = 1 + Below(std::min<std::size_t>(input.size() - start, 32));
        const auto first = input.begin() + static_cast<std::ptrdiff_t>(start);
        const auto last = first + static_cast<std::ptrdiff_t>(length);
        switch (Below(4)) {
            case 0:
                *first = static_cast<std::uint8_t>(mChance());
                break;
            case 1:
                input.erase(first, last);
                break;
            case 2: {
                const Bytes piece(first, last);
                for (std::size_t times = Below(16); times > 0; --times) {
                    input.insert(input.begin() + static_cast<std::ptrdiff_t>(start), piece.begin(),
                                 piece.end());
                }
                break;
            }
            default: {
                const Bytes& other = mCorpus[Below(mCorpus.size())];
                const std::size_t from = Below(other.size());
                const std::size_t count = std::min<std::size_t>(other.size() - from, length);
                input.insert(first, other.begin() + static_cast<std::ptrdiff_t>(from),
                             other.begin() + static_cast<std::ptrdiff_t>(from + count));
            }
        }
    }

    const std::vector<Bytes>& mCorpus;
    std::mt19937 mChance{20240229};
};

void Feed(const Bytes& input) {
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> arguments(argv + 1, argv + argc);
    if (arguments.size() != 3 || (arguments[0] != "--rounds" && arguments[0] != "--seconds")) {
        std::cerr << "usage: fuzz_TARGET --rounds N | --seconds N CORPUS\n";
        return 2;
    }
    const auto corpus = ReadCorpus(arguments[2]);
    for (const Bytes& input : corpus) {
        Feed(input);
    }
    const int limit = std::atoi(argv[2]);
    const bool timed = arguments[0] == "--seconds";
    const auto end = Clock::now() + std::chrono::seconds(limit);
    Mutator mutator(corpus);
    std::uint64_t round = 0;
    while (!corpus.empty() && (timed ? Clock::now() < end : round < static_cast<unsigned>(limit))) {
        Feed(mutator.Next());
        ++round;
    }
    std::cout << corpus.size() << " inputs, " << round << " changes of them\n";
    return corpus.empty() ? 1 : 0;
}
