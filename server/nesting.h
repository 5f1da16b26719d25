// Bounds on the shape of a request's document before a parser that recurses sees it. Shared by all front
// ends.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace agentd {

// The deepest YANG path has some fifteen levels.
inline constexpr unsigned kDeepestDocument = 64;
// Each may declare a namespace, and whoever resolves a prefix looks through all that are in scope.
inline constexpr unsigned kMostAttributes = 512;

// Scan the document for objects, arrays or elements inside one another. They return what is wrong with it, or
// nothing. Whether it is well-formed is the parser's business; the XML scan also refuses a document type
// declaration, with which a few bytes can stand for gigabytes, and masses of attributes in scope.
std::optional<std::string> jsonNestingFault(std::string_view document, unsigned deepest = kDeepestDocument);
std::optional<std::string> xmlNestingFault(std::string_view document, unsigned deepest = kDeepestDocument,
                                           unsigned mostAttributes = kMostAttributes);

} // namespace agentd
