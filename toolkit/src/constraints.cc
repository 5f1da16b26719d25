#include "constraints.h"

#include "errors.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tk {

namespace {

// The whens of a node: its own and those of the choices and cases around it.
template <class Action>
void forEachWhen(const lysc_node *node, Action action)
{
    for (const lysc_node *up = node; up; up = up->parent) {
        lysc_when **whens = lysc_node_when(up);
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(whens, i)
        action(whens[i]);
        if (!up->parent || !(up->parent->nodetype & (LYS_CHOICE | LYS_CASE)))
            return;
    }
}

bool hasWhen(const lysc_node *node)
{
    bool found = false;
    forEachWhen(node, [&](const lysc_when *) { found = true; });
    return found;
}

bool isInCase(const lysc_node *node)
{
    return node->parent && (node->parent->nodetype & (LYS_CHOICE | LYS_CASE));
}

// Whether an expression reads what its atoms do not show.
bool isOpaque(const char *text)
{
    return std::strstr(text, "//") || std::strstr(text, "deref(") || std::strstr(text, "::");
}

// A path that starts at the root stands where a token may start.
bool isAbsolute(const char *text)
{
    for (const char *at = text; *at; ++at) {
        if (*at == '\'' || *at == '"') {
            at = std::strchr(at + 1, *at);
            if (!at)
                return true;
            continue;
        }
        if (*at != '/')
            continue;
        const char *before = at;
        while (before > text && std::strchr(" \t\n\r", before[-1]))
            --before;
        if (before == text || std::strchr("(,[=<>|+*", before[-1]))
            return true;
        // An operator word such as "or" is set off by a blank; a step before a slash is not.
        if (before != at)
            return true;
    }
    return false;
}

const lysc_node *commonAncestor(const lysc_node *a, const lysc_node *b)
{
    for (const lysc_node *up = a; up; up = dataParent(up))
        for (const lysc_node *other = b; other; other = dataParent(other))
            if (up == other)
                return up;
    return nullptr;
}

const char *defaultOf(const lysc_node *node)
{
    if (node->nodetype != LYS_LEAF)
        return nullptr;
    const auto *leaf = reinterpret_cast<const lysc_node_leaf *>(node);
    return leaf->dflt ? lyd_value_get_canonical(node->module->ctx, leaf->dflt) : nullptr;
}

// The nearest node above with the schema, the node itself included.
lyd_node *atOrAbove(lyd_node *node, const lysc_node *schema)
{
    while (node && node->schema != schema)
        node = parentOf(node);
    return node;
}

// Instances of a list stand side by side.
lyd_node *firstInstance(lyd_node *firstSibling, const lysc_node *schema)
{
    lyd_node *match = nullptr;
    if (!firstSibling || lyd_find_sibling_val(firstSibling, schema, nullptr, 0, &match))
        return nullptr;
    return match;
}

std::vector<const lysc_node *> pathBelow(const lysc_node *apex, const lysc_node *node)
{
    std::vector<const lysc_node *> path;
    for (const lysc_node *up = node; up && up != apex; up = dataParent(up))
        path.push_back(up);
    std::reverse(path.begin(), path.end());
    return path;
}

template <class Action>
void forEachInstance(lyd_node *firstSibling, const std::vector<const lysc_node *> &path, std::size_t level,
                     Action &action)
{
    const lysc_node *schema = path[level];
    const bool last = level + 1 == path.size();
    const auto take = [&](lyd_node *node) {
        if (last)
            action(node);
        else
            forEachInstance(lyd_child(node), path, level + 1, action);
    };
    lyd_node *match = nullptr;
    if (!(schema->nodetype & (LYS_LIST | LYS_LEAFLIST))) {
        if (firstSibling && !lyd_find_sibling_val(firstSibling, schema, nullptr, 0, &match))
            take(match);
        return;
    }
    std::vector<lyd_node *> instances;
    for (lyd_node *node = firstInstance(firstSibling, schema); node && node->schema == schema;
         node = node->next)
        instances.push_back(node);
    for (lyd_node *node : instances)
        take(node);
}

// The default leaves that an expression reads are put into the tree while it is evaluated.
class DefaultsInPlace {
public:
    DefaultsInPlace(const Expression &expression, lyd_node *anyNode)
    {
        if (expression.defaults.empty())
            return;
        lyd_node *top = anyNode;
        while (parentOf(top))
            top = parentOf(top);
        lyd_node *apex = expression.apex ? atOrAbove(anyNode, expression.apex) : nullptr;
        for (const lysc_node *leaf : expression.defaults) {
            const auto path = pathBelow(apex ? expression.apex : nullptr, leaf);
            if (!path.empty())
                complete(apex, apex ? lyd_child(apex) : lyd_first_sibling(top), path, 0);
        }
    }

