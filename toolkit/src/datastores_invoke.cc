// RPCs and actions as NETCONF clients call them.
#include "datastores_impl.h"
#include "errors.h"
#include "operation.h"

#include <sstream>

namespace tk {

namespace {

// What an element asks for: the operation and the element with its input.
struct Call {
    Target target;
    pugi::xml_node input;
};

const lys_module *moduleOf(const ly_ctx *context, const pugi::xml_node &element)
{
    const std::string nameSpace = namespaceOf(element);
    const lys_module *module = ly_ctx_get_module_implemented_ns(context, nameSpace.c_str());
    if (!module)
        throw unknownNamespace({}, std::string(localName(element)), nameSpace);
    return module;
}

Call findRpc(const Context &context, const pugi::xml_node &element)
{
    const lys_module *module = moduleOf(context.ly(), element);
    const std::string name(localName(element));
    const lysc_node *node = findTopLevel(module, name);
    if (!node || node->nodetype != LYS_RPC)
        throw notSupported({}, "There is no operation \"" + name + "\" in module \"" + module->name + "\".");
    return {resolveTarget(context, {{module->name, name, {}, false}}), element};
}

// Walks down to the action: one element a level, beside it only the keys of a list.
class ActionPath {
public:
    explicit ActionPath(const Context &context)
        : context_(context)
    {
    }

    Call find(const pugi::xml_node &action)
    {
        pugi::xml_node element = onlyElement(action, nullptr);
        const lysc_node *node = nullptr;
        for (;;) {
            const lysc_node *parent = node;
            if (const lysc_node *called = actionOf(parent, element)) {
                steps_.push_back({called->module->name, called->name, {}, false});
                return {resolveTarget(context_, steps_), element};
            }
            node = schemaOf(context_.ly(), parent, element,
                            [parent] { return parent ? schemaPath(parent) : std::string(); });
            if (!(node->nodetype & LYD_NODE_INNER))
                throw notSupported(schemaPath(node), "There is no action here.");
            addStep(node, element);
            element = onlyElement(element, node);
        }
    }

private:
    const lysc_node *actionOf(const lysc_node *parent, const pugi::xml_node &element) const
    {
        const lys_module *module = moduleOf(context_.ly(), element);
        if (!parent)
            return nullptr;
        for (const auto *action = reinterpret_cast<const lysc_node *>(lysc_node_actions(parent)); action;
             action = action->next)
            if (action->module == module && localName(element) == action->name)
                return action;
        return nullptr;
    }

    void addStep(const lysc_node *node, const pugi::xml_node &element)
    {
        PathStep step{node->module->name, node->name, {}, false};
        if (node->nodetype == LYS_LIST)
            for (const lysc_node *key = lysc_node_child(node); key && isKey(key); key = key->next)
                step.keys.push_back(keyText(element, key));
        step.hasKeys = !step.keys.empty();
        steps_.push_back(std::move(step));
    }

    std::string keyText(const pugi::xml_node &element, const lysc_node *key) const
    {
        for (const pugi::xml_node child : element.children())
            if (localName(child) == key->name)
                return withModuleName(context_.ly(), child, trimmed(child.text().get()));
        throw missingElement(schemaPath(key), std::string("The key \"") + key->name + "\" is missing.");
    }

    // The element that is no key of `list`.
    static pugi::xml_node onlyElement(const pugi::xml_node &parent, const lysc_node *list)
    {
        pugi::xml_node found;
        for (const pugi::xml_node child : parent.children()) {
            if (child.type() != pugi::node_element || isKeyOf(list, child))
                continue;
            if (found)
                throw badElement({}, "An action request names one action.");
            found = child;
        }
        if (!found)
            throw missingElement({}, "The request names no action.");
        return found;
    }

    static bool isKeyOf(const lysc_node *list, const pugi::xml_node &element)
    {
        if (list && list->nodetype == LYS_LIST)
            for (const lysc_node *key = lysc_node_child(list); key && isKey(key); key = key->next)
                if (localName(element) == key->name)
                    return true;
        return false;
    }

    const Context &context_;
    std::vector<PathStep> steps_;
};

// The input as the document that the toolkit takes from other front ends, too.
std::string inputOf(const pugi::xml_node &element)
{
    std::string text = "<input>";
    for (pugi::xml_node child : element.children()) {
        if (child.type() != pugi::node_element)
            continue;
        takeNamespacesAlong(child);
        text += printElement(child);
    }
    return text + "</input>";
}

} // namespace

std::string Datastores::Impl::invoke(const std::string &operation)
{
    pugi::xml_document document;
    loadDocument(document, operation);
    const pugi::xml_node root = document.document_element();
    const bool isAction = localName(root) == "action" && namespaceOf(root) == kYangNamespace;
    const Call call = isAction ? ActionPath(host_.context).find(root) : findRpc(host_.context, root);
    lyd_node *reply = nullptr;
    const Tree output = runOperation(host_.engine, host_.context, call.target.node(), inputOf(call.input),
                                     Encoding::xml, &reply);
    if (!output || !lyd_child(reply))
        return {};
    return printNodes(lyd_child(reply), Encoding::xml, LYD_PRINT_WITHSIBLINGS | LYD_PRINT_SHRINK);
}

} // namespace tk
