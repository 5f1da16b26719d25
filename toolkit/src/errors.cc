#include "errors.h"

#include "value.h"

#include <cstring>

namespace tk {

namespace {

Failure failure(const char *tag, const std::string &path, const std::string &message,
                const std::string &appTag = {})
{
    return Failure(Error{kOk, tag, appTag, path, message});
}

const char *tagOf(const ly_err_item &item)
{
    if (item.no == LY_EEXIST)
        return "data-exists";
    switch (item.vecode) {
    case LYVE_SYNTAX:
    case LYVE_SYNTAX_XML:
    case LYVE_SYNTAX_JSON:
        return "malformed-message";
    case LYVE_REFERENCE:
        return "unknown-element";
    case LYVE_DATA:
    case LYVE_SEMANTICS:
        // libyang has no code of its own for what is missing.
        if (item.msg && std::strncmp(item.msg, "Mandatory ", 10) == 0)
            return "data-missing";
        return item.apptag && std::strcmp(item.apptag, "instance-required") == 0 ? "data-missing"
                                                                                 : "invalid-value";
    default:
        return "invalid-value";
    }
}

// libyang's location is `Data location "/m:x".`, `Schema location "/m:x".`, with a line number behind it.
std::string locationPath(const char *text)
{
    static constexpr char opening[] = "ata location \"";
    const char *begin = text ? std::strstr(text, opening) : nullptr;
    if (!begin)
        return {};
    begin += sizeof opening - 1;
    // The path may hold quotes of its own; the closing one stands before a comma or a full stop.
    for (const char *end = std::strchr(begin, '"'); end; end = std::strchr(end + 1, '"'))
        if (end[1] == ',' || end[1] == '.')
            return {begin, end};
    return {};
}

} // namespace

void clearErrors(const ly_ctx *context)
{
    ly_err_clean(const_cast<ly_ctx *>(context), nullptr);
}

namespace {

constexpr std::size_t kLongestMessage = 500;

// A client need not get back megabytes that it sent. Cut between two characters of UTF-8.
std::string shortened(const std::string &text)
{
    if (text.size() <= kLongestMessage)
        return text;
    std::size_t end = kLongestMessage;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xc0U) == 0x80U)
        --end;
    return text.substr(0, end) + "...";
}

// libyang quotes a value that it refuses; that of a secret leaf is not passed on.
std::string messageOf(const ly_err_item &item, const std::string &fallback)
{
    const char *step = item.path ? std::strrchr(item.path, '/') : nullptr;
    if (step && isSecretName(step))
        return "The value is not allowed here.";
    return item.msg ? shortened(item.msg) : fallback;
}

} // namespace

std::vector<Error> takeErrors(const ly_ctx *context, const std::string &fallback)
{
    std::vector<Error> errors;
    for (const ly_err_item *item = ly_err_first(context); item; item = item->next)
        if (item->level == LY_LLERR)
            errors.push_back({kOk, tagOf(*item), item->apptag ? item->apptag : "", locationPath(item->path),
                              messageOf(*item, fallback)});
    clearErrors(context);
    if (errors.empty())
        errors.push_back({kOk, "operation-failed", "", "", fallback});
    return errors;
}

std::string takeErrorLine(const ly_ctx *context, const std::string &fallback)
{
    std::string line = fallback;
    if (const ly_err_item *item = ly_err_first(context); item && item->msg) {
        line = item->msg;
        if (item->path)
            line += std::string(" (") + item->path + ")";
    }
    clearErrors(context);
    return line;
}

Failure dataMissing(const std::string &path, const std::string &message)
{
    return failure("data-missing", path, message);
}

Failure dataExists(const std::string &path)
{
    return failure("data-exists", path, "The resource exists already.");
}

Failure unknownElement(const std::string &path, const std::string &message)
{
    return failure("unknown-element", path, message);
}

Failure unknownNamespace(const std::string &path, const std::string &element, const std::string &nameSpace)
{
    Failure made =
        failure("unknown-namespace", path, "The namespace \"" + nameSpace + "\" is not served here.");
    made.errors.front().badElement = element;
    made.errors.front().badNamespace = nameSpace;
    return made;
}

Failure unknownAttribute(const std::string &path, const std::string &element, const std::string &attribute)
{
    Failure made = failure("unknown-attribute", path, "The attribute \"" + attribute + "\" is not known.");
    made.errors.front().badElement = element;
    made.errors.front().badAttribute = attribute;
    return made;
}

Failure badAttribute(const std::string &path, const std::string &element, const std::string &attribute,
                     const std::string &message, const std::string &appTag)
{
    Failure made = failure("bad-attribute", path, message, appTag);
    made.errors.front().badElement = element;
    made.errors.front().badAttribute = attribute;
    return made;
}

Failure missingElement(const std::string &path, const std::string &message)
{
    return failure("missing-element", path, message);
}

Failure badElement(const std::string &path, const std::string &message)
{
    return failure("bad-element", path, message);
}

Failure invalidValue(const std::string &path, const std::string &message)
{
    return failure("invalid-value", path, message);
}

Failure malformed(const std::string &message)
{
    return failure("malformed-message", {}, message);
}

Failure notSupported(const std::string &path, const std::string &message)
{
    return failure("operation-not-supported", path, message);
}

Failure operationFailed(const std::string &path, const std::string &message, const std::string &appTag)
{
    return failure("operation-failed", path, message, appTag);
}

Failure lockDenied(std::uint32_t holder, const std::string &message)
{
    Failure made = failure("lock-denied", {}, message);
    made.errors.front().lockHolder = holder;
    return made;
}

Failure inUse(const std::string &message)
{
    return failure("in-use", {}, message);
}

Error statusError(Status status, const std::string &path, const std::string &text)
{
    const StatusInfo &info = statusInfo(status);
    return {status, info.tag, std::to_string(status), path, text.empty() ? info.text : text};
}

} // namespace tk
