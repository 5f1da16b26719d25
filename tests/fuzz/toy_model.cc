#include "tests/fuzz/toy_model.h"

#include <algorithm>

namespace fuzz {

namespace {

const Schema kDatastore{
    "",
    Kind::container,
    {{"toy:top",
      Kind::container,
      {{"plain", Kind::text},
       {"words", Kind::values, {}, true},
       {"number", Kind::number},
       {"inner", Kind::container, {{"deep", Kind::text}}},
       {"config", Kind::container, {{"enabled", Kind::truth}, {"limit", Kind::number}}, false, true},
       {"marked",
        Kind::presence,
        {{"note", Kind::text}, {"inside", Kind::container, {{"value", Kind::text}}, false, true}},
        false,
        true},
       {"lone", Kind::text, {}, false, true},
       {"entry",
        Kind::list,
        {{"name", Kind::text},
         {"own", Kind::text},
         {"more", Kind::container, {{"remark", Kind::text}}},
         {"config", Kind::container, {{"value", Kind::text}, {"other", Kind::text}}, false, true},
         {"sub", Kind::list, {{"id", Kind::number}, {"text", Kind::text}}, false, true}},
        false,
        true},
       {"ranked", Kind::list, {{"name", Kind::text}, {"text", Kind::text}}, true, true},
       {"first", Kind::text, {}, false, false, 1},
       {"first-more", Kind::text, {}, false, false, 1},
       {"second", Kind::text, {}, false, false, 2}},
      false,
      true},
     {"toy:late", Kind::container, {{"plain", Kind::text}}, false, true}}};

std::string text(const json &value)
{
    return value.is_string() ? value.get<std::string>() : value.dump();
}

const json &keyOf(const Schema &schema, const json &entry)
{
    return schema.kind == Kind::list ? entry.at(schema.key()) : entry;
}

json::iterator find(const Schema &schema, json &entries, const json &key)
{
    return std::find_if(entries.begin(), entries.end(),
                        [&](const json &entry) { return keyOf(schema, entry) == key; });
}

json pruned(const Schema &schema, const json &value, bool sorts);

json prunedMembers(const Schema &schema, const json &value, bool sorts)
{
    json members = json::object();
    for (const Schema &child : schema.children)
        if (value.contains(child.name))
            if (json member = pruned(child, value.at(child.name), sorts); !member.is_null())
                members[child.name] = std::move(member);
    return members;
}

// What is left of a value when all that holds nothing is gone; null: nothing.
json pruned(const Schema &schema, const json &value, bool sorts)
{
    if (schema.isList()) {
        json entries = json::array();
        for (const json &entry : value)
            entries.push_back(schema.kind == Kind::list ? prunedMembers(schema, entry, sorts) : entry);
        if (sorts && !schema.isOrdered)
            std::sort(entries.begin(), entries.end());
        return entries.empty() ? json() : entries;
    }
    if (schema.isLeaf())
        return value;
    json members = prunedMembers(schema, value, sorts);
    return members.empty() && schema.kind == Kind::container ? json() : members;
}

void clearOtherBranches(const Schema &schema, json &have, int branch)
{
    for (const Schema &child : schema.children)
        if (branch != 0 && child.branch != 0 && child.branch != branch)
            have.erase(child.name);
}

void mergeInto(const Schema &schema, json &have, const json &want, bool replaces);

void mergeEntries(const Schema &schema, json &have, const json &want, bool replaces)
{
    json result = replaces ? json::array() : have;
    for (const json &entry : want) {
        json merged = entry;
        const auto old = find(schema, have, keyOf(schema, entry));
        if (old != have.end() && schema.kind == Kind::list) {
            merged = *old;
            mergeInto(schema, merged, entry, replaces);
        }
        if (const auto at = find(schema, result, keyOf(schema, entry)); at != result.end())
            *at = merged;
        else
            result.push_back(merged);
    }
    have = std::move(result);
}

void mergeChild(const Schema &child, json &parent, const json &want, bool replaces)
{
    if (child.isList()) {
        if (!parent.contains(child.name))
            parent[child.name] = json::array();
        return mergeEntries(child, parent[child.name], want, replaces);
    }
    if (child.isLeaf()) {
        parent[child.name] = want;
        return;
    }
    if (!parent.contains(child.name))
        parent[child.name] = json::object();
    mergeInto(child, parent[child.name], want, replaces);
}

void mergeInto(const Schema &schema, json &have, const json &want, bool replaces)
{
    for (const Schema &child : schema.children) {
        const bool isKey = schema.kind == Kind::list && child.name == schema.key();
        if (replaces && !isKey && !want.contains(child.name))
            have.erase(child.name);
    }
    for (const Schema &child : schema.children) {
        if (!want.contains(child.name))
            continue;
        clearOtherBranches(schema, have, child.branch);
        mergeChild(child, have, want.at(child.name), replaces);
    }
}

// Walks to the parent of the path's last node. Null: there is a node on the way that would have to be made.
json *parentOf(json &data, const Path &path)
{
    json *at = &data;
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        const Place &place = path[i];
        if (!at->contains(place.schema->name)) {
            if (place.schema->kind != Kind::container)
                return nullptr;
            (*at)[place.schema->name] = json::object();
        }
        at = &(*at)[place.schema->name];
        if (place.schema->kind == Kind::list) {
            const auto entry = find(*place.schema, *at, place.key);
            if (entry == at->end())
                return nullptr;
            at = &*entry;
        }
    }
    return at;
}

bool holds(json &parent, const Place &place)
{
    if (!parent.contains(place.schema->name))
        return false;
    json &value = parent[place.schema->name];
    if (place.schema->isList())
        return find(*place.schema, value, place.key) != value.end();
    return !pruned(*place.schema, value, false).is_null();
}

void remove(json &parent, const Place &place)
{
    json &value = parent[place.schema->name];
    if (place.schema->isList())
        value.erase(find(*place.schema, value, place.key));
    else
        parent.erase(place.schema->name);
}

// Moves an entry to where it was asked to be.
void settle(const Schema &schema, json &entries, const json &key, const Position &position)
{
    if (position.point == key)
        return;
    const auto at = find(schema, entries, key);
    const json entry = *at;
    entries.erase(at);
    auto target = position.where == tk::InsertWhere::first ? entries.begin() : entries.end();
    if (!position.point.is_null())
        target = find(schema, entries, position.point) + (position.where == tk::InsertWhere::after ? 1 : 0);
    entries.insert(target, entry);
}

void putEntry(const Schema &schema, json &entries, const json &key, const json &value, bool replaces)
{
    const auto old = find(schema, entries, key);
    if (old == entries.end())
        entries.push_back(value);
    else if (schema.kind == Kind::list)
        mergeInto(schema, *old, value, replaces);
}

bool hasPoint(json &parent, const Place &place, const Position &position)
{
    return position.point.is_null() || holds(parent, {place.schema, position.point});
}

std::optional<std::string> put(json &parent, const Place &place, const json &value, tk::Method method,
                               const std::optional<Position> &position)
{
    const Schema &schema = *place.schema;
    const bool isThere = holds(parent, place);
    if (method == tk::Method::post && isThere)
        return "data-exists";
    if (method == tk::Method::patch && !isThere && schema.kind != Kind::container)
        return "data-missing";
    if (position && !hasPoint(parent, place, *position))
        return "bad-attribute";
    if (!schema.isList()) {
        mergeChild(schema, parent, value, method == tk::Method::put);
        return std::nullopt;
    }
    if (!parent.contains(schema.name))
        parent[schema.name] = json::array();
    putEntry(schema, parent[schema.name], place.key, value, method == tk::Method::put);
    if (position)
        settle(schema, parent[schema.name], place.key, *position);
    return std::nullopt;
}

std::string indexed(const Schema &schema, const json &key)
{
    return schema.kind == Kind::list ? "[" + schema.key() + "='" + text(key) + "']" : "";
}

struct Gathering {
    Leaves leaves;
    std::set<std::string> instances;
};

// `owner` is the path of the nearest node around that has a callback.
void gather(const Schema &schema, const json &value, const std::string &path, const std::string &owner,
            Gathering &into)
{
    for (const Schema &child : schema.children) {
        if (!value.contains(child.name) || (schema.kind == Kind::list && child.name == schema.key()))
            continue;
        const json &member = value.at(child.name);
        const std::string at = path + "/" + child.name;
        if (child.isLeaf()) {
            for (const json &one : child.kind == Kind::values ? member : json::array({member}))
                into.leaves[child.isTold ? at : owner][child.isTold ? "" : child.name].insert(text(one));
            if (child.isTold)
                into.instances.insert(at);
        } else {
            for (const json &one : child.kind == Kind::list ? member : json::array({member})) {
                const std::string here =
                    at + indexed(child, child.kind == Kind::list ? one.at(child.key()) : json());
                if (child.isTold && child.kind != Kind::container)
                    into.instances.insert(here);
                gather(child, one, here, child.isTold ? here : owner, into);
            }
        }
    }
}

json someLeaf(const Schema &schema, Choices &choose)
{
    if (schema.kind == Kind::truth)
        return choose.yes();
    if (schema.kind == Kind::number)
        return choose.oneOf({1, 2, 7}); // 7 is a default
    return choose.oneOf({"a", "b", "c"});
}

json someEntry(const Schema &schema, Choices &choose, const json &key)
{
    json entry = json::object();
    int branch = choose.number(1, 2);
    for (const Schema &child : schema.children) {
        if (schema.kind == Kind::list && child.name == schema.key())
            entry[child.name] = key.is_null() ? someLeaf(child, choose) : key;
        else if (choose.number(0, 2) == 0 && (child.branch == 0 || child.branch == branch))
            entry[child.name] = someValue(child, choose);
    }
    return entry;
}

} // namespace

