#include "target.h"

#include "errors.h"
#include "schema.h"

#include <cstdlib>
#include <cstring>

namespace tk {

namespace {

using Step = Target::Node::Step;

const lysc_node *findDataChild(const lysc_node *parent, const lys_module *module, const PathStep &wanted)
{
    const lysc_node *node = nullptr;
    while ((node = lys_getnext(node, parent, parent ? nullptr : module->compiled, 0)))
        if (wanted.name == node->name && node->module == module)
            return node;
    if (!parent)
        return findTopLevel(module, wanted.name);
    for (const auto *action = reinterpret_cast<const lysc_node *>(lysc_node_actions(parent)); action;
         action = action->next)
        if (wanted.name == action->name && action->module == module)
            return action;
    return nullptr;
}

unsigned keyCount(const lysc_node *list)
{
    unsigned count = 0;
    for (const lysc_node *child = lysc_node_child(list); child && isKey(child); child = child->next)
        ++count;
    return count;
}

std::string canonical(const lysc_node *node, const std::string &value, const std::string &path)
{
    const ly_ctx *context = node->module->ctx;
    clearErrors(context);
    const char *text = nullptr;
    const LY_ERR result =
        lyd_value_validate(context, node, value.c_str(), value.size(), nullptr, nullptr, &text);
    if (result && result != LY_EINCOMPLETE) {
        const auto errors = takeErrors(context, "\"" + value + "\" is no value of \"" + node->name + "\".");
        throw invalidValue(path, errors.front().message);
    }
    clearErrors(context);
    const std::string kept = text ? text : value;
    lydict_remove(context, text);
    return kept;
}

NodeKind kindOf(const Step &step)
{
    switch (step.schema->nodetype) {
    case LYS_LIST:
        return step.hasKeys ? NodeKind::listEntry : NodeKind::list;
    case LYS_LEAFLIST:
        return step.hasKeys ? NodeKind::leafListEntry : NodeKind::leafList;
    case LYS_LEAF:
    case LYS_ANYDATA:
    case LYS_ANYXML:
        return NodeKind::leaf;
    case LYS_RPC:
        return NodeKind::rpc;
    case LYS_ACTION:
        return NodeKind::action;
    default:
        return NodeKind::container;
    }
}

char quoteFor(const std::string &value)
{
    return value.find('\'') == value.npos ? '\'' : '"';
}

class Resolver {
public:
    explicit Resolver(const Context &context)
        : context_(context)
    {
    }

    Target resolve(const std::vector<PathStep> &steps)
    {
        auto node = std::make_shared<Target::Node>();
        for (std::size_t i = 0; i < steps.size(); ++i)
            add(*node, steps[i], i + 1 == steps.size());
        if (!node->steps.empty()) {
            node->kind = kindOf(node->steps.back());
            node->config =
                !(node->schema()->nodetype & (LYS_RPC | LYS_ACTION)) && isConfigNode(node->schema());
        }
        return Target(std::move(node));
    }

private:
    void add(Target::Node &target, const PathStep &wanted, bool last)
    {
        const lysc_node *parent = target.schema();
        const std::string at = parent ? target.path : "";
        const lys_module *module = moduleOf(parent, wanted, at);
        const lysc_node *schema = findDataChild(parent, module, wanted);
        if (!schema)
            throw unknownElement(
                at, "\"" + wanted.name + "\" is no resource of module \"" + module->name + "\" here.");
        Step step{schema, {}, wanted.hasKeys};
        std::string path = at + "/";
        if (!parent || parent->module != schema->module)
            path += std::string(schema->module->name) + ":";
        path += schema->name;
        if (wanted.hasKeys)
            path += takeKeys(step, wanted, path);
        else if (!last && schema->nodetype == LYS_LIST)
            throw missingElement(path, std::string("The list \"") + schema->name + "\" needs its keys here.");
        target.steps.push_back(std::move(step));
        target.path = std::move(path);
    }

    const lys_module *moduleOf(const lysc_node *parent, const PathStep &wanted, const std::string &at) const
    {
        if (wanted.module.empty()) {
            if (parent)
                return parent->module;
            throw unknownElement(at, "\"" + wanted.name + "\" needs its module's name in front.");
        }
        const lys_module *module = ly_ctx_get_module_implemented(context_.ly(), wanted.module.c_str());
        if (!module)
            throw unknownElement(at, "There is no module \"" + wanted.module + "\".");
        return module;
    }

