// Subtree filters (RFC 6241, section 6).
#include "errors.h"
#include "filter.h"
#include "xml_schema.h"

#include <algorithm>
#include <map>

namespace tk {

namespace {

constexpr std::size_t kMostElements = 2000; // of a filter: each is compared with every sibling in the data

// A leaf that must have a value; without a namespace the name can stand for several leaves.
struct Match {
    std::vector<std::pair<const lysc_node *, std::string>> anyOf;
};

struct Wanted;

// The elements inside one element of the filter.
struct Branch {
    std::vector<Match> matches; // all must hold
    std::map<const lysc_node *, Wanted> children;
    bool wholeIfMatched = false; // nothing but matches
};

// What the filter wants of a schema node.
struct Wanted {
    bool whole = false;
    std::vector<Branch> branches;
};

bool isLeaf(const lysc_node *node)
{
    return (node->nodetype & (LYS_LEAF | LYS_LEAFLIST)) != 0;
}

// Attributes of data: there are none, so that nothing matches one.
bool hasAttributes(const pugi::xml_node &element)
{
    return std::any_of(element.attributes_begin(), element.attributes_end(),
                       [](const auto &attribute) { return !isNamespaceDeclaration(attribute); });
}

bool hasElements(const pugi::xml_node &element)
{
    return std::any_of(element.begin(), element.end(),
                       [](const auto &child) { return child.type() == pugi::node_element; });
}

class Compiler {
public:
    explicit Compiler(const ly_ctx *context)
        : context_(context)
    {
    }

    Branch compile(const pugi::xml_node &parent, const lysc_node *schema)
    {
        Branch branch;
        bool onlyMatches = true;
        for (const pugi::xml_node element : parent.children()) {
            if (element.type() != pugi::node_element)
                continue;
            if (++elements_ > kMostElements)
                throw Failure(Error{kOk, "too-big", "", "", "The filter has too many elements."});
            onlyMatches &= add(branch, element, candidates(element, schema));
        }
        branch.wholeIfMatched = onlyMatches && !branch.matches.empty();
        return branch;
    }

private:
    using Nodes = std::vector<const lysc_node *>;

    // Whether the element is a content match.
    bool add(Branch &branch, const pugi::xml_node &element, const Nodes &nodes)
    {
        if (hasAttributes(element))
            return false;
        const std::string text = trimmed(element.text().get());
        if (hasElements(element)) {
            for (const lysc_node *node : nodes)
                if (node->nodetype & LYD_NODE_INNER)
                    branch.children[node].branches.push_back(compile(element, node));
            return false;
        }
        if (text.empty()) {
            for (const lysc_node *node : nodes)
                branch.children[node].whole = true;
            return false;
        }
        Match match;
        const std::string value = withModuleName(context_, element, text);
        for (const lysc_node *node : nodes)
            if (isLeaf(node))
                if (auto canonical = canonicalValue(node, value))
                    match.anyOf.emplace_back(node, std::move(*canonical));
        branch.matches.push_back(std::move(match));
        return true;
    }

    // An element without a namespace stands for the name in all of them; so does one in that of the request
    // around it, as clients write it who leave the declaration out.
    Nodes candidates(const pugi::xml_node &element, const lysc_node *parent) const
    {
        const std::string nameSpace = namespaceOf(element);
        const bool any = nameSpace.empty() || nameSpace == kNetconfNamespace;
        Nodes nodes;
        const auto take = [&](const lysc_node *node) {
            if (localName(element) == node->name && (any || nameSpace == node->module->ns))
                nodes.push_back(node);
        };
        if (parent) {
            for (const lysc_node *node = nullptr; (node = nextDataChild(node, parent));)
                take(node);
            return nodes;
        }
        std::uint32_t index = 0;
        while (const lys_module *module = ly_ctx_get_module_iter(context_, &index))
            if (module->compiled)
                for (const lysc_node *node = nullptr;
                     (node = lys_getnext(node, nullptr, module->compiled, 0));)
                    if (!(node->nodetype & (LYS_RPC | LYS_NOTIF)))
                        take(node);
        return nodes;
    }

