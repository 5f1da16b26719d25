// The users of a running server: are these a name and its password? Shared by all front ends.
#pragma once

#include "server/users_file.h"

#include <array>
#include <cstdint>
#include <ctime>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace agentd {

// Follows the file DIR/users: a change of it counts from the next question on. A file that became damaged
// is reported in the log, and the users known before stay. Members may be called from any thread.
class Users {
public:
    // Throws UsersError if the file is damaged or unreadable.
    explicit Users(std::filesystem::path stateDir);

    // Whether verify() accepted this very name and password before and the file is still the same. Cheap.
    bool isVerified(std::string_view name, std::string_view password);

    // Pays for a password hash, also when there is no such user, so that the time tells nothing.
    bool verify(std::string_view name, std::string_view password);

    bool isKnown(std::string_view name);

    // DIR/keys/NAME.pub of a user who is known and has one.
    std::optional<std::filesystem::path> publicKeyOf(std::string_view name);

private:
    using Digest = std::array<std::uint8_t, 32>;
    struct FileVersion {
        std::uint64_t device = 0, inode = 0, size = 0;
        std::timespec modified{};
        bool operator==(const FileVersion &other) const;
    };
    FileVersion currentVersion() const;
    void refresh();
    std::optional<std::string> hashOf(std::string_view name);
    Digest digestOf(std::string_view name, std::string_view password) const;

    const std::filesystem::path stateDir_;
    std::array<std::uint8_t, 32> secret_{}; // of this process: keeps the digests useless to others
    std::string decoy_;                     // the hash that a name nobody has is compared with
    std::mutex mutex_;
    FileVersion version_;
    UserTable table_;
    std::map<std::string, Digest, std::less<>> verified_; // at most one a user
};

} // namespace agentd
