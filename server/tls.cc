#include "server/tls.h"

#include "server/files.h"

#include <arpa/inet.h>
#include <array>
#include <climits>
#include <memory>
#include <openssl/ec.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>
#include <set>
#include <unistd.h>

namespace agentd {
namespace {

namespace ssl = boost::asio::ssl;

template <auto release>
struct Releaser {
    template <typename T>
    void operator()(T *object) const
    {
        release(object);
    }
};
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Releaser<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Releaser<X509_EXTENSION_free>>;
using MemoryFile = std::unique_ptr<BIO, Releaser<BIO_free>>;

constexpr long kOneDay = 24L * 60 * 60;
constexpr int kValidDays = 3650;

std::filesystem::path keyFileOf(const std::filesystem::path &stateDir)
{
    return stateDir / "tls-key.pem";
}

std::filesystem::path certificateFileOf(const std::filesystem::path &stateDir)
{
    return stateDir / "tls-cert.pem";
}

[[noreturn]] void fail(const std::string &what)
{
    std::array<char, 256> reason{};
    ::ERR_error_string_n(::ERR_get_error(), reason.data(), reason.size());
    ::ERR_clear_error();
    throw TlsError(what + ": " + reason.data());
}

// For calls that return 1 on success and objects that are null on failure.
void require(bool good, const char *what)
{
    if (!good)
        fail(what);
}

std::string contentOf(const MemoryFile &file)
{
    char *data = nullptr;
    const long length = BIO_get_mem_data(file.get(), &data);
    return length > 0 ? std::string(data, static_cast<std::size_t>(length)) : std::string();
}

Key makeKey(const std::filesystem::path &file)
{
    Key key(EVP_EC_gen("P-256"));
    const MemoryFile text(::BIO_new(::BIO_s_mem()));
    require(key && text, "cannot make a TLS key");
    require(::PEM_write_bio_PrivateKey(text.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr) == 1,
            "cannot write a TLS key");
    writeFileAtomically(file, contentOf(text), 0600);
    return key;
}

Key readKey(const std::filesystem::path &file)
{
    const std::string content = readFile(file, 65536);
    const MemoryFile text(::BIO_new_mem_buf(content.data(), static_cast<int>(content.size())));
    Key key(text ? ::PEM_read_bio_PrivateKey(text.get(), nullptr, nullptr, nullptr) : nullptr);
    if (!key)
        fail(file.string() + " holds no key");
    return key;
}

std::string machineName()
{
    std::array<char, HOST_NAME_MAX + 1> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

bool isAddress(const std::string &host)
{
    std::array<unsigned char, sizeof(in6_addr)> ignored{};
    return ::inet_pton(AF_INET, host.c_str(), ignored.data()) == 1 ||
        ::inet_pton(AF_INET6, host.c_str(), ignored.data()) == 1;
}

// What stands in the subject alternative names: commas would begin another entry there.
std::string alternativeNames(const std::string &host)
{
    std::set<std::string> entries{"DNS:localhost", "IP:127.0.0.1", "IP:::1"};
    for (const std::string &name : {machineName(), host}) {
        if (!name.empty() && name.find_first_of(", \t") == std::string::npos)
            entries.insert((isAddress(name) ? "IP:" : "DNS:") + name);
    }
    std::string text;
    for (const std::string &entry : entries)
        text += (text.empty() ? "" : ",") + entry;
    return text;
}

void addExtension(X509 *certificate, int kind, const std::string &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    const Extension extension(::X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    require(extension && ::X509_add_ext(certificate, extension.get(), -1) == 1,
            "cannot extend a certificate");
}

void setSerialNumber(X509 *certificate)
{
    std::uint64_t number = 0;
    require(::RAND_bytes(reinterpret_cast<unsigned char *>(&number), sizeof number) == 1,
            "no random numbers");
    require(::ASN1_INTEGER_set_uint64(::X509_get_serialNumber(certificate), number >> 1) == 1,
            "bad serial number");
}

void setSubject(X509 *certificate)
{
    static constexpr unsigned char commonName[] = "agentd";
    X509_NAME *name = ::X509_get_subject_name(certificate);
    require(::X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, commonName, -1, -1, 0) == 1 &&
                ::X509_set_issuer_name(certificate, name) == 1,
            "cannot name a certificate");
}

// Valid from a day ago: a switch may have a clock that is behind.
Certificate makeCertificate(EVP_PKEY *key, const std::string &host)
{
    Certificate certificate(::X509_new());
    require(certificate && ::X509_set_version(certificate.get(), X509_VERSION_3) == 1,
            "cannot make a certificate");
    setSerialNumber(certificate.get());
    ::X509_gmtime_adj(::X509_getm_notBefore(certificate.get()), -kOneDay);
    ::X509_time_adj_ex(::X509_getm_notAfter(certificate.get()), kValidDays, 0, nullptr);
    setSubject(certificate.get());
    addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), NID_subject_alt_name, alternativeNames(host));
    require(::X509_set_pubkey(certificate.get(), key) == 1 &&
                ::X509_sign(certificate.get(), key, ::EVP_sha256()) > 0,
            "cannot sign a certificate");
    return certificate;
}

void writeCertificate(const std::filesystem::path &file, X509 *certificate)
{
    const MemoryFile text(::BIO_new(::BIO_s_mem()));
    require(text && ::PEM_write_bio_X509(text.get(), certificate) == 1, "cannot write a certificate");
    writeFileAtomically(file, contentOf(text), 0644);
}

} // namespace

void ensureCertificate(const std::filesystem::path &stateDir, const std::string &host)
{
    const auto keyFile = keyFileOf(stateDir), certificateFile = certificateFileOf(stateDir);
    const bool hasKey = std::filesystem::exists(keyFile);
    if (hasKey && std::filesystem::exists(certificateFile))
        return;
    const Key key = hasKey ? readKey(keyFile) : makeKey(keyFile);
    writeCertificate(certificateFile, makeCertificate(key.get(), host).get());
}

ssl::context serverContext(const std::filesystem::path &stateDir)
{
    ssl::context context(ssl::context::tls_server);
    if (::SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION) != 1)
        fail("TLS 1.2 is not available");
    // Idle connections keep no buffers, past ones no session (tickets do for that), and nobody makes the
    // server negotiate again and again.
    ::SSL_CTX_set_mode(context.native_handle(), SSL_MODE_RELEASE_BUFFERS);
    ::SSL_CTX_set_session_cache_mode(context.native_handle(), SSL_SESS_CACHE_OFF);
    ::SSL_CTX_set_options(context.native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    const auto use = [](const std::filesystem::path &file, auto &&load) {
        boost::system::error_code error;
        load(file.string(), error);
        if (error)
            throw TlsError(file.string() + ": " + error.message());
    };
    use(certificateFileOf(stateDir),
        [&](auto file, auto &error) { context.use_certificate_chain_file(file, error); });
    use(keyFileOf(stateDir),
        [&](auto file, auto &error) { context.use_private_key_file(file, ssl::context::pem, error); });
    if (::SSL_CTX_check_private_key(context.native_handle()) != 1)
        fail(certificateFileOf(stateDir).string() + " is not the certificate of " +
             keyFileOf(stateDir).string());
    return context;
}

} // namespace agentd
