#include "storage_log.h"

#include <boost/crc.hpp>

#include <algorithm>
#include <cstdio>

namespace tk {

namespace {

constexpr std::size_t kHead = 16; // length, number, checksum
constexpr std::size_t kFirstPayload = 64;
constexpr std::size_t kLongestPayload = std::size_t{256} << 20; // beyond, a length is damaged

std::uint32_t checksumOf(std::string_view a, std::string_view b = {})
{
    boost::crc_32_type crc;
    crc.process_bytes(a.data(), a.size());
    crc.process_bytes(b.data(), b.size());
    return crc.checksum();
}

void put(std::string &bytes, std::uint64_t value, unsigned count)
{
    for (unsigned i = 0; i < count; ++i)
        bytes += static_cast<char>(static_cast<unsigned char>(value >> (8 * i) & 0xffU));
}

std::uint64_t get(std::string_view bytes, std::size_t at, unsigned count)
{
    std::uint64_t value = 0;
    for (unsigned i = 0; i < count; ++i)
        value |= std::uint64_t{static_cast<unsigned char>(bytes[at + i])} << (8 * i);
    return value;
}

struct Record {
    std::uint64_t number = 0;
    std::string_view payload;
};

// Takes one record off the front. Nothing: `fault` says what is wrong with it.
std::optional<Record> takeRecord(std::string_view &bytes, std::string &fault)
{
    static constexpr char incomplete[] = "is incomplete, as after a crash while it was written";
    if (bytes.size() < kHead) {
        fault = incomplete;
        return std::nullopt;
    }
    const std::uint64_t length = get(bytes, 0, 4);
    if (length > kLongestPayload || length > bytes.size() - kHead) {
        fault = incomplete;
        return std::nullopt;
    }
    const Record record{get(bytes, 4, 8), bytes.substr(kHead, static_cast<std::size_t>(length))};
    if (checksumOf(bytes.substr(0, kHead - 4), record.payload) != get(bytes, kHead - 4, 4)) {
        fault = "has a wrong checksum";
        return std::nullopt;
    }
    bytes.remove_prefix(kHead + record.payload.size());
    return record;
}

std::optional<LogBase> parseBase(std::string_view payload)
{
    const std::string text(payload);
    unsigned exists = 0, sameData = 0;
    unsigned long long length = 0;
    unsigned long checksum = 0;
    if (std::sscanf(text.c_str(), "startup 1 %u %llu %lx %u", &exists, &length, &checksum, &sameData) != 4)
        return std::nullopt;
    return LogBase{exists != 0, static_cast<std::size_t>(length), static_cast<std::uint32_t>(checksum),
                   sameData != 0};
}

void takeEdits(std::string_view rest, LogContent &content)
{
    while (!rest.empty()) {
        const auto record = takeRecord(rest, content.fault);
        if (record && record->number <= content.last)
            content.fault = "has a number that was there before";
        if (!content.fault.empty())
            return;
        content.records.emplace_back(record->payload);
        content.last = record->number;
    }
}

} // namespace

LogBase LogBase::of(const std::optional<std::string> &base, bool sameData)
{
    return base ? LogBase{true, base->size(), checksumOf(*base), sameData} : LogBase{false, 0, 0, sameData};
}

bool LogBase::matches(const std::optional<std::string> &file) const
{
    if (!exists || !file)
        return exists == file.has_value();
    return length == file->size() && checksum == checksumOf(*file);
}

std::optional<LogContent> parseLog(std::string_view bytes)
{
    static constexpr std::size_t firstSize = kHead + kFirstPayload;
    LogContent content;
    std::optional<Record> found;
    unsigned damaged = 0;
    for (const std::size_t at : {std::size_t{0}, firstSize}) {
        std::string_view rest = bytes.substr(std::min(at, bytes.size()), firstSize);
        const auto record = takeRecord(rest, content.fault);
        damaged += record ? 0 : 1;
        found = found ? found : record;
    }
    const auto base = found ? parseBase(found->payload) : std::nullopt;
    if (!base)
        return std::nullopt;
    content.base = *base;
    content.last = found->number;
    content.fault.clear();
    content.isMended = damaged > 0;
    takeEdits(bytes.substr(std::min(2 * firstSize, bytes.size())), content);
    return content;
}

std::string logRecord(std::uint64_t number, std::string_view payload)
{
    std::string bytes;
    bytes.reserve(kHead + payload.size());
    put(bytes, payload.size(), 4);
    put(bytes, number, 8);
    put(bytes, checksumOf(bytes, payload), 4);
    return bytes.append(payload);
}

std::string firstLogRecords(std::uint64_t number, const LogBase &base)
{
    char text[kFirstPayload + 1];
    std::snprintf(text, sizeof text, "startup 1 %u %llu %lx %u", base.exists ? 1U : 0U,
                  static_cast<unsigned long long>(base.length), static_cast<unsigned long>(base.checksum),
                  base.sameData ? 1U : 0U);
    std::string payload = text;
    payload.resize(kFirstPayload, ' ');
    const std::string record = logRecord(number, payload);
    return record + record;
}

} // namespace tk
