#include "server/restconf/uri.h"

#include "server/restconf/errors.h"
#include "server/text.h"

#include <algorithm>

namespace agentd::restconf {
namespace {

constexpr std::string_view kHostMeta = "/.well-known/host-meta";
constexpr std::string_view kData = "data", kOperations = "operations",
                           kLibraryVersion = "yang-library-version";

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The byte that "%XY" at this place stands for; -1: it is malformed.
int encodedByte(std::string_view text, std::size_t at)
{
    if (at + 2 >= text.size())
        return -1;
    const int high = hexValue(text[at + 1]), low = hexValue(text[at + 2]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

bool isUnreserved(char c)
{
    return isIdentifierCharacter(c) || c == '~';
}

// Consumes the front of the path if it is `name` as a whole segment.
bool takeSegment(std::string_view &path, std::string_view name)
{
    if (path.substr(0, name.size()) != name || (path.size() > name.size() && path[name.size()] != '/'))
        return false;
    path.remove_prefix(std::min(name.size() + 1, path.size()));
    return true;
}

tk::PathStep parseIdentifier(std::string_view text)
{
    const std::string name = percentDecoded(text);
    const auto colon = name.find(':');
    tk::PathStep step;
    if (colon != std::string::npos)
        step.module = name.substr(0, colon);
    step.name = colon == std::string::npos ? name : name.substr(colon + 1);
    if (!isIdentifier(step.name) || (colon != std::string::npos && !isIdentifier(step.module)))
        throw badUri("'" + printableText(name) + "' is not a node's name");
    return step;
}

tk::PathStep parseStep(std::string_view segment)
{
    const auto equals = segment.find('=');
    tk::PathStep step = parseIdentifier(segment.substr(0, equals));
    if (equals == segment.npos)
        return step;
    step.hasKeys = true;
    for (const std::string_view key : split(segment.substr(equals + 1), ','))
        step.keys.push_back(percentDecoded(key));
    return step;
}

ResourcePath parseOperation(std::string_view name)
{
    tk::PathStep step = parseStep(name);
    if (step.hasKeys)
        throw badUri("an operation has no keys");
    if (step.module.empty())
        throw badUri("the operation '" + step.name + "' needs its module's name before it");
    return {Resource::operation, {std::move(step)}};
}

ResourcePath parseBelowRoot(std::string_view path)
{
    if (path.empty())
        return {Resource::api, {}};
    if (path == kLibraryVersion)
        return {Resource::yangLibraryVersion, {}};
    if (takeSegment(path, kData))
        return {Resource::data, path.empty() ? std::vector<tk::PathStep>() : parseSteps(path)};
    if (takeSegment(path, kOperations))
        return path.empty() ? ResourcePath{Resource::operations, {}} : parseOperation(path);
    throw unknownResource("there is no such resource");
}

} // namespace

SplitTarget splitTarget(std::string_view target)
{
    for (const std::string_view scheme : {"https://", "http://"}) {
        if (target.size() < scheme.size() || !equalsIgnoringCase(target.substr(0, scheme.size()), scheme))
            continue;
        target.remove_prefix(scheme.size());
        target.remove_prefix(std::min(target.find_first_of("/?"), target.size()));
    }
    const auto mark = target.find('?');
    if (mark == target.npos)
        return {target, std::nullopt};
    return {target.substr(0, mark), target.substr(mark + 1)};
}

ResourcePath parseResource(std::string_view path)
{
    if (path.find_first_of("#") != path.npos)
        throw badUri("a fragment does not belong into a request");
    if (path.size() > 1 && path.back() == '/')
        path.remove_suffix(1);
    if (path == kHostMeta)
        return {Resource::hostMeta, {}};
    if (takeSegment(path, kRoot))
        return parseBelowRoot(path);
    throw unknownResource("there is no such resource");
}

std::vector<tk::PathStep> parseSteps(std::string_view path)
{
    std::vector<tk::PathStep> steps;
    for (const std::string_view segment : split(path, '/'))
        steps.push_back(parseStep(segment));
    if (steps.front().module.empty())
        throw badUri("'" + steps.front().name + "' needs its module's name before it");
    return steps;
}

std::string percentDecoded(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            result += text[i];
            continue;
        }
        const int byte = encodedByte(text, i);
        if (byte < 0)
            throw badUri("'%' without two hexadecimal digits behind it");
        result += static_cast<char>(static_cast<unsigned char>(byte));
        i += 2;
    }
    if (!isUtf8(result) || result.find('\0') != std::string::npos)
        throw badUri("a percent-encoded text is not UTF-8");
    return result;
}

std::string percentEncoded(std::string_view text)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string result;
    for (const char c : text) {
        if (isUnreserved(c)) {
            result += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        result += {'%', digits[byte >> 4U], digits[byte & 0x0fU]};
    }
    return result;
}

std::string dataUri(const std::vector<tk::PathStep> &steps)
{
    std::string uri = std::string(kRoot) + "/" + std::string(kData);
    std::string_view module;
    for (const tk::PathStep &step : steps) {
        uri += '/';
        if (!step.module.empty() && step.module != module)
            uri.append(step.module).append(":");
        module = step.module.empty() ? module : std::string_view(step.module);
        uri += step.name;
        for (std::size_t i = 0; i < step.keys.size(); ++i)
            uri.append(i == 0 ? "=" : ",").append(percentEncoded(step.keys[i]));
    }
    return uri;
}

} // namespace agentd::restconf
