// The command line of agentd.
#pragma once

#include "server/device.h"
#include "server/http_listener.h"

#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

namespace agentd {

// `agentd --state DIR ...`: serve.
struct ServeOptions {
    std::filesystem::path stateDir;
    Endpoint restconf{"127.0.0.1", 8443};
    Endpoint netconf{"127.0.0.1", 8300};
    DeviceOptions device;
    std::string bundle = "app_yang_agent";
    std::vector<std::string> moduleDirs;          // empty: where the build or the installation put them
    std::optional<std::filesystem::path> factory; // the startup data of a first start
    int logLevel = 2;
};

// `agentd user add|passwd|del NAME --state DIR`: change the users and end.
struct UserOptions {
    enum class Action { add, passwd, del };
    Action action = Action::add;
    std::string name;
    std::filesystem::path stateDir;
};

using Options = std::variant<ServeOptions, UserOptions>;

// The command line asked for help or cannot be understood: print `text` and end with `status`.
struct CommandLineExit {
    int status;
    std::string text;
};

// Throws CommandLineExit.
Options parseOptions(int count, const char *const *arguments);

} // namespace agentd
