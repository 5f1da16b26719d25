// Query parameters (RFC 8040, section 4.8), each tied to the requests that it belongs to.
#pragma once

#include "toolkit/host.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace agentd::restconf {

// What a request may be asked with.
enum class QueryUse {
    none,   // no parameter at all
    api,    // GET of the API resource: depth
    read,   // GET of data: content, depth, fields, with-defaults
    insert, // POST or PUT of data: insert, point
};

struct Query {
    tk::Content content = tk::Content::all;
    unsigned depth = 0; // 0: unbounded
    std::vector<tk::FieldNode> fields;
    tk::WithDefaults withDefaults = tk::WithDefaults::explicitOnly;
    std::optional<tk::InsertWhere> insert;
    std::vector<tk::PathStep> point; // with insert before and after
};

// Reads what follows the "?". Throws RequestError (400): unknown, doubled or misplaced parameters, bad
// values, `point` without insert before or after and the other way round.
Query parseQuery(std::optional<std::string_view> text, QueryUse use);

} // namespace agentd::restconf
