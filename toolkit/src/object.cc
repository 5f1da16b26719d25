#include "toolkit/obj.h"

#include "context.h"
#include "schema.h"

#include <cstring>

using namespace tk;

namespace {

const lysc_node *nodeOf(const Object *object)
{
    const Context *context = currentContext();
    return context ? context->nodeOf(object) : nullptr;
}

Object *objectOf(const lysc_node *node)
{
    return node ? currentContext()->objectOf(node) : nullptr;
}

bool isNamed(const lysc_node *node, const char *module, const char *name)
{
    return std::strcmp(node->name, name) == 0 &&
        (!module || std::strcmp(node->module->name, module) == 0 ||
         std::strcmp(node->module->prefix, module) == 0);
}

const lysc_node *find(const lysc_node *parent, const char *module, const char *name, bool choicesToo)
{
    for (const lysc_node *child = lysc_node_child(parent); child; child = child->next) {
        const bool hidden = child->nodetype & (LYS_CHOICE | LYS_CASE);
        if (isNamed(child, module, name) && (!hidden || choicesToo))
            return child;
        if (hidden)
            if (const lysc_node *found = find(child, module, name, choicesToo))
                return found;
    }
    return nullptr;
}

const lysc_node *outputOf(const lysc_node *node)
{
    return &reinterpret_cast<const lysc_node_action *>(node)->output.node;
}

} // namespace

extern "C" const char *obj_get_name(const Object *object)
{
    return object->name.c_str();
}

extern "C" const char *obj_get_mod_name(const Object *object)
{
    return object->module->name;
}

extern "C" BaseType obj_get_btyp(const Object *object)
{
    const lysc_node *node = nodeOf(object);
    if (!node)
        return btNone;
    switch (node->nodetype) {
    case LYS_LIST:
        return btList;
    case LYS_CHOICE:
        return btChoice;
    case LYS_CASE:
        return btCase;
    case LYS_RPC:
    case LYS_ACTION:
        return btRpc;
    case LYS_LEAF:
    case LYS_LEAFLIST:
        return btString;
    default:
        return btContainer;
    }
}

extern "C" Object *obj_find_child(const Object *object, const char *module, const char *name)
{
    const lysc_node *node = nodeOf(object);
    if (!node)
        return nullptr;
    if ((node->nodetype & (LYS_RPC | LYS_ACTION)) && std::strcmp(name, "output") == 0)
        return objectOf(outputOf(node));
    return objectOf(find(node, module, name, false));
}

extern "C" Object *obj_find_child_choice_case(const Object *object, const char *module, const char *name)
{
    const lysc_node *node = nodeOf(object);
    return node ? objectOf(find(node, module, name, true)) : nullptr;
}

extern "C" Object *obj_first_child(const Object *object)
{
    const lysc_node *node = nodeOf(object);
    return node ? objectOf(lysc_node_child(node)) : nullptr;
}

extern "C" Object *obj_next_child(const Object *previous)
{
    const lysc_node *node = nodeOf(previous);
    return node ? objectOf(node->next) : nullptr;
}
