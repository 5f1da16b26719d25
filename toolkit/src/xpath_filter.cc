// Filters that are XPath expressions (RFC 6241, section 8.9).
#include "errors.h"
#include "filter.h"
#include "xml_schema.h"

#include <algorithm>
#include <cctype>

namespace tk {

namespace {

constexpr std::size_t kLongestExpression = 8192;
constexpr unsigned kMostSearches = 16;

bool startsName(char c)
{
    return std::isalpha(static_cast<unsigned char>(c)) || c == '_';
}

bool isInName(char c)
{
    return startsName(c) || std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '.';
}

std::size_t endOfName(std::string_view text, std::size_t at)
{
    while (at < text.size() && isInName(text[at]))
        ++at;
    return at;
}

// What makes an expression dearer than the nodes it names: "//", "*", node() and the axes that go far look at
// everything, and in a predicate they do so again for every node.
struct Searches {
    unsigned count = 0;
    bool hasWildcards = false;
    bool hasPredicates = false;
    bool isInPredicate = false;
};

bool isWildcard(std::string_view text, std::size_t at)
{
    const auto before = at == 0 ? text.npos : text.find_last_not_of(" \t\r\n", at - 1);
    return text[at] == '*' &&
        (before == text.npos || std::string_view("/[(,:@|=<>+-").find(text[before]) != text.npos);
}

bool isFarAxis(std::string_view text, std::size_t at, std::size_t end)
{
    const std::string_view name = text.substr(at, end - at), behind = text.substr(end);
    return behind.starts_with("::") &&
        (name.starts_with("descendant") || name.starts_with("ancestor") || name.starts_with("following") ||
         name.starts_with("preceding"));
}

Searches searchesOf(std::string_view text)
{
    Searches found;
    unsigned depth = 0;
    for (std::size_t at = 0, end = 0; at < text.size(); at = end) {
        end = at + 1;
        bool isSearch = false, isAny = false;
        if (text[at] == '\'' || text[at] == '"') {
            end = std::min(text.find(text[at], at + 1), text.size() - 1) + 1;
        } else if (startsName(text[at])) {
            end = endOfName(text, at);
            isAny = text.substr(at, end - at) == "node" && text.substr(end).starts_with("(");
            isSearch = isAny || isFarAxis(text, at, end);
        } else {
            isAny = isWildcard(text, at);
            isSearch = isAny || text.substr(at).starts_with("//");
            depth += text[at] == '[' ? 1 : 0;
            depth -= text[at] == ']' && depth > 0 ? 1 : 0;
        }
        found.count += isSearch ? 1 : 0;
        found.hasWildcards = found.hasWildcards || isAny;
        found.hasPredicates = found.hasPredicates || depth > 0;
        found.isInPredicate = found.isInPredicate || (isSearch && depth > 0);
    }
    return found;
}

// Prefixes mean what the request says; libyang takes names of modules for them.
class PrefixTranslator {
public:
    PrefixTranslator(const ly_ctx *context, const Filter &filter)
        : context_(context)
        , filter_(filter)
    {
    }

    std::string translate() const
    {
        const std::string_view text = filter_.text;
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            std::size_t end = at + 1;
            if (text[at] == '\'' || text[at] == '"') {
                const auto close = text.find(text[at], at + 1);
                end = close == text.npos ? text.size() : close + 1;
            } else if (startsName(text[at])) {
                end = endOfName(text, at);
                if (isPrefix(text, end)) {
                    result += moduleOf(std::string(text.substr(at, end - at)));
                    at = end;
                    continue;
                }
            }
            result.append(text.substr(at, end - at));
            at = end;
        }
        return result;
    }

private:
    // A name before one colon; before two it is an axis.
    static bool isPrefix(std::string_view text, std::size_t end)
    {
        return end + 1 < text.size() && text[end] == ':' && text[end + 1] != ':';
    }

    std::string moduleOf(const std::string &prefix) const
    {
        const auto declared =
            std::find_if(filter_.namespaces.begin(), filter_.namespaces.end(),
                         [&](const auto &declaration) { return declaration.first == prefix; });
        if (declared == filter_.namespaces.end())
            throw invalidValue({}, "The prefix \"" + prefix + "\" of the filter is not declared.");
        const lys_module *module = ly_ctx_get_module_implemented_ns(context_, declared->second.c_str());
        if (!module)
            throw unknownNamespace({}, "filter", declared->second);
        return module->name;
    }