    ~DefaultsInPlace()
    {
        for (auto node = made_.rbegin(); node != made_.rend(); ++node)
            lyd_free_tree(*node);
    }

    DefaultsInPlace(const DefaultsInPlace &) = delete;
    DefaultsInPlace &operator=(const DefaultsInPlace &) = delete;

private:
    void complete(lyd_node *parent, lyd_node *firstSibling, const std::vector<const lysc_node *> &path,
                  std::size_t level)
    {
        const lysc_node *schema = path[level];
        if (level + 1 < path.size()) {
            const bool found = firstInstance(firstSibling, schema);
            if (!found && isPlainContainer(schema) && (parent || firstSibling))
                make(parent, firstSibling, schema, nullptr);
            lyd_node *first = parent ? lyd_child(parent) : lyd_first_sibling(firstSibling);
            for (lyd_node *node = firstInstance(first, schema); node && node->schema == schema;
                 node = node->next)
                complete(node, lyd_child(node), path, level + 1);
            return;
        }
        if (parent && !firstInstance(firstSibling, schema))
            make(parent, firstSibling, schema, defaultOf(schema));
    }

    void make(lyd_node *parent, lyd_node *firstSibling, const lysc_node *schema, const char *value)
    {
        lyd_node *node = nullptr;
        if (value)
            lyd_new_term(parent, schema->module, schema->name, value, 0, &node);
        else
            lyd_new_inner(parent, schema->module, schema->name, 0, &node);
        if (node && !parent)
            lyd_insert_sibling(firstSibling, node, nullptr);
        if (node)
            made_.push_back(node);
    }

    std::vector<lyd_node *> made_;
};

} // namespace

NodeConstraints &ConstraintIndex::of(const lysc_node *node)
{
    auto &slot = nodes_[node];
    if (!slot) {
        slot = std::make_unique<NodeConstraints>();
        infoOf(node).constraints = slot.get();
    }
    return *slot;
}

void ConstraintIndex::build(const Schema &schema)
{
    for (const NodeInfo &info : schema.nodes()) {
        const lysc_node *node = info.node;
        const bool operation = node->nodetype & (LYS_RPC | LYS_ACTION | LYS_INPUT | LYS_OUTPUT | LYS_NOTIF);
        if (operation || (node->nodetype & (LYS_CHOICE | LYS_CASE)) || !isConfigNode(node))
            continue;
        addExpressions(node);
        addStructure(node);
    }
}

void ConstraintIndex::addExpressions(const lysc_node *node)
{
    lysc_must *musts = lysc_node_musts(node);
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(musts, i)
    add({Expression::Kind::must, node, &musts[i], nullptr, musts[i].cond, musts[i].prefixes}, node);
    forEachWhen(node, [&](const lysc_when *when) {
        add({Expression::Kind::when, node, nullptr, when, when->cond, when->prefixes}, when->context);
    });
    if (node->nodetype == LYS_LEAF)
        addLeafrefs(node, reinterpret_cast<const lysc_node_leaf *>(node)->type);
    else if (node->nodetype == LYS_LEAFLIST)
        addLeafrefs(node, reinterpret_cast<const lysc_node_leaflist *>(node)->type);
}

void ConstraintIndex::addLeafrefs(const lysc_node *node, const lysc_type *type)
{
    if (type->basetype == LY_TYPE_LEAFREF) {
        const auto *leafref = reinterpret_cast<const lysc_type_leafref *>(type);
        if (leafref->require_instance)
            add({Expression::Kind::leafref, node, nullptr, nullptr, leafref->path, leafref->prefixes}, node);
    } else if (type->basetype == LY_TYPE_UNION) {
        const auto *members = reinterpret_cast<const lysc_type_union *>(type)->types;
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(members, i)
        addLeafrefs(node, members[i]);
    } else if (type->basetype == LY_TYPE_INST) {
        hasInstanceIds_ |= reinterpret_cast<const lysc_type_instanceid *>(type)->require_instance != 0;
    }
}

