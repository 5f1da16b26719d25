// Which callbacks hear of an edit, in which order, and what they are given.
#pragma once

#include "edit_tree.h"
#include "toolkit/edit.h"
#include "value.h"

#include <memory>
#include <optional>
#include <vector>

namespace tk {

struct Told;

} // namespace tk

// The record behind agt_cfg_first_child_edit and its like.
struct tk::ChildEdit {
    EditOp op = noOperation;
    std::unique_ptr<Value> newval, curval;
    ChildEdit *next = nullptr;
};

namespace tk {

using ValueList = std::vector<std::unique_ptr<Value>>;

// One callback that is told of the edit. Its values stay the same in all phases.
struct Told {
    const NodeInfo *info = nullptr;
    EditOp op = noOperation;
    const ChangeNode *where = nullptr;
    unsigned position = 0;          // in a walk from the top, parents first
    std::optional<unsigned> behind; // a deletion that follows the node of that position
    bool first = false;             // goes before the rest, a deletion behind it

    ValueView newView, curView;
    std::unique_ptr<Value> newval, curval;
    std::unique_ptr<Value> mergedCurval; // with mergedCurrent: what stands for curval before a rollback
    ValueList keys;                      // of all list entries down to and with this node, outermost first
    std::vector<std::unique_ptr<ChildEdit>> childEdits;
    bool applied = false;

    bool has(EditOption option) const { return (info->options & option) != 0; }
    Value *currentIn(EditPhase phase) const
    {
        return mergedCurval && phase != rollback ? mergedCurval.get() : curval.get();
    }
    // The edit the other way round: for a rollback with swappedInRollback.
    void swapChildEdits();
    std::string path() const;
};

using Plan = std::vector<std::unique_ptr<Told>>;

// The order of validate and commit: deletions first, children before parents and the last sibling first,
// then the others from the top down.
Plan planEdit(ChangeNode &root, const Changes &changes);
// The same nodes in the order of apply: those that are bound to refuse come before anything is destroyed.
std::vector<Told *> applyOrder(const Plan &plan);
// Everything that the tree holds, told `load`. `root` receives the nodes and must outlive the plan.
Plan planLoad(ChangeNode &root, lyd_node *tree);

// One node told `op` whatever the rules say: for tests that call a callback by hand.
std::unique_ptr<Told> tellOne(ChangeNode &node, const Changes &changes, EditOp op);

// The node as an instance-identifier, from its own node and those around it.
std::string changePath(const ChangeNode &node);

} // namespace tk
