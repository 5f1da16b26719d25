#include "netconf_edit.h"

#include "body.h"
#include "errors.h"
#include "target.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <utility>

namespace tk {

namespace {

bool removesOnly(std::optional<Ask> ask)
{
    return ask == Ask::del || ask == Ask::remove;
}

std::optional<Ask> askNamed(std::string_view name)
{
    static const std::map<std::string_view, Ask> names{{"merge", Ask::merge},
                                                       {"replace", Ask::replace},
                                                       {"create", Ask::create},
                                                       {"delete", Ask::del},
                                                       {"remove", Ask::remove}};
    const auto found = names.find(name);
    return found != names.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<InsertWhere> whereNamed(std::string_view name)
{
    static const std::map<std::string_view, InsertWhere> names{{"first", InsertWhere::first},
                                                               {"last", InsertWhere::last},
                                                               {"before", InsertWhere::before},
                                                               {"after", InsertWhere::after}};
    const auto found = names.find(name);
    return found != names.end() ? std::optional(found->second) : std::nullopt;
}

// The attribute's own namespace, and that of its module, which some clients take for it.
bool isDefaultsNamespace(const std::string &nameSpace)
{
    return nameSpace == kDefaultsNamespace || nameSpace == kDefaultsModuleNamespace;
}

// Content that no schema describes is handed on as it is.
bool isOpen(const lysc_node *schema)
{
    return (schema->nodetype & (LYS_ANYDATA | LYS_ANYXML)) != 0;
}

std::string keysOf(const lysc_node *list, const pugi::xml_node &element)
{
    std::string predicates;
    for (const lysc_node *key = lysc_node_child(list); key && isKey(key); key = key->next)
        for (const pugi::xml_node child : element.children())
            if (localName(child) == key->name)
                predicates += keyPredicate(key->name, trimmed(child.text().get()));
    return predicates;
}

// Put together only when somebody has to be told.
std::string pathOf(const lysc_node *schema, const pugi::xml_node &element)
{
    if (!schema)
        return {};
    const lysc_node *parent = dataParent(schema);
    std::string path = pathOf(parent, element.parent()) + "/";
    if (!parent || parent->module != schema->module)
        path += std::string(schema->module->name) + ":";
    path += schema->name;
    if (schema->nodetype == LYS_LEAFLIST)
        return path + keyPredicate(".", trimmed(element.text().get()));
    return schema->nodetype == LYS_LIST ? path + keysOf(schema, element) : path;
}

} // namespace

NetconfEdit::NetconfEdit(const ly_ctx *context, const std::string &document, Ask defaultAsk, Manner manner)
    : context_(context)
    , manner_(manner)
{
    loadDocument(document_, document);
    edit_.rootAsk = defaultAsk;
    edit_.placesLoosely = manner == Manner::lenient;
    const pugi::xml_node root = document_.document_element();
    collect(root, nullptr, wishes_, defaultAsk);
    dropBare(root, wishes_);
    parse(root);
    bind(wishes_, edit_.tree.get(), false);
}

void NetconfEdit::collect(const pugi::xml_node &parent, const lysc_node *schema, Wishes &wishes, Ask around)
{
    for (const pugi::xml_node element : parent.children()) {
        if (element.type() != pugi::node_element)
            continue;
        Wish &wish = wishes.emplace_back();
        wish.schema = schemaOf(context_, schema, element, [&] { return pathOf(schema, parent); });
        wish.element = element;
        if (!isOpen(wish.schema))
            takeAttributes(wish);
        checkNested(wish, around);
        if (wish.schema->nodetype & LYD_NODE_INNER)
            collect(element, wish.schema, wish.children, wish.ask.value_or(around));
        if (wish.schema->nodetype == LYS_LIST)
            checkKeys(wish);
        if (removesOnly(wish.ask))
            reduceDeleted(wish);
    }
}

void NetconfEdit::checkKeys(const Wish &wish) const
{
    for (const lysc_node *key = lysc_node_child(wish.schema); key && isKey(key); key = key->next) {
        const auto isIt = [key](const Wish &child) { return child.schema == key; };
        if (std::any_of(wish.children.begin(), wish.children.end(), isIt))
            continue;
        Failure failure = missingElement(pathOf(wish.schema, wish.element),
                                         std::string("The key \"") + key->name + "\" is missing.");
        failure.errors.front().badElement = key->name;
        throw failure;
    }
}

// Below something that is deleted nothing else can be asked for.
void NetconfEdit::checkNested(const Wish &wish, Ask around)
{
    if (removesOnly(around) && wish.ask && !removesOnly(wish.ask))
        throw badAttribute(pathOf(wish.schema, wish.element), wish.schema->name, "operation",
                           "What is around this node is deleted by the same request.");
}

void NetconfEdit::takeAttributes(Wish &wish) const
{
    std::vector<pugi::xml_attribute> taken;
    std::string operation, where, isDefault;
    pugi::xml_attribute anchor;
    for (const pugi::xml_attribute attribute : wish.element.attributes()) {
        if (isNamespaceDeclaration(attribute))
            continue;
        const std::string nameSpace = namespaceOf(wish.element, attribute);
        const std::string_view name = localName(attribute.name());
        if (nameSpace == kNetconfNamespace && name == "operation")
            takeOperation(wish, attribute.value());
        else if (nameSpace == kYangNamespace && name == "insert")
            where = attribute.value();
        else if (nameSpace == kYangNamespace && (name == "key" || name == "value"))
            anchor = attribute;
        else if (isDefaultsNamespace(nameSpace) && name == "default")
            isDefault = attribute.value();
        else
            throw unknownAttribute(pathOf(wish.schema, wish.element), wish.schema->name, attribute.name());
        taken.push_back(attribute);
    }
    if (!where.empty() || anchor)
        takePlacement(wish, where, anchor);
    if (!isDefault.empty())
        takeDefault(wish, isDefault);
    for (const pugi::xml_attribute &attribute : taken)
        wish.element.remove_attribute(attribute);
}

void NetconfEdit::takeOperation(Wish &wish, const std::string &value) const
{
    wish.ask = askNamed(value);
    if (!wish.ask)
        throw badAttribute(pathOf(wish.schema, wish.element), wish.schema->name, "operation",
                           "\"" + value + "\" is no operation.");
    if (isKey(wish.schema))
        throw badAttribute(pathOf(wish.schema, wish.element), wish.schema->name, "operation",
                           "A key has no operation of its own.");
}

// A leaf marked as default is set back to it (RFC 6243, section 4.5.1).
void NetconfEdit::takeDefault(Wish &wish, const std::string &value) const
{
    if (value == "false" || value == "0")
        return;
    const auto *leaf = reinterpret_cast<const lysc_node_leaf *>(wish.schema);
    const bool isLeaf = wish.schema->nodetype == LYS_LEAF;
    if ((value != "true" && value != "1") || !isLeaf || isKey(wish.schema))
        throw badAttribute(pathOf(wish.schema, wish.element), wish.schema->name, "default",
                           "Only a leaf can be marked as default.");
    const auto given =
        canonicalValue(wish.schema, withModuleName(context_, wish.element, wish.element.text().get()));
    const char *standard = leaf->dflt ? lyd_value_get_canonical(context_, leaf->dflt) : nullptr;
    if (!given || !standard || *given != standard)
        throw invalidValue(pathOf(wish.schema, wish.element), "The value is not the schema's default.");
    if (!removesOnly(wish.ask))
        wish.ask = Ask::remove;
}

namespace {

// The predicates "[k='v'][p:k2="v2"]" by key name. Nothing: the text is something else.
std::optional<std::map<std::string, std::string>> parsePredicates(const std::string &text)
{
    std::map<std::string, std::string> keys;
    std::size_t at = 0;
    const auto skip = [&] { at = std::min(text.find_first_not_of(" \t\r\n", at), text.size()); };
    const auto expect = [&](char c) { return at < text.size() && text[at] == c && ++at; };
    for (skip(); at < text.size(); skip()) {
        if (!expect('['))
            return std::nullopt;
        const auto equals = text.find('=', at);
        if (equals == text.npos)
            return std::nullopt;
        const std::string name = trimmed(std::string_view(text).substr(at, equals - at));
        at = equals + 1;
        skip();
        const char quote = at < text.size() ? text[at] : '\0';
        const auto close = quote == '\'' || quote == '"' ? text.find(quote, at + 1) : text.npos;
        if (close == text.npos)
            return std::nullopt;
        keys.emplace(localName(name), text.substr(at + 1, close - at - 1));
        at = close + 1;
        skip();
        if (!expect(']'))
            return std::nullopt;
    }
    return keys;
}

// The key values in the list's order; nothing if they are not exactly its keys.
std::optional<std::vector<std::string>> keyValues(const lysc_node *list, const std::string &predicates)
{
    const auto named = parsePredicates(predicates);
    std::vector<std::string> values;
    for (const lysc_node *key = lysc_node_child(list); key && isKey(key); key = key->next) {
        const auto found = named ? named->find(key->name) : decltype(named->end())();
        if (!named || found == named->end())
            return std::nullopt;
        values.push_back(found->second);
    }
    return named->size() == values.size() ? std::optional(values) : std::nullopt;
}

} // namespace

void NetconfEdit::takePlacement(Wish &wish, const std::string &where, const pugi::xml_attribute &anchor) const
{
    const auto place = whereNamed(where);
    const char *name = wish.schema->name;
    if (!isUserOrdered(wish.schema))
        throw unknownAttribute(pathOf(wish.schema, wish.element), name, "insert");
    if (!place)
        throw badAttribute(pathOf(wish.schema, wish.element), name, "insert",
                           "\"" + where + "\" is no place.");
    const bool isList = wish.schema->nodetype == LYS_LIST;
    const bool needsAnchor = place == InsertWhere::before || place == InsertWhere::after;
    const char *anchorName = isList ? "key" : "value";
    if (needsAnchor != !anchor.empty() || (anchor && localName(anchor.name()) != anchorName))
        throw badAttribute(pathOf(wish.schema, wish.element), name, anchorName,
                           "\"before\" and \"after\" need it, and nothing else takes it.");
    wish.place = place;
    if (!needsAnchor)
        return;
    if (const auto keys = isList ? keyValues(wish.schema, anchor.value()) : std::nullopt)
        wish.anchor = *keys;
    else if (isList)
        throw badAttribute(pathOf(wish.schema, wish.element), name, anchorName,
                           "This does not name an entry by its keys.");
    else
        wish.anchor = {withModuleName(context_, wish.element, anchor.value())};
}

Placement NetconfEdit::placementOf(const Wish &wish) const
{
    Placement placement{*wish.place};
    if (wish.anchor.empty())
        return placement;
    try {
        // It cannot be made alone: it is made beside the node and taken away from there.
        lyd_node *like = makeStep(parentOf(wish.node), {wish.schema, wish.anchor, true});
        lyd_unlink_tree(like);
        placement.like.reset(like, TreeFree());
    } catch (const Failure &failure) {
        const char *attribute = wish.schema->nodetype == LYS_LIST ? "key" : "value";
        throw badAttribute(instancePath(wish.node), wish.schema->name, attribute, failure.what());
    }
    return placement;
}

// Of what is deleted only its identity matters.
void NetconfEdit::reduceDeleted(Wish &wish)
{
    wish.isBare = wish.schema->nodetype == LYS_LEAF || isOpen(wish.schema);
    if (wish.isBare) {
        wish.path = pathOf(wish.schema, wish.element);
        hasBares_ = true;
    }
    std::vector<pugi::xml_node> useless;
    for (const Wish &child : wish.children)
        if (!isKey(child.schema))
            useless.push_back(child.element);
    for (const pugi::xml_node &element : useless)
        wish.element.remove_child(element);
    std::erase_if(wish.children, [](const Wish &child) { return !isKey(child.schema); });
}

// A leaf that goes needs no value, and libyang would ask for one: it is put into the tree later.
void NetconfEdit::dropBare(pugi::xml_node parent, Wishes &wishes)
{
    for (Wish &wish : wishes) {
        if (wish.isBare)
            parent.remove_child(wish.element);
        else
            dropBare(wish.element, wish.children);
    }
}

void NetconfEdit::parse(const pugi::xml_node &root)
{
    std::string text;
    for (pugi::xml_node child : root.children()) {
        if (child.type() != pugi::node_element)
            continue;
        takeNamespacesAlong(child);
        text += printElement(child);
    }
    if (!text.empty())
        parseConfig(context_, text, Encoding::xml, nullptr, edit_.tree);
}

namespace {

bool isFirstOfItsKind(lyd_node *first, lyd_node *node)
{
    const unsigned keyless = LYS_LIST | LYS_LEAFLIST;
    if ((node->schema->nodetype & keyless) && !(node->schema->flags & LYS_CONFIG_W))
        return true;
    return findInstance(first, node) == node;
}

} // namespace

// Instances of one schema node stand in the tree in the order of the document.
void NetconfEdit::bind(Wishes &wishes, lyd_node *first, bool inside)
{
    std::map<const lysc_node *, lyd_node *> next;
    for (Wish &wish : wishes) {
        if (wish.isBare)
            continue;
        const auto [place, isNew] = next.try_emplace(wish.schema, nullptr);
        if (isNew && first)
            lyd_find_sibling_val(first, wish.schema, nullptr, 0, &place->second);
        wish.node = place->second;
        if (!wish.node)
            throw operationFailed(pathOf(wish.schema, wish.element), "The edit cannot be read.");
        const bool more = wish.node->next && wish.node->next->schema == wish.schema;
        place->second = more ? wish.node->next : nullptr;
        if (!isFirstOfItsKind(first, wish.node))
            throw badElement(instancePath(wish.node), "The request names this node twice.");
        if (wish.ask)
            edit_.asks[wish.node] = *wish.ask;
        edit_.nested |= wish.ask && inside;
        if (wish.place)
            edit_.placements[wish.node] = placementOf(wish);
        if (wish.schema->nodetype & LYD_NODE_INNER)
            bind(wish.children, lyd_child(wish.node), inside || wish.ask);
    }
}

void NetconfEdit::apply(Editor &editor, lyd_node *root)
{
    if (manner_ == Manner::lenient)
        leaveOutMissing(wishes_, root);
    if (hasBares_)
        addBares(wishes_, nullptr, root);
    editor.apply(edit_);
}

void NetconfEdit::addBares(Wishes &wishes, lyd_node *parent, lyd_node *existingFirst)
{
    for (Wish &wish : wishes) {
        if (wish.isBare) {
            lyd_node *existing = nullptr;
            if (existingFirst)
                lyd_find_sibling_val(existingFirst, wish.schema, nullptr, 0, &existing);
            addBare(wish, parent, existing);
        } else if (!wish.children.empty() && wish.node) {
            lyd_node *existing = findInstance(existingFirst, wish.node);
            addBares(wish.children, wish.node, existing ? lyd_child(existing) : nullptr);
        }
    }
}

// A copy of what is there stands for the leaf: where nothing is there, nothing can go.
void NetconfEdit::addBare(Wish &wish, lyd_node *parent, lyd_node *existing)
{
    if (!existing) {
        if (*wish.ask == Ask::del)
            throw dataMissing(wish.path, "There is no such data.");
        return;
    }
    lyd_node *copy = nullptr;
    if (lyd_dup_single(existing, nullptr, LYD_DUP_NO_META, &copy))
        throw Failure(takeErrors(context_, "The data cannot be copied."));
    if (parent) {
        lyd_insert_child(parent, copy);
    } else {
        lyd_node *tree = edit_.tree.release();
        lyd_insert_sibling(tree, copy, &tree);
        edit_.tree.reset(tree);
    }
    wish.node = copy;
    edit_.asks[copy] = *wish.ask;
}

bool NetconfEdit::onlyRemoves(const Wish &wish)
{
    if (wish.ask)
        return *wish.ask == Ask::remove;
    bool any = false;
    for (const Wish &child : wish.children) {
        if (isKey(child.schema))
            continue;
        if (!onlyRemoves(child))
            return false;
        any = true;
    }
    return any;
}

// An entry is not made only to remove something from it.
void NetconfEdit::leaveOutMissing(Wishes &wishes, lyd_node *existingFirst)
{
    for (Wish &wish : wishes) {
        if (wish.isBare || !wish.node || !(wish.schema->nodetype & LYD_NODE_INNER))
            continue;
        lyd_node *existing = findInstance(existingFirst, wish.node);
        if (existing || !onlyRemoves(wish))
            leaveOutMissing(wish.children, existing ? lyd_child(existing) : nullptr);
        else
            leaveOut(wish);
    }
}

void NetconfEdit::leaveOut(Wish &wish)
{
    lyd_node *node = nullptr;
    LYD_TREE_DFS_BEGIN(wish.node, node)
    {
        edit_.asks.erase(node);
        LYD_TREE_DFS_END(wish.node, node);
    }
    if (edit_.tree.get() == wish.node) {
        static_cast<void>(edit_.tree.release());
        edit_.tree.reset(wish.node->next);
    }
    lyd_free_tree(wish.node);
    wish.node = nullptr;
    wish.children.clear();
}

void replayEdit(const ly_ctx *context, const std::string &description, Editor &editor, lyd_node *root)
{
    pugi::xml_document document;
    loadDocument(document, description);
    const bool whole = std::strcmp(document.document_element().name(), "replacement") == 0;
    NetconfEdit edit(context, description, whole ? Ask::replace : Ask::merge, NetconfEdit::Manner::lenient);
    edit.apply(editor, root);
}

} // namespace tk
