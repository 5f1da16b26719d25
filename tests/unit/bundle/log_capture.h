// What is logged while it lives.
#pragma once

#include "toolkit/log.h"

#include <string>

namespace test {

class LogCapture {
public:
    // Level 1 logs errors; 8 the debug lines of callbacks too, 9 all of them.
    explicit LogCapture(int level = 1);
    ~LogCapture();
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    // The lines so far, with line numbers as "n" and source files without their folders.
    std::string errors() const;
    std::string debug() const;

private:
    int levelBefore_;
};

} // namespace test
