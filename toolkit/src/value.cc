#include "value.h"

#include "context.h"
#include "legible.h"
#include "toolkit/edit.h"
#include "toolkit/log.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace tk {

namespace {

BaseType baseTypeOf(LY_DATA_TYPE type)
{
    switch (type) {
    case LY_TYPE_BINARY:
        return btBinary;
    case LY_TYPE_UINT8:
        return btUint8;
    case LY_TYPE_UINT16:
        return btUint16;
    case LY_TYPE_UINT32:
        return btUint32;
    case LY_TYPE_UINT64:
        return btUint64;
    case LY_TYPE_STRING:
        return btString;
    case LY_TYPE_BITS:
        return btBits;
    case LY_TYPE_BOOL:
        return btBoolean;
    case LY_TYPE_DEC64:
        return btDecimal64;
    case LY_TYPE_EMPTY:
        return btEmpty;
    case LY_TYPE_ENUM:
        return btEnum;
    case LY_TYPE_IDENT:
        return btIdentityref;
    case LY_TYPE_INST:
        return btInstanceId;
    case LY_TYPE_LEAFREF:
        return btLeafref;
    case LY_TYPE_UNION:
        return btUnion;
    case LY_TYPE_INT8:
        return btInt8;
    case LY_TYPE_INT16:
        return btInt16;
    case LY_TYPE_INT32:
        return btInt32;
    case LY_TYPE_INT64:
        return btInt64;
    default:
        return btNone;
    }
}

BaseType structuralType(const lysc_node *schema)
{
    switch (schema->nodetype) {
    case LYS_CONTAINER:
        return btContainer;
    case LYS_LIST:
        return btList;
    case LYS_CHOICE:
        return btChoice;
    case LYS_CASE:
        return btCase;
    case LYS_RPC:
    case LYS_ACTION:
        return btRpc;
    case LYS_INPUT:
    case LYS_OUTPUT:
        return btContainer;
    case LYS_ANYDATA:
    case LYS_ANYXML:
        return btAny;
    default:
        return btNone;
    }
}

// The member of a union that the value really is.
const lyd_value &memberValue(const lyd_value &value)
{
    const lyd_value *member = &value;
    while (member->realtype->basetype == LY_TYPE_UNION)
        member = &member->subvalue->value;
    return *member;
}

void readNumbers(Value &value, const lyd_value &data)
{
    switch (data.realtype->basetype) {
    case LY_TYPE_BOOL:
        value.boolean = data.boolean;
        break;
    case LY_TYPE_INT8:
        value.integer = data.int8;
        break;
    case LY_TYPE_INT16:
        value.integer = data.int16;
        break;
    case LY_TYPE_INT32:
        value.integer = data.int32;
        break;
    case LY_TYPE_INT64:
        value.integer = data.int64;
        break;
    case LY_TYPE_DEC64:
        value.integer = data.dec64;
        break;
    case LY_TYPE_ENUM:
        value.integer = data.enum_item->value;
        break;
    case LY_TYPE_UINT8:
        value.natural = data.uint8;
        break;
    case LY_TYPE_UINT16:
        value.natural = data.uint16;
        break;
    case LY_TYPE_UINT32:
        value.natural = data.uint32;
        break;
    case LY_TYPE_UINT64:
        value.natural = data.uint64;
        break;
    default:
        break;
    }
}

void readTerm(Value &value, const lyd_node_term &term)
{
    const lyd_value &member = memberValue(term.value);
    value.type = baseTypeOf(member.realtype->basetype);
    value.text = localText(&term.node);
    readNumbers(value, member);
    // A number can be read either way where it fits.
    if (value.natural && value.natural <= INT64_MAX)
        value.integer = static_cast<std::int64_t>(value.natural);
    else if (value.integer > 0)
        value.natural = static_cast<std::uint64_t>(value.integer);
}

} // namespace

