// Which nodes hold a value, for rules that compare the values of many nodes: unique statements and leafrefs.
// So an edit looks up the few nodes that a value concerns instead of walking a whole list.
//
// A scope is what one rule compares with each other: the entries of one list, or the leaves with one leafref.
// It is filled when a rule asks first, from then on it follows the edits.
#pragma once

#include "schema.h"

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace tk {

class ValueIndex {
public:
    struct Scope {
        const void *rule;       // what in the schema
        const lyd_node *parent; // the node that holds the entries; null: the whole tree
        auto operator<=>(const Scope &) const = default;
    };

    bool has(const Scope &scope) const { return scopes_.count(scope) != 0; }
    // A scope that is filled while an edit is on its way shows the tree after it.
    void open(const Scope &scope) { scopes_[scope].isFresh = true; }
    // In place of what the scope had of the node.
    void put(const Scope &scope, lyd_node *node, const std::string &value);
    void erase(const Scope &scope, const lyd_node *node);
    void erase(const lyd_node *node); // from every scope
    std::vector<lyd_node *> find(const Scope &scope, const std::string &value) const;

    void keep();    // the edit stands
    void discard(); // it was taken back: what was filled meanwhile is forgotten

private:
    struct Values {
        std::unordered_multimap<std::string, lyd_node *> nodes;
        bool isFresh = false;
    };
    struct Place {
        Scope scope;
        std::string value;
    };

    void take(const Place &place, const lyd_node *node);

    std::map<Scope, Values> scopes_;
    std::unordered_map<const lyd_node *, std::vector<Place>> places_;
};

} // namespace tk