const Schema &datastore()
{
    return kDatastore;
}

std::string uri(const Path &path)
{
    std::string uri;
    for (const Place &place : path)
        uri += (uri.empty() ? "" : "/") + place.schema->name +
            (place.key.is_null() ? "" : "=" + text(place.key));
    return uri;
}

std::string bodyOf(const Path &path, const json &value)
{
    if (path.empty())
        return json{{"ietf-restconf:data", value}}.dump();
    const Schema &schema = *path.back().schema;
    const std::string name = path.size() == 1 ? schema.name : "toy:" + schema.name;
    return json{{name, schema.isList() ? json::array({value}) : value}}.dump();
}

Path somePath(Choices &choose)
{
    Path path;
    const Schema *at = &kDatastore;
    while (!at->children.empty() && choose.number(0, 4) != 0) {
        // Not the key: it goes with its entry.
        const std::size_t first = at->kind == Kind::list ? 1 : 0;
        at = &at->children[choose.number<std::size_t>(first, at->children.size() - 1)];
        json key;
        if (at->kind == Kind::list)
            key = someLeaf(at->children.front(), choose);
        else if (at->kind == Kind::values)
            key = someLeaf(*at, choose);
        path.push_back({at, key});
    }
    return path;
}

// Of a list or leaf-list without a key: all its entries.
json someValue(const Schema &schema, Choices &choose, const json &key)
{
    if (schema.kind == Kind::values && !key.is_null())
        return key;
    if (schema.isList() && key.is_null()) {
        json entries = json::array();
        for (unsigned i = choose.number(1U, 3U); i > 0; --i) {
            const json entry =
                schema.kind == Kind::list ? someEntry(schema, choose, key) : someLeaf(schema, choose);
            if (find(schema, entries, keyOf(schema, entry)) == entries.end())
                entries.push_back(entry);
        }
        return entries;
    }
    return schema.isLeaf() ? someLeaf(schema, choose) : someEntry(schema, choose, key);
}

