#include "server/restconf/fields.h"

#include "server/restconf/errors.h"
#include "server/text.h"

#include <algorithm>
#include <string>

namespace agentd::restconf {
namespace {

constexpr unsigned kDeepest = 64; // names above one another; no model comes near

// fields = path [ "(" fields ")" ] [ ";" fields ], path = name [ "/" path ]; like most clients, this takes
// more behind a parenthesis too: "a(b);c".
class Parser {
public:
    explicit Parser(std::string_view text)
        : text_(text)
    {
    }

    std::vector<tk::FieldNode> all()
    {
        auto nodes = list(0);
        if (at_ != text_.size())
            refuse("';' or the end");
        return nodes;
    }

private:
    std::vector<tk::FieldNode> list(unsigned depth);
    tk::FieldNode path(unsigned depth);
    tk::FieldNode name();
    std::string_view identifier();
    bool take(char wanted);
    [[noreturn]] void refuse(const std::string &expected) const;

    std::string_view text_;
    std::size_t at_ = 0;
};

// Puts the node among its siblings, into an equal one if there is one.
void merge(std::vector<tk::FieldNode> &siblings, tk::FieldNode node)
{
    const auto same = std::find_if(siblings.begin(), siblings.end(), [&](const tk::FieldNode &other) {
        return other.name == node.name && other.module == node.module;
    });
    if (same == siblings.end()) {
        siblings.push_back(std::move(node));
    } else if (same->children.empty() || node.children.empty()) {
        same->children.clear();
    } else {
        for (tk::FieldNode &child : node.children)
            merge(same->children, std::move(child));
    }
}

std::vector<tk::FieldNode> Parser::list(unsigned depth)
{
    std::vector<tk::FieldNode> nodes;
    do
        merge(nodes, path(depth));
    while (take(';'));
    return nodes;
}

tk::FieldNode Parser::path(unsigned depth)
{
    if (depth >= kDeepest)
        refuse("less nesting");
    tk::FieldNode node = name();
    if (take('/')) {
        node.children.push_back(path(depth + 1));
    } else if (take('(')) {
        node.children = list(depth + 1);
        if (!take(')'))
            refuse("';' or ')'");
    }
    return node;
}

tk::FieldNode Parser::name()
{
    tk::FieldNode node;
    node.name = identifier();
    if (take(':')) {
        node.module = std::move(node.name);
        node.name = identifier();
    }
    return node;
}

std::string_view Parser::identifier()
{
    const auto rest = text_.substr(at_);
    const auto end = std::find_if_not(rest.begin(), rest.end(), isIdentifierCharacter);
    const auto found = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    if (!isIdentifier(found))
        refuse("a node's name");
    at_ += found.size();
    return found;
}

bool Parser::take(char wanted)
{
    if (at_ >= text_.size() || text_[at_] != wanted)
        return false;
    ++at_;
    return true;
}

void Parser::refuse(const std::string &expected) const
{
    throw badUri("fields: expected " + expected + " at character " + std::to_string(at_ + 1));
}

} // namespace

std::vector<tk::FieldNode> parseFields(std::string_view expression)
{
    return Parser(expression).all();
}

} // namespace agentd::restconf
