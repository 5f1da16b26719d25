// The texts of the DHCP server: its lease file and the values of its options.
#include "backend/device_files.h"
#include "backend/dhcp_server.h"
#include "backend/hex_digit.h"
#include "backend/net_text.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

struct CloseFile {
    void operator()(std::FILE *file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File openLeaseFile()
{
    std::array<char, DEVICE_FILE_PATH_SIZE> path;
    if (backend_file_path(DHCPS_LEASE_FILE, path.data(), path.size()) == 0)
        return nullptr;
    return File(std::fopen(path.data(), "re"));
}

// How long a file is, as far as it is read; 0 if that cannot be told.
std::size_t lengthOf(std::FILE *file)
{
    if (std::fseek(file, 0, SEEK_END) != 0)
        return 0;
    const long end = std::ftell(file);
    std::rewind(file);
    return end < 0 ? 0 : std::min<std::size_t>(static_cast<unsigned long>(end), DHCPS_LEASE_FILE_LIMIT);
}

bool opensBlock(std::string_view line)
{
    return line.find("lease ") != line.npos && line.find('{') != line.npos && !line.starts_with('#');
}

std::uint32_t countBlocks(std::string_view text)
{
    std::uint32_t count = 0;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        count += opensBlock(line) ? 1 : 0;
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return count;
}

constexpr std::string_view kBlanks = " \t\r\n";

bool isTime(const tm &time)
{
    return time.tm_mon >= 0 && time.tm_mon <= 11 && time.tm_mday >= 1 && time.tm_mday <= 31 &&
        time.tm_hour >= 0 && time.tm_hour <= 23 && time.tm_min >= 0 && time.tm_min <= 59 &&
        time.tm_sec >= 0 && time.tm_sec <= 60 && time.tm_year >= 0 && time.tm_year <= 8099;
}

// The C library's time_t may end in 2038.
std::chrono::sys_seconds asSeconds(const tm &time)
{
    using namespace std::chrono;
    const year_month_day date{year{time.tm_year + 1900}, month{static_cast<unsigned>(time.tm_mon + 1)},
                              day{static_cast<unsigned>(time.tm_mday)}};
    return sys_days{date} + hours{time.tm_hour} + minutes{time.tm_min} + std::chrono::seconds{time.tm_sec};
}

} // namespace

char *dhcpsv4_get_lease_entries_data(std::uint32_t *count)
{
    *count = 0;
    const File file = openLeaseFile();
    if (!file)
        return nullptr;
    const std::size_t size = lengthOf(file.get());
    auto *text = static_cast<char *>(std::malloc(size + 1));
    if (text == nullptr)
        return nullptr;
    const std::size_t length = std::fread(text, 1, size, file.get());
    text[length] = '\0';
    *count = countBlocks({text, std::strlen(text)});
    return text;
}

std::size_t dhcps_fetch_ip_string(const char *from, char *text, std::size_t size)
{
    const std::size_t length = std::min(std::strcspn(from, " \t\r\n{"), size - 1);
    std::memcpy(text, from, length);
    text[length] = '\0';
    return length;
}

int dhcps_get_ip_from_str(const char *text, std::uint32_t *address)
{
    return ip_string_to_address(text, address);
}

void find_elapsed_lease_time(const tm *ends, std::uint32_t *hours, std::uint32_t *minutes,
                             std::uint32_t *seconds)
{
    using std::chrono::floor;
    std::int64_t left = 0;
    if (isTime(*ends))
        left = (asSeconds(*ends) - floor<std::chrono::seconds>(std::chrono::system_clock::now())).count();
    left = std::max<std::int64_t>(left, 0);
    *hours = static_cast<std::uint32_t>(left / 3600);
    *minutes = static_cast<std::uint32_t>(left % 3600 / 60);
    *seconds = static_cast<std::uint32_t>(left % 60);
}

int dhcps_update_option_value_ip_str(char *text, std::size_t size)
{
    const std::string given = text;
    std::string written;
    int count = 0;
    for (std::size_t at = given.find_first_not_of(kBlanks); at != given.npos; count++) {
        const std::size_t end = std::min(given.find_first_of(kBlanks, at), given.size());
        const std::string word = (written.empty() ? "" : ", ") + given.substr(at, end - at);
        if (written.size() + word.size() < size)
            written += word;
        at = given.find_first_not_of(kBlanks, end);
    }
    std::memcpy(text, written.c_str(), written.size() + 1);
    return count;
}

int dhcps_ascii2hex(const char *text, std::uint8_t *bytes, std::size_t size)
{
    std::size_t count = 0;
    while (*text != '\0') {
        if (count > 0 && *text == ':')
            text++;
        const int high = backend::hexDigit(text[0]), low = high < 0 ? -1 : backend::hexDigit(text[1]);
        if (low < 0 || count == size)
            return -1;
        bytes[count++] = static_cast<std::uint8_t>(high << 4 | low);
        text += 2;
    }
    return count == 0 ? -1 : static_cast<int>(count);
}
