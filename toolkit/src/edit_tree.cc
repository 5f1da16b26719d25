#include "edit_tree.h"

#include "errors.h"

#include <cstdlib>
#include <cstring>
#include <map>

namespace tk {

std::string instancePath(const lyd_node *node)
{
    char *path = lyd_path(node, LYD_PATH_STD, nullptr, 0);
    const std::string text = path ? path : "";
    std::free(path);
    return text;
}

lyd_node *findInstance(lyd_node *firstSibling, const lyd_node *wanted)
{
    lyd_node *match = nullptr;
    if (!firstSibling)
        return nullptr;
    if (wanted->schema->nodetype & (LYS_LIST | LYS_LEAFLIST))
        lyd_find_sibling_first(firstSibling, wanted, &match);
    else
        lyd_find_sibling_val(firstSibling, wanted->schema, nullptr, 0, &match);
    return match;
}

ChangeNode &ChangeNode::add(const lysc_node *child, lyd_node *was, lyd_node *is, Ask asked, bool askedItself)
{
    auto node = std::make_unique<ChangeNode>();
    node->schema = child;
    node->before = was;
    node->after = is;
    node->parent = this;
    node->effective = asked;
    const bool cut = schema && isEntry(schema);
    node->told = askedItself || !cut ? (askedItself ? asked : told) : Ask::none;
    children.push_back(std::move(node));
    return *children.back();
}

namespace {

bool sameValue(const lyd_node *a, const lyd_node *b)
{
    return lyd_compare_single(a, b, 0) == LY_SUCCESS;
}

lyd_node *firstIn(const Changes &changes, const lyd_node *parent)
{
    return parent ? lyd_child(parent) : changes.root();
}

bool removesOnly(Ask ask)
{
    return ask == Ask::del || ask == Ask::remove;
}

// Takes a node out of the edit, which must not keep hold of its first node.
void takeOver(EditTree &edit, lyd_node *wanted)
{
    if (edit.tree.get() == wanted) {
        static_cast<void>(edit.tree.release());
        edit.tree.reset(wanted->next);
    }
    lyd_unlink_tree(wanted);
}

void tellAsMerge(ChangeNode &node)
{
    node.effective = node.told = Ask::merge;
    for (const auto &child : node.children)
        tellAsMerge(*child);
}

Failure missing(const lyd_node *wanted)
{
    return dataMissing(instancePath(wanted), "There is no such data.");
}

} // namespace

void Editor::apply(EditTree &edit)
{
    root_.effective = root_.told = edit.rootAsk;
    applyChildren(edit, edit.tree.get(), {nullptr, &root_, false}, edit.rootAsk);
    if (edit.toldAsMerge)
        tellAsMerge(root_);
}

void Editor::applyChildren(EditTree &edit, lyd_node *first, const Place &place, Ask ask)
{
    Order order;
    Place inside = place;
    if (ask == Ask::replace && !place.isNew) {
        removeAbsent(first, place, ask);
        inside.order = &order;
    }
    for (lyd_node *wanted = first, *next = nullptr; wanted; wanted = next) {
        next = wanted->next; // applying may take the node out of the edit
        if (!isKey(wanted->schema))
            applyNode(edit, wanted, inside, ask);
    }
}

void Editor::removeAbsent(lyd_node *wantedFirst, const Place &place, Ask ask)
{
    std::vector<lyd_node *> absent;
    for (lyd_node *existing = firstIn(changes_, place.parent); existing; existing = existing->next)
        if (!isKey(existing->schema) && isConfigNode(existing->schema) &&
            !findInstance(wantedFirst, existing))
            absent.push_back(existing);
    for (lyd_node *existing : absent)
        remove(existing, place, ask, false);
}

void Editor::applyNode(EditTree &edit, lyd_node *wanted, const Place &place, Ask inherited)
{
    const auto own = edit.asks.find(wanted);
    const bool itself = own != edit.asks.end();
    const Ask ask = itself ? own->second : inherited;
    if (lyd_node *existing = findInstance(firstIn(changes_, place.parent), wanted))
        applyToExisting(edit, wanted, existing, place, ask, itself);
    else
        applyToMissing(edit, wanted, place, ask, itself);
}

void Editor::applyToExisting(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place,
                             Ask ask, bool itself)
{
    if (removesOnly(ask)) {
        if (ask == Ask::del && !holdsAnything(existing))
            throw missing(wanted);
        return remove(existing, place, ask, itself);
    }
    if (ask == Ask::create && holdsAnything(existing))
        throw dataExists(instancePath(existing));
    const bool moved = isUserOrdered(existing->schema) && moveExisting(edit, wanted, existing, place);
    if (existing->schema->nodetype == LYS_LEAFLIST) {
        if (moved)
            place.change->add(existing->schema, existing, existing, ask, itself).moved = true;
        return;
    }
    if (isLeafKind(existing->schema))
        return changeLeaf(edit, wanted, existing, place, ask, itself);
    ChangeNode &change = place.change->add(existing->schema, existing, existing, ask, itself);
    change.moved = moved;
    applyChildren(edit, lyd_child(wanted), {existing, &change, false}, ask);
    if (isPlainContainer(existing->schema) && !lyd_child(existing)) {
        changes_.remove(existing);
        change.after = nullptr;
    }
    // Somebody asks for just this; a datastore that is replaced as a whole only says what stays.
    change.retold = (infoOf(existing->schema).options & toldWhenSame) && (itself || ask == Ask::merge);
    if (change.children.empty() && !change.moved && !change.retold)
        place.change->children.pop_back();
}

void Editor::changeLeaf(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place, Ask ask,
                        bool itself)
{
    if (sameValue(wanted, existing))
        return;
    takeOver(edit, wanted);
    changes_.remove(existing);
    changes_.insert(place.parent, wanted);
    place.change->add(wanted->schema, existing, wanted, ask, itself);
}

void Editor::applyToMissing(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself)
{
    const bool container = isPlainContainer(wanted->schema);
    if (ask == Ask::remove)
        return;
    if (ask == Ask::del || (ask == Ask::none && !container))
        throw missing(wanted);
    if (!container || holdsAnything(wanted))
        clearOtherCases(wanted->schema, place);
    if (container)
        intoMissingContainer(edit, wanted, place, ask, itself);
    else
        insertMoved(edit, wanted, place, ask, itself);
}

// A container without presence comes with its first content and is not left behind without any.
void Editor::intoMissingContainer(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself)
{
    lyd_node *made = nullptr;
    if (lyd_dup_single(wanted, nullptr, LYD_DUP_NO_META, &made))
        throw Failure(takeErrors(LYD_CTX(wanted), "A container cannot be made."));
    changes_.insert(place.parent, made);
    ChangeNode &change = place.change->add(made->schema, nullptr, made, ask, itself);
    applyChildren(edit, lyd_child(wanted), {made, &change, true}, ask);
    if (!lyd_child(made)) {
        changes_.remove(made);
        place.change->children.pop_back();
    }
}

void Editor::insertMoved(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself)
{
    if (edit.nested)
        settleNested(edit, wanted);
    lyd_node *previous = nullptr;
    bool first = false;
    if (isUserOrdered(wanted->schema)) {
        if (edit.placements.contains(wanted)) {
            previous = placeAfter(settled(edit, wanted, place), nullptr, firstIn(changes_, place.parent),
                                  wanted->schema);
            first = previous == nullptr;
        } else if (place.order) {
            previous = (*place.order)[wanted->schema];
            first = previous == nullptr;
        }
        if (place.order)
            (*place.order)[wanted->schema] = wanted;
    }
    takeOver(edit, wanted);
    lyd_free_meta_siblings(wanted->meta);
    wanted->meta = nullptr;
    changes_.insert(place.parent, wanted, previous, first);
    place.change->add(wanted->schema, nullptr, wanted, ask, itself);
}

// An instance that exists is moved if the client says where, or in a replacement by its place among the
// others.
bool Editor::moveExisting(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place)
{
    lyd_node *previous = previousSibling(existing);
    if (previous && previous->schema != existing->schema)
        previous = nullptr;
    lyd_node *target = previous;
    if (edit.placements.contains(wanted))
        target = placeAfter(settled(edit, wanted, place), existing, firstIn(changes_, place.parent),
                            existing->schema);
    else if (place.order)
        target = (*place.order)[existing->schema];
    if (place.order)
        (*place.order)[existing->schema] = existing;
    if (target == previous || target == existing)
        return false;
    changes_.move(existing, target);
    return true;
}

Placement Editor::settled(const EditTree &edit, const lyd_node *wanted, const Place &place) const
{
    const Placement &placement = edit.placements.at(wanted);
    if (!placement.like)
        return placement;
    Placement found{placement.where, findInstance(firstIn(changes_, place.parent), placement.like.get())};
    if (found.point)
        return found;
    if (edit.placesLoosely)
        return {};
    const char *attribute = wanted->schema->nodetype == LYS_LIST ? "key" : "value";
    throw badAttribute(instancePath(wanted), wanted->schema->name, attribute,
                       "There is no such instance to be placed at.", "missing-instance");
}

lyd_node *placeAfter(const Placement &placement, lyd_node *instance, lyd_node *firstSibling,
                     const lysc_node *schema)
{
    const auto behind = [&](lyd_node *node) {
        if (node && node == instance)
            node = previousSibling(node);
        return node && node->schema == schema ? node : nullptr;
    };
    switch (placement.where) {
    case InsertWhere::first:
        return nullptr;
    case InsertWhere::after:
        return const_cast<lyd_node *>(placement.point);
    case InsertWhere::before:
        return behind(previousSibling(placement.point));
    case InsertWhere::last:
        break;
    }
    lyd_node *last = nullptr;
    for (lyd_node *node = firstSibling; node; node = node->next)
        if (node->schema == schema && node != instance)
            last = node;
    return last;
}

void Editor::remove(lyd_node *existing, const Place &place, Ask ask, bool itself)
{
    const bool something = holdsAnything(existing);
    changes_.remove(existing);
    if (something)
        place.change->add(existing->schema, existing, nullptr, ask, itself);
}

// A node of one case takes the place of what the other cases held.
void Editor::clearOtherCases(const lysc_node *schema, const Place &place)
{
    const lysc_node *member = schema;
    for (const lysc_node *up = schema->parent; up && (up->nodetype & (LYS_CHOICE | LYS_CASE));
         up = up->parent) {
        if (up->nodetype == LYS_CHOICE) {
            std::vector<lyd_node *> others;
            for (lyd_node *existing = firstIn(changes_, place.parent); existing; existing = existing->next) {
                const lysc_node *at = existing->schema;
                while (at && at->parent != up && at != up)
                    at =
                        at->parent && (at->parent->nodetype & (LYS_CHOICE | LYS_CASE)) ? at->parent : nullptr;
                if (at && at != member)
                    others.push_back(existing);
            }
            for (lyd_node *other : others) {
                if (changes_.wasInserted(other))
                    throw badElement(instancePath(other), "Only one case of a choice can hold data.");
                remove(other, place, Ask::none, false);
            }
        }
        member = up;
    }
}

// Inside something new, "remove" has nothing to do and "delete" is an error.
void Editor::settleNested(EditTree &edit, lyd_node *subtree)
{
    for (lyd_node *child = lyd_child(subtree), *next = nullptr; child; child = next) {
        next = child->next;
        const auto own = edit.asks.find(child);
        if (own != edit.asks.end() && own->second == Ask::del)
            throw missing(child);
        if (own != edit.asks.end() && own->second == Ask::remove) {
            lyd_free_tree(child);
            continue;
        }
        lyd_free_meta_siblings(child->meta);
        child->meta = nullptr;
        settleNested(edit, child);
    }
}

void Editor::removeExisting(lyd_node *node, Ask ask)
{
    lyd_node *parent = parentOf(node);
    ChangeNode &change = parent ? changeNodeOf(parent) : root_;
    remove(node, {parent, &change, false}, ask, ask != Ask::none);
    // Containers without presence that this left empty go with it.
    for (lyd_node *up = parent; up && isPlainContainer(up->schema) && !lyd_child(up);) {
        lyd_node *above = parentOf(up);
        changeNodeOf(up).after = nullptr;
        changes_.remove(up);
        up = above;
    }
}

ChangeNode &Editor::changeNodeOf(lyd_node *node)
{
    lyd_node *parent = parentOf(node);
    ChangeNode &above = parent ? changeNodeOf(parent) : root_;
    for (const auto &child : above.children)
        if (child->after == node || child->before == node)
            return *child;
    // Something inside a new node needs no record of its own: the new node's record covers it.
    if (above.schema && above.isCreated())
        return above;
    return above.add(node->schema, node, node, Ask::none, false);
}

} // namespace tk
