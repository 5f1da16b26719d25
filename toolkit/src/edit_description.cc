// An edit written down, so that it can be applied to similar data later.
#include "host_impl.h"
#include "netconf_edit.h"

#include <algorithm>
#include <unordered_map>

namespace tk {

namespace {

constexpr char kReplace[] = " nc:operation=\"replace\"", kRemove[] = " nc:operation=\"remove\"";

std::string attributeText(const std::string &value)
{
    std::string text;
    for (const char c : value) {
        if (c == '&')
            text += "&amp;";
        else if (c == '<')
            text += "&lt;";
        else if (c == '"')
            text += "&quot;";
        else
            text += c;
    }
    return text;
}

// The node with all that is in it, with more attributes on its element.
std::string whole(const lyd_node *node, const std::string &attributes)
{
    std::string text = printNodes(node, Encoding::xml, LYD_PRINT_SHRINK);
    text.insert(text.find_first_of(" />"), attributes);
    return text;
}

std::string keysOf(const lyd_node *node)
{
    std::string text;
    if (node->schema->nodetype == LYS_LIST)
        for (const lyd_node *key = lyd_child(node); key && isKey(key->schema); key = key->next)
            text += whole(key, {});
    return text;
}

// The element without its content, but for the keys.
std::string around(const lyd_node *node, const std::string &attributes, const std::string &inner)
{
    const std::string name = node->schema->name;
    return "<" + name + " xmlns=\"" + attributeText(node->schema->module->ns) + "\"" + attributes + ">" +
        keysOf(node) + inner + "</" + name + ">";
}

// Where the user put an instance.
std::string placeOf(const lyd_node *node)
{
    if (!isUserOrdered(node->schema))
        return {};
    const lyd_node *previous = previousSibling(node);
    if (!previous || previous->schema != node->schema)
        return " yang:insert=\"first\"";
    if (node->schema->nodetype == LYS_LEAFLIST)
        return " yang:insert=\"after\" yang:value=\"" + attributeText(lyd_get_value(previous)) + "\"";
    std::string keys;
    for (const lyd_node *key = lyd_child(previous); key && isKey(key->schema); key = key->next)
        keys += keyPredicate(key->schema->name, lyd_get_value(key));
    return " yang:insert=\"after\" yang:key=\"" + attributeText(keys) + "\"";
}

bool removesAll(const ChangeNode &node)
{
    return node.effective == Ask::del || node.effective == Ask::remove || node.effective == Ask::replace;
}

std::string describe(const ChangeNode &node);

// What was taken out of a container one by one is left out one by one: it may hold more elsewhere.
std::string describeTakenOut(const lyd_node *node)
{
    if (isPlainContainer(node->schema)) {
        std::string inner;
        for (const lyd_node *child = lyd_child(node); child; child = child->next)
            inner += describeTakenOut(child);
        return inner.empty() ? inner : around(node, {}, inner);
    }
    return node->schema->nodetype == LYS_LEAFLIST ? whole(node, kRemove) : around(node, kRemove, {});
}

// Instances that are placed behind one another come in that order.
std::vector<const ChangeNode *> inOrder(const ChangeNode &node)
{
    std::vector<const ChangeNode *> plain, placed;
    for (const auto &child : node.children)
        (child->after && isUserOrdered(child->schema) ? placed : plain).push_back(child.get());
    if (placed.size() > 1) {
        std::unordered_map<const lyd_node *, std::size_t> positions;
        for (const lyd_node *at = lyd_first_sibling(placed.front()->after); at; at = at->next)
            positions.emplace(at, positions.size());
        std::sort(placed.begin(), placed.end(), [&](const ChangeNode *a, const ChangeNode *b) {
            return positions[a->after] < positions[b->after];
        });
    }
    plain.insert(plain.end(), placed.begin(), placed.end());
    return plain;
}

std::string describeChildren(const ChangeNode &node)
{
    std::string text;
    for (const ChangeNode *child : inOrder(node))
        text += describe(*child);
    return text;
}

std::string describeDeleted(const ChangeNode &node)
{
    if (!isPlainContainer(node.schema))
        return describeTakenOut(node.before);
    if (removesAll(node))
        return around(node.before, kRemove, {});
    std::string inner = describeChildren(node);
    for (const lyd_node *child = lyd_child(node.before); child; child = child->next)
        inner += describeTakenOut(child);
    return inner.empty() ? inner : around(node.before, {}, inner);
}

std::string describe(const ChangeNode &node)
{
    if (node.isDeleted())
        return describeDeleted(node);
    const bool isReplaced = node.effective == Ask::replace;
    const bool isLeaf = isLeafKind(node.schema);
    if (node.isCreated() || isLeaf || isReplaced) {
        const bool replaces = !isLeaf && (isReplaced || !isPlainContainer(node.schema));
        return whole(node.after, (replaces ? kReplace : "") + placeOf(node.after));
    }
    const std::string inner = describeChildren(node);
    if (inner.empty() && !node.moved)
        return {};
    return around(node.after, node.moved ? placeOf(node.after) : "", inner);
}

} // namespace

std::string describeEdit(const ChangeNode &root, const lyd_node *tree)
{
    const bool replaces = root.effective == Ask::replace;
    const std::string children = replaces ? "" : describeChildren(root);
    if (children.empty() && !replaces)
        return {};
    const std::string name = replaces ? "replacement" : "edit";
    std::string text =
        "<" + name + " xmlns:nc=\"" + kNetconfNamespace + "\" xmlns:yang=\"" + kYangNamespace + "\">";
    text += children;
    for (const lyd_node *node = replaces ? tree : nullptr; node; node = node->next)
        text += whole(node, {});
    return text + "</" + name + ">";
}

} // namespace tk
