// The bytes of startup.log. A record is 4 bytes of length, 8 of number and 4 of CRC-32 over those and the
// payload, little-endian, and the payload. Numbers rise. The first record describes the file that the others
// belong to; it stands there twice, because all hangs on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tk {

// The file that a log belongs to.
struct LogBase {
    bool exists = false; // false: what the factory gives
    std::size_t length = 0;
    std::uint32_t checksum = 0;
    // The data of the file are those of the file before it with its log applied.
    bool sameData = false;

    static LogBase of(const std::optional<std::string> &base, bool sameData);
    bool matches(const std::optional<std::string> &base) const;
};

struct LogContent {
    LogBase base;
    std::uint64_t last = 0; // number of the last record
    std::vector<std::string> records;
    std::string fault;     // what is wrong with the next one; empty: there is none
    bool isMended = false; // one of the two first records is damaged
};

// Nothing: not even the first record is intact.
std::optional<LogContent> parseLog(std::string_view bytes);

std::string logRecord(std::uint64_t number, std::string_view payload);
std::string firstLogRecords(std::uint64_t number, const LogBase &base);

} // namespace tk
