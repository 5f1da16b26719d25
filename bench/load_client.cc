// What agentd gives to clients over both protocols: the cost of an edit beside 0, 4,000 and 40,000 list
// entries, edits and reads a second, large edits, memory, start. Rates are compared with what the same server
// takes at least, in the same run: an HTTPS exchange that does nothing. The state folder is in memory but for
// the edits that are synced.
//
// usage: load_client AGENTD [EDITS]     the memory is watched over so many edits, else over 20,000
#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ssl.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>
#include <libssh/libssh.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using Clock = std::chrono::steady_clock;

// Where a sync costs nothing, so that what is measured does not hang on the disk.
constexpr char kMemoryFolder[] = "/dev/shm";
constexpr char kFactoryFile[] = "factory.json"; // in the state folder
constexpr char kSwitch[] = "/restconf/data/lyn-openconfig-jumbo:jumbo/config/enabled";
constexpr char kState[] = "/restconf/data/lyn-openconfig-jumbo:jumbo/operation-state";
constexpr char kNothing[] = "/restconf/yang-library-version";
constexpr char kJumboSpace[] = "urn:lyn:yang:lyn-openconfig-jumbo";
// A list of any number of entries of which the switch is told nothing.
constexpr char kProtocols[] =
    "/restconf/data/openconfig-network-instance:network-instances/network-instance=default/protocols";
constexpr char kInterfaces[] = "/restconf/data/openconfig-interfaces:interfaces";
constexpr char kVlans[] =
    "/restconf/data/openconfig-network-instance:network-instances/network-instance=default/vlans";
constexpr double kCurveAim = 1.3;

double secondsOf(const std::function<void()> &action)
{
    const auto start = Clock::now();
    action();
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Seconds, the middle of so many runs.
double median(int runs, const std::function<void(int)> &action)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i)
        times.push_back(secondsOf([&] { action(i); }));
    std::nth_element(times.begin(), times.begin() + runs / 2, times.end());
    return times[static_cast<std::size_t>(runs / 2)];
}

std::string base64(const std::string &text)
{
    std::string out;
    out.resize(4 * ((text.size() + 2) / 3) + 1);
    out.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char *>(out.data()),
                                                        reinterpret_cast<const unsigned char *>(text.data()),
                                                        static_cast<int>(text.size()))));
    return out;
}

// An agentd of its own, in a folder that goes with it.
class Agent {
public:
    // `factory`: what its startup holds, JSON; empty: the usual.
    Agent(const std::string &program, const std::string &folder, const std::string &factory = {})
    {
        std::string name = folder + "/load-XXXXXX";
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder can be made in " + folder);
        state = name;
        if (!factory.empty())
            std::ofstream(state / kFactoryFile) << factory;
        start(program);
    }
    ~Agent()
    {
        stop();
        std::filesystem::remove_all(state);
    }
    Agent(const Agent &) = delete;
    Agent &operator=(const Agent &) = delete;

