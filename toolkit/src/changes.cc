#include "changes.h"

#include <algorithm>
#include <list>

namespace tk {

bool holdsAnything(const lyd_node *node)
{
    if (!node || (node->flags & LYD_DEFAULT))
        return false;
    if (!isPlainContainer(node->schema))
        return true;
    for (const lyd_node *child = lyd_child(node); child; child = child->next)
        if (holdsAnything(child))
            return true;
    return false;
}

Changes::~Changes()
{
    undo();
}

void Changes::note(const Change &change)
{
    byParent_[change.parent].push_back(list_.size());
    list_.push_back(change);
}

void Changes::link(lyd_node *parent, lyd_node *node, lyd_node *previous, bool first)
{
    if (parent)
        lyd_insert_child(parent, node);
    else
        lyd_insert_sibling(*root_, node, root_);
    if (!isUserOrdered(node->schema))
        return;
    if (previous && previous->schema == node->schema) {
        lyd_insert_after(previous, node);
    } else if (first) {
        lyd_node *instance = parent ? lyd_child(parent) : *root_;
        while (instance && instance->schema != node->schema)
            instance = instance->next;
        if (instance && instance != node)
            lyd_insert_before(instance, node);
    }
    if (!parent)
        *root_ = lyd_first_sibling(*root_);
}

void Changes::unlink(lyd_node *node)
{
    if (*root_ == node)
        *root_ = node->next;
    lyd_unlink_tree(node);
}

void Changes::insert(lyd_node *parent, lyd_node *node, lyd_node *previous, bool first)
{
    link(parent, node, previous, first);
    note({true, node, parent, nullptr});
    inserted_.insert(node);
}

void Changes::remove(lyd_node *node)
{
    note({false, node, parentOf(node), previousSibling(node)});
    unlink(node);
    removed_.insert(node);
}

bool Changes::isLinked(const lyd_node *node) const
{
    for (const lyd_node *up = node; up; up = parentOf(up))
        if (removed_.count(up))
            return false;
    return true;
}

void Changes::move(lyd_node *node, lyd_node *previous)
{
    lyd_node *parent = parentOf(node);
    note({false, node, parent, previousSibling(node), true});
    unlink(node);
    link(parent, node, previous, previous == nullptr);
    note({true, node, parent, nullptr, true});
}

void Changes::undo()
{
    for (auto change = list_.rbegin(); change != list_.rend(); ++change) {
        if (change->inserted) {
            unlink(change->node);
            if (!change->moved)
                lyd_free_tree(change->node);
        } else {
            const bool first = !change->previous || change->previous->schema != change->node->schema;
            link(change->parent, change->node, change->previous, first);
        }
    }
    list_.clear();
    byParent_.clear();
    inserted_.clear();
    removed_.clear();
}

namespace {

// What libyang's own validation of a copy must not take for news.
void clearNew(lyd_node *tree)
{
    lyd_node *node = nullptr;
    LYD_TREE_DFS_BEGIN(tree, node)
    {
        node->flags &= ~static_cast<std::uint32_t>(LYD_NEW);
        LYD_TREE_DFS_END(tree, node);
    }
}

} // namespace

void Changes::accept()
{
    for (const Change &change : list_)
        if (change.inserted)
            clearNew(change.node);
    for (const Change &change : list_)
        if (!change.inserted && !change.moved)
            lyd_free_tree(change.node);
    list_.clear();
    byParent_.clear();
    inserted_.clear();
    removed_.clear();
}

bool Changes::heldBefore(const lyd_node *parent) const
{
    for (const lyd_node *child = lyd_child(parent); child; child = child->next)
        if (!wasInserted(child) && holdsAnything(child))
            return true;
    const auto changed = byParent_.find(parent);
    return changed != byParent_.end() &&
        std::any_of(changed->second.begin(), changed->second.end(), [this](std::size_t index) {
               const Change &change = list_[index];
               return !change.inserted && !wasInserted(change.node) && holdsAnything(change.node);
           });
}

std::vector<lyd_node *> Changes::childrenBefore(const lyd_node *parent) const
{
    lyd_node *first = parent ? lyd_child(parent) : *root_;
    const auto changed = byParent_.find(parent);
    std::vector<lyd_node *> children;
    if (changed == byParent_.end()) {
        for (lyd_node *child = first; child; child = child->next)
            children.push_back(child);
        return children;
    }
    std::list<lyd_node *> order;
    std::unordered_map<const lyd_node *, std::list<lyd_node *>::iterator> places;
    for (lyd_node *child = first; child; child = child->next)
        places[child] = order.insert(order.end(), child);
    for (auto index = changed->second.rbegin(); index != changed->second.rend(); ++index) {
        const Change &change = list_[*index];
        if (change.inserted) {
            order.erase(places.at(change.node));
            places.erase(change.node);
        } else {
            const auto previous = places.find(change.previous);
            const auto behind = previous != places.end() ? std::next(previous->second) : order.begin();
            places[change.node] = order.insert(behind, change.node);
        }
    }
    children.assign(order.begin(), order.end());
    return children;
}

} // namespace tk
