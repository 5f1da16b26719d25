#include "switchsim/device_files.h"

#include "backend/device_files.h"

#include <array>
#include <fstream>
#include <system_error>

namespace switchsim {

namespace fs = std::filesystem;

std::optional<fs::path> deviceFile(std::string_view path)
{
    std::array<char, DEVICE_FILE_PATH_SIZE> real;
    const std::string wanted(path);
    if (backend_has_file_root() == 0 || backend_file_path(wanted.c_str(), real.data(), real.size()) == 0)
        return std::nullopt;
    return real.data();
}

bool writeDeviceFile(std::string_view path, std::string_view text)
{
    const auto real = deviceFile(path);
    if (!real)
        return false;
    std::error_code error;
    fs::create_directories(real->parent_path(), error);
    const fs::path fresh = real->string() + ".new";
    std::ofstream file(fresh, std::ios::binary | std::ios::trunc);
    file.write(text.data(), static_cast<std::streamsize>(text.size()));
    file.close();
    if (file.fail()) {
        fs::remove(fresh, error);
        return false;
    }
    fs::rename(fresh, *real, error);
    return !error;
}

std::optional<std::string> readDeviceFile(std::string_view path, std::size_t limit)
{
    const auto real = deviceFile(path);
    std::ifstream file;
    if (real)
        file.open(*real, std::ios::binary);
    if (!file.is_open())
        return std::nullopt;
    std::string text(limit, '\0');
    file.read(text.data(), static_cast<std::streamsize>(limit));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

} // namespace switchsim