    void start(const std::string &program)
    {
        const std::string folder = state.string(), file = state / kFactoryFile;
        std::vector<const char *> words{program.c_str(), "--state",     folder.c_str(),
                                        "--restconf",    "127.0.0.1:0", "--netconf",
                                        "127.0.0.1:0",   "--log",       "0"};
        if (std::filesystem::exists(file))
            words.insert(words.end(), {"--factory", file.c_str()});
        words.push_back(nullptr);
        int ends[2];
        if (pipe2(ends, O_CLOEXEC))
            throw std::runtime_error("no pipe");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        const int failed = posix_spawn(&process_, program.c_str(), &actions, nullptr,
                                       const_cast<char **>(words.data()), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        FILE *output = fdopen(ends[0], "r");
        char line[512];
        if (failed || !output || !std::fgets(line, sizeof line, output))
            throw std::runtime_error("agentd does not start");
        std::fclose(output);
        readReady(line);
        std::ifstream(state / "admin-password") >> password;
    }

    void stop()
    {
        if (process_ <= 0)
            return;
        kill(process_, SIGTERM);
        waitpid(process_, nullptr, 0);
        process_ = 0;
    }

    // Kilobytes.
    long resident() const
    {
        std::ifstream status("/proc/" + std::to_string(process_) + "/status");
        for (std::string word; status >> word;)
            if (word == "VmRSS:") {
                long kilobytes = 0;
                status >> kilobytes;
                return kilobytes;
            }
        return 0;
    }

    std::filesystem::path state;
    std::string password;
    unsigned short restconf = 0, netconf = 0;

private:
    // "ready restconf=https://127.0.0.1:1 netconf=127.0.0.1:2"
    void readReady(const std::string &line)
    {
        const auto portAt = [&](std::size_t from) {
            return static_cast<unsigned short>(std::stoi(line.substr(line.find("127.0.0.1:", from) + 10)));
        };
        restconf = portAt(line.find("restconf="));
        netconf = portAt(line.find("netconf="));
    }

    pid_t process_ = 0;
};

class RestconfClient {
public:
    explicit RestconfClient(const Agent &agent)
        : stream_(io_, tls())
        , authorization_("Basic " + base64("admin:" + agent.password))
    {
        auto &socket = beast::get_lowest_layer(stream_);
        socket.connect({net::ip::make_address("127.0.0.1"), agent.restconf});
        socket.socket().set_option(net::ip::tcp::no_delay(true));
        stream_.handshake(net::ssl::stream_base::client);
    }

    unsigned ask(http::verb method, const std::string &target, const std::string &body = {})
    {
        http::request<http::string_body> request(method, target, 11);
        request.set(http::field::host, "127.0.0.1");
        request.set(http::field::authorization, authorization_);
        if (!body.empty())
            request.set(http::field::content_type, "application/yang-data+json");
        request.body() = body;
        request.prepare_payload();
        http::write(stream_, request);
        http::response_parser<http::string_body> response;
        response.body_limit(std::uint64_t{1} << 30);
        if (method == http::verb::head)
            response.skip(true);
        http::read(stream_, buffer_, response);
        answer_ = std::move(response.get().body());
        return response.get().result_int();
    }

    void must(http::verb method, const std::string &target, const std::string &body = {})
    {
        if (const unsigned status = ask(method, target, body); status >= 300)
            throw std::runtime_error(target + " is answered with " + std::to_string(status) + " " + answer_);
    }

    void edit(int turn)
    {
        must(http::verb::put, kSwitch,
             turn % 2 ? R"({"lyn-openconfig-jumbo:enabled":true})"
                      : R"({"lyn-openconfig-jumbo:enabled":false})");
    }

private:
    // The certificate is the server's own; what is measured here talks to the process that it started.
    static net::ssl::context &tls()
    {
        static net::ssl::context context(net::ssl::context::tls_client);
        return context;
    }

    net::io_context io_;
    beast::ssl_stream<beast::tcp_stream> stream_;
    beast::flat_buffer buffer_;
    std::string authorization_;
    std::string answer_; // the last body
};

class NetconfClient {
public:
    explicit NetconfClient(const Agent &agent)
        : session_(ssh_new(), ssh_free)
        , channel_(nullptr, ssh_channel_free)
    {
        const unsigned port = agent.netconf;
        const int off = 0;
        ssh_options_set(session_.get(), SSH_OPTIONS_HOST, "127.0.0.1");
        ssh_options_set(session_.get(), SSH_OPTIONS_PORT, &port);
        ssh_options_set(session_.get(), SSH_OPTIONS_USER, "admin");
        ssh_options_set(session_.get(), SSH_OPTIONS_PROCESS_CONFIG, &off);
        const int on = 1;
        ssh_options_set(session_.get(), SSH_OPTIONS_NODELAY, &on);
        check(ssh_connect(session_.get()));
        check(ssh_userauth_password(session_.get(), nullptr, agent.password.c_str()));
        channel_.reset(ssh_channel_new(session_.get()));
        check(ssh_channel_open_session(channel_.get()));
        check(ssh_channel_request_subsystem(channel_.get(), "netconf"));
        read();
        write("<hello xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><capabilities><capability>"
              "urn:ietf:params:netconf:base:1.0</capability></capabilities></hello>");
    }