std::optional<std::string> Model::edit(tk::Method method, const Path &path, const json &value,
                                       const std::optional<Position> &position)
{
    json data = data_;
    if (path.empty()) {
        mergeInto(kDatastore, data, value, method == tk::Method::put);
    } else {
        json *parent = parentOf(data, path);
        if (!parent || (method == tk::Method::remove && !holds(*parent, path.back())))
            return "data-missing";
        if (path.size() > 1)
            clearOtherBranches(*path[path.size() - 2].schema, *parent,
                               method == tk::Method::remove ? 0 : path.back().schema->branch);
        if (method == tk::Method::remove)
            remove(*parent, path.back());
        else if (const auto refused = put(*parent, path.back(), value, method, position))
            return refused;
    }
    data_ = pruned(kDatastore, data, false);
    if (data_.is_null())
        data_ = json::object();
    return std::nullopt;
}

json Model::data() const
{
    return sorted(data_);
}

json Model::sorted(const json &data)
{
    const json value = pruned(kDatastore, data, true);
    return value.is_null() ? json::object() : value;
}

Leaves leavesOf(const json &data)
{
    Gathering found;
    gather(kDatastore, data, "", "", found);
    return found.leaves;
}

std::set<std::string> instancesOf(const json &data)
{
    Gathering found;
    gather(kDatastore, data, "", "", found);
    return found.instances;
}

} // namespace fuzz