    const ly_ctx *context_;
    const Filter &filter_;
};

struct SetFree {
    void operator()(ly_set *set) const { ly_set_free(set, nullptr); }
};
using Set = std::unique_ptr<ly_set, SetFree>;

// The schema nodes that have to be there.
struct Needed {
    bool whole = false;
    std::map<const lysc_node *, Needed> children;

    Needed &at(const lysc_node *node)
    {
        const lysc_node *parent = dataParent(node);
        return (parent ? at(parent) : *this).children[node];
    }

    Selection selection() const
    {
        Selection made;
        if (!whole)
            for (const auto &[node, below] : children)
                made.children.emplace(node, below.selection());
        return made;
    }
};

// A path such as /m:a/b[key='x']/c with nothing in it but names and values of keys.
class PlainPath {
public:
    PlainPath(const Context &context, const std::string &text)
        : context_(context)
        , text_(text)
    {
    }

    // The place down to which all keys are given, and what is wanted from there on. Nothing: another
    // expression.
    std::optional<Piece> parse()
    {
        std::vector<PathStep> steps;
        bool isOpen = false; // a list without its keys was passed
        while (at_ < text_.size()) {
            if (!parseStep())
                return std::nullopt;
            isOpen = isOpen || (node_->nodetype == LYS_LIST && keys_.empty());
            if (isOpen)
                below_.push_back(node_);
            else
                steps.push_back({node_->module->name, node_->name, keys_, !keys_.empty()});
        }
        if (!node_)
            return std::nullopt;
        try {
            return pieceAt(steps);
        } catch (const Failure &) {
            return std::nullopt;
        }
    }

private:
    bool parseStep()
    {
        if (!take('/') || at_ >= text_.size() || !startsName(text_[at_]))
            return false;
        std::string name = takeName(), module;
        if (take(':')) {
            module = std::exchange(name, takeName());
        } else if (node_) {
            module = node_->module->name;
        }
        const lys_module *found = ly_ctx_get_module_implemented(context_.ly(), module.c_str());
        node_ = found ? lys_find_child(node_, found, name.c_str(), 0, 0, 0) : nullptr;
        keys_.clear();
        return node_ && !(node_->nodetype & (LYS_RPC | LYS_ACTION | LYS_NOTIF)) && parseKeys();
    }

    // All keys in any order, or no predicate.
    bool parseKeys()
    {
        std::map<std::string, std::string> given;
        while (take('[')) {
            skipBlanks();
            std::string name = takeName();
            if (take(':'))
                name = takeName();
            skipBlanks();
            if (name.empty() || !take('='))
                return false;
            skipBlanks();
            const char quote = at_ < text_.size() ? text_[at_] : '\0';
            const auto close = quote == '\'' || quote == '"' ? text_.find(quote, at_ + 1) : text_.npos;
            if (close == text_.npos)
                return false;
            given.emplace(name, text_.substr(at_ + 1, close - at_ - 1));
            at_ = close + 1;
            skipBlanks();
            if (!take(']'))
                return false;
        }
        if (given.empty())
            return true;
        for (const lysc_node *key = lysc_node_child(node_); key && isKey(key); key = key->next) {
            const auto value = given.find(key->name);
            if (value == given.end())
                return false;
            keys_.push_back(value->second);
        }
        return node_->nodetype == LYS_LIST && keys_.size() == given.size();
    }

    Piece pieceAt(const std::vector<PathStep> &steps) const
    {
        Selection selection;
        for (auto node = below_.rbegin(); node != below_.rend(); ++node) {
            if (node + 1 == below_.rend())
                break; // the list itself is the piece's target
            Selection above;
            above.children.emplace(*node, std::move(selection));
            selection = std::move(above);
        }
        std::vector<PathStep> path = steps;
        if (!below_.empty())
            path.push_back({below_.front()->module->name, below_.front()->name, {}, false});
        return {resolveTarget(context_, path), std::move(selection)};
    }

    bool take(char c)
    {
        if (at_ >= text_.size() || text_[at_] != c)
            return false;
        ++at_;
        return true;
    }

