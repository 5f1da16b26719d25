#include "change_tracking/change_tracking.h"

#include "backend/config_files.h"
#include "backend/device_files.h"
#include "backend/net_text.h"
#include "backend/program.h"

#include <array>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>

const char g_rcm_startup_config_filename[] = "startup-config.txt";
const char g_rcm_startup_config_backup[] = "startup-config.backup";

namespace {

constexpr const char *kFlash = "/grey_slab/";
constexpr std::size_t kDigits = MD5_TEXT_SIZE - 1;
constexpr int kSame = 0, kDifferent = 1, kNoStartup = 2;

using DevicePath = std::array<char, RCM_PATH_SIZE>;
using RealPath = std::array<char, DEVICE_FILE_PATH_SIZE>;

// Cut where it does not fit.
DevicePath devicePath(const char *folder, const char *name)
{
    DevicePath path{};
    std::snprintf(path.data(), path.size(), "%s%s", folder, name);
    return path;
}

DevicePath startupPath()
{
    return devicePath(kFlash, g_rcm_startup_config_filename);
}

// An empty path, which opens nothing, if the device has no such file.
RealPath realPath(const char *path)
{
    RealPath real;
    backend_file_path(path, real.data(), real.size());
    return real;
}

void print(const char *text)
{
    std::fputs(text, stdout);
}

class OpenFile {
public:
    explicit OpenFile(const char *path)
        : file_(std::fopen(realPath(path).data(), "r"))
    {
    }
    ~OpenFile() { close(); }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;

    bool isOpen() const { return file_ != nullptr; }
    bool close()
    {
        std::FILE *file = file_;
        file_ = nullptr;
        return !file || std::fclose(file) == 0;
    }

    // The next line up to its end, of which what fits is kept. False at the end of the file.
    template <std::size_t N>
    bool readLine(std::array<char, N> &line)
    {
        std::size_t length = 0;
        int c = std::getc(file_);
        const bool isThere = c != EOF;
        for (; c != EOF && c != '\n'; c = std::getc(file_))
            if (length + 1 < N)
                line[length++] = static_cast<char>(c);
        line[length] = '\0';
        return isThere;
    }

private:
    std::FILE *file_;
};

// A running configuration in a file: the caller's, or one of our own that goes with this object.
class RunningFile {
public:
    explicit RunningFile(const char *given)
        : isOwn_(!given)
        , path_(devicePath("", given ? given : ""))
        , isThere_(given || ui_rcm_get_running_config_file(path_.data(), 0, 0) == 0)
    {
    }
    ~RunningFile()
    {
        if (isOwn_ && path_[0])
            ui_rcm_delete_file(path_.data());
    }
    RunningFile(const RunningFile &) = delete;
    RunningFile &operator=(const RunningFile &) = delete;

    bool isThere() const { return isThere_; }
    const char *path() const { return path_.data(); }

private:
    bool isOwn_;
    DevicePath path_;
    bool isThere_;
};

bool canRead(const DevicePath &startup)
{
    OpenFile file(startup.data());
    if (!file.isOpen())
        return false;
    if (file.close())
        return true;
    print("RCM Error in startup config file close.");
    return false;
}

// A checksum that failed is compared by what there is of it.
bool haveSameSum(const char *running, const char *startup)
{
    std::array<char, MD5_TEXT_SIZE> sumOfRunning{}, sumOfStartup{};
    if (!get_config_file_md5_chksum(running, sumOfRunning.data()))
        print("Running config: md5sum Error occured! ");
    if (!get_config_file_md5_chksum(startup, sumOfStartup.data()))
        print("Startup config: md5sum Error occured! ");
    return std::strncmp(sumOfRunning.data(), sumOfStartup.data(), kDigits) == 0;
}

const char *skipBlanks(const char *text)
{
    return text + std::strspn(text, " \t");
}

// The number before the first point; 0 without a point.
int majorVersion(const char *version)
{
    const int point = cli_find_char(version, '.');
    if (point < 0)
        return 0;
    const std::string number(version, static_cast<std::size_t>(point));
    const long value = std::strtol(number.c_str(), nullptr, 10);
    return value >= 0 && value <= INT32_MAX ? static_cast<int>(value) : 0;
}

} // namespace

extern "C" long ui_rcm_get_file_size(const char *path)
{
    if (!path) {
        print("filename null\r");
        return -1;
    }
    std::error_code error;
    const auto size = std::filesystem::file_size(realPath(path).data(), error);
    if (!error && size <= static_cast<std::uintmax_t>(std::numeric_limits<long>::max()))
        return static_cast<long>(size);
    print("RCM Error in getting file size \r");
    return -1;
}

extern "C" int get_config_file_md5_chksum(const char *path, char *sum_out)
{
    std::array<char, 256 + 1> bounded{};
    std::snprintf(bounded.data(), bounded.size(), "%s", path ? path : "");
    const auto sum = backend::runProgram({"md5sum", realPath(bounded.data()).data()});
    if (sum.start == backend::ProgramResult::Start::failed)
        return 0;
    // A program that is missing or fails prints nothing.
    std::size_t digits = 0;
    while (digits < kDigits && digits < sum.output.size() &&
           std::isxdigit(static_cast<unsigned char>(sum.output[digits])))
        ++digits;
    std::memcpy(sum_out, sum.output.data(), digits);
    sum_out[digits] = '\0';
    return digits == kDigits ? 1 : 0;
}

extern "C" int ui_is_config_data_changed(const char *running_path)
{
    const RunningFile running(running_path);
    if (!running.isThere()) {
        print("Error while generating running config");
        return kSame;
    }
    const DevicePath startup = startupPath();
    if (!canRead(startup))
        return kNoStartup;
    if (ui_rcm_get_file_size(running.path()) != ui_rcm_get_file_size(startup.data()))
        return kDifferent;
    return haveSameSum(running.path(), startup.data()) ? kSame : kDifferent;
}

extern "C" int get_current_startup_version(void)
{
    OpenFile startup(startupPath().data());
    if (!startup.isOpen()) {
        print("\n There is no startup config file, unable to save legacy config ");
        return 0;
    }
    constexpr const char *word = "ver ";
    std::array<char, 100> line;
    int version = 0;
    bool isFound = false;
    while (startup.readLine(line)) {
        const char *text = skipBlanks(line.data());
        if (!isFound && std::strncmp(text, word, std::strlen(word)) == 0) {
            version = majorVersion(skipBlanks(text + std::strlen(word)));
            isFound = true;
        }
    }
    return version;
}