void ConstraintIndex::add(Expression expression, const lysc_node *context)
{
    expression.text = lyxp_get_expr(expression.parsed);
    ly_set *atoms = nullptr;
    const LY_ERR result = lys_find_expr_atoms(context, expression.owner->module, expression.parsed,
                                              expression.prefixes, 0, &atoms);
    if (result || isOpaque(expression.text))
        hasUnindexed_ = true;
    const bool absolute = !context || isAbsolute(expression.text);
    const lysc_node *apex = absolute ? nullptr : commonAncestor(expression.owner, context);
    expressions_.push_back(std::move(expression));
    Expression &stored = expressions_.back();
    of(stored.owner).own.push_back(&stored);
    std::set<const lysc_node *> seen;
    for (std::uint32_t i = 0; atoms && i < atoms->count; ++i) {
        const lysc_node *atom = atoms->snodes[i];
        if (!seen.insert(atom).second)
            continue;
        if (apex)
            apex = commonAncestor(apex, atom);
        of(atom).dependents.push_back(&stored);
        if (defaultOf(atom)) {
            stored.defaults.push_back(atom);
            hasUnindexed_ |= hasWhen(atom) || isInCase(atom);
        }
    }
    stored.apex = apex;
    ly_set_free(atoms, nullptr);
    if (stored.kind == Expression::Kind::leafref && addReferrer(stored, seen))
        for (const lysc_node *atom : seen)
            std::erase(of(atom).dependents, &stored);
}

// A leafref without predicates reads one leaf. Whoever loses a value there asks who names it.
bool ConstraintIndex::addReferrer(const Expression &leafref, const std::set<const lysc_node *> &atoms)
{
    const lysc_node *target = nullptr;
    for (const lysc_node *atom : atoms) {
        if (!isLeafKind(atom) || atom == leafref.owner)
            continue;
        if (target)
            return false;
        target = atom;
    }
    NodeConstraints &owner = of(leafref.owner);
    if (!target || std::strchr(leafref.text, '[') || owner.reference)
        return false;
    of(target).referrers.push_back(&leafref);
    owner.reference = &leafref;
    return true;
}

namespace {

bool isRequired(const lysc_node *node)
{
    if (node->nodetype == LYS_LIST)
        return reinterpret_cast<const lysc_node_list *>(node)->min > 0;
    if (node->nodetype == LYS_LEAFLIST)
        return reinterpret_cast<const lysc_node_leaflist *>(node)->min > 0;
    return (node->nodetype & (LYS_LEAF | LYS_CHOICE | LYS_ANYDATA | LYS_ANYXML)) &&
        (node->flags & LYS_MAND_TRUE) && !isKey(node);
}

// What must exist below an entry: in it and in the containers without presence in it, which exist with it.
void collectRequired(const lysc_node *child, std::vector<const lysc_node *> &required)
{
    for (; child; child = child->next) {
        if (!isConfigNode(child) && child->nodetype != LYS_CHOICE && child->nodetype != LYS_CASE)
            continue;
        if (isRequired(child))
            required.push_back(child);
        if (isPlainContainer(child) || (child->nodetype & (LYS_CHOICE | LYS_CASE)))
            collectRequired(lysc_node_child(child), required);
    }
}

} // namespace

void ConstraintIndex::addStructure(const lysc_node *node)
{
    if (isEntry(node)) {
        std::vector<const lysc_node *> required;
        collectRequired(lysc_node_child(node), required);
        if (!required.empty())
            of(node).required = std::move(required);
    }
    if (!node->parent) {
        std::vector<const lysc_node *> required;
        if (isRequired(node))
            required.push_back(node);
        if (isPlainContainer(node))
            collectRequired(lysc_node_child(node), required);
        requiredAtTop_.insert(requiredAtTop_.end(), required.begin(), required.end());
    }
    if (node->nodetype != LYS_LIST)
        return;
    auto *uniques = reinterpret_cast<const lysc_node_list *>(node)->uniques;
    LY_ARRAY_COUNT_TYPE i, j;
    LY_ARRAY_FOR(uniques, i)
    LY_ARRAY_FOR(uniques[i], j)
    of(&uniques[i][j]->node).uniqueLists.push_back(node);
}