    static std::string takeKeys(Step &step, const PathStep &wanted, const std::string &path)
    {
        std::string predicates;
        if (step.schema->nodetype == LYS_LEAFLIST) {
            if (wanted.keys.size() != 1)
                throw invalidValue(path, "A leaf-list entry has one value.");
            step.keys.push_back(canonical(step.schema, wanted.keys[0], path));
            const char quote = quoteFor(step.keys[0]);
            return std::string("[.=") + quote + step.keys[0] + quote + "]";
        }
        if (step.schema->nodetype != LYS_LIST)
            throw invalidValue(path, std::string("\"") + step.schema->name + "\" has no keys.");
        if (wanted.keys.size() != keyCount(step.schema))
            throw invalidValue(path,
                               std::string("The list \"") + step.schema->name + "\" has " +
                                   std::to_string(keyCount(step.schema)) + " key(s).");
        const lysc_node *key = lysc_node_child(step.schema);
        for (const std::string &value : wanted.keys) {
            step.keys.push_back(canonical(key, value, path));
            const char quote = quoteFor(step.keys.back());
            predicates += std::string("[") + key->name + "=" + quote + step.keys.back() + quote + "]";
            key = key->next;
        }
        return predicates;
    }

    const Context &context_;
};

} // namespace

Target resolveTarget(const Context &context, const std::vector<PathStep> &steps)
{
    return Resolver(context).resolve(steps);
}

NodeKind Target::kind() const
{
    return node_->kind;
}

bool Target::isConfig() const
{
    return node_->config;
}

namespace {

bool holdsState(const lysc_node *node)
{
    if (!isConfigNode(node))
        return true;
    for (const lysc_node *child = lysc_node_child(node); child; child = child->next)
        if (holdsState(child))
            return true;
    return false;
}

} // namespace

bool Target::mayHoldState() const
{
    return !node_->schema() || holdsState(node_->schema());
}

const std::string &Target::path() const
{
    return node_->path;
}

std::vector<PathStep> Target::steps() const
{
    std::vector<PathStep> steps;
    for (const auto &step : node_->steps)
        steps.push_back({step.schema->module->name, step.schema->name, step.keys, step.hasKeys});
    return steps;
}

lyd_node *makeStep(lyd_node *parent, const Step &step)
{
    const lysc_node *schema = step.schema;
    lyd_node *node = nullptr;
    LY_ERR result;
    clearErrors(schema->module->ctx);
    if (schema->nodetype == LYS_LIST) {
        // libyang reads as many values as the list has keys.
        const char *key[8] = {};
        for (std::size_t k = 0; k < step.keys.size() && k < 8; ++k)
            key[k] = step.keys[k].c_str();
        result = lyd_new_list(parent, schema->module, schema->name, 0, &node, key[0], key[1], key[2], key[3],
                              key[4], key[5], key[6], key[7]);
    } else if (schema->nodetype == LYS_LEAFLIST) {
        result = lyd_new_term(parent, schema->module, schema->name, step.keys.at(0).c_str(), 0, &node);
    } else {
        result = lyd_new_inner(parent, schema->module, schema->name, 0, &node);
    }
    if (result)
        throw Failure(takeErrors(schema->module->ctx, "The path cannot be followed."));
    return node;
}

Tree buildSteps(const Target::Node &target, std::size_t count, lyd_node **last)
{
    Tree tree;
    *last = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        *last = makeStep(*last, target.steps[i]);
        if (!tree)
            tree.reset(*last);
    }
    return tree;
}

namespace {

bool isInstance(const lyd_node *node, const Step &step)
{
    if (node->schema != step.schema)
        return false;
    if (!step.hasKeys)
        return true;
    if (node->schema->nodetype == LYS_LEAFLIST)
        return step.keys[0] == lyd_get_value(node);
    const lyd_node *key = lyd_child(node);
    for (const std::string &value : step.keys) {
        if (!key || value != lyd_get_value(key))
            return false;
        key = key->next;
    }
    return true;
}

} // namespace

lyd_node *findStep(const std::vector<lyd_node *> &siblings, const Step &step)
{
    for (lyd_node *node : siblings)
        if (isInstance(node, step))
            return node;
    return nullptr;
}

lyd_node *findStep(lyd_node *firstSibling, const Step &step)
{
    lyd_node *match = nullptr;
    if (!firstSibling)
        return nullptr;
    if (step.schema->nodetype == LYS_LEAFLIST && step.hasKeys) {
        lyd_find_sibling_val(firstSibling, step.schema, step.keys[0].c_str(), step.keys[0].size(), &match);
        return match;
    }
    if (step.schema->nodetype != LYS_LIST || !step.hasKeys) {
        lyd_find_sibling_val(firstSibling, step.schema, nullptr, 0, &match);
        return match;
    }
    std::string predicates;
    const lysc_node *key = lysc_node_child(step.schema);
    for (const std::string &value : step.keys) {
        const char quote = quoteFor(value);
        predicates += std::string("[") + key->name + "=" + quote + value + quote + "]";
        key = key->next;
    }
    lyd_find_sibling_val(firstSibling, step.schema, predicates.c_str(), predicates.size(), &match);
    return match;
}

lyd_node *findTarget(lyd_node *root, const Target::Node &target)
{
    lyd_node *siblings = root, *found = nullptr;
    for (const Step &step : target.steps) {
        found = findStep(siblings, step);
        if (!found)
            return nullptr;
        siblings = lyd_child(found);
    }
    return found;
}

} // namespace tk