    void edit(int turn)
    {
        write("<rpc message-id=\"1\" "
              "xmlns=\"urn:ietf:params:xml:ns:netconf:base:1.0\"><edit-config><target><running/>"
              "</target><config><jumbo xmlns=\"" +
              std::string(kJumboSpace) + "\"><config><enabled>" + (turn % 2 ? "true" : "false") +
              "</enabled></config></jumbo></config></edit-config></rpc>");
        if (const std::string reply = read(); reply.find("<ok/>") == std::string::npos)
            throw std::runtime_error("edit-config is answered with " + reply);
    }

private:
    void check(int result)
    {
        if (result != SSH_OK)
            throw std::runtime_error(ssh_get_error(session_.get()));
    }
    void write(const std::string &message)
    {
        const std::string framed = message + "]]>]]>";
        if (ssh_channel_write(channel_.get(), framed.data(), static_cast<std::uint32_t>(framed.size())) < 0)
            throw std::runtime_error(ssh_get_error(session_.get()));
    }
    std::string read()
    {
        for (std::size_t end; (end = taken_.find("]]>]]>")) == std::string::npos;) {
            char bytes[4096];
            const int count = ssh_channel_read(channel_.get(), bytes, sizeof bytes, 0);
            if (count <= 0)
                throw std::runtime_error("the session ended");
            taken_.append(bytes, static_cast<std::size_t>(count));
        }
        const std::size_t end = taken_.find("]]>]]>");
        std::string message = taken_.substr(0, end);
        taken_.erase(0, end + 6);
        return message;
    }

