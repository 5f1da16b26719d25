// Decisions that an input makes, a byte or a few for each; from the end on, so that a change of its last byte
// changes the first decision. An input that is used up decides for the first of everything.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace fuzz {

class Choices {
public:
    Choices(const std::uint8_t *data, std::size_t size)
        : rest_(data, size)
    {
    }

    bool isUsedUp() const { return rest_.empty(); }

    // From `least` to `most`, both included.
    template <typename Number>
    Number number(Number least, Number most)
    {
        const auto range = static_cast<std::uint64_t>(most - least);
        std::uint64_t value = 0;
        for (std::uint64_t left = range; left > 0 && !rest_.empty(); left >>= 8) {
            value = value << 8 | rest_.back();
            rest_ = rest_.first(rest_.size() - 1);
        }
        return static_cast<Number>(least + static_cast<Number>(value % (range + 1)));
    }

    bool yes() { return number(0, 1) != 0; }

    template <typename Thing>
    Thing oneOf(std::initializer_list<Thing> things)
    {
        return things.begin()[number<std::size_t>(0, things.size() - 1)];
    }

private:
    std::span<const std::uint8_t> rest_;
};

} // namespace fuzz
