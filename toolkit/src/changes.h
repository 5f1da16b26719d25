// The undo list of an edit. The edit changes a tree in place, so that its price does not grow with the tree;
// this list takes it back, and shows the tree as it was before.
//
// Every change is a node put in or taken out: a leaf that gets another value is taken out and a new one put
// in its place. The nodes taken out stay as they were and belong to the list until accept().
#pragma once

#include "schema.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace tk {

class Changes {
public:
    explicit Changes(lyd_node **root)
        : root_(root)
    {
    }
    ~Changes();
    Changes(const Changes &) = delete;
    Changes &operator=(const Changes &) = delete;

    // Puts a node without a parent into the tree. An instance of something ordered by the user goes behind
    // `previous`, to the front when that is null and `first` is set, else to the end.
    void insert(lyd_node *parent, lyd_node *node, lyd_node *previous = nullptr, bool first = false);
    void remove(lyd_node *node);
    // Puts a node of something ordered by the user elsewhere among its siblings.
    void move(lyd_node *node, lyd_node *previous);

    bool empty() const { return list_.empty(); }
    void undo();   // takes everything back; the tree is as it was
    void accept(); // frees what was taken out

    // The tree before the edit.
    bool wasInserted(const lyd_node *node) const { return inserted_.count(node) != 0; }
    bool isLinked(const lyd_node *node) const;                            // it is still in the tree
    std::vector<lyd_node *> childrenBefore(const lyd_node *parent) const; // null: the top-level nodes
    bool heldBefore(const lyd_node *parent) const;                        // whether one of them held anything
    // The nodes put in and taken out, in order.
    struct Change {
        bool inserted;
        lyd_node *node;
        lyd_node *parent;   // null at the top
        lyd_node *previous; // sibling before a node that was taken out; null: it was the first
        bool moved = false; // half of a move: the node stays in the tree
    };
    const std::vector<Change> &list() const { return list_; }
    lyd_node *root() const { return *root_; }

private:
    void note(const Change &change);
    void link(lyd_node *parent, lyd_node *node, lyd_node *previous, bool first);
    void unlink(lyd_node *node);

    lyd_node **root_;
    std::vector<Change> list_;
    std::unordered_map<const lyd_node *, std::vector<std::size_t>> byParent_;
    std::unordered_set<const lyd_node *> inserted_, removed_;
};

inline lyd_node *firstChild(const lyd_node *node)
{
    return lyd_child(node);
}
inline lyd_node *parentOf(const lyd_node *node)
{
    return lyd_parent(node);
}
inline lyd_node *previousSibling(const lyd_node *node)
{
    return node->prev->next ? node->prev : nullptr;
}
inline bool isUserOrdered(const lysc_node *node)
{
    return (node->nodetype & (LYS_LIST | LYS_LEAFLIST)) && (node->flags & LYS_ORDBY_USER);
}
// Whether the subtree holds anything beyond containers without presence.
bool holdsAnything(const lyd_node *node);

} // namespace tk
