// Paths of clients, resolved against the schema.
#pragma once

#include "context.h"
#include "edit_tree.h"

namespace tk {

struct Target::Node {
    struct Step {
        const lysc_node *schema;
        std::vector<std::string> keys; // canonical; of a leaf-list entry its value
        bool hasKeys = false;
    };
    NodeKind kind = NodeKind::datastore;
    std::vector<Step> steps;
    std::string path = "/";
    bool config = true;

    const lysc_node *schema() const { return steps.empty() ? nullptr : steps.back().schema; }
};

Target resolveTarget(const Context &context, const std::vector<PathStep> &steps);

// The nodes down to the first `count` steps, as a tree of their own. *last is the innermost.
Tree buildSteps(const Target::Node &target, std::size_t count, lyd_node **last);
// One step's node below `parent`, or alone when that is null.
lyd_node *makeStep(lyd_node *parent, const Target::Node::Step &step);
// The instance of one step among siblings, or null.
lyd_node *findStep(lyd_node *firstSibling, const Target::Node::Step &step);
// The same in a list of siblings that have no common index.
lyd_node *findStep(const std::vector<lyd_node *> &siblings, const Target::Node::Step &step);
// The target's instance, or null. For a list without keys the first entry's parent matters: not for that.
lyd_node *findTarget(lyd_node *root, const Target::Node &target);

} // namespace tk
