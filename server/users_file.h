// The file DIR/users: one line `NAME:HASH` a user, where HASH is a salted crypt(3) hash. Reading, changing.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace agentd {

// What is wrong, in one line for the person at the terminal.
class UsersError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using UserTable = std::map<std::string, std::string, std::less<>>; // name to hash

// Longer ones are refused wherever they come from: hashing costs time in their length.
inline constexpr std::size_t kLongestPassword = 256;

std::filesystem::path usersFileOf(const std::filesystem::path &stateDir);

// A letter or "_", then at most 31 letters, digits, "_", "-" and ".": safe as part of a file name.
bool isUserName(std::string_view name);

// Lines that are empty or begin with "#" are skipped. Throws UsersError with the number of a damaged line.
UserTable parseUsers(std::string_view text);
UserTable readUsers(const std::filesystem::path &stateDir); // throws UsersError naming the file

// A new yescrypt hash with a random salt. Costs some 20 ms and more on small processors. Throws UsersError.
std::string hashPassword(std::string_view password);
// Whether the hash is the password's, compared in constant time. As slow as hashPassword.
bool isHashOf(std::string_view password, const std::string &hash);

// Changes of the file, each under the file's lock and in one atomic step; a running server notices them.
// Throw UsersError: a bad name or password, a user who exists or doesn't, an unwritable folder.
void addUser(const std::filesystem::path &stateDir, const std::string &name, std::string_view password);
void changePassword(const std::filesystem::path &stateDir, const std::string &name,
                    std::string_view password);
void deleteUser(const std::filesystem::path &stateDir, const std::string &name);

// First start: without a users file, makes the user admin with a random password, which is written to
// DIR/admin-password (mode 0600). Returns whether it did.
bool createAdministrator(const std::filesystem::path &stateDir);

} // namespace agentd
