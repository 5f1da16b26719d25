#include "server/state_folder.h"

#include <cerrno>
#include <stdexcept>
#include <sys/stat.h>
#include <system_error>

namespace agentd {

void makeStateFolder(const std::filesystem::path &stateDir)
{
    if (stateDir.has_parent_path())
        std::filesystem::create_directories(stateDir.parent_path());
    if (::mkdir(stateDir.c_str(), 0700) != 0 && errno != EEXIST)
        throw std::system_error(errno, std::generic_category(), stateDir.string());
    if (!std::filesystem::is_directory(stateDir))
        throw std::system_error(ENOTDIR, std::generic_category(), stateDir.string());
}

FileHandle takeStateFolder(const std::filesystem::path &stateDir)
{
    makeStateFolder(stateDir);
    FileHandle lock = lockFile(stateDir / "lock", false);
    if (!lock)
        throw std::runtime_error(stateDir.string() + ": in use by another agentd");
    return lock;
}

} // namespace agentd