bool ConstraintIndex::mustCheckWhole(const Changes &changes) const
{
    if (hasUnindexed_)
        return true;
    return hasInstanceIds_ &&
        std::any_of(changes.list().begin(), changes.list().end(),
                    [](const auto &change) { return !change.inserted; });
}

namespace {

template <class Action>
void forEachNode(lyd_node *tree, Action action)
{
    lyd_node *node = nullptr;
    LYD_TREE_DFS_BEGIN(tree, node)
    {
        action(node);
        LYD_TREE_DFS_END(tree, node);
    }
}

} // namespace

void Checker::run()
{
    // Taking out what a `when` no longer allows is a change that needs checks of its own.
    for (std::size_t next = 0; next < changes_.list().size();) {
        for (; next < changes_.list().size(); ++next) {
            const auto change = changes_.list()[next];
            if (change.moved)
                continue;
            lyd_node *parent = change.parent;
            if (change.inserted)
                forEachNode(change.node, [this](lyd_node *node) { checkInserted(node); });
            else
                forEachNode(change.node, [&](lyd_node *node) { checkRemoved(node, parent); });
        }
        for (lyd_node *node : std::exchange(whenFalse_, {}))
            if (changes_.isLinked(node))
                editor_.removeExisting(node, Ask::none);
    }
    if (whole_ || index_.mustCheckWhole(changes_))
        checkWhole();
}

void Checker::checkInserted(lyd_node *node)
{
    lyd_get_value(node); // canonical text is made now, not by two readers at once
    const NodeConstraints *constraints = infoOf(node->schema).constraints;
    if (node->schema->nodetype & (LYS_LIST | LYS_LEAFLIST))
        checkCount(node->schema, parentOf(node) ? lyd_child(parentOf(node)) : changes_.root(),
                   parentOf(node));
    if (node->schema->nodetype == LYS_LIST)
        checkUnique(node->schema, node);
    if (!constraints)
        return;
    for (const Expression *expression : constraints->own)
        check(*expression, node);
    if (isEntry(node->schema))
        checkRequired(node);
    for (const lysc_node *list : constraints->uniqueLists)
        checkUnique(list, atOrAbove(node, list));
    checkDependents(*constraints, node);
    if (const char *replaced = constraints->referrers.empty() ? nullptr : defaultOf(node->schema))
        checkReferrers(*constraints, replaced);
}

void Checker::checkRemoved(const lyd_node *node, lyd_node *parent)
{
    const bool topOfRemoved = !parentOf(node);
    if (topOfRemoved) {
        lyd_node *entry = parent;
        while (entry && !isEntry(entry->schema))
            entry = parentOf(entry);
        checkRequired(entry);
    }
    const NodeConstraints *constraints = infoOf(node->schema).constraints;
    if (!constraints)
        return;
    if (topOfRemoved)
        for (const lysc_node *list : constraints->uniqueLists)
            if (lyd_node *entry = atOrAbove(parent, list))
                checkUnique(list, entry);
    checkDependents(*constraints, parent);
    if (isLeafKind(node->schema))
        checkReferrers(*constraints, lyd_get_value(node));
}

void Checker::checkDependents(const NodeConstraints &constraints, lyd_node *from)
{
    for (const Expression *expression : constraints.dependents) {
        lyd_node *apex = expression->apex ? atOrAbove(from, expression->apex) : nullptr;
        if (expression->apex && !apex)
            continue; // the owner went with what was taken out
        if (!done_.insert({expression, apex}).second)
            continue;
        auto again = [&](lyd_node *owner) { check(*expression, owner); };
        if (expression->apex == expression->owner) {
            again(apex);
            continue;
        }
        const auto path = pathBelow(expression->apex, expression->owner);
        forEachInstance(apex ? lyd_child(apex) : changes_.root(), path, 0, again);
    }
}

void Checker::check(const Expression &expression, lyd_node *node)
{
    switch (expression.kind) {
    case Expression::Kind::must:
        return checkMust(expression, node);
    case Expression::Kind::when:
        return checkWhen(expression, node);
    case Expression::Kind::leafref:
        return checkLeafref(expression, node);
    }
}