    const ly_ctx *context_;
    std::size_t elements_ = 0;
};

// What has to be collected of a node; nothing if the filter cannot select anything in it.
std::optional<Selection> selectionOf(const Wanted &wanted);

void addChildren(const Branch &branch, std::optional<Selection> &selection)
{
    const auto add = [&](const lysc_node *child, const Selection &below) {
        if (!selection)
            selection.emplace();
        const auto [place, isNew] = selection->children.try_emplace(child, below);
        if (!isNew)
            addSelection(place->second, below);
    };
    for (const Match &match : branch.matches)
        for (const auto &[leaf, value] : match.anyOf)
            add(leaf, {});
    for (const auto &[child, wanted] : branch.children)
        if (const auto below = selectionOf(wanted))
            add(child, *below);
}

std::optional<Selection> selectionOf(const Wanted &wanted)
{
    std::optional<Selection> selection;
    for (const Branch &branch : wanted.branches) {
        if (branch.wholeIfMatched)
            return Selection();
        addChildren(branch, selection);
    }
    return wanted.whole ? Selection() : selection;
}

// The values of all keys, if the branch states them.
std::optional<std::vector<std::string>> keysIn(const Branch &branch, const lysc_node *list)
{
    std::vector<std::string> values;
    for (const lysc_node *key = lysc_node_child(list); key && isKey(key); key = key->next) {
        const auto found =
            std::find_if(branch.matches.begin(), branch.matches.end(), [key](const Match &match) {
                return match.anyOf.size() == 1 && match.anyOf.front().first == key;
            });
        if (found == branch.matches.end())
            return std::nullopt;
        values.push_back(found->anyOf.front().second);
    }
    return values.empty() ? std::nullopt : std::optional(values);
}

// Finds the entries that a filter names by their keys, so that nothing is collected of all others.
class Narrower {
public:
    explicit Narrower(const Context &context)
        : context_(context)
    {
    }

    std::vector<Piece> take(const Branch &top)
    {
        for (const auto &[node, wanted] : top.children)
            collect({}, node, wanted);
        // A leaf at the top can be a match, too.
        for (const Match &match : top.matches)
            for (const auto &[leaf, value] : match.anyOf)
                if (!top.children.contains(leaf))
                    emit({step(leaf)}, {});
        std::stable_sort(pieces_.begin(), pieces_.end(), [](const Piece &a, const Piece &b) {
            return a.target.node().steps.size() < b.target.node().steps.size();
        });
        return std::move(pieces_);
    }

private:
    using Steps = std::vector<PathStep>;

    static PathStep step(const lysc_node *node, std::vector<std::string> keys = {})
    {
        PathStep made{node->module->name, node->name, std::move(keys), false};
        made.hasKeys = !made.keys.empty();
        return made;
    }

    static Steps longer(Steps steps, PathStep next)
    {
        steps.push_back(std::move(next));
        return steps;
    }

    static bool canNarrow(const lysc_node *node, const Wanted &wanted)
    {
        if (wanted.whole || wanted.branches.empty())
            return false;
        if (node->nodetype == LYS_LIST)
            return std::all_of(wanted.branches.begin(), wanted.branches.end(),
                               [node](const Branch &branch) { return keysIn(branch, node).has_value(); });
        const Branch &branch = wanted.branches.front();
        return wanted.branches.size() == 1 && branch.matches.empty() &&
            std::any_of(branch.children.begin(), branch.children.end(),
                        [](const auto &child) { return canNarrow(child.first, child.second); });
    }

    void collect(const Steps &above, const lysc_node *node, const Wanted &wanted)
    {
        if (!canNarrow(node, wanted)) {
            if (const auto selection = selectionOf(wanted))
                emit(longer(above, step(node)), *selection);
            return;
        }
        if (node->nodetype != LYS_LIST)
            return collectBranch(longer(above, step(node)), wanted.branches.front());
        std::map<std::vector<std::string>, Wanted> byKeys;
        for (const Branch &branch : wanted.branches)
            byKeys[*keysIn(branch, node)].branches.push_back(branch);
        for (const auto &[keys, entry] : byKeys) {
            const Steps steps = longer(above, step(node, keys));
            if (entry.branches.size() == 1 && !entry.branches.front().wholeIfMatched)
                collectBranch(steps, entry.branches.front());
            else if (const auto selection = selectionOf(entry))
                emit(steps, *selection);
        }
    }

    void collectBranch(const Steps &steps, const Branch &branch)
    {
        Branch rest;
        rest.matches = branch.matches;
        for (const auto &[child, wanted] : branch.children)
            if (!canNarrow(child, wanted))
                rest.children.emplace(child, wanted);
        std::optional<Selection> selection;
        addChildren(rest, selection);
        if (selection)
            emit(steps, *selection);
        for (const auto &[child, wanted] : branch.children)
            if (canNarrow(child, wanted))
                collect(steps, child, wanted);
    }