const char *canonicalText(const lyd_node *node)
{
    return lyd_get_value(node);
}

const char *localText(const lyd_node *node)
{
    const char *text = lyd_get_value(node);
    if (!text)
        return "";
    const auto *term = reinterpret_cast<const lyd_node_term *>(node);
    if (memberValue(term->value).realtype->basetype != LY_TYPE_IDENT)
        return text;
    const char *colon = std::strchr(text, ':');
    return colon ? colon + 1 : text;
}

bool isSecretName(const char *name)
{
    static constexpr const char *words[] = {"password", "secret",      "passphrase", "community",
                                            "passwd",   "private-key", "key-value"};
    for (const char *word : words)
        if (std::strstr(name, word))
            return true;
    return false;
}

bool isSecret(const lysc_node *schema)
{
    return isSecretName(schema->name);
}

std::unique_ptr<Value> showNode(const lysc_node *schema, const lyd_node *node, const ValueView *view,
                                Value *parent)
{
    auto value = std::make_unique<Value>();
    value->schema = schema;
    value->node = node;
    value->view = view;
    value->op = view->op;
    value->parent = parent;
    value->type = structuralType(schema);
    if (node && (schema->nodetype & LYD_NODE_TERM))
        readTerm(*value, *reinterpret_cast<const lyd_node_term *>(node));
    return value;
}

void Value::expand()
{
    if (expanded || !view)
        return;
    expanded = true;
    if (!(schema->nodetype & LYD_NODE_INNER))
        return;
    const auto show = [this](const lyd_node *child) {
        // Schema defaults and containers without content are not there for a callback.
        if (!(child->flags & LYD_DEFAULT) && child->schema)
            children.push_back(showNode(child->schema, child, view, this));
    };
    if (node && view->before)
        for (const lyd_node *child : view->before->childrenBefore(node))
            show(child);
    else
        for (const lyd_node *child = lyd_child(node); child; child = child->next)
            show(child);
    if (view->withDefaults)
        addDefaults();
}

// Defaults inside a case or below a when depend on more than this node and are left out.
void Value::addDefaults()
{
    for (const lysc_node *child = nextDataChild(nullptr, schema); child;
         child = nextDataChild(child, schema)) {
        const auto *leaf = reinterpret_cast<const lysc_node_leaf *>(child);
        if (child->nodetype != LYS_LEAF || !leaf->dflt || child->parent != schema || lysc_node_when(child))
            continue;
        if (std::any_of(children.begin(), children.end(),
                        [child](const auto &set) { return set->schema == child; }))
            continue;
        Status refused = kOk;
        auto value = makeLeaf(child, lyd_value_get_canonical(child->module->ctx, leaf->dflt), &refused);
        if (!value)
            continue;
        value->parent = this;
        value->op = view->op;
        children.push_back(std::move(value));
    }
}

namespace {

// The simple value of a made leaf. Its own text keeps an identity's prefix, for the data tree.
void setText(Value &value, const std::string &text, BaseType type)
{
    value.ownText = text;
    value.type = type;
    value.text = value.ownText.c_str();
    if (const char *colon = type == btIdentityref ? std::strchr(value.text, ':') : nullptr)
        value.text = colon + 1;
    value.boolean = type == btBoolean && text == "true";
    value.integer = std::strtoll(value.text, nullptr, 10);
    value.natural = std::strtoull(value.text, nullptr, 10);
}

// The prefixed name of an identity below another one, however far, or nothing.
std::string derivedIdentity(const lysc_ident *base, const std::string &name)
{
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(base->derived, i)
    {
        if (name == base->derived[i]->name)
            return std::string(base->derived[i]->module->name) + ":" + name;
        if (auto found = derivedIdentity(base->derived[i], name); !found.empty())
            return found;
    }
    return {};
}

// The prefixed name of an identity that a leaf can take, or nothing: callbacks write them without a prefix.
std::string qualifiedIdentity(const lysc_type *type, const std::string &name)
{
    LY_ARRAY_COUNT_TYPE i;
    if (type->basetype == LY_TYPE_UNION) {
        const auto *members = reinterpret_cast<const lysc_type_union *>(type)->types;
        LY_ARRAY_FOR(members, i)
        if (const auto found = qualifiedIdentity(members[i], name); !found.empty())
            return found;
        return {};
    }
    if (type->basetype != LY_TYPE_IDENT)
        return {};
    const auto *bases = reinterpret_cast<const lysc_type_identityref *>(type)->bases;
    LY_ARRAY_FOR(bases, i)
    if (auto found = derivedIdentity(bases[i], name); !found.empty())
        return found;
    return {};
}

} // namespace

