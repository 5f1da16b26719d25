// Which methods a resource has, and what each of them means there: one table for the dispatch and for every
// Allow header, so that the two cannot disagree.
#pragma once

#include "server/restconf/uri.h"

#include <boost/beast/http/verb.hpp>
#include <optional>
#include <string>

namespace agentd::restconf {

enum class ResourceKind {
    hostMeta,
    api,
    libraryVersion,
    operationList,
    datastore,
    parent,   // configuration in which something can be created: a container, an entry of a list
    value,    // a leaf, an entry of a leaf-list
    sequence, // a list or leaf-list as a whole
    state,
    operation, // an rpc or an action
};

enum class Action {
    readHostMeta,
    readApi,
    readLibraryVersion,
    readOperations,
    read,
    create,
    replace,
    merge,
    remove,
    invoke,
    describe, // OPTIONS: answers with the methods
};

// The kind of a resource that the schema knows. 404: an operation as data, or data as an operation.
ResourceKind kindOf(Resource resource, const std::optional<tk::Target> &target);

std::optional<Action> actionFor(ResourceKind kind, boost::beast::http::verb verb);

// The value of an Allow header; `refused` is left out of it, if not unknown.
std::string allowOf(ResourceKind kind, boost::beast::http::verb refused = boost::beast::http::verb::unknown);

} // namespace agentd::restconf
