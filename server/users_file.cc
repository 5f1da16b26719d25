#include "server/users_file.h"

#include "server/files.h"

#include <algorithm>
#include <array>
#include <crypt.h>
#include <memory>
#include <openssl/crypto.h>
#include <openssl/rand.h>
#include <system_error>

namespace agentd {
namespace {

constexpr char kYescrypt[] = "$y$";
constexpr std::size_t kLongestName = 32;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNameCharacter(char c)
{
    return isLetter(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// Of crypt(3)'s modern kinds ("$id$..."); the traditional ones are too weak to be let in by hand.
bool isHash(std::string_view text)
{
    const auto isHashCharacter = [](char c) {
        return c > 0x20 && c < 0x7f && c != ':' && c != '*' && c != '!';
    };
    return text.size() > 16 && text.front() == '$' && std::all_of(text.begin(), text.end(), isHashCharacter);
}

[[noreturn]] void refuseLine(std::size_t number, const char *why)
{
    throw UsersError("line " + std::to_string(number) + " is damaged: " + why);
}

void parseLine(std::string_view line, std::size_t number, UserTable &users)
{
    if (line.empty() || line.front() == '#')
        return;
    const auto colon = line.find(':');
    if (colon == line.npos || !isUserName(line.substr(0, colon)))
        refuseLine(number, "it does not begin with a user name and a colon");
    if (!isHash(line.substr(colon + 1)))
        refuseLine(number, "no password hash behind the name");
    if (!users.emplace(line.substr(0, colon), line.substr(colon + 1)).second)
        refuseLine(number, "the user stands there twice");
}

// Where the result of crypt(3) lives: 32 KiB, too large for a small stack.
std::string crypted(std::string_view password, const std::string &setting)
{
    if (password.find('\0') != password.npos)
        return {};
    auto data = std::make_unique<crypt_data>();
    std::string text(password);
    const char *hash = ::crypt_rn(text.c_str(), setting.c_str(), data.get(), sizeof *data);
    std::string result = hash ? hash : "";
    OPENSSL_cleanse(text.data(), text.size());
    OPENSSL_cleanse(data.get(), sizeof *data);
    return result;
}

void checkName(const std::string &name)
{
    if (!isUserName(name))
        throw UsersError(
            "a user name has 1 to 32 letters, digits, '_', '-' and '.', and begins with a letter or '_'");
}

void checkPassword(std::string_view password)
{
    if (password.empty() || password.size() > kLongestPassword || password.find('\0') != password.npos)
        throw UsersError("a password has 1 to " + std::to_string(kLongestPassword) + " bytes");
}

void writeUsers(const std::filesystem::path &stateDir, const UserTable &users)
{
    std::string text;
    for (const auto &[name, hash] : users)
        text.append(name).append(":").append(hash).append("\n");
    writeFileAtomically(usersFileOf(stateDir), text, 0600);
}

void changeUsers(const std::filesystem::path &stateDir, const std::function<void(UserTable &)> &change)
try {
    const FileHandle lock = lockFile(stateDir / "users.lock", true);
    UserTable users;
    if (std::filesystem::exists(usersFileOf(stateDir)))
        users = readUsers(stateDir);
    change(users);
    writeUsers(stateDir, users);
} catch (const std::system_error &failure) {
    throw UsersError(failure.what());
}

UserTable::iterator findOrRefuse(UserTable &users, const std::string &name)
{
    const auto found = users.find(name);
    if (found == users.end())
        throw UsersError("there is no user " + name);
    return found;
}

std::string randomPassword()
{
    static constexpr char alphabet[] = "ABCDEFGHJKLMNPQRSTUVWXYZabcdefghijkmnopqrstuvwxyz23456789";
    constexpr unsigned letters = sizeof alphabet - 1;
    std::string password;
    while (password.size() < 20) {
        unsigned char byte = 0;
        if (::RAND_bytes(&byte, 1) != 1)
            throw UsersError("no random numbers for a password");
        if (byte < 256 / letters * letters) // otherwise the first letters would be likelier
            password += alphabet[byte % letters];
    }
    return password;
}

} // namespace

std::filesystem::path usersFileOf(const std::filesystem::path &stateDir)
{
    return stateDir / "users";
}

bool isUserName(std::string_view name)
{
    return !name.empty() && name.size() <= kLongestName && isLetter(name.front()) &&
        std::all_of(name.begin(), name.end(), isNameCharacter);
}

UserTable parseUsers(std::string_view text)
{
    UserTable users;
    for (std::size_t number = 1; !text.empty(); ++number) {
        const auto end = std::min(text.find('\n'), text.size());
        parseLine(text.substr(0, end), number, users);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return users;
}

UserTable readUsers(const std::filesystem::path &stateDir)
{
    const auto file = usersFileOf(stateDir);
    try {
        return parseUsers(readFile(file, std::size_t{1} << 20));
    } catch (const UsersError &damage) {
        throw UsersError(file.string() + ": " + damage.what());
    } catch (const std::system_error &failure) {
        throw UsersError(failure.what());
    }
}

std::string hashPassword(std::string_view password)
{
    checkPassword(password);
    std::array<char, CRYPT_GENSALT_OUTPUT_SIZE> setting{};
    if (!::crypt_gensalt_rn(kYescrypt, 0, nullptr, 0, setting.data(), static_cast<int>(setting.size())))
        throw UsersError("no salt for a password hash");
    std::string hash = crypted(password, setting.data());
    if (!isHash(hash))
        throw UsersError("the password cannot be hashed");
    return hash;
}

bool isHashOf(std::string_view password, const std::string &hash)
{
    const std::string again = crypted(password, hash);
    return again.size() == hash.size() && !hash.empty() &&
        ::CRYPTO_memcmp(again.data(), hash.data(), hash.size()) == 0;
}

void addUser(const std::filesystem::path &stateDir, const std::string &name, std::string_view password)
{
    checkName(name);
    const std::string hash = hashPassword(password);
    changeUsers(stateDir, [&](UserTable &users) {
        if (!users.emplace(name, hash).second)
            throw UsersError("the user " + name + " exists");
    });
}

void changePassword(const std::filesystem::path &stateDir, const std::string &name, std::string_view password)
{
    const std::string hash = hashPassword(password);
    changeUsers(stateDir, [&](UserTable &users) { findOrRefuse(users, name)->second = hash; });
}

void deleteUser(const std::filesystem::path &stateDir, const std::string &name)
{
    changeUsers(stateDir, [&](UserTable &users) { users.erase(findOrRefuse(users, name)); });
}

bool createAdministrator(const std::filesystem::path &stateDir)
{
    if (std::filesystem::exists(usersFileOf(stateDir)))
        return false;
    std::string password = randomPassword();
    writeFileAtomically(stateDir / "admin-password", password + "\n", 0600);
    addUser(stateDir, "admin", password);
    OPENSSL_cleanse(password.data(), password.size());
    return true;
}

} // namespace agentd