    void emit(const Steps &steps, const Selection &selection)
    {
        try {
            pieces_.push_back({resolveTarget(context_, steps), selection});
        } catch (const Failure &) {
            // A value that no entry can have selects none.
        }
    }

    const Context &context_;
    std::vector<Piece> pieces_;
};

class SubtreeFilter : public DataFilter {
public:
    SubtreeFilter(const Context &context, const std::string &document)
        : context_(context)
    {
        pugi::xml_document parsed;
        loadDocument(parsed, document);
        top_ = Compiler(context.ly()).compile(parsed.document_element(), nullptr);
        top_.wholeIfMatched = false;
    }

    std::vector<Piece> pieces() const override { return Narrower(context_).take(top_); }

    Selected select(const lyd_node *tree) const override
    {
        Selected selected;
        selectIn(tree, top_, selected);
        return selected;
    }

private:
    enum class Result { nothing, some, all };

    static Result selectIn(const lyd_node *first, const Branch &branch, Selected &selected)
    {
        std::vector<const lyd_node *> matched;
        for (const Match &match : branch.matches) {
            const lyd_node *leaf = findMatch(first, match);
            if (!leaf)
                return Result::nothing;
            matched.push_back(leaf);
        }
        if (branch.wholeIfMatched)
            return Result::all;
        selected.whole.insert(matched.begin(), matched.end());
        bool any = !matched.empty();
        for (const lyd_node *node = branch.children.empty() ? nullptr : first; node; node = node->next) {
            const auto wanted = branch.children.find(node->schema);
            if (wanted != branch.children.end())
                any |= selectNode(node, wanted->second, selected);
        }
        return any ? Result::some : Result::nothing;
    }

    static bool selectNode(const lyd_node *node, const Wanted &wanted, Selected &selected)
    {
        bool whole = wanted.whole, any = false;
        for (const Branch &branch : wanted.branches) {
            const Result result = whole ? Result::nothing : selectIn(lyd_child(node), branch, selected);
            whole |= result == Result::all;
            any |= result == Result::some;
        }
        if (whole)
            selected.whole.insert(node);
        else if (any)
            selected.partly.insert(node);
        return whole || any;
    }

    static const lyd_node *findMatch(const lyd_node *first, const Match &match)
    {
        for (const auto &[schema, value] : match.anyOf) {
            lyd_node *found = nullptr;
            if (!first)
                continue;
            const bool many = schema->nodetype == LYS_LEAFLIST;
            lyd_find_sibling_val(first, schema, many ? value.c_str() : nullptr, many ? value.size() : 0,
                                 &found);
            if (found && value == lyd_get_value(found))
                return found;
        }
        return nullptr;
    }

    const Context &context_;
    Branch top_;
};

} // namespace

std::unique_ptr<DataFilter> makeSubtreeFilter(const Context &context, const std::string &document)
{
    return std::make_unique<SubtreeFilter>(context, document);
}

std::unique_ptr<DataFilter> makeFilter(const Context &context, const Filter &filter)
{
    switch (filter.kind) {
    case Filter::Kind::subtree:
        return makeSubtreeFilter(context, filter.text);
    case Filter::Kind::xpath:
        return makeXPathFilter(context, filter);
    case Filter::Kind::none:
        break;
    }
    return nullptr;
}

Target wholeDatastore(const Context &context)
{
    return resolveTarget(context, {});
}

void addSelection(Selection &selection, const Selection &more)
{
    if (selection.children.empty())
        return;
    if (more.children.empty())
        return selection.children.clear();
    for (const auto &[child, below] : more.children) {
        const auto [place, isNew] = selection.children.try_emplace(child, below);
        if (!isNew)
            addSelection(place->second, below);
    }
}

void keepSelected(lyd_node **root, const Selected &selected)
{
    for (lyd_node *node = *root, *next = nullptr; node; node = next) {
        next = node->next;
        if (selected.whole.contains(node) || (isKey(node->schema) && parentOf(node)))
            continue;
        if (selected.partly.contains(node)) {
            lyd_node *first = lyd_child(node);
            keepSelected(&first, selected);
            continue;
        }
        if (*root == node)
            *root = next;
        lyd_free_tree(node);
    }
}

} // namespace tk
