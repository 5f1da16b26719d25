#include "selection.h"

#include "errors.h"

namespace tk {

namespace {

const lysc_node *findField(const Context &context, const lysc_node *parent, const FieldNode &field)
{
    const lysc_node *node = nullptr;
    if (!parent) {
        const lys_module *module = ly_ctx_get_module_implemented(context.ly(), field.module.c_str());
        return module ? findTopLevel(module, field.name) : nullptr;
    }
    while ((node = nextDataChild(node, parent)))
        if (field.name == node->name &&
            (field.module.empty() ? node->module == parent->module : field.module == node->module->name))
            return node;
    return nullptr;
}

} // namespace

Selection selectFields(const Context &context, const lysc_node *parent, const std::vector<FieldNode> &fields)
{
    Selection selection;
    for (const FieldNode &field : fields) {
        const lysc_node *node = findField(context, parent, field);
        if (!node)
            throw invalidValue(parent ? schemaPath(parent) : "",
                               "fields: there is no \"" + field.name + "\" here.");
        Selection below = selectFields(context, node, field.children);
        const auto [place, isNew] = selection.children.try_emplace(node, below);
        if (!isNew && !place->second.children.empty()) {
            if (below.children.empty())
                place->second.children.clear();
            else
                place->second.children.merge(below.children);
        }
    }
    return selection;
}

lyd_node *copyWanted(const lyd_node *node, const Changes *before, const Selection &selection, unsigned depth,
                     lyd_node *parent)
{
    const bool whole = selection.children.empty() && depth == kUnlimited && !before;
    lyd_node *copy = nullptr;
    const std::uint32_t options = LYD_DUP_NO_META | (whole ? LYD_DUP_RECURSIVE : 0);
    // A node without a parent may not be given siblings of another tree: the copy stands alone then.
    if (lyd_dup_single(node, reinterpret_cast<lyd_node_inner *>(parent), options, &copy))
        throw Failure(takeErrors(LYD_CTX(node), "The data cannot be copied."));
    if (whole || depth <= 1 || !(node->schema->nodetype & LYD_NODE_INNER))
        return copy;
    const auto take = [&](const lyd_node *child) {
        const Selection *wanted = selection.of(child->schema);
        if (wanted && !isKey(child->schema))
            copyWanted(child, before, *wanted, oneLess(depth), copy);
    };
    if (before)
        for (const lyd_node *child : before->childrenBefore(node))
            take(child);
    else
        for (const lyd_node *child = lyd_child(node); child; child = child->next)
            take(child);
    return copy;
}

} // namespace tk
