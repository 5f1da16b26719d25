// Media types: what a client sends and what it wants to read. Pure functions.
#pragma once

#include "toolkit/host.h"

#include <optional>
#include <span>
#include <string_view>

namespace agentd::restconf {

// A type that the server can answer in.
struct Offer {
    std::string_view mediaType;
    tk::Encoding encoding;
};

// For data and errors: the types of RFC 8040, and their plain names for clients that know no better.
std::span<const Offer> dataOffers();
// For host-meta (RFC 6415).
std::span<const Offer> hostMetaOffers();

// What an Accept header wants of the offers: the highest quality, then the more specific range, then the
// encoding of `preferred`, then the order of the offers. Without a header the first offer in the preferred
// encoding. Malformed ranges count as absent. Nothing: none is acceptable.
std::optional<Offer> negotiate(std::optional<std::string_view> accept, std::span<const Offer> offers,
                               tk::Encoding preferred);

// The encoding that a Content-Type stands for, its parameters and case aside; nothing: no data type.
std::optional<tk::Encoding> encodingOf(std::string_view contentType);

// The types that a PATCH takes, for the header of that name.
inline constexpr std::string_view kAcceptPatch = "application/yang-data+json, application/yang-data+xml";

} // namespace agentd::restconf
