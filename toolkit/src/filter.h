// Filters of NETCONF reads: which data have to be collected, and what of them is selected.
#pragma once

#include "selection.h"
#include "toolkit/datastores.h"

#include <memory>
#include <unordered_set>
#include <vector>

namespace tk {

// A part of the data that has to be collected before a filter can be applied. No two hold the same node.
struct Piece {
    Target target;
    Selection selection;
};

// What a filter selects of a tree.
struct Selected {
    std::unordered_set<const lyd_node *> whole;  // with everything below
    std::unordered_set<const lyd_node *> partly; // for what is selected below, and with their keys
};

class DataFilter {
public:
    virtual ~DataFilter() = default;
    // A piece below another one's target comes behind it.
    virtual std::vector<Piece> pieces() const = 0;
    // Throws Failure if the filter cannot be evaluated.
    virtual Selected select(const lyd_node *tree) const = 0;
};

// Throws Failure for a filter that cannot be read. Null: everything is wanted.
std::unique_ptr<DataFilter> makeFilter(const Context &context, const Filter &filter);
std::unique_ptr<DataFilter> makeSubtreeFilter(const Context &context, const std::string &document);
std::unique_ptr<DataFilter> makeXPathFilter(const Context &context, const Filter &filter);

// Takes everything else out of a tree.
void keepSelected(lyd_node **root, const Selected &selected);

Target wholeDatastore(const Context &context);
// A union: an empty selection is everything.
void addSelection(Selection &selection, const Selection &more);

} // namespace tk