bool Checker::evaluate(const Expression &expression, lyd_node *node)
{
    lyd_node *context = node;
    if (expression.when && expression.when->context && expression.when->context != node->schema)
        context = atOrAbove(node, expression.when->context);
    const DefaultsInPlace defaults(expression, node);
    ly_bool result = 0;
    clearErrors(context_);
    if (!context ||
        lyd_eval_xpath3(context, expression.owner->module, expression.text, LY_VALUE_SCHEMA_RESOLVED,
                        const_cast<lysc_prefix *>(expression.prefixes), nullptr, &result))
        whole_ = true; // let libyang decide, with its own message
    clearErrors(context_);
    return result || whole_;
}

void Checker::checkWhen(const Expression &expression, lyd_node *node)
{
    if (evaluate(expression, node)) {
        node->flags |= LYD_WHEN_TRUE;
        return;
    }
    // A container without presence that holds nothing does no harm.
    if (!holdsAnything(node))
        return;
    bool inserted = false;
    for (const lyd_node *up = node; up && !inserted; up = parentOf(up))
        inserted = changes_.wasInserted(up);
    if (inserted)
        throw unknownElement(instancePath(node),
                             std::string("When condition \"") + expression.text + "\" not satisfied.");
    if (std::find(whenFalse_.begin(), whenFalse_.end(), node) == whenFalse_.end())
        whenFalse_.push_back(node);
}

void Checker::checkMust(const Expression &expression, lyd_node *node)
{
    if (evaluate(expression, node))
        return;
    const lysc_must &must = *expression.must;
    const std::string message =
        must.emsg ? must.emsg : std::string("Must condition \"") + expression.text + "\" not satisfied.";
    throw operationFailed(instancePath(node), message, must.eapptag ? must.eapptag : "must-violation");
}

void Checker::checkLeafref(const Expression &expression, lyd_node *node)
{
    const DefaultsInPlace defaults(expression, node);
    const char *value = lyd_get_value(node);
    clearErrors(context_);
    const LY_ERR result =
        lyd_value_validate(context_, node->schema, value, std::strlen(value), node, nullptr, nullptr);
    if (result == LY_SUCCESS)
        return;
    auto errors = takeErrors(context_, std::string("The value \"") + value + "\" refers to nothing.");
    throw Failure(
        Error{kOk, "data-missing", "instance-required", instancePath(node), errors.front().message});
}

void Checker::checkRequired(lyd_node *entry)
{
    if (!requiredDone_.insert(entry).second)
        return;
    const NodeConstraints *constraints = entry ? infoOf(entry->schema).constraints : nullptr;
    if (entry && !constraints)
        return;
    const auto &required = entry ? constraints->required : index_.requiredAtTop();
    for (const lysc_node *node : required)
        checkRequiredNode(entry ? lyd_child(entry) : changes_.root(), node, entry);
}

namespace {

bool holdsChoice(const lyd_node *firstSibling, const lysc_node *choice)
{
    for (const lyd_node *node = firstSibling; node; node = node->next)
        for (const lysc_node *up = node->schema->parent; up && (up->nodetype & (LYS_CHOICE | LYS_CASE));
             up = up->parent)
            if (up == choice && holdsAnything(node))
                return true;
    return false;
}

// Whether a node in a case is asked for at all: another node of the case must be there.
bool isCaseActive(const lyd_node *firstSibling, const lysc_node *node)
{
    for (const lysc_node *up = node->parent; up && (up->nodetype & (LYS_CHOICE | LYS_CASE)); up = up->parent)
        if (up->nodetype == LYS_CASE && !holdsChoice(firstSibling, up))
            return false;
    return true;
}

Failure missingNode(const lysc_node *node, const lyd_node *entry)
{
    const std::string path = entry ? instancePath(entry) : "";
    if (node->nodetype == LYS_CHOICE)
        return Failure(Error{kOk, "data-missing", "missing-choice", path,
                             std::string("Mandatory choice \"") + node->name + "\" data do not exist."});
    return dataMissing(path + "/" + node->module->name + ":" + node->name,
                       std::string("Mandatory node \"") + node->name + "\" instance does not exist.");
}

} // namespace

