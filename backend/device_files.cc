#include "backend/device_files.h"

#include <cstring>
#include <mutex>
#include <string>
#include <string_view>

namespace {

std::mutex fileRootMutex;
std::string fileRoot; // guarded by fileRootMutex

bool hasParentStep(std::string_view path)
{
    return (std::string(path) + "/").find("/../") != std::string::npos;
}

} // namespace

void backend_set_file_root(const char *root)
{
    const std::lock_guard lock(fileRootMutex);
    fileRoot = root == nullptr ? "" : root;
}

int backend_has_file_root(void)
{
    const std::lock_guard lock(fileRootMutex);
    return fileRoot.empty() ? 0 : 1;
}

size_t backend_file_path(const char *path, char *out, size_t size)
{
    if (out == nullptr || size == 0)
        return 0;
    out[0] = '\0';
    if (path == nullptr || path[0] != '/' || hasParentStep(path))
        return 0;
    const std::lock_guard lock(fileRootMutex);
    const std::string whole = fileRoot + path;
    if (whole.size() >= size)
        return 0;
    std::memcpy(out, whole.c_str(), whole.size() + 1);
    return whole.size();
}
