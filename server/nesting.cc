#include "server/nesting.h"

#include <vector>

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

// One markup of XML: what it does to the depth, where it ends, and how many attributes it has.
struct Markup {
    int change = 0;
    std::size_t end = 0;
    unsigned attributes = 0;
};

// The tag at `at`: up to the next ">" that is in no attribute's value.
Markup tagAt(std::string_view text, std::size_t at)
{
    Markup tag;
    tag.change = startsWith(text, at, "</") ? -1 : 1;
    char quote = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (quote) {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
            ++tag.attributes;
        } else if (c == '>') {
            break;
        }
    }
    if (tag.change > 0 && at < text.size() && text[at - 1] == '/')
        tag.change = 0;
    tag.end = at + 1;
    return tag;
}

Markup markupAt(std::string_view text, std::size_t at)
{
    if (startsWith(text, at, "<!--"))
        return {0, behind(text, at + 4, "-->")};
    if (startsWith(text, at, "<![CDATA["))
        return {0, behind(text, at, "]]>")};
    if (startsWith(text, at, "<?"))
        return {0, behind(text, at, "?>")};
    return tagAt(text, at);
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

std::optional<std::string> xmlNestingFault(std::string_view document, unsigned deepest,
                                           unsigned mostAttributes)
{
    std::vector<unsigned> open; // of each element around, how many attributes count inside
    for (std::size_t at = document.find('<'); at < document.size(); at = document.find('<', at)) {
        if (startsWith(document, at, "<!DOCTYPE"))
            return "the document has a document type declaration";
        const Markup markup = markupAt(document, at);
        const unsigned inScope = (open.empty() ? 0 : open.back()) + markup.attributes;
        if (inScope > mostAttributes)
            return "an element of the document has more than " + std::to_string(mostAttributes) +
                " attributes, those of the elements around it counted in";
        if (markup.change > 0) {
            open.push_back(inScope);
            if (open.size() > deepest)
                return tooDeep(deepest);
        }
        if (markup.change < 0 && !open.empty())
            open.pop_back();
        at = markup.end;
    }
    return std::nullopt;
}

} // namespace agentd
