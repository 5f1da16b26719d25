// The files of the simulated switch, named by their paths on the device.
//
// They lie below the root of backend/device_files.h. Without one the switch has no files: it never touches
// those of the machine.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace switchsim {

// Where a file of the device lies on this machine. Nothing: no root, or no path of a device.
std::optional<std::filesystem::path> deviceFile(std::string_view path);

// Writes a file and the folders above it, whole or not at all. False: it could not be written.
bool writeDeviceFile(std::string_view path, std::string_view text);

// The content of a file, at most `limit` bytes of it. Nothing: it cannot be read.
std::optional<std::string> readDeviceFile(std::string_view path, std::size_t limit = 1 << 20);

} // namespace switchsim
