#include "toolkit/getcb.h"

#include "context.h"
#include "retrieval.h"
#include "toolkit/obj.h"
#include "toolkit/val.h"

#include <cstring>
#include <string>

using namespace tk;

namespace {

// The selection of an object at or below the one retrieved.
const Selection *selectionOf(const GetBlock &block, const lysc_node *node)
{
    if (node == block.node)
        return block.selection;
    const lysc_node *parent = dataParent(node);
    const Selection *above = parent ? selectionOf(block, parent) : block.selection;
    return above ? above->of(node) : nullptr;
}

unsigned levelsBelow(const GetBlock &block, const lysc_node *node)
{
    unsigned levels = 0;
    for (; node && node != block.node; node = dataParent(node))
        ++levels;
    return levels;
}

Object *nextRequested(const GetBlock &block, const lysc_node *parent, const lysc_node *previous)
{
    if (!parent || block.depth <= levelsBelow(block, parent) + 1)
        return nullptr;
    const Selection *selection = selectionOf(block, parent);
    while (selection && (previous = nextDataChild(previous, parent)))
        if (selection->of(previous))
            return currentContext()->objectOf(previous);
    return nullptr;
}

const lysc_node *nodeOf(const Object *object)
{
    return currentContext() ? currentContext()->nodeOf(object) : nullptr;
}

bool isKeyNamed(const Value &value, const char *module, const char *name)
{
    return std::strcmp(value.schema->name, name) == 0 &&
        (!module || std::strcmp(value.schema->module->name, module) == 0 ||
         std::strcmp(value.schema->module->prefix, module) == 0);
}

Value *makeText(const Object *object, const char *module, const char *name, const std::string &text,
                Status *res)
{
    const lysc_node *node = nodeOf(object);
    *res = kNotFound;
    if (node && !isLeafKind(node))
        node = nodeOf(obj_find_child(object, module, name));
    const bool fits = node && (node->nodetype & LYD_NODE_TERM) && std::strcmp(node->name, name) == 0;
    return fits ? makeLeaf(node, text.c_str(), res).release() : nullptr;
}

} // namespace

extern "C" Object *getcb_get_obj(const GetBlock *get2cb)
{
    return currentContext()->objectOf(get2cb->node);
}

extern "C" GetMode getcb_get_mode(const GetBlock *get2cb)
{
    return get2cb->mode;
}

extern "C" bool getcb_is_getbulk(const GetBlock *get2cb)
{
    return get2cb->node->nodetype == LYS_LIST;
}

extern "C" void getcb_set_more_data(GetBlock *get2cb, bool more)
{
    get2cb->more = more;
}

extern "C" const Value *getcb_first_key(const GetBlock *get2cb)
{
    return get2cb->keys.empty() ? nullptr : get2cb->keys.front().value.get();
}

extern "C" const Value *getcb_next_key(const GetBlock *get2cb, const Value *previous)
{
    for (std::size_t i = 0; i + 1 < get2cb->keys.size(); ++i)
        if (get2cb->keys[i].value.get() == previous)
            return get2cb->keys[i + 1].value.get();
    return nullptr;
}

extern "C" const Value *getcb_find_key_str(const GetBlock *get2cb, const char *module, const char *key)
{
    for (const auto &known : get2cb->keys)
        if (dataParent(known.value->schema) == get2cb->node && isKeyNamed(*known.value, module, key))
            return known.value.get();
    return nullptr;
}

extern "C" const Value *getcb_find_key_lvl(const GetBlock *get2cb, const char *module, const char *key,
                                           unsigned level)
{
    for (const auto &known : get2cb->keys)
        if (known.level == level && isKeyNamed(*known.value, module, key))
            return known.value.get();
    return nullptr;
}

extern "C" bool getcb_is_key_fixed(const GetBlock *get2cb, const Value *key)
{
    for (const auto &known : get2cb->keys)
        if (known.value.get() == key)
            return known.fixed;
    return false;
}

extern "C" Object *getcb_first_requested_child(GetBlock *get2cb, const Object *parent)
{
    return nextRequested(*get2cb, nodeOf(parent), nullptr);
}

extern "C" Object *getcb_next_requested_child(GetBlock *get2cb, const Object *previous)
{
    const lysc_node *node = nodeOf(previous);
    return node ? nextRequested(*get2cb, dataParent(node), node) : nullptr;
}

extern "C" Status getcb_add_return_val(GetBlock *get2cb, Value *value)
{
    std::unique_ptr<Value> owned(value);
    if (!owned || !owned->schema)
        return kInternal;
    const lysc_node *up = owned->schema;
    while (up && up != get2cb->node)
        up = dataParent(up);
    if (!up)
        return kInvalidValue;
    get2cb->current.values.push_back(std::move(owned));
    return kOk;
}

extern "C" Status getcb_add_return_key(GetBlock *get2cb, Value *key)
{
    std::unique_ptr<Value> owned(key);
    if (!owned || !owned->schema)
        return kInternal;
    if (dataParent(owned->schema) != get2cb->node || !isKey(owned->schema))
        return kInvalidValue;
    get2cb->current.keys.push_back(std::move(owned));
    return kOk;
}

extern "C" void getcb_finish_getbulk_entry(GetBlock *get2cb)
{
    if (!get2cb->current.keys.empty())
        get2cb->entries.push_back(std::move(get2cb->current));
    get2cb->current = {};
}

extern "C" Value *agt_make_leaf(const Object *object, const char *name, const char *value, Status *res)
{
    return makeText(object, nullptr, name, value, res);
}

extern "C" Value *agt_make_leaf2(const Object *object, const char *module, const char *name,
                                 const char *value, Status *res)
{
    return makeText(object, module, name, value, res);
}

extern "C" Value *agt_make_uint_leaf(const Object *object, const char *name, std::uint32_t value, Status *res)
{
    return makeText(object, nullptr, name, std::to_string(value), res);
}

extern "C" Value *agt_make_uint_leaf2(const Object *object, const char *module, const char *name,
                                      std::uint32_t value, Status *res)
{
    return makeText(object, module, name, std::to_string(value), res);
}

extern "C" Value *agt_make_int_leaf(const Object *object, const char *name, std::int32_t value, Status *res)
{
    return makeText(object, nullptr, name, std::to_string(value), res);
}

extern "C" Value *agt_make_int_leaf2(const Object *object, const char *module, const char *name,
                                     std::int32_t value, Status *res)
{
    return makeText(object, module, name, std::to_string(value), res);
}

extern "C" Value *agt_make_int64_leaf2(const Object *object, const char *module, const char *name,
                                       std::int64_t value, Status *res)
{
    return makeText(object, module, name, std::to_string(value), res);
}

extern "C" Value *agt_make_boolean_leaf(const Object *object, const char *module, const char *name,
                                        bool value, Status *res)
{
    return makeText(object, module, name, value ? "true" : "false", res);
}

extern "C" Value *agt_make_list(const Object *object, const char *name, Status *res)
{
    const lysc_node *node = nodeOf(obj_find_child(object, nullptr, name));
    if (!node || node->nodetype != LYS_LIST) {
        *res = kNotFound;
        return nullptr;
    }
    auto value = std::make_unique<Value>();
    value->schema = node;
    value->type = btList;
    value->expanded = true;
    *res = kOk;
    return value.release();
}
