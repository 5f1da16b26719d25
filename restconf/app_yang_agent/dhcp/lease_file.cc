#include "dhcp/lease_file.h"

#include "backend/dhcp_server.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>
#include <limits>

namespace dhcp {

namespace {

constexpr std::string_view kOpening = "lease ";
constexpr std::string_view kMac = "  hardware ethernet ", kEnds = "  ends ";

template <std::size_t N>
void copyText(std::string_view from, char (&to)[N])
{
    const std::size_t length = std::min(from.size(), N - 1);
    std::memcpy(to, from.data(), length);
    to[length] = '\0';
}

// Takes everything up to one of the ends off the front of a text, and the end with it.
std::string_view takeUpTo(std::string_view &text, std::string_view ends)
{
    const std::string_view taken = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(std::min(taken.size() + 1, text.size()));
    return taken;
}

bool opensBlock(std::string_view line)
{
    return line.find(kOpening) != line.npos && line.find('{') != line.npos && !line.starts_with('#');
}

// The opening line of the next block; empty if there is none. `text` is left behind it.
std::string_view takeOpening(std::string_view &text)
{
    while (!text.empty())
        if (const std::string_view line = takeUpTo(text, "\n"); opensBlock(line))
            return line;
    return {};
}

bool readAddress(std::string_view opening, Lease &lease)
{
    char behind[kAddressBytes + 8] = {}; // longer than any address, so that a long one stays none
    copyText(opening.substr(opening.find(kOpening) + kOpening.size()), behind);
    dhcps_fetch_ip_string(behind, lease.address, sizeof lease.address);
    std::uint32_t address = 0;
    return dhcps_get_ip_from_str(lease.address, &address) != 0;
}

bool takeNumber(std::string_view &text, int &number)
{
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return error == std::errc();
}

// "5 2026/11/27 14:30:00": weekday, date and time.
bool readTime(std::string_view text, tm &time)
{
    int *const parts[] = {&time.tm_wday, &time.tm_year, &time.tm_mon, &time.tm_mday,
                          &time.tm_hour, &time.tm_min,  &time.tm_sec};
    constexpr std::string_view separators = "  // ::"; // before each
    for (std::size_t i = 0; i < std::size(parts); ++i) {
        if (i > 0 && separators[i] != ' ') {
            if (text.empty() || text.front() != separators[i])
                return false;
            text.remove_prefix(1);
        }
        if (!takeNumber(text, *parts[i]))
            return false;
    }
    if (time.tm_year < 1900 || time.tm_mon < 1)
        return false;
    time.tm_year -= 1900;
    time.tm_mon -= 1;
    time.tm_isdst = -1;
    return true;
}

std::int32_t expirationOf(std::string_view text)
{
    tm ends{};
    if (!readTime(text, ends))
        return 0; // such as a lease for ever
    std::uint32_t hours = 0, minutes = 0, seconds = 0;
    find_elapsed_lease_time(&ends, &hours, &minutes, &seconds);
    const std::int64_t left = std::int64_t{hours} * 3600 + std::int64_t{minutes} * 60 + seconds;
    return static_cast<std::int32_t>(std::min<std::int64_t>(left, std::numeric_limits<std::int32_t>::max()));
}

void readField(std::string_view field, Lease &lease)
{
    if (field.starts_with(kMac))
        copyText(field.substr(kMac.size()), lease.mac);
    else if (field.starts_with(kEnds))
        lease.expiration = expirationOf(field.substr(kEnds.size()));
}

} // namespace

Block takeBlock(std::string_view &text, Lease &lease)
{
    const std::string_view opening = takeOpening(text);
    if (opening.empty())
        return Block::none;
    const std::size_t end = text.find('}');
    if (end == text.npos) {
        text = {};
        return Block::unusable; // it is still being written: what stands in it may be half a field
    }
    lease = {};
    const bool hasAddress = readAddress(opening, lease);
    std::string_view body = text.substr(0, end);
    text.remove_prefix(end + 1);
    while (!body.empty())
        readField(takeUpTo(body, ";\n"), lease);
    return hasAddress && lease.mac[0] ? Block::whole : Block::unusable;
}

} // namespace dhcp
