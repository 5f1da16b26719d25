// The folder of --state: made on the first start, and held by one agentd at a time.
#pragma once

#include "server/files.h"

#include <filesystem>

namespace agentd {

// Makes the folder (mode 0700) where it is missing. Throws std::system_error naming it.
void makeStateFolder(const std::filesystem::path &stateDir);

// makeStateFolder(), and takes the folder until the handle is gone. Throws std::system_error, or
// std::runtime_error if another agentd has it.
FileHandle takeStateFolder(const std::filesystem::path &stateDir);

} // namespace agentd
