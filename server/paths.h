// Where the parts of the program lie: beside the executable in a build, below its prefix when installed.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace agentd {

// ../lib/libapp_yang_agent.so as seen from the executable: one library holds all bundles.
std::filesystem::path bundleLibrary();

// False while the sources lie where the program was built from: then it is a developer's.
bool isInstalled();

// The folders of the YANG modules.
std::vector<std::string> defaultModuleDirs();

// What a switch holds that was never configured; nothing if there is no such file.
std::optional<std::filesystem::path> defaultFactory();

} // namespace agentd
