#include "server/agent.h"

#include "server/audit.h"
#include "server/front_end.h"
#include "server/netconf/front_end.h"
#include "server/netconf/monitoring.h"
#include "server/paths.h"
#include "server/restconf/capabilities.h"
#include "server/restconf/front_end.h"
#include "server/state_folder.h"
#include "server/tls.h"
#include "server/users.h"
#include "server/worker.h"
#include "toolkit/log.h"

#include <algorithm>
#include <array>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <csignal>
#include <cstdlib>
#include <future>
#include <iostream>
#include <memory>
#include <thread>
#include <vector>

#include <malloc.h>

namespace agentd {
namespace {

namespace net = boost::asio;
using Clock = std::chrono::steady_clock;

// A callback may hold one of them at a time.
constexpr int kThreads = 2;
constexpr std::size_t kWaitingCallbacks = 64, kWaitingHashes = 64;
// Together below the second that a stop may take.
constexpr std::chrono::milliseconds kGracePoll{10};
constexpr std::chrono::milliseconds kGraceForAnswers{400}, kGraceForCallbacks{300};

// The modules that the server serves by itself, whatever the bundle brings.
constexpr std::array kServerModules{"ietf-restconf", "ietf-restconf-monitoring"};

// Everything that the front ends stand on, in an order in which destruction is safe: the host goes while the
// device is still there, and the workers before the host that their jobs use.
class Agent {
public:
    explicit Agent(const ServeOptions &options);

    void run();

private:
    void openHost(const ServeOptions &options);
    void loadStartup(const ServeOptions &options);
    void addFrontEnds(net::ip::tcp::acceptor restconf, net::ip::tcp::acceptor netconf,
                      const ServeOptions &options);
    void announce() const;
    void awaitSignal();
    void beginStop();
    void awaitEnd(Clock::time_point deadline);
    void serveOnThisThread();
    void endCallbacks();