std::unique_ptr<Value> makeLeaf(const lysc_node *schema, const char *text, Status *status)
{
    const lysc_type *declared = schema->nodetype == LYS_LEAF
        ? reinterpret_cast<const lysc_node_leaf *>(schema)->type
        : reinterpret_cast<const lysc_node_leaflist *>(schema)->type;
    const std::string clean = legible(text);
    text = clean.c_str();
    const std::string identity = qualifiedIdentity(declared, text);
    if (!identity.empty())
        text = identity.c_str();
    const lysc_type *type = nullptr;
    const LY_ERR result =
        lyd_value_validate(schema->module->ctx, schema, text, std::strlen(text), nullptr, &type, nullptr);
    if (result && result != LY_EINCOMPLETE) {
        ly_err_clean(schema->module->ctx, nullptr);
        *status = kInvalidValue;
        return nullptr;
    }
    auto value = std::make_unique<Value>();
    value->schema = schema;
    value->expanded = true;
    setText(*value, text, type ? baseTypeOf(type->basetype) : btString);
    *status = kOk;
    return value;
}

lyd_node *makeParents(lyd_node *top, const lysc_node *schema, bool output)
{
    const lysc_node *parent = dataParent(schema);
    if (!parent || parent == top->schema || (parent->nodetype & (LYS_INPUT | LYS_OUTPUT)))
        return top;
    lyd_node *above = makeParents(top, parent, output), *node = nullptr;
    if (lyd_child(above) && !lyd_find_sibling_val(lyd_child(above), parent, nullptr, 0, &node))
        return node;
    return lyd_new_inner(above, parent->module, parent->name, output, &node) ? above : node;
}

bool buildTree(const Value &value, lyd_node *parent, bool output)
{
    const lysc_node *schema = value.schema;
    if (schema->nodetype & LYD_NODE_TERM)
        return lyd_new_term(parent, schema->module, schema->name, value.ownText.c_str(), output, nullptr) ==
            LY_SUCCESS;
    lyd_node *node = nullptr;
    if (schema->nodetype == LYS_LIST) {
        std::string keys;
        for (const auto &child : value.children)
            if (isKey(child->schema)) {
                const char quote = child->ownText.find('\'') != std::string::npos ? '"' : '\'';
                keys += std::string("[") + child->schema->name + "=" + quote + child->ownText + quote + "]";
            }
        if (lyd_new_list2(parent, schema->module, schema->name, keys.c_str(), output, &node))
            return false;
    } else if (lyd_new_inner(parent, schema->module, schema->name, output, &node)) {
        return false;
    }
    for (const auto &child : value.children)
        if (!isKey(child->schema) && !buildTree(*child, node, output))
            return false;
    return true;
}