void Checker::checkRequiredNode(lyd_node *firstSibling, const lysc_node *required, const lyd_node *entry)
{
    // Down to the container that the node stands in.
    for (const lysc_node *step : pathBelow(entry ? entry->schema : nullptr, required)) {
        if (step == required)
            break;
        lyd_node *match = nullptr;
        if (firstSibling)
            lyd_find_sibling_val(firstSibling, step, nullptr, 0, &match);
        whole_ = whole_ || (!match && hasWhen(step));
        firstSibling = match ? lyd_child(match) : nullptr;
    }
    if (required->nodetype & (LYS_LIST | LYS_LEAFLIST)) {
        if (isCaseActive(firstSibling, required) && !hasWhen(required))
            checkCount(required, firstSibling, entry);
        else
            whole_ = whole_ || hasWhen(required);
        return;
    }
    lyd_node *match = nullptr;
    const bool there = required->nodetype == LYS_CHOICE
        ? holdsChoice(firstSibling, required)
        : firstSibling && !lyd_find_sibling_val(firstSibling, required, nullptr, 0, &match);
    if (there || whole_)
        return;
    if (hasWhen(required))
        whole_ = true;
    else if (isCaseActive(firstSibling, required))
        throw missingNode(required, entry);
}

void Checker::checkCount(const lysc_node *schema, lyd_node *firstSibling, const lyd_node *entry)
{
    const bool list = schema->nodetype == LYS_LIST;
    const auto *asList = reinterpret_cast<const lysc_node_list *>(schema);
    const auto *asLeafList = reinterpret_cast<const lysc_node_leaflist *>(schema);
    const std::uint32_t min = list ? asList->min : asLeafList->min,
                        max = list ? asList->max : asLeafList->max;
    if (min == 0 && (max == 0 || max == UINT32_MAX))
        return;
    std::uint32_t count = 0;
    for (const lyd_node *node = firstInstance(firstSibling, schema); node && node->schema == schema;
         node = node->next)
        ++count;
    const std::string path =
        (entry ? instancePath(entry) : "") + "/" + schema->module->name + ":" + schema->name;
    if (max && count > max)
        throw operationFailed(path, std::string("Too many \"") + schema->name + "\" instances.",
                              "too-many-elements");
    if (count < min)
        throw operationFailed(path, std::string("Too few \"") + schema->name + "\" instances.",
                              "too-few-elements");
}

namespace {

// The values of one unique statement in an entry, one behind the other; nothing if one of them is missing.
std::optional<std::string> uniqueValue(lysc_node_leaf **leaves, const lyd_node *entry)
{
    std::string values;
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(leaves, i)
    {
        const lyd_node *at = entry;
        for (const lysc_node *step : pathBelow(entry->schema, &leaves[i]->node)) {
            lyd_node *match = nullptr;
            if (at && lyd_child(at))
                lyd_find_sibling_val(lyd_child(at), step, nullptr, 0, &match);
            at = match;
        }
        const char *value = at ? lyd_get_value(at) : defaultOf(&leaves[i]->node);
        if (!value)
            return std::nullopt;
        values.append(value).push_back('\0');
    }
    return values;
}

} // namespace

void Checker::checkUnique(const lysc_node *list, lyd_node *entry)
{
    auto *uniques = reinterpret_cast<const lysc_node_list *>(list)->uniques;
    if (!uniques || !entry || !uniqueDone_.insert({list, entry}).second)
        return;
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(uniques, i)
    {
        const ValueIndex::Scope scope{uniques[i], parentOf(entry)};
        if (!values_.has(scope))
            openUnique(scope, uniques[i], entry);
        const auto value = uniqueValue(uniques[i], entry);
        uniqueValues_.push_back({scope, entry, value});
        if (!value)
            continue;
        // What the index knows is from before the edit: an entry may have another value now.
        for (const ValueIndex *known : {&values_, &newValues_})
            for (const lyd_node *other : known->find(scope, *value))
                if (other != entry && changes_.isLinked(other) && uniqueValue(uniques[i], other) == value)
                    throw operationFailed(instancePath(entry),
                                          "Unique data leaf(s) not satisfied in \"" + instancePath(other) +
                                              "\".",
                                          "data-not-unique");
        newValues_.put(scope, entry, *value);
    }
}

