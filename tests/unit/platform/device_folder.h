// A folder that stands for the device's "/" as long as it lives.
#pragma once

#include "backend/device_files.h"
#include "tests/unit/server/temporary_folder.h"

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace test {

inline const std::string kStartup = "/grey_slab/startup-config.txt";

class DeviceFolder {
public:
    DeviceFolder() { backend_set_file_root(folder_.path().c_str()); }
    ~DeviceFolder() { backend_set_file_root(""); }
    DeviceFolder(const DeviceFolder &) = delete;
    DeviceFolder &operator=(const DeviceFolder &) = delete;

    std::filesystem::path real(const std::string &path) const { return folder_.path().string() + path; }

    void write(const std::string &path, const std::string &text) const
    {
        std::filesystem::create_directories(real(path).parent_path());
        std::ofstream(real(path), std::ios::binary) << text;
    }

    bool has(const std::string &path) const { return std::filesystem::exists(real(path)); }

    // Names in a folder; none without the folder.
    std::vector<std::string> list(const std::string &path) const
    {
        std::vector<std::string> names;
        std::error_code ignored;
        for (const auto &entry : std::filesystem::directory_iterator(real(path), ignored))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    agentd::test::TemporaryFolder folder_;
};

} // namespace test