namespace {

bool matches(const Value &value, const char *module, const char *name)
{
    return std::strcmp(value.schema->name, name) == 0 &&
        (!module || std::strcmp(value.schema->module->name, module) == 0 ||
         std::strcmp(value.schema->module->prefix, module) == 0);
}

// The index of a child in its parent, or the number of children.
std::size_t indexOf(const Value *child)
{
    const auto &siblings = child->parent->children;
    std::size_t index = 0;
    while (index < siblings.size() && siblings[index].get() != child)
        ++index;
    return index;
}

template <class Wanted>
Value *nextChild(const Value *parent, std::size_t from, Wanted wanted)
{
    if (!parent)
        return nullptr;
    const_cast<Value *>(parent)->expand();
    for (std::size_t i = from; i < parent->children.size(); ++i)
        if (wanted(*parent->children[i]))
            return parent->children[i].get();
    return nullptr;
}

template <class Wanted>
Value *nextSibling(const Value *previous, Wanted wanted)
{
    return previous && previous->parent ? nextChild(previous->parent, indexOf(previous) + 1, wanted)
                                        : nullptr;
}

bool any(const Value &)
{
    return true;
}

bool belongsTo(const lysc_node *node, const lysc_node *choice)
{
    for (const lysc_node *up = node->parent; up && (up->nodetype & (LYS_CHOICE | LYS_CASE)); up = up->parent)
        if (up == choice)
            return true;
    return false;
}

void dump(const Value &value, int indent, std::string &text)
{
    text.append(static_cast<std::size_t>(indent), ' ');
    text += value.schema ? value.schema->name : "?";
    if (!value.schema || !(value.schema->nodetype & LYD_NODE_INNER))
        text += std::string(" ") + (value.schema && isSecret(value.schema) ? "*****" : value.text);
    text += '\n';
    const_cast<Value &>(value).expand();
    for (const auto &child : value.children)
        dump(*child, indent + 2, text);
}

} // namespace

} // namespace tk

using namespace tk;

extern "C" const Object *val_get_obj(const Value *value)
{
    return currentContext() ? currentContext()->objectOf(value->schema) : nullptr;
}

extern "C" const char *val_get_name(const Value *value)
{
    return value->schema ? value->schema->name : "";
}

extern "C" BaseType val_get_btyp(const Value *value)
{
    return value->type != btNone || !value->schema ? value->type : structuralType(value->schema);
}

extern "C" EditOp val_get_editop(const Value *value)
{
    return value->op;
}

extern "C" Status val_get_status(const Value *value)
{
    return value->status;
}

extern "C" Value *val_get_parent(const Value *value)
{
    return value->parent;
}

extern "C" bool val_get_boolean(const Value *value)
{
    return value->boolean;
}

extern "C" std::int64_t val_get_int64(const Value *value)
{
    return value->integer;
}

extern "C" std::uint64_t val_get_uint64(const Value *value)
{
    return value->natural;
}

extern "C" const char *val_get_string(const Value *value)
{
    return value->text;
}

extern "C" Value *val_find_child(const Value *parent, const char *module, const char *name)
{
    return nextChild(parent, 0, [=](const Value &value) { return matches(value, module, name); });
}

extern "C" Value *val_find_next_child(const Value *parent, const char *module, const char *name,
                                      const Value *previous)
{
    return previous ? nextSibling(previous, [=](const Value &value) { return matches(value, module, name); })
                    : val_find_child(parent, module, name);
}

extern "C" Value *val_next_child_same(const Value *previous)
{
    return nextSibling(previous, [=](const Value &value) { return value.schema == previous->schema; });
}

extern "C" Value *val_get_first_child(const Value *parent)
{
    return nextChild(parent, 0, any);
}

extern "C" Value *val_get_next_child(const Value *previous)
{
    return nextSibling(previous, any);
}

extern "C" unsigned val_child_cnt(const Value *parent)
{
    if (!parent)
        return 0;
    const_cast<Value *>(parent)->expand();
    return static_cast<unsigned>(parent->children.size());
}

extern "C" unsigned val_match_child_count(const Value *parent, const char *module, const char *name)
{
    unsigned count = 0;
    for (const Value *child = val_find_child(parent, module, name); child;
         child = val_find_next_child(parent, module, name, child))
        ++count;
    return count;
}