void Checker::openUnique(const ValueIndex::Scope &scope, lysc_node_leaf **leaves, const lyd_node *entry)
{
    values_.open(scope);
    lyd_node *first = parentOf(entry) ? lyd_child(parentOf(entry)) : changes_.root();
    for (lyd_node *one = firstInstance(first, entry->schema); one && one->schema == entry->schema;
         one = one->next)
        if (const auto value = uniqueValue(leaves, one))
            values_.put(scope, one, *value);
}

// Nobody may name a value that is gone.
void Checker::checkReferrers(const NodeConstraints &constraints, const char *value)
{
    for (const Expression *leafref : constraints.referrers) {
        const ValueIndex::Scope scope{leafref, nullptr};
        if (!values_.has(scope))
            openReferrers(*leafref);
        for (lyd_node *referrer : values_.find(scope, value))
            if (changes_.isLinked(referrer))
                checkLeafref(*leafref, referrer);
    }
}

void Checker::openReferrers(const Expression &leafref)
{
    const ValueIndex::Scope scope{&leafref, nullptr};
    values_.open(scope);
    auto add = [&](lyd_node *leaf) { values_.put(scope, leaf, lyd_get_value(leaf)); };
    forEachInstance(changes_.root(), pathBelow(nullptr, leafref.owner), 0, add);
}

void Checker::keepValues()
{
    for (const Changes::Change &change : changes_.list()) {
        if (change.moved)
            continue;
        forEachNode(change.node, [&](lyd_node *node) {
            const NodeConstraints *constraints = infoOf(node->schema).constraints;
            if (!change.inserted)
                return values_.erase(node);
            if (!constraints || !constraints->reference)
                return;
            const ValueIndex::Scope scope{constraints->reference, nullptr};
            if (values_.has(scope) && changes_.isLinked(node))
                values_.put(scope, node, lyd_get_value(node));
        });
    }
    for (const UniqueValue &unique : uniqueValues_) {
        if (!changes_.isLinked(unique.entry))
            continue;
        if (unique.value)
            values_.put(unique.scope, unique.entry, *unique.value);
        else
            values_.erase(unique.scope, unique.entry);
    }
    values_.keep();
}

void Checker::checkWhole()
{
    std::vector<lyd_node *> gone;
    checkWholeTree(changes_.root(), context_, &gone);
    for (lyd_node *node : gone)
        if (changes_.isLinked(node))
            editor_.removeExisting(node, Ask::none);
}

namespace {

bool isDeletion(const lyd_node *node)
{
    for (const lyd_meta *meta = node->meta; meta; meta = meta->next)
        if (std::strcmp(meta->name, "operation") == 0)
            return std::strcmp(lyd_get_meta_value(meta), "delete") == 0;
    return false;
}

} // namespace

void checkWholeTree(lyd_node *tree, const ly_ctx *context, std::vector<lyd_node *> *whenFalse)
{
    clearErrors(context);
    lyd_node *copy = nullptr;
    if (tree && lyd_dup_siblings(tree, nullptr, LYD_DUP_RECURSIVE | LYD_DUP_WITH_FLAGS, &copy))
        throw Failure(takeErrors(context, "The data cannot be copied."));
    lyd_node *difference = nullptr;
    const LY_ERR result =
        lyd_validate_all(&copy, context, LYD_VALIDATE_NO_STATE | LYD_VALIDATE_PRESENT, &difference);
    const Tree ownedCopy(copy), ownedDifference(difference);
    if (result)
        throw Failure(takeErrors(context, "The data are not valid."));
    for (lyd_node *top = difference; whenFalse && top; top = top->next)
        forEachNode(top, [&](lyd_node *node) {
            lyd_node *match = nullptr;
            if (isDeletion(node) && !lyd_find_path(tree, instancePath(node).c_str(), 0, &match))
                whenFalse->push_back(match);
        });
    clearErrors(context);
}

void markWhens(lyd_node *tree)
{
    for (lyd_node *top = tree; top; top = top->next)
        forEachNode(top, [](lyd_node *node) {
            if (hasWhen(node->schema))
                node->flags |= LYD_WHEN_TRUE;
            node->flags &= ~static_cast<std::uint32_t>(LYD_NEW);
            lyd_get_value(node);
        });
}

} // namespace tk