    std::unique_ptr<ssh_session_struct, decltype(&ssh_free)> session_;
    std::unique_ptr<ssh_channel_struct, decltype(&ssh_channel_free)> channel_;
    std::string taken_;
};

// The record of an edit, and nothing else.
double syncTime(const std::filesystem::path &folder)
{
    const std::string file = folder / "sync-test";
    const int descriptor = open(file.c_str(), O_CREAT | O_WRONLY | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor < 0)
        throw std::runtime_error("no file can be written");
    const std::array<char, 200> record{};
    const double time = median(200, [&](int) {
        if (write(descriptor, record.data(), record.size()) < 0 || fdatasync(descriptor))
            throw std::runtime_error("the file cannot be written");
    });
    close(descriptor);
    std::filesystem::remove(file);
    return time;
}

void addEntries(RestconfClient &client, int from, int to)
{
    for (int first = from; first < to; first += 4'000) {
        std::string list;
        for (int i = first; i < std::min(first + 4'000, to); ++i) {
            const std::string keys =
                R"("identifier":"openconfig-policy-types:STATIC","name":"p)" + std::to_string(i) + "\"";
            list += (list.empty() ? "{" : ",{") + keys + R"(,"config":{)" + keys + "}}";
        }
        client.must(http::verb::patch, kProtocols,
                    R"({"openconfig-network-instance:protocols":{"protocol":[)" + list + "]}}");
    }
}

const char *verdict(bool met)
{
    return met ? "met" : "missed";
}

void curve(RestconfClient &restconf, NetconfClient &netconf)
{
    double first[2] = {};
    int entries = 0;
    std::printf("%-10s %16s %16s %16s\n", "entries", "no-op", "RESTCONF PUT", "NETCONF edit");
    for (const int size : {0, 4'000, 40'000}) {
        addEntries(restconf, entries, size);
        entries = size;
        restconf.edit(1);
        const double nothing = median(2'000, [&](int) { restconf.must(http::verb::get, kNothing); });
        const double edits[] = {median(2'000, [&](int turn) { restconf.edit(turn); }),
                                median(2'000, [&](int turn) { netconf.edit(turn); })};
        std::printf("%-10d %13.1f us %13.1f us %13.1f us\n", size, nothing * 1e6, edits[0] * 1e6,
                    edits[1] * 1e6);
        if (size == 0) {
            std::copy(std::begin(edits), std::end(edits), std::begin(first));
        }
        if (size == 40'000)
            for (int i = 0; i < 2; ++i)
                std::printf("  %s beside 40,000: %.2f x, aim %.1f x: %s\n", i ? "NETCONF" : "RESTCONF",
                            edits[i] / first[i], kCurveAim, verdict(edits[i] <= kCurveAim * first[i]));
    }
}

// Exchanges a second of several clients, each of which waits for its answers.
double together(const Agent &agent, int clients, int exchanges, void (*exchange)(RestconfClient &, int))
{
    std::vector<std::unique_ptr<RestconfClient>> all;
    for (int i = 0; i < clients; ++i)
        all.push_back(std::make_unique<RestconfClient>(agent));
    std::atomic<bool> failed = false;
    const double seconds = secondsOf([&] {
        std::vector<std::thread> threads;
        for (const auto &client : all)
            threads.emplace_back([&, one = client.get()] {
                try {
                    for (int turn = 0; turn < exchanges; ++turn)
                        exchange(*one, turn);
                } catch (const std::exception &error) {
                    std::fprintf(stderr, "%s\n", error.what());
                    failed = true;
                }
            });
        for (std::thread &thread : threads)
            thread.join();
    });
    if (failed)
        throw std::runtime_error("a client was refused");
    return clients * exchanges / seconds;
}

void edit(RestconfClient &client, int turn)
{
    client.edit(turn);
}

void readState(RestconfClient &client, int)
{
    client.must(http::verb::get, kState);
}

// Exchanges a second of one client.
double alone(int count, const std::function<void(int)> &exchange)
{
    return count / secondsOf([&] {
               for (int i = 0; i < count; ++i)
                   exchange(i);
           });
}

struct Rate {
    const char *name;
    double rate, aim;
};

void print(const Rate &of, double nothing)
{
    std::printf("%-46s %9.0f a second = %.2f x no-ops", of.name, of.rate, of.rate / nothing);
    if (of.aim > 0)
        std::printf(", aim %.0f: %s", of.aim, verdict(of.rate >= of.aim));
    std::printf("\n");
}

void rates(const Agent &agent, RestconfClient &restconf, NetconfClient &netconf)
{
    const double nothing = alone(5'000, [&](int) { restconf.must(http::verb::get, kNothing); });
    const double edits = alone(5'000, [&](int turn) { restconf.edit(turn); });
    std::printf("an edit over RESTCONF costs %.2f no-ops, aim 2: %s\n", nothing / edits,
                verdict(nothing <= 2 * edits));
    for (const Rate &rate : {
             Rate{"RESTCONF no-ops, one connection", nothing, 0},
             Rate{"RESTCONF edits, one connection", edits, 5'000},
             Rate{"RESTCONF edits, eight connections", together(agent, 8, 1'000, edit), 0},
             Rate{"NETCONF edits, one session", alone(5'000, [&](int turn) { netconf.edit(turn); }), 3'500},
             Rate{"RESTCONF state reads, one connection",
                  alone(5'000, [&](int turn) { readState(restconf, turn); }), 0},
             Rate{"RESTCONF state reads, eight connections", together(agent, 8, 1'000, readState), 12'000},
         })
        print(rate, nothing);
}

// On the disk: an acknowledged edit is synced, and those that wait at the same time share it.
void syncedRates(const std::string &program)
{
    const Agent agent(program, ".");
    RestconfClient restconf(agent);
    std::printf("fdatasync of one record: %.0f us\n", syncTime(agent.state) * 1e6);
    const double nothing = alone(5'000, [&](int) { restconf.must(http::verb::get, kNothing); });
    print({"RESTCONF edits, one connection, synced", alone(1'000, [&](int turn) { restconf.edit(turn); }), 0},
          nothing);
    print({"RESTCONF edits, eight connections, synced", together(agent, 8, 500, edit), 0}, nothing);
    print({"RESTCONF edits, 32 connections, synced", together(agent, 32, 250, edit), 5'000}, nothing);
}

// VLANs by one edit, each with a request to the switch. The price of one must not grow with their number.
void manyVlans(const std::string &program)
{
    for (const int count : {500, 1'000, 2'000, 4'000}) {
        const Agent agent(program, kMemoryFolder);
        RestconfClient client(agent);
        std::string list;
        for (int vlan = 2; vlan < count + 2; ++vlan) {
            const std::string id = R"("vlan-id":)" + std::to_string(vlan);
            list += (list.empty() ? "{" : ",{") + id + R"(,"config":{)" + id + "}}";
        }
        const double seconds = secondsOf([&] {
            client.must(http::verb::patch, kVlans,
                        R"({"openconfig-network-instance:vlans":{"vlan":[)" + list + "]}}");
        });
        std::printf("%d VLANs by one edit: %.3f s, %.0f us each\n", count, seconds, seconds / count * 1e6);
    }
}

void setPorts(const std::string &program, const Agent &agent, int count)
{
    const std::string control = (std::filesystem::path(program).parent_path() / "switchctl").string();
    const std::string folder = agent.state.string(), number = std::to_string(count);
    const char *words[] = {control.c_str(), "--state",      folder.c_str(), "set",
                           "ports",         number.c_str(), nullptr};
    pid_t child = 0;
    int status = -1;
    if (posix_spawn(&child, control.c_str(), nullptr, nullptr, const_cast<char **>(words), environ) ||
        waitpid(child, &status, 0) != child || status != 0)
        throw std::runtime_error("switchctl failed");
}

std::string factoryWith(int ports)
{
    std::string list;
    for (int port = 1; port <= ports; ++port) {
        const std::string name = R"("name":"ethernet 1/1/)" + std::to_string(port) + "\"";
        list += (list.empty() ? "{" : ",{") + name + R"(,"config":{)" + name +
            R"(,"type":"iana-if-type:ethernetCsmacd"}})";
    }
    return R"({"openconfig-interfaces:interfaces":{"interface":[)" + list + "]}}";
}

// Everything about all interfaces by one GET, six queries of the switch a port.
void manyPorts(const std::string &program)
{
    for (const int count : {24, 128, 512}) {
        const Agent agent(program, kMemoryFolder, factoryWith(count));
        setPorts(program, agent, count);
        RestconfClient client(agent);
        const double seconds = median(5, [&](int) { client.must(http::verb::get, kInterfaces); });
        std::printf("GET of %d interfaces: %.2f ms, %.0f us each\n", count, seconds * 1e3,
                    seconds / count * 1e6);
    }
}

// NETCONF edits of running are not saved, so that many can be made.
void memory(const Agent &agent, NetconfClient &client, int edits)
{
    for (int i = 0; i < 2'000; ++i)
        client.edit(i);
    const long before = agent.resident();
    for (int i = 0; i < edits; ++i)
        client.edit(i);
    std::printf("memory: %ld kB, %ld kB after %d edits\n", before, agent.resident(), edits);
}

} // namespace

int main(int argc, char **argv)
try {
    if (argc < 2) {
        std::cerr << "usage: load_client AGENTD [EDITS]\n";
        return 2;
    }
    std::unique_ptr<Agent> agent;
    std::printf("start with new keys: %.3f s\n",
                secondsOf([&] { agent = std::make_unique<Agent>(argv[1], kMemoryFolder); }));
    agent->stop();
    std::printf("start again: %.3f s, aim 0.5 s\n", secondsOf([&] { agent->start(argv[1]); }));
    std::printf("memory after start: %ld kB, aim 60,000 kB\n", agent->resident());
    RestconfClient restconf(*agent);
    NetconfClient netconf(*agent);
    rates(*agent, restconf, netconf);
    curve(restconf, netconf);
    std::printf("memory with 40,000 entries: %ld kB\n", agent->resident());
    manyVlans(argv[1]);
    manyPorts(argv[1]);
    syncedRates(argv[1]);
    memory(*agent, netconf, argc > 2 ? std::stoi(argv[2]) : 20'000);
    return 0;
} catch (const std::exception &error) {
    std::cerr << "load_client: " << error.what() << "\n";
    return 1;
}