    void skipBlanks()
    {
        while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_])))
            ++at_;
    }

    std::string takeName()
    {
        const auto end = at_ < text_.size() && startsName(text_[at_]) ? endOfName(text_, at_) : at_;
        const std::string name = text_.substr(at_, end - at_);
        at_ = end;
        return name;
    }

    const Context &context_;
    const std::string &text_;
    std::size_t at_ = 0;
    const lysc_node *node_ = nullptr;
    std::vector<std::string> keys_;
    std::vector<const lysc_node *> below_;
};

class XPathFilter : public DataFilter {
public:
    XPathFilter(const Context &context, const Filter &filter)
        : context_(context)
    {
        if (filter.text.size() > kLongestExpression)
            throw Failure(Error{kOk, "too-big", "", "", "The expression is too long."});
        const Searches searches = searchesOf(filter.text);
        if (searches.isInPredicate || searches.count > kMostSearches)
            throw Failure(
                Error{kOk, "too-big", "", "", "The expression searches through everything too often."});
        expression_ = PrefixTranslator(context.ly(), filter).translate();
        isWide_ = searches.hasWildcards && searches.hasPredicates;
        if (!isWide_)
            find(lys_find_xpath); // what cannot be read is refused before anything is collected
    }

    std::vector<Piece> pieces() const override
    {
        if (auto piece = PlainPath(context_, expression_).parse())
            return {std::move(*piece)};
        // libyang would take seconds to see which parts of the schema it may mean.
        if (isWide_)
            return {{wholeDatastore(context_), {}}};
        Needed needed;
        const Set atoms = find(lys_find_xpath_atoms), results = find(lys_find_xpath);
        for (std::uint32_t i = 0; atoms && i < atoms->count; ++i)
            add(needed, atoms->snodes[i]);
        for (std::uint32_t i = 0; results && i < results->count; ++i)
            if (Needed *at = add(needed, results->snodes[i]))
                at->whole = true;
        if (needed.children.empty())
            return {};
        return {{wholeDatastore(context_), needed.selection()}};
    }

    Selected select(const lyd_node *tree) const override
    {
        Selected selected;
        if (!tree)
            return selected;
        const Set found = evaluate(tree, expression_);
        // Of a number, a text or a truth value nothing is found, too: those do not go with a union.
        if (found->count == 0)
            evaluate(tree, "(" + expression_ + ")|(" + expression_ + ")");
        for (std::uint32_t i = 0; i < found->count; ++i) {
            selected.whole.insert(found->dnodes[i]);
            for (const lyd_node *up = parentOf(found->dnodes[i]); up; up = parentOf(up))
                selected.partly.insert(up);
        }
        return selected;
    }

private:
    using Search = LY_ERR (*)(const ly_ctx *, const lysc_node *, const char *, std::uint32_t, ly_set **);

    Set find(Search search) const
    {
        ly_set *set = nullptr;
        clearErrors(context_.ly());
        if (search(context_.ly(), nullptr, expression_.c_str(), 0, &set))
            throw unreadable();
        clearErrors(context_.ly());
        return Set(set);
    }

    Set evaluate(const lyd_node *tree, const std::string &expression) const
    {
        ly_set *set = nullptr;
        clearErrors(context_.ly());
        if (lyd_find_xpath4(nullptr, tree, expression.c_str(), LY_VALUE_JSON, nullptr, nullptr, &set))
            throw unreadable();
        return Set(set);
    }

    Failure unreadable() const
    {
        const auto errors = takeErrors(context_.ly(), "The expression selects no nodes.");
        return invalidValue({}, "The filter cannot be evaluated: " + errors.front().message);
    }

    // Null for what holds no data of the datastore.
    static Needed *add(Needed &needed, const lysc_node *node)
    {
        if (node->nodetype & (LYS_CHOICE | LYS_CASE))
            return nullptr;
        for (const lysc_node *up = node; up; up = up->parent)
            if (up->nodetype & (LYS_RPC | LYS_ACTION | LYS_NOTIF | LYS_INPUT | LYS_OUTPUT))
                return nullptr;
        return &needed.at(node);
    }

    const Context &context_;
    std::string expression_;
    bool isWide_ = false;
};

} // namespace

std::unique_ptr<DataFilter> makeXPathFilter(const Context &context, const Filter &filter)
{
    return std::make_unique<XPathFilter>(context, filter);
}

} // namespace tk
