// switchctl: looks into the simulated switch and pokes it.
#include "backend/unix_socket.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cstdio>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

namespace {

using Json = nlohmann::ordered_json;

constexpr int kRefused = 1; // the switch is not there, or said no
constexpr int kUsage = 2;
constexpr std::size_t kReadSize = 64U << 10;
constexpr std::chrono::seconds kConnectTime{5};

// A request to the switch; the objects of its answer go to `take`, up to the one that ends it.
class Client {
public:
    explicit Client(const std::string &path)
    {
        backend::checkSocketPath(path);
        fd_ = backend::connectTo(path, std::chrono::steady_clock::now() + kConnectTime);
        if (!fd_.isOpen())
            throw std::runtime_error("no switch is listening on " + path);
    }

    void ask(const Json &request, const std::function<void(const Json &)> &take)
    {
        const std::string line = request.dump() + "\n";
        const auto *bytes = reinterpret_cast<const std::uint8_t *>(line.data());
        backend::sendAll(fd_.get(), {bytes, line.size()}, std::chrono::steady_clock::now() + kConnectTime);
        for (;;) {
            const auto answer = Json::parse(nextLine());
            if (answer.contains("error"))
                throw std::runtime_error(answer["error"].get<std::string>());
            if (answer.contains("done"))
                return;
            take(answer);
        }
    }

    Json askOne(const Json &request)
    {
        Json result;
        ask(request, [&result](const Json &answer) { result = answer.value("result", Json()); });
        return result;
    }

private:
    std::string nextLine()
    {
        std::size_t end = 0;
        while ((end = pending_.find('\n')) == std::string::npos) {
            backend::Bytes some;
            if (backend::receiveSome(fd_.get(), kReadSize, some, backend::Deadline::max()) !=
                backend::Received::data)
                throw std::runtime_error("the switch went away");
            pending_.append(some.begin(), some.end());
        }
        std::string line = pending_.substr(0, end);
        pending_.erase(0, end + 1);
        return line;
    }

    backend::Descriptor fd_;
    std::string pending_;
};

// What the command line said.
struct Options {
    std::string stateDir, socketPath;
    bool asJson = false, follow = false;
    std::uint32_t since = 0;
    std::string word, name;
    std::optional<std::int64_t> value;
    std::string call, kind;
    std::optional<std::string> message, text;
    std::optional<std::int32_t> uiErr, appErr;
    std::optional<std::uint32_t> ms, count, after;
};

void print(const std::string &text)
{
    std::printf("%s\n", text.c_str());
    std::fflush(stdout); // a follower's reader waits for whole lines
}

std::string asText(const Json &line)
{
    const Json &answer = line["answer"];
    return std::to_string(line["seq"].get<std::uint64_t>()) + "  " + line["call"].get<std::string>() + "  " +
        line["request"].dump() + "  ->  " + (answer.is_null() ? "no answer" : answer.dump());
}

void journal(Client &client, const Options &options)
{
    const Json request = {{"do", "journal"}, {"since", options.since}, {"follow", options.follow}};
    client.ask(request, [&](const Json &answer) {
        print(options.asJson ? answer["line"].dump() : asText(answer["line"]));
    });
}

void show(Client &client, const Options &options)
{
    print(client.askOne({{"do", "show"}, {"word", options.word}}).dump(2));
}

void set(Client &client, const Options &options)
{
    if (!options.name.empty()) {
        client.askOne({{"do", "set"}, {"name", options.name}, {"value", options.value.value()}});
        return;
    }
    for (const auto &value : client.askOne({{"do", "values"}}))
        std::printf("%-29s %-8d %s\n", value["name"].get<std::string>().c_str(), value["value"].get<int>(),
                    value["meaning"].get<std::string>().c_str());
}

template <class T>
void put(Json &request, const char *name, const std::optional<T> &value)
{
    if (value)
        request[name] = *value;
}

void addFault(Client &client, const Options &options)
{
    Json request = {{"do", "fault-add"}, {"call", options.call}, {"kind", options.kind}};
    put(request, "message", options.message);
    put(request, "ui_err", options.uiErr);
    put(request, "app_err", options.appErr);
    put(request, "text", options.text);
    put(request, "ms", options.ms);
    put(request, "count", options.count);
    put(request, "after", options.after);
    client.askOne(request);
}

void listFaults(Client &client, const Options &)
{
    for (const auto &fault : client.askOne({{"do", "fault-list"}}))
        print(fault.dump());
}

void clearFaults(Client &client, const Options &)
{
    client.askOne({{"do", "fault-clear"}});
}

using Command = void (*)(Client &, const Options &);

// Puts the commands on the command line; `chosen` becomes the one that the user named.
void describe(CLI::App &app, Options &options, Command &chosen)
{
    app.require_subcommand(1);
    app.fallthrough(); // the switch may also be named behind the command
    auto *where = app.add_option_group("switch", "which switch");
    where->add_option("--state", options.stateDir, "state folder of the agentd that the switch is in");
    where->add_option("--socket", options.socketPath, "socket of a separate switchsim");
    where->require_option(1);
    const auto command = [&chosen](CLI::App &parent, const char *name, const char *help, Command run) {
        auto *sub = parent.add_subcommand(name, help);
        sub->callback([&chosen, run] { chosen = run; });
        return sub;
    };

    auto *journalCommand = command(app, "journal", "what was asked of the switch and what it said", journal);
    journalCommand->add_flag("--json", options.asJson, "one JSON object a line");
    journalCommand->add_option("--since", options.since, "only lines with a greater number");
    journalCommand->add_flag("--follow", options.follow, "go on with new lines as they come");

    command(app, "show", "the state as JSON", show)->add_option("word", options.word, "only this part of it");

    auto *setCommand = command(app, "set", "sets what a getter reads; alone, lists all values", set);
    auto *name = setCommand->add_option("name", options.name, "which value");
    auto *value = setCommand->add_option("value", options.value, "a whole number")->needs(name);
    name->needs(value);

    auto *fault = app.add_subcommand("fault", "makes calls fail")->require_subcommand(1);
    auto *add = command(*fault, "add", "adds a fault", addFault);
    add->add_option("call", options.call, "the client function, such as ui_fe_qos_jumbo")->required();
    add->add_option("kind", options.kind, "null, refuse, delay or exit")->required();
    add->add_option("--message", options.message, "only requests with this record, or for this plug-in");
    add->add_option("--ui-err", options.uiErr, "refuse: code; 1 if no code is given");
    add->add_option("--app-err", options.appErr, "refuse: the daemon's own code");
    add->add_option("--text", options.text, "refuse: the reply's text");
    add->add_option("--ms", options.ms, "delay: milliseconds");
    add->add_option("--count", options.count, "strike so many times; without it, until cleared");
    add->add_option("--after", options.after, "let so many calls pass first");
    command(*fault, "list", "lists the faults", listFaults);
    command(*fault, "clear", "takes all faults away", clearFaults);
}

} // namespace

int main(int argc, char **argv)
try {
    Options options;
    Command chosen = nullptr;
    CLI::App app("Looks into the simulated switch and pokes it.", "switchctl");
    describe(app, options, chosen);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kUsage;
    }
    Client client(options.stateDir.empty() ? options.socketPath : options.stateDir + "/switch.sock");
    chosen(client, options);
    return 0;
} catch (const std::exception &error) {
    std::fprintf(stderr, "switchctl: %s\n", error.what());
    return kRefused;
}
