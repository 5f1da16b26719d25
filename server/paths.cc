#include "server/paths.h"

#include <system_error>

namespace agentd {
namespace {

std::filesystem::path prefix()
{
    std::error_code error;
    const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? std::filesystem::path("/usr") : executable.parent_path().parent_path();
}

// The sources' own folder as long as they are there, so that a module can be edited and tried at once.
std::filesystem::path yangDir()
{
    return isInstalled() ? prefix() / "share" / "app_yang_agent" / "yang"
                         : std::filesystem::path(AGENTD_YANG_SOURCE_DIR);
}

} // namespace

std::filesystem::path bundleLibrary()
{
    return prefix() / "lib" / "libapp_yang_agent.so";
}

bool isInstalled()
{
    std::error_code error;
    return !std::filesystem::is_directory(AGENTD_YANG_SOURCE_DIR, error);
}

std::vector<std::string> defaultModuleDirs()
{
    std::vector<std::string> folders;
    for (const char *name : {"lyn", "openconfig", "ietf"})
        folders.push_back(yangDir() / name);
    return folders;
}

std::optional<std::filesystem::path> defaultFactory()
{
    std::error_code error;
    auto file = yangDir() / "factory" / "startup.json";
    return std::filesystem::exists(file, error) ? std::optional(std::move(file)) : std::nullopt;
}

} // namespace agentd
