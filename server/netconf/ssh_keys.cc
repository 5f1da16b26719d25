#include "server/netconf/ssh_keys.h"

#include "server/files.h"
#include "server/text.h"
#include "toolkit/log.h"

#include <sys/stat.h>
#include <system_error>

namespace agentd::netconf {

namespace {

constexpr std::size_t kLongestKeyFile = 65536;

std::filesystem::path hostKeyFile(const std::filesystem::path &stateDir)
{
    return stateDir / "ssh-host-key";
}

// Written beside its place first: a half-written key would stop every later start.
void writeHostKey(ssh_key key, const std::filesystem::path &file)
{
    const std::filesystem::path fresh = file.string() + ".new";
    if (::ssh_pki_export_privkey_file(key, nullptr, nullptr, nullptr, fresh.c_str()) != SSH_OK)
        throw SshError(fresh.string() + ": cannot be written");
    const std::string text = readFile(fresh, kLongestKeyFile);
    writeFileAtomically(file, text, 0600);
    std::filesystem::remove(fresh);
}

void writePublicKey(ssh_key key, const std::filesystem::path &file)
{
    char *base64 = nullptr;
    if (::ssh_pki_export_pubkey_base64(key, &base64) != SSH_OK)
        throw SshError("the host key has no public part");
    const std::string text =
        std::string(::ssh_key_type_to_char(::ssh_key_type(key))) + " " + base64 + " agentd\n";
    ::ssh_string_free_char(base64);
    writeFileAtomically(file, text, 0644);
}

SshKeyHandle readHostKey(const std::filesystem::path &file)
{
    ssh_key key = nullptr;
    if (::ssh_pki_import_privkey_file(file.c_str(), nullptr, nullptr, nullptr, &key) != SSH_OK)
        throw SshError(file.string() + ": not a private key that can be used");
    return SshKeyHandle(key);
}

} // namespace

void ensureHostKey(const std::filesystem::path &stateDir)
{
    const std::filesystem::path file = hostKeyFile(stateDir), publicFile = file.string() + ".pub";
    if (!std::filesystem::exists(file)) {
        ssh_key made = nullptr;
        if (::ssh_pki_generate(SSH_KEYTYPE_ED25519, 0, &made) != SSH_OK)
            throw SshError("no host key can be made");
        const SshKeyHandle key(made);
        writeHostKey(key.get(), file);
        writePublicKey(key.get(), publicFile);
    } else if (!std::filesystem::exists(publicFile)) {
        writePublicKey(readHostKey(file).get(), publicFile);
    }
}

SshBindHandle serverBind(const std::filesystem::path &stateDir)
{
    SshBindHandle bind(::ssh_bind_new());
    SshKeyHandle key = readHostKey(hostKeyFile(stateDir));
    const bool readsSystemFiles = false;
    if (!bind ||
        ::ssh_bind_options_set(bind.get(), SSH_BIND_OPTIONS_PROCESS_CONFIG, &readsSystemFiles) != SSH_OK ||
        ::ssh_bind_options_set(bind.get(), SSH_BIND_OPTIONS_IMPORT_KEY, key.get()) != SSH_OK)
        throw SshError(hostKeyFile(stateDir).string() + ": cannot be used as a host key");
    static_cast<void>(key.release()); // the bind has it
    return bind;
}

bool isKeyIn(const std::filesystem::path &file, ssh_key key)
try {
    const std::string text = readFile(file, kLongestKeyFile);
    for (const std::string_view line : split(text, '\n')) {
        const auto words = split(trimmed(line), ' ');
        if (words.size() < 2 || words[0].starts_with('#'))
            continue;
        const std::string type(words[0]), base64(words[1]);
        ssh_key known = nullptr;
        const int result =
            ::ssh_pki_import_pubkey_base64(base64.c_str(), ::ssh_key_type_from_name(type.c_str()), &known);
        const SshKeyHandle owner(known);
        if (result == SSH_OK && ::ssh_key_cmp(known, key, SSH_KEY_CMP_PUBLIC) == 0)
            return true;
    }
    return false;
} catch (const std::system_error &failure) {
    log_error("agentd: %s\n", failure.what());
    return false;
}

} // namespace agentd::netconf
