// Values that getters read and that a user may set: the platform's type, modes, what lies on the lines.
#pragma once

#include "switchsim/json_text.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace switchsim {

struct Value {
    std::string_view name;
    std::int32_t value;   // at start
    std::int32_t highest; // 1: a switch
    std::string_view meaning;
};

class Values {
public:
    Values();

    // A value that is known to exist.
    std::int32_t get(std::string_view name) const;

    // Throws std::invalid_argument with a line for the user: no such name, or the value is out of range.
    void set(std::string_view name, std::int64_t value);

    // [{"name", "value", "meaning"}, ...]
    Json list() const;

private:
    std::vector<Value> values_;
};

} // namespace switchsim
