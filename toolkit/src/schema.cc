#include "schema.h"

#include <algorithm>

namespace tk {

namespace {

Schema *theSchema = nullptr;

lysc_node *asNode(lysc_node_action *action)
{
    return reinterpret_cast<lysc_node *>(action);
}

// Whether a node or one below it still has a callback of the kind.
template <class Has>
void markUpwards(const lysc_node *node, Has has)
{
    for (const lysc_node *up = node; up; up = up->parent)
        has(infoOf(up));
}

} // namespace

Schema *currentSchema()
{
    return theSchema;
}

void setCurrentSchema(Schema *schema)
{
    theSchema = schema;
}

const lysc_node *dataParent(const lysc_node *node)
{
    const lysc_node *up = node->parent;
    while (up && (up->nodetype & (LYS_CHOICE | LYS_CASE)))
        up = up->parent;
    return up;
}

std::string schemaPath(const lysc_node *node)
{
    std::string path;
    for (const lysc_node *up = node; up; up = dataParent(up)) {
        const lysc_node *parent = dataParent(up);
        const bool qualify = !parent || parent->module != up->module;
        path.insert(0, std::string("/") + (qualify ? std::string(up->module->name) + ":" : "") + up->name);
    }
    return path;
}

void Schema::add(const lysc_node *node)
{
    NodeInfo &info = nodes_.emplace_back();
    info.node = node;
    info.order = static_cast<unsigned>(nodes_.size());
    // libyang leaves this member of a compiled node to its user.
    const_cast<lysc_node *>(node)->priv = &info;
    addChildren(node);
}

void Schema::addChildren(const lysc_node *parent)
{
    for (const lysc_node *child = lysc_node_child(parent); child; child = child->next)
        add(child);
    for (const auto *action = reinterpret_cast<const lysc_node *>(lysc_node_actions(parent)); action;
         action = action->next) {
        add(action);
        // An operation's input and output are nodes of their own beside the list of children.
        auto *both = const_cast<lysc_node_action *>(reinterpret_cast<const lysc_node_action *>(action));
        addOutput(both);
    }
}

void Schema::addOutput(lysc_node_action *operation)
{
    // libyang links the output behind the input for some operations and not for others.
    if (!operation->output.node.priv)
        add(&operation->output.node);
}

void Schema::build(Context &context, Registry &registry)
{
    context.compile();
    std::vector<const lys_module *> modules = context.loadOrder();
    std::uint32_t index = 0;
    while (const lys_module *module = ly_ctx_get_module_iter(context.ly(), &index))
        if (module->implemented && std::find(modules.begin(), modules.end(), module) == modules.end())
            modules.push_back(module);
    for (const lys_module *module : modules) {
        if (!module->compiled)
            continue;
        for (const lysc_node *node = module->compiled->data; node; node = node->next)
            add(node);
        for (lysc_node *rpc = asNode(module->compiled->rpcs); rpc; rpc = rpc->next) {
            add(rpc);
            addOutput(reinterpret_cast<lysc_node_action *>(rpc));
        }
    }
    registry.bind(context);
    for (const auto &[path, registration] : registry.entries_)
        setRegistration(infoOf(registration.node), registration);
}

void Schema::setRegistration(NodeInfo &info, const Registration &registration)
{
    info.edit = registration.edit;
    info.get = registration.get;
    info.options = registration.options;
    const auto &operation = registration.operation;
    if (operation.rpc[0] || operation.rpc[1] || operation.action[0] || operation.action[1]) {
        auto &slot = operations_[info.node];
        slot = operation;
        info.operation = &slot;
    } else {
        info.operation = nullptr;
    }
    if (info.edit)
        markUpwards(info.node, [](NodeInfo &up) { up.editBelow = true; });
    if (info.get)
        markUpwards(info.node, [](NodeInfo &up) { up.getBelow = true; });
}

void Schema::rebind(const lysc_node *node, const Registration *registration)
{
    setRegistration(infoOf(node), registration ? *registration : Registration{});
}

} // namespace tk
