// The documents by which a client finds its way: host-meta, the API resource, the list of operations.
#pragma once

#include "toolkit/host.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace agentd::restconf {

struct OperationName {
    std::string module;
    std::string nameSpace;
    std::string name;
};

std::string hostMetaDocument(tk::Encoding encoding);
// `isShallow`: a depth of 1 was asked for, so nothing inside.
std::string apiDocument(tk::Encoding encoding, const std::string &libraryVersion, bool isShallow);
std::string libraryVersionDocument(tk::Encoding encoding, const std::string &libraryVersion);
std::string operationsDocument(tk::Encoding encoding, const std::vector<OperationName> &operations);

} // namespace agentd::restconf
