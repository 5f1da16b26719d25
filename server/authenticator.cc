#include "server/authenticator.h"

#include <algorithm>
#include <boost/asio/dispatch.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core/string.hpp>
#include <memory>
#include <utility>

namespace agentd {
namespace {

namespace net = boost::asio;

int base64Value(char c)
{
    static constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const auto at = alphabet.find(c);
    return at == alphabet.npos ? -1 : static_cast<int>(at);
}

std::optional<std::string> base64Decoded(std::string_view text)
{
    for (int padding = 0; padding < 2 && !text.empty() && text.back() == '='; ++padding)
        text.remove_suffix(1);
    if (text.size() % 4 == 1)
        return std::nullopt;
    std::string result;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = base64Value(c);
        if (value < 0)
            return std::nullopt;
        bits = (bits << 6 | static_cast<unsigned>(value)) & 0xffffU;
        count += 6;
        if (count >= 8) {
            count -= 8;
            result += static_cast<char>(static_cast<unsigned char>(bits >> count & 0xffU));
        }
    }
    return result;
}

} // namespace

std::optional<Credentials> basicCredentials(std::string_view authorization)
{
    static constexpr std::string_view scheme = "Basic ";
    if (authorization.size() < scheme.size() ||
        !boost::beast::iequals({authorization.data(), scheme.size()}, {scheme.data(), scheme.size()}))
        return std::nullopt;
    authorization.remove_prefix(scheme.size());
    authorization.remove_prefix(std::min(authorization.find_first_not_of(' '), authorization.size()));
    const auto text = base64Decoded(authorization);
    const auto colon = text ? text->find(':') : std::string::npos;
    if (colon == std::string::npos)
        return std::nullopt;
    return Credentials{text->substr(0, colon), text->substr(colon + 1)};
}

struct Authenticator::Attempt {
    Credentials credentials;
    std::string address;
    net::any_io_executor executor;
    Done done;
    net::steady_timer timer;
};

void Authenticator::check(const Credentials &credentials, const std::string &address,
                          net::any_io_executor executor, Done done)
{
    if (users_.isVerified(credentials.name, credentials.password))
        return done(Login::accepted);
    const auto wait = guard_.reserve(address, LoginGuard::Clock::now());
    if (!wait)
        return done(Login::busy);
    const auto attempt = std::make_shared<Attempt>(
        Attempt{credentials, address, executor, std::move(done), net::steady_timer(executor, *wait)});
    attempt->timer.async_wait([this, attempt](const boost::system::error_code &) { verifyLater(attempt); });
}

void Authenticator::verifyLater(const std::shared_ptr<Attempt> &attempt)
{
    const auto answer = [attempt](Login login) {
        net::dispatch(attempt->executor, [attempt, login] { attempt->done(login); });
    };
    if (!hashing_.post([this, attempt, answer] { answer(verify(*attempt)); }))
        answer(Login::busy);
}

Login Authenticator::verify(const Attempt &attempt)
{
    if (users_.verify(attempt.credentials.name, attempt.credentials.password))
        return Login::accepted;
    guard_.noteFailure(attempt.address, LoginGuard::Clock::now());
    return Login::refused;
}

} // namespace agentd
