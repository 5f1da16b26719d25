// What a reader wants of the data below a target.
#pragma once

#include "engine.h"
#include "target.h"

#include <map>

namespace tk {

// A node of the wanted part of the schema. Without children of its own everything below is wanted.
struct Selection {
    std::map<const lysc_node *, Selection> children;

    // The selection of a child, or null when it is not wanted.
    const Selection *of(const lysc_node *child) const
    {
        if (children.empty())
            return this;
        const auto found = children.find(child);
        return found != children.end() ? &found->second : nullptr;
    }
};

// From the names of a `fields` parameter. Throws Failure for a name that the schema does not have here.
Selection selectFields(const Context &context, const lysc_node *parent, const std::vector<FieldNode> &fields);

// Levels left: 0 is none, a huge number no limit.
inline constexpr unsigned kUnlimited = UINT32_MAX;
inline unsigned oneLess(unsigned depth)
{
    return depth == kUnlimited ? depth : depth - 1;
}

// Copies a node and what is wanted below it under `parent` (null: it becomes a tree of its own).
lyd_node *copyWanted(const lyd_node *node, const Changes *before, const Selection &selection, unsigned depth,
                     lyd_node *parent);

} // namespace tk
