#include "errors.h"

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

std::vector<Error> takeErrors(const ly_ctx *context, const std::string &fallback)
{
    std::vector<Error> errors;
    for (const ly_err_item *item = ly_err_first(context); item; item = item->next)
        if (item->level == LY_LLERR)
            errors.push_back({kOk, tagOf(*item), item->apptag ? item->apptag : "", locationPath(item->path),
                              item->msg ? item->msg : fallback});
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

Error statusError(Status status, const std::string &path, const std::string &text)
{
    const StatusInfo &info = statusInfo(status);
    return {status, info.tag, std::to_string(status), path, text.empty() ? info.text : text};
}

} // namespace tk
