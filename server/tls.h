// The TLS side of the RESTCONF front end: key and certificate in the state folder, and the context.
#pragma once

#include <boost/asio/ssl/context.hpp>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace agentd {

class TlsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Makes DIR/tls-key.pem (EC P-256, mode 0600) and the self-signed DIR/tls-cert.pem where they are missing.
// The certificate names localhost, 127.0.0.1, ::1, this machine's name and `host`, the name or address that
// the server listens on. Throws TlsError or std::system_error.
void ensureCertificate(const std::filesystem::path &stateDir, const std::string &host);

// A server context of TLS 1.2 at least with that key and certificate. Throws TlsError naming a file that
// cannot be used.
boost::asio::ssl::context serverContext(const std::filesystem::path &stateDir);

} // namespace agentd