extern "C" Value *val_get_first_key(const Value *entry)
{
    return nextChild(entry, 0, [](const Value &value) { return isKey(value.schema); });
}

extern "C" Value *val_get_next_key(const Value *previous)
{
    return nextSibling(previous, [](const Value &value) { return isKey(value.schema); });
}

extern "C" Value *val_get_choice_first_set(const Value *parent, const Object *choice)
{
    const lysc_node *node = currentContext()->nodeOf(choice);
    return nextChild(parent, 0, [=](const Value &value) { return belongsTo(value.schema, node); });
}

extern "C" Value *val_get_choice_next_set(const Object *choice, const Value *previous)
{
    const lysc_node *node = currentContext()->nodeOf(choice);
    return nextSibling(previous, [=](const Value &value) { return belongsTo(value.schema, node); });
}

extern "C" void val_dump_value(const Value *value, int startIndent, int detail)
{
    const bool asError = detail <= kErrorDump;
    if (!value || log_get_system_log_level() < (asError ? 1 : 5))
        return;
    std::string text = "\n";
    dump(*value, startIndent > 0 ? startIndent : 0, text);
    if (asError)
        log_error("%s", text.c_str());
    else
        log_debug2_append("%s", text.c_str());
}

extern "C" Value *val_new_value()
{
    auto *value = new Value;
    value->expanded = true;
    return value;
}

extern "C" void val_init_from_template(Value *value, const Object *object)
{
    value->schema = currentContext() ? currentContext()->nodeOf(object) : nullptr;
    if (value->schema)
        value->type = structuralType(value->schema);
}

extern "C" Status val_set_simval(Value *value, const char *text)
{
    if (!value->schema || !(value->schema->nodetype & LYD_NODE_TERM))
        return kInternal;
    Status status = kOk;
    const auto leaf = makeLeaf(value->schema, text, &status);
    if (!leaf)
        return status;
    setText(*value, leaf->ownText, leaf->type);
    return kOk;
}

extern "C" Value *val_make_simval_obj(const Object *object, const char *text, Status *res)
{
    const lysc_node *node = currentContext() ? currentContext()->nodeOf(object) : nullptr;
    if (!node || !(node->nodetype & LYD_NODE_TERM)) {
        *res = kNotFound;
        return nullptr;
    }
    return makeLeaf(node, text, res).release();
}

extern "C" void val_add_child(Value *child, Value *parent)
{
    child->parent = parent;
    parent->children.emplace_back(child);
}

extern "C" void val_free_value(Value *value)
{
    delete value;
}

extern "C" const char *ncx_get_btyp_string(BaseType type)
{
    switch (type) {
    case btBits:
        return "bits";
    case btEnum:
        return "enumeration";
    case btEmpty:
        return "empty";
    case btBoolean:
        return "boolean";
    case btInt8:
        return "int8";
    case btInt16:
        return "int16";
    case btInt32:
        return "int32";
    case btInt64:
        return "int64";
    case btUint8:
        return "uint8";
    case btUint16:
        return "uint16";
    case btUint32:
        return "uint32";
    case btUint64:
        return "uint64";
    case btDecimal64:
        return "decimal64";
    case btString:
        return "string";
    case btBinary:
        return "binary";
    case btInstanceId:
        return "instance-identifier";
    case btUnion:
        return "union";
    case btLeafref:
        return "leafref";
    case btIdentityref:
        return "identityref";
    case btAny:
        return "anydata";
    case btContainer:
        return "container";
    case btList:
        return "list";
    case btChoice:
        return "choice";
    case btCase:
        return "case";
    case btRpc:
        return "rpc";
    case btNone:
        break;
    }
    return "none";
}

extern "C" int xml_strcmp(const char *a, const char *b)
{
    if (!a || !b)
        return static_cast<int>(a != nullptr) - static_cast<int>(b != nullptr);
    return std::strcmp(a, b);
}
