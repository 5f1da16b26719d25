#include "server/agent.h"
#include "server/options.h"
#include "server/user_command.h"

#include <iostream>
#include <sys/stat.h>

int main(int count, char **arguments)
try {
    ::umask(077);
    const agentd::Options options = agentd::parseOptions(count, arguments);
    if (const auto *user = std::get_if<agentd::UserOptions>(&options))
        return agentd::runUserCommand(*user, std::cin, std::cerr);
    return agentd::serve(std::get<agentd::ServeOptions>(options));
} catch (const agentd::CommandLineExit &exit) {
    (exit.status == 0 ? std::cout : std::cerr) << exit.text;
    return exit.status;
}
