// A protocol that agentd speaks, and what all of them share.
#pragma once

#include "server/audit.h"
#include "server/login_guard.h"
#include "server/users.h"
#include "server/worker.h"
#include "toolkit/datastores.h"
#include "toolkit/host.h"

#include <boost/asio/io_context.hpp>
#include <filesystem>
#include <string>

namespace agentd {

// Outlives the front ends.
struct Services {
    boost::asio::io_context &io; // run by a small fixed number of threads: nothing on it may block
    tk::Host &host;
    tk::Datastores &stores;
    Worker &callbacks; // for everything of the host that may call back into the bundle
    Worker &hashing;   // for password hashes
    Users &users;
    LoginGuard &guard; // one for all: an address has no more attempts for knowing several protocols
    Audit &audit;
    std::filesystem::path stateDir;
};

class FrontEnd {
public:
    virtual ~FrontEnd() = default;
    virtual std::string address() const = 0; // as the ready line shows it
    virtual void start() = 0;                // serves from now on
    virtual void stop() = 0;           // from any thread: takes no more work, and lets what is under way end
    virtual bool hasEnded() const = 0; // after stop(): nothing is under way any more
};

} // namespace agentd
