// From the text of a request's target to what it names, and back. Pure functions; they refuse what they
// cannot read with a RequestError, whatever the bytes are.
#pragma once

#include "toolkit/host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace agentd::restconf {

inline constexpr std::string_view kRoot = "/restconf";

enum class Resource {
    hostMeta, // /.well-known/host-meta
    api,      // /restconf
    yangLibraryVersion,
    operations, // the list of them
    operation,  // one of them
    data,       // the datastore (no steps) or a resource in it
};

struct ResourcePath {
    Resource resource;
    std::vector<tk::PathStep> steps; // operation: one; data: any number
};

// A target cut in two; the absolute form ("https://host/path") has lost scheme and host.
struct SplitTarget {
    std::string_view path;
    std::optional<std::string_view> query; // what follows the "?"
};
SplitTarget splitTarget(std::string_view target);

// The resource of a path. 404: nothing begins like this. 400: a malformed step. One "/" at the end is
// ignored.
ResourcePath parseResource(std::string_view path);

// The steps of a data path, "mod:a/b=k1,k2/c": what follows "/restconf/data/" or stands in `point`.
// The first step must name its module.
std::vector<tk::PathStep> parseSteps(std::string_view path);

// Undoes percent-encoding. Refuses "%" without two digits, and what isn't UTF-8 or holds a null byte then.
std::string percentDecoded(std::string_view text);
// Encodes everything but the unreserved characters of RFC 3986.
std::string percentEncoded(std::string_view text);

// The path of a data resource, "/restconf/data/mod:a/b=k1,k2". A module is named where it changes.
std::string dataUri(const std::vector<tk::PathStep> &steps);

} // namespace agentd::restconf
