// The checks that an edit needs beyond types: must, when, leafref, mandatory, unique, number of elements.
//
// An index says which expressions depend on which schema node, so that an edit runs only the checks that it
// can have broken. What cannot be indexed is checked by libyang on a copy of the whole tree.
#pragma once

#include "edit_tree.h"
#include "value_index.h"

#include <memory>
#include <optional>
#include <set>

namespace tk {

struct Expression {
    enum class Kind { must, when, leafref };
    Kind kind;
    const lysc_node *owner;
    const lysc_must *must = nullptr;
    const lysc_when *when = nullptr;
    const lyxp_expr *parsed = nullptr;
    const lysc_prefix *prefixes = nullptr;
    const char *text = "";
    // Instances of the owner below one instance of the apex depend on nothing outside of it; null: the whole
    // tree.
    const lysc_node *apex = nullptr;
    std::vector<const lysc_node *> defaults = {}; // leaves with a default that the expression reads
};

struct NodeConstraints {
    std::vector<const Expression *> own;
    std::vector<const Expression *> dependents; // expressions that read this node
    std::vector<const Expression *> referrers;  // leafrefs that name a value of this leaf
    const Expression *reference = nullptr;      // of this leaf, if it is among its target's referrers
    std::vector<const lysc_node *> required;    // below this entry or at the top: what must exist
    std::vector<const lysc_node *> uniqueLists; // lists that have this leaf in a unique statement
};

class ConstraintIndex {
public:
    void build(const Schema &schema);

    bool mustCheckWhole(const Changes &changes) const;
    const std::vector<const lysc_node *> &requiredAtTop() const { return requiredAtTop_; }

private:
    NodeConstraints &of(const lysc_node *node);
    void addExpressions(const lysc_node *node);
    void addLeafrefs(const lysc_node *node, const lysc_type *type);
    void add(Expression expression, const lysc_node *context);
    void addStructure(const lysc_node *node);
    bool addReferrer(const Expression &leafref, const std::set<const lysc_node *> &atoms);

    std::map<const lysc_node *, std::unique_ptr<NodeConstraints>> nodes_;
    std::deque<Expression> expressions_;
    std::vector<const lysc_node *> requiredAtTop_;
    bool hasUnindexed_ = false; // an expression whose inputs cannot be told
    bool hasInstanceIds_ = false;
};

// Checks a tree after an edit; nodes whose `when` became false are taken out by `editor`. Throws Failure
// with the first violation.
class Checker {
public:
    // `values` follows the tree from edit to edit; null: there is only this one.
    Checker(const ConstraintIndex &index, ValueIndex *values, const Changes &changes, Editor &editor,
            const ly_ctx *context)
        : index_(index)
        , values_(values ? *values : ownValues_)
        , changes_(changes)
        , editor_(editor)
        , context_(context)
    {
    }
    void run();
    // The edit stands: the values follow. Call it before what was taken out is freed; else discard the
    // values.
    void keepValues();

private:
    void checkInserted(lyd_node *node);
    void checkRemoved(const lyd_node *node, lyd_node *parent);
    void checkDependents(const NodeConstraints &constraints, lyd_node *from);
    void check(const Expression &expression, lyd_node *node);
    void checkWhen(const Expression &expression, lyd_node *node);
    void checkMust(const Expression &expression, lyd_node *node);
    void checkLeafref(const Expression &expression, lyd_node *node);
    bool evaluate(const Expression &expression, lyd_node *node);
    void checkRequired(lyd_node *entry);
    void checkRequiredNode(lyd_node *firstSibling, const lysc_node *required, const lyd_node *entry);
    void checkCount(const lysc_node *schema, lyd_node *firstSibling, const lyd_node *entry);
    void checkUnique(const lysc_node *list, lyd_node *entry);
    void openUnique(const ValueIndex::Scope &scope, lysc_node_leaf **leaves, const lyd_node *entry);
    void checkReferrers(const NodeConstraints &constraints, const char *value);
    void openReferrers(const Expression &leafref);
    void checkWhole();

    const ConstraintIndex &index_;
    ValueIndex ownValues_, &values_;
    const Changes &changes_;
    Editor &editor_;
    const ly_ctx *context_;
    std::set<std::pair<const Expression *, const lyd_node *>> done_;
    std::set<const lyd_node *> requiredDone_;
    std::set<std::pair<const lysc_node *, const lyd_node *>> uniqueDone_;
    struct UniqueValue {
        ValueIndex::Scope scope;
        lyd_node *entry;
        std::optional<std::string> value;
    };
    std::vector<UniqueValue> uniqueValues_; // of the entries that were checked
    ValueIndex newValues_;                  // the same by value
    std::vector<lyd_node *> whenFalse_;
    bool whole_ = false;
};

// Checks a tree as a whole without touching it. Throws Failure. *whenFalse, if given, receives the nodes that
// libyang would take out.
void checkWholeTree(lyd_node *tree, const ly_ctx *context, std::vector<lyd_node *> *whenFalse);
// Remembers which `when` conditions hold, as libyang's own validation would.
void markWhens(lyd_node *tree);

} // namespace tk
