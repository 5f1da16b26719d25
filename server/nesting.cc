#include "server/nesting.h"

#include <algorithm>

namespace agentd {
namespace {

std::string tooDeep(unsigned deepest)
{
    return "the document is nested more than " + std::to_string(deepest) + " levels deep";
}

// Past the closing quote of the string that begins at `at`, or past the end.
std::size_t endOfString(std::string_view text, std::size_t at)
{
    for (++at; at < text.size() && text[at] != '"'; ++at) {
        if (text[at] == '\\')
            ++at;
    }
    return at + 1;
}

// Past the next `end` behind `at`, or the end of the text.
std::size_t behind(std::string_view text, std::size_t at, std::string_view end)
{
    const auto found = text.find(end, at);
    return found == text.npos ? text.size() : found + end.size();
}

bool startsWith(std::string_view text, std::size_t at, std::string_view start)
{
    return text.substr(at, start.size()) == start;
}

// The place of the ">" that closes the tag at `at`, quoted attribute values skipped.
std::size_t closeOfTag(std::string_view text, std::size_t at)
{
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote)
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>')
            break;
    }
    return at;
}

// One markup of XML at `at`: what it does to the depth, and where it ends.
struct Markup {
    int change = 0;
    std::size_t end = 0;
};

Markup markupAt(std::string_view text, std::size_t at)
{
    if (startsWith(text, at, "<!--"))
        return {0, behind(text, at + 4, "-->")};
    if (startsWith(text, at, "<![CDATA["))
        return {0, behind(text, at, "]]>")};
    if (startsWith(text, at, "<?"))
        return {0, behind(text, at, "?>")};
    const std::size_t close = closeOfTag(text, at);
    if (startsWith(text, at, "</"))
        return {-1, close + 1};
    const bool isEmptyElement = close < text.size() && text[close - 1] == '/';
    return {isEmptyElement ? 0 : 1, close + 1};
}

} // namespace

std::optional<std::string> jsonNestingFault(std::string_view document, unsigned deepest)
{
    unsigned depth = 0;
    for (std::size_t at = 0; at < document.size();) {
        const char c = document[at];
        if (c == '"') {
            at = endOfString(document, at);
            continue;
        }
        if ((c == '{' || c == '[') && ++depth > deepest)
            return tooDeep(deepest);
        if ((c == '}' || c == ']') && depth > 0)
            --depth;
        ++at;
    }
    return std::nullopt;
}

std::optional<std::string> xmlNestingFault(std::string_view document, unsigned deepest)
{
    unsigned depth = 0;
    for (std::size_t at = document.find('<'); at < document.size(); at = document.find('<', at)) {
        if (startsWith(document, at, "<!DOCTYPE"))
            return "the document has a document type declaration";
        const Markup markup = markupAt(document, at);
        if (markup.change > 0 && ++depth > deepest)
            return tooDeep(deepest);
        if (markup.change < 0 && depth > 0)
            --depth;
        at = markup.end;
    }
    return std::nullopt;
}

} // namespace agentd
