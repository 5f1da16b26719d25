// An edit as a client asks for it, and what it changed.
#pragma once

#include "changes.h"
#include "toolkit/host.h"

#include <map>
#include <memory>
#include <unordered_map>

namespace tk {

// What a client asks of a node. `none` is a node that only lies on the way.
enum class Ask { none, merge, replace, create, del, remove };

struct TreeFree {
    void operator()(lyd_node *node) const { lyd_free_all(node); }
};
using Tree = std::unique_ptr<lyd_node, TreeFree>;

// Where a new or moved instance of something ordered by the user goes.
struct Placement {
    InsertWhere where = InsertWhere::last;
    const lyd_node *point = nullptr; // an instance in the edited tree
    // Instead of it a node with the same keys or value: the instance is looked for when it is needed.
    std::shared_ptr<lyd_node> like = {};
};

// A tree of nodes with what is asked of them. A node without an entry of its own inherits from its parent.
struct EditTree {
    Tree tree;
    Ask rootAsk = Ask::none;
    std::unordered_map<const lyd_node *, Ask> asks;
    bool nested = false; // asks stand inside other asks
    std::unordered_map<const lyd_node *, Placement> placements;
    bool placesLoosely = false; // what cannot be placed goes to the end
    bool toldAsMerge = false;   // callbacks hear of the difference as if the client had merged it
};

// One node of the difference. Nodes in which nothing differs have none, unless they are told all the same.
// Inside something created or deleted there are no children here: they are those of `after` or `before`.
struct ChangeNode {
    const lysc_node *schema = nullptr; // null: the root
    lyd_node *before = nullptr;
    lyd_node *after = nullptr;
    ChangeNode *parent = nullptr;
    Ask effective = Ask::none; // what was asked of the node or anything around it
    Ask told = Ask::none;      // the same, but the nearest entry around it cuts
    bool moved = false;
    bool retold = false; // told although nothing differs: its row asks for it, or another node's change
    std::vector<std::unique_ptr<ChangeNode>> children;

    bool isCreated() const { return !before && after; }
    bool isDeleted() const { return before && !after; }
    ChangeNode &add(const lysc_node *child, lyd_node *was, lyd_node *is, Ask asked, bool askedItself);
};

// Applies an edit to a tree in place. What it did stands in `changes` and below `root`. Throws Failure;
// the caller then undoes the changes.
class Editor {
public:
    Editor(Changes &changes, ChangeNode &root)
        : changes_(changes)
        , root_(root)
    {
    }

    void apply(EditTree &edit);
    // Takes an existing node away. Its place among the change nodes is made as needed.
    void removeExisting(lyd_node *node, Ask ask);

private:
    // The last placed instance of each thing ordered by the user: a replacement brings its own order.
    using Order = std::map<const lysc_node *, lyd_node *>;
    struct Place {        // where children of an edit node go
        lyd_node *parent; // null: the top
        ChangeNode *change;
        bool isNew;             // nothing was here before the edit
        Order *order = nullptr; // in a replacement
    };

    void applyNode(EditTree &edit, lyd_node *wanted, const Place &place, Ask inherited);
    void applyChildren(EditTree &edit, lyd_node *first, const Place &place, Ask ask);
    void applyToExisting(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place, Ask ask,
                         bool itself);
    void applyToMissing(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself);
    void intoMissingContainer(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself);
    void changeLeaf(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place, Ask ask,
                    bool itself);
    Placement settled(const EditTree &edit, const lyd_node *wanted, const Place &place) const;
    bool moveExisting(EditTree &edit, lyd_node *wanted, lyd_node *existing, const Place &place);
    void insertMoved(EditTree &edit, lyd_node *wanted, const Place &place, Ask ask, bool itself);
    void removeAbsent(lyd_node *wantedFirst, const Place &place, Ask ask);
    void remove(lyd_node *existing, const Place &place, Ask ask, bool itself);
    void clearOtherCases(const lysc_node *schema, const Place &place);
    void settleNested(EditTree &edit, lyd_node *subtree);
    ChangeNode &changeNodeOf(lyd_node *node);

    Changes &changes_;
    ChangeNode &root_;
};

// Where the client asked an instance to go: behind the result, or to the front when that is null.
lyd_node *placeAfter(const Placement &placement, lyd_node *instance, lyd_node *firstSibling,
                     const lysc_node *schema);
// The instance of an edit's node among siblings, or null.
lyd_node *findInstance(lyd_node *firstSibling, const lyd_node *wanted);
// Path of an instance for messages and error-path.
std::string instancePath(const lyd_node *node);

} // namespace tk
