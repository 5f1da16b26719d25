#include "registry.h"

#include "schema.h"
#include "toolkit/edit.h"

#include <algorithm>

namespace tk {

namespace {

Registry *theRegistry = nullptr;

bool isNamed(const lysc_node *node, std::string_view qualifier, std::string_view name)
{
    return name == node->name && (qualifier == node->module->prefix || qualifier == node->module->name);
}

const lysc_node *findStep(const lysc_node *nodes, std::string_view qualifier, std::string_view name)
{
    for (const lysc_node *node = nodes; node; node = node->next)
        if (isNamed(node, qualifier, name))
            return node;
    // Not named directly: the path may leave out the choice and the case around a node.
    for (const lysc_node *node = nodes; node; node = node->next)
        if (node->nodetype & (LYS_CHOICE | LYS_CASE))
            if (const lysc_node *found = findStep(lysc_node_child(node), qualifier, name))
                return found;
    return nullptr;
}

const lysc_node *asNode(const lysc_node_action *action)
{
    return reinterpret_cast<const lysc_node *>(action);
}

const lysc_node *findTop(const Context &context, std::string_view qualifier, std::string_view name)
{
    std::uint32_t index = 0;
    while (const lys_module *module = ly_ctx_get_module_iter(context.ly(), &index)) {
        if (!module->implemented || !module->compiled)
            continue;
        if (qualifier != module->prefix && qualifier != module->name)
            continue;
        if (const lysc_node *node = findStep(module->compiled->data, qualifier, name))
            return node;
        if (const lysc_node *node = findStep(asNode(module->compiled->rpcs), qualifier, name))
            return node;
    }
    return nullptr;
}

} // namespace

const lysc_node *resolvePath(const Context &context, std::string_view path)
{
    const lysc_node *node = nullptr;
    while (!path.empty()) {
        if (path.front() != '/')
            return nullptr;
        const auto end = path.find('/', 1);
        const auto step = path.substr(1, end == path.npos ? end : end - 1);
        path = end == path.npos ? std::string_view() : path.substr(end);
        const auto colon = step.find(':');
        if (colon == step.npos)
            return nullptr;
        const auto qualifier = step.substr(0, colon), name = step.substr(colon + 1);
        if (!node) {
            node = findTop(context, qualifier, name);
        } else {
            const lysc_node *parent = node;
            node = findStep(lysc_node_child(parent), qualifier, name);
            if (!node)
                node = findStep(asNode(lysc_node_actions(parent)), qualifier, name);
        }
        if (!node)
            return nullptr;
    }
    return node;
}

Registry *currentRegistry()
{
    return theRegistry;
}

void setCurrentRegistry(Registry *registry)
{
    theRegistry = registry;
}

Registration *Registry::entry(const std::string &module, const std::string &path)
{
    Registration &registration = entries_[path];
    registration.module = module;
    if (context_ && !registration.node) {
        registration.node = resolvePath(*context_, path);
        if (!registration.node) {
            entries_.erase(path);
            return nullptr;
        }
    }
    return &registration;
}

Registration *Registry::find(const std::string &path)
{
    const auto found = entries_.find(path);
    return found != entries_.end() ? &found->second : nullptr;
}

void Registry::erase(const std::string &path)
{
    entries_.erase(path);
}

void Registry::bind(const Context &context)
{
    context_ = &context;
    std::string unknown;
    for (auto &[path, registration] : entries_) {
        registration.node = resolvePath(context, path);
        if (!registration.node)
            unknown += " " + path;
    }
    if (!unknown.empty())
        throw StartFailure("registered paths that the schema does not have:" + unknown);
}

namespace {

// Fills in one callback of a path's registration and passes the change on to the compiled schema.
template <class Fill>
Status registerAt(const char *module, const std::string &path, Fill fill)
{
    Registry *registry = currentRegistry();
    if (!registry || !module)
        return set_error(__FILE__, __LINE__, kInternal, 0);
    Registration *registration = registry->entry(module, path);
    if (!registration)
        return kNotFound;
    fill(*registration);
    if (registration->node && currentSchema())
        currentSchema()->rebind(registration->node, registration);
    return kOk;
}

void unregisterAt(const std::string &path)
{
    Registry *registry = currentRegistry();
    Registration *registration = registry ? registry->find(path) : nullptr;
    if (!registration)
        return;
    if (registration->node && currentSchema())
        currentSchema()->rebind(registration->node, nullptr);
    registry->erase(path);
}

std::string rpcPath(const char *module, const char *rpc)
{
    return std::string("/") + module + ":" + rpc;
}

} // namespace

} // namespace tk

using namespace tk;

extern "C" Status agt_cb_register_edit2_callback(const char *module, const char *path, const char *,
                                                 EditCallback callback)
{
    return registerAt(module, path, [callback](Registration &registration) { registration.edit = callback; });
}

extern "C" Status agt_cb_register_get_callback(const char *module, const char *path, const char *,
                                               GetCallback callback)
{
    return registerAt(module, path, [callback](Registration &registration) { registration.get = callback; });
}

extern "C" Status agt_cb_set_edit_options(const char *module, const char *path, unsigned options)
{
    Registry *registry = currentRegistry();
    if (!registry || !registry->find(path) || !registry->find(path)->edit)
        return kNotFound;
    return registerAt(module, path,
                      [options](Registration &registration) { registration.options = options; });
}

extern "C" void agt_cb_unregister_callbacks(const char *, const char *path)
{
    unregisterAt(path);
}

extern "C" Status agt_rpc_register_method(const char *module, const char *rpc, OperationPhase phase,
                                          RpcCallback callback)
{
    return registerAt(module, rpcPath(module, rpc),
                      [=](Registration &registration) { registration.operation.rpc[phase] = callback; });
}

extern "C" void agt_rpc_unregister_method(const char *module, const char *rpc)
{
    unregisterAt(rpcPath(module, rpc));
}

extern "C" Status agt_action_register_action(const char *path, OperationPhase phase, ActionCallback callback)
{
    return registerAt("", path,
                      [=](Registration &registration) { registration.operation.action[phase] = callback; });
}

extern "C" void agt_action_unregister_action(const char *path)
{
    unregisterAt(path);
}