    FileHandle folder_;
    net::io_context io_{kThreads};
    net::signal_set signals_{io_};
    net::steady_timer grace_{io_};
    std::promise<void> mayEnd_;
    std::unique_ptr<Users> users_;
    std::unique_ptr<Audit> audit_;
    std::unique_ptr<Device> device_;
    std::unique_ptr<tk::Host> host_;
    std::unique_ptr<tk::Datastores> stores_;
    LoginGuard guard_;
    Worker callbacks_{kWaitingCallbacks, Worker::Callers::help};
    Worker hashing_{kWaitingHashes};
    std::vector<std::unique_ptr<FrontEnd>> frontEnds_;
};

Agent::Agent(const ServeOptions &options)
    : folder_(takeStateFolder(options.stateDir))
{
    createAdministrator(options.stateDir);
    users_ = std::make_unique<Users>(options.stateDir);
    audit_ = std::make_unique<Audit>(options.stateDir / "audit.log");
    ensureCertificate(options.stateDir, options.restconf.host);
    auto restconf = listenAt(io_, options.restconf);
    auto netconf = listenAt(io_, options.netconf);
    device_ = setUpDevice(options.device);
    openHost(options);
    addFrontEnds(std::move(restconf), std::move(netconf), options);
}

void Agent::openHost(const ServeOptions &options)
{
    const auto folders = options.moduleDirs.empty() ? defaultModuleDirs() : options.moduleDirs;
    host_ = std::make_unique<tk::Host>(tk::HostOptions{folders, options.logLevel});
    for (const char *module : kServerModules)
        host_->loadServerModule(module);
    netconf::loadModules(*host_);
    host_->loadBundle(bundleLibrary(), options.bundle);
    restconf::provideCapabilities(*host_);
    host_->seal();
    loadStartup(options);
    host_->finishStart();
}

// What is damaged has to be seen, whatever the log level.
void Agent::loadStartup(const ServeOptions &options)
{
    const auto factory = options.factory ? options.factory : defaultFactory();
    tk::StorageOptions storage{.folder = options.stateDir, .factory = {}};
    if (factory)
        storage.factory = readFile(*factory);
    stores_ = std::make_unique<tk::Datastores>(*host_, std::move(storage));
    for (const std::string &complaint : stores_->load())
        std::cerr << "agentd: " << complaint << std::endl;
}

void Agent::addFrontEnds(net::ip::tcp::acceptor restconf, net::ip::tcp::acceptor netconf,
                         const ServeOptions &options)
{
    const Services services{io_,     *host_, *stores_, callbacks_,      hashing_,
                            *users_, guard_, *audit_,  options.stateDir};
    frontEnds_.push_back(std::make_unique<restconf::RestconfFrontEnd>(services, std::move(restconf),
                                                                      serverContext(options.stateDir)));
    frontEnds_.push_back(std::make_unique<netconf::NetconfFrontEnd>(services, std::move(netconf)));
}

void Agent::run()
{
    awaitSignal();
    for (const auto &frontEnd : frontEnds_)
        frontEnd->start();
    announce();
    // This one only waits for the end: each of the others can be held by a callback.
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([this] { serveOnThisThread(); });
    mayEnd_.get_future().wait();
    endCallbacks();
    for (std::thread &thread : threads)
        thread.join();
    stores_->finishSaving(); // those who wait for it are the front ends'
}

void Agent::announce() const
{
    std::cout << "ready restconf=" << frontEnds_[0]->address() << " netconf=" << frontEnds_[1]->address()
              << std::endl;
}

// Only now: until there is something to end cleanly, a signal ends the process as usual, also while the start
// waits for a silent switch.
void Agent::awaitSignal()
{
    signals_.add(SIGTERM);
    signals_.add(SIGINT);
    signals_.async_wait([this](const boost::system::error_code &error, int) {
        if (!error)
            beginStop();
    });
}

void Agent::beginStop()
{
    log_info("agentd: stopping\n");
    for (const auto &frontEnd : frontEnds_)
        frontEnd->stop();
    awaitEnd(Clock::now() + kGraceForAnswers);
}

// Lets the connections end by themselves, up to the deadline.
void Agent::awaitEnd(Clock::time_point deadline)
{
    const bool haveEnded = std::all_of(frontEnds_.begin(), frontEnds_.end(),
                                       [](const auto &frontEnd) { return frontEnd->hasEnded(); });
    if (haveEnded || Clock::now() >= deadline) {
        io_.stop();
        return mayEnd_.set_value();
    }
    grace_.expires_after(kGracePoll);
    grace_.async_wait([this, deadline](const boost::system::error_code &) { awaitEnd(deadline); });
}

// Handlers catch what they expect; what still gets here costs one connection, not the server.
void Agent::serveOnThisThread()
{
    for (;;) {
        try {
            io_.run();
            return;
        } catch (const std::exception &failure) {
            log_error("agentd: a connection failed: %s\n", failure.what());
        }
    }
}

// A callback that waits for a silent daemon cannot be called off. Nothing that is worth keeping is in memory
// only, so the process ends around it.
void Agent::endCallbacks()
{
    device_->interrupt();
    const auto deadline = Clock::now() + kGraceForCallbacks;
    const bool hashesEnded = hashing_.stop(deadline);
    if (callbacks_.stop(deadline) && hashesEnded)
        return;
    log_error("agentd: stopped while a request waited for the switch\n");
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

int serve(const ServeOptions &options)
try {
    std::signal(SIGPIPE, SIG_IGN);
#ifdef M_ARENA_MAX
    // One heap for all threads: with one each, data that several have edited take a quarter more memory.
    mallopt(M_ARENA_MAX, 1);
#endif
    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error like a full disk
    Agent(options).run();
    return EXIT_SUCCESS;
} catch (const std::exception &failure) {
    std::cerr << "agentd: cannot start: " << failure.what() << std::endl;
    return EXIT_FAILURE;
}

} // namespace agentd
