#include "server/options.h"

#include "server/text.h"

#include <CLI/CLI.hpp>
#include <sstream>

namespace agentd {
namespace {

constexpr unsigned kLongestTimeout = 3600 * 1000; // ms

// What CLI11 fills in, before it is checked and typed.
struct Raw {
    std::string stateDir, restconf = "127.0.0.1:8443", netconf = "127.0.0.1:8300", modules, factory, userName;
    std::optional<int> platform;
    unsigned timeout = 0;
};

Endpoint endpointOf(const char *option, const std::string &text)
try {
    return parseEndpoint(text);
} catch (const std::invalid_argument &error) {
    throw CLI::ValidationError(option, error.what());
}

std::vector<std::string> foldersOf(const std::string &text)
{
    std::vector<std::string> folders;
    for (const std::string_view folder : split(text, ':')) {
        if (!folder.empty())
            folders.emplace_back(folder);
    }
    return folders;
}

void addServeOptions(CLI::App &app, Raw &raw, ServeOptions &serve)
{
    app.add_option("--restconf", raw.restconf, "HOST:PORT of RESTCONF over HTTPS, port 0: any free one")
        ->capture_default_str();
    app.add_option("--netconf", raw.netconf, "HOST:PORT of NETCONF over SSH, port 0: any free one")
        ->capture_default_str();
    app.add_option("--device", serve.device.where, "the switch: inproc, or unix:PATH of a switchsim")
        ->capture_default_str();
    app.add_option("--platform", raw.platform, "platform type that the simulated switch reports");
    app.add_option("--bundle", serve.bundle, "name of the bundle to load")->capture_default_str();
    app.add_option("--modules", raw.modules, "folders of YANG modules, DIR[:DIR], instead of the usual ones");
    app.add_option("--factory", raw.factory, "startup data of a switch that was never configured (JSON)");
    app.add_option("--log", serve.logLevel, "log level: 0 off, 1 errors, 2 warnings, 3 info, 4 to 9 debug")
        ->capture_default_str()
        ->check(CLI::Range(0, 9));
    app.add_option("--device-timeout", raw.timeout, "milliseconds that one answer of the switch may take")
        ->check(CLI::Range(1U, kLongestTimeout));
}

struct UserCommand {
    const char *name;
    UserOptions::Action action;
    const char *description;
};

constexpr UserCommand kUserCommands[] = {
    {"add", UserOptions::Action::add, "add a user; the password is read from standard input"},
    {"passwd", UserOptions::Action::passwd, "change a password, which is read from standard input"},
    {"del", UserOptions::Action::del, "delete a user"},
};

void addUserCommands(CLI::App &app, Raw &raw, UserOptions &user)
{
    CLI::App *group = app.add_subcommand("user", "change the users and end");
    group->require_subcommand(1)->fallthrough();
    for (const UserCommand &command : kUserCommands) {
        CLI::App *sub = group->add_subcommand(command.name, command.description)->fallthrough();
        sub->add_option("NAME", raw.userName, "name of the user")->required();
        sub->callback([&user, action = command.action] { user.action = action; });
    }
}

ServeOptions typed(const Raw &raw, ServeOptions serve)
{
    serve.stateDir = raw.stateDir;
    serve.restconf = endpointOf("--restconf", raw.restconf);
    serve.netconf = endpointOf("--netconf", raw.netconf);
    serve.moduleDirs = foldersOf(raw.modules);
    serve.device.platform = raw.platform;
    serve.device.timeout = std::chrono::milliseconds(raw.timeout);
    serve.device.stateDir = raw.stateDir;
    if (!raw.factory.empty())
        serve.factory = raw.factory;
    return serve;
}

} // namespace

Options parseOptions(int count, const char *const *arguments)
{
    CLI::App app("agentd: NETCONF and RESTCONF server of the switch", "agentd");
    Raw raw;
    ServeOptions serve;
    UserOptions user;
    app.add_option("--state", raw.stateDir, "folder for keys, users and data, made on the first start")
        ->required();
    addServeOptions(app, raw, serve);
    addUserCommands(app, raw, user);
    try {
        app.parse(count, arguments);
        if (app.got_subcommand("user")) {
            user.name = raw.userName;
            user.stateDir = raw.stateDir;
            return user;
        }
        return typed(raw, std::move(serve));
    } catch (const CLI::ParseError &error) {
        std::ostringstream text;
        const int status = app.exit(error, text, text);
        throw CommandLineExit{status, text.str()};
    }
}

} // namespace agentd
