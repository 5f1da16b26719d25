// The grammar of the `fields` parameter (RFC 8040, section 4.8.3).
#pragma once

#include "toolkit/host.h"

#include <string_view>
#include <vector>

namespace agentd::restconf {

// "a;b/c(d;e)" as a tree in which each name stands once below its parent; a name that is asked for as a whole
// and in part is there as a whole. Throws RequestError (400) saying where it stopped to understand.
std::vector<tk::FieldNode> parseFields(std::string_view expression);

} // namespace agentd::restconf
