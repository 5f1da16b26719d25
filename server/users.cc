#include "server/users.h"

#include "toolkit/log.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <system_error>

namespace agentd {

Users::Users(std::filesystem::path stateDir)
    : stateDir_(std::move(stateDir))
    , decoy_(hashPassword("decoy"))
{
    if (::RAND_bytes(secret_.data(), static_cast<int>(secret_.size())) != 1)
        throw UsersError("no random numbers");
    version_ = currentVersion();
    table_ = readUsers(stateDir_);
}

bool Users::isVerified(std::string_view name, std::string_view password)
{
    const Digest digest = digestOf(name, password);
    const std::lock_guard lock(mutex_);
    refresh();
    const auto found = verified_.find(name);
    return found != verified_.end() &&
        ::CRYPTO_memcmp(found->second.data(), digest.data(), digest.size()) == 0;
}

bool Users::verify(std::string_view name, std::string_view password)
{
    if (password.size() > kLongestPassword)
        return false;
    const auto hash = hashOf(name);
    const bool matches = isHashOf(password, hash.value_or(decoy_)) && hash;
    if (!matches)
        return false;
    const Digest digest = digestOf(name, password);
    const std::lock_guard lock(mutex_);
    // The file may have changed while the hash was computed: only what still counts is remembered.
    const auto found = table_.find(name);
    if (found == table_.end() || found->second != *hash)
        return false;
    verified_.insert_or_assign(std::string(name), digest);
    return true;
}

bool Users::isKnown(std::string_view name)
{
    return hashOf(name).has_value();
}

std::optional<std::filesystem::path> Users::publicKeyOf(std::string_view name)
{
    if (!isKnown(name))
        return std::nullopt;
    auto file = stateDir_ / "keys" / (std::string(name) + ".pub");
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored))
        return std::nullopt;
    return file;
}

bool Users::FileVersion::operator==(const FileVersion &other) const
{
    return device == other.device && inode == other.inode && size == other.size &&
        modified.tv_sec == other.modified.tv_sec && modified.tv_nsec == other.modified.tv_nsec;
}

Users::FileVersion Users::currentVersion() const
{
    struct stat status { };
    if (::stat(usersFileOf(stateDir_).c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, static_cast<std::uint64_t>(status.st_size), status.st_mtim};
}

// A stat call a question is cheaper than watching the folder, and never late.
void Users::refresh()
{
    const FileVersion now = currentVersion();
    if (now == version_)
        return;
    version_ = now;
    try {
        table_ = readUsers(stateDir_);
        verified_.clear();
    } catch (const UsersError &damage) {
        log_error("agentd: %s; the users known before stay\n", damage.what());
    }
}

std::optional<std::string> Users::hashOf(std::string_view name)
{
    const std::lock_guard lock(mutex_);
    refresh();
    const auto found = table_.find(name);
    return found == table_.end() ? std::nullopt : std::optional(found->second);
}

Users::Digest Users::digestOf(std::string_view name, std::string_view password) const
{
    std::string text;
    text.append(name).append(1, '\0').append(password); // a name holds no null byte
    Digest digest{};
    unsigned length = 0;
    ::HMAC(EVP_sha256(), secret_.data(), static_cast<int>(secret_.size()),
           reinterpret_cast<const unsigned char *>(text.data()), text.size(), digest.data(), &length);
    OPENSSL_cleanse(text.data(), text.size());
    return digest;
}

} // namespace agentd
