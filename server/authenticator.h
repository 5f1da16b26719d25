// Name and password of a connection, checked without blocking the threads that serve connections.
#pragma once

#include "server/login_guard.h"
#include "server/users.h"
#include "server/worker.h"

#include <boost/asio/any_io_executor.hpp>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace agentd {

struct Credentials {
    std::string name;
    std::string password;
};

// The value of an Authorization header of the Basic scheme (RFC 7617). Nothing: another scheme, bad base64,
// or no colon in it.
std::optional<Credentials> basicCredentials(std::string_view authorization);

enum class Login { accepted, refused, busy };

class Authenticator {
public:
    using Done = std::function<void(Login)>;

    Authenticator(Users &users, Worker &hashing, LoginGuard &guard)
        : users_(users)
        , hashing_(hashing)
        , guard_(guard)
    {
    }

    // Calls `done` once: at once where the credentials are known to be good, otherwise later on `executor`,
    // after the wait that earlier failures of the address cost and the computation of a hash.
    // `busy`: too many attempts at the same time.
    void check(const Credentials &credentials, const std::string &address,
               boost::asio::any_io_executor executor, Done done);

    bool isUser(const std::string &name) { return users_.isKnown(name); }

private:
    struct Attempt;
    void verifyLater(const std::shared_ptr<Attempt> &attempt);
    Login verify(const Attempt &attempt);

    Users &users_;
    Worker &hashing_;
    LoginGuard &guard_;
};

} // namespace agentd
