// Runs a fuzz target without libFuzzer: every input of a file of seeds, then changes of them, the same ones
// every time. usage: fuzz_TARGET SEEDS [CHANGES]; a single input that a fuzzer wrote: fuzz_TARGET --input
// FILE
//
// A file of seeds holds hexadecimal words, one a seed (tools/seeds packs them).
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;

Input contentOf(const char *path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path);
        std::exit(2);
    }
    return Input(std::istreambuf_iterator<char>(file), {});
}

std::vector<Input> seedsOf(const char *path)
{
    std::ifstream file(path);
    std::vector<Input> seeds;
    for (std::string word; file >> word;) {
        Input &seed = seeds.emplace_back();
        for (std::size_t at = 0; at + 2 <= word.size(); at += 2)
            seed.push_back(static_cast<std::uint8_t>(std::stoul(word.substr(at, 2), nullptr, 16)));
    }
    return seeds;
}

class Changer {
public:
    explicit Changer(const std::vector<Input> &seeds)
        : seeds_(seeds)
    {
    }

    Input next()
    {
        Input input = any();
        for (std::size_t i = below(4) + 1; i > 0; --i)
            change(input);
        return input;
    }

private:
    std::size_t below(std::size_t end) { return end ? random_() % end : 0; }
    const Input &any() { return seeds_[below(seeds_.size())]; }

    void change(Input &input)
    {
        const auto place = input.begin() + static_cast<std::ptrdiff_t>(below(input.size()));
        switch (input.empty() ? 0 : below(5)) {
        case 0:
            input.insert(place, static_cast<std::uint8_t>(random_()));
            break;
        case 1:
            *place = static_cast<std::uint8_t>(random_());
            break;
        case 2:
            *place ^= static_cast<std::uint8_t>(1U << below(8));
            break;
        case 3:
            input.erase(place);
            break;
        default: // the rest is another seed's
            const Input &other = any();
            const auto from = other.begin() + static_cast<std::ptrdiff_t>(below(other.size()));
            input.erase(place, input.end());
            input.insert(input.end(), from, other.end());
        }
    }

    const std::vector<Input> &seeds_;
    std::mt19937 random_{1};
};

void run(const Input &input)
{
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], "--input") == 0) {
        run(contentOf(argv[2]));
        return 0;
    }
    const std::vector<Input> seeds = argc > 1 ? seedsOf(argv[1]) : std::vector<Input>();
    if (seeds.empty()) {
        std::fprintf(stderr, "usage: %s SEEDS [CHANGES] | --input FILE\n", argv[0]);
        return 2;
    }
    for (const Input &seed : seeds)
        run(seed);
    Changer changer(seeds);
    const long changes = argc > 2 ? std::atol(argv[2]) : 3000;
    for (long i = 0; i < changes; ++i)
        run(changer.next());
    std::printf("%zu seeds and %ld changes\n", seeds.size(), changes);
    return 0;
}
