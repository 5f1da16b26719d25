// What the toolkit knows of each compiled schema node. Reached in one step through lysc_node.priv, which
// stays valid because nothing is loaded after the schema was compiled.
#pragma once

#include "registry.h"

#include <deque>
#include <vector>

namespace tk {

struct NodeConstraints;

struct NodeInfo {
    const lysc_node *node = nullptr;
    unsigned order = 0; // position in a walk over all modules in load order: schema order of siblings
    EditCallback edit = nullptr;
    GetCallback get = nullptr;
    OperationCallbacks *operation = nullptr;
    unsigned options = optNone;
    bool editBelow = false;                       // this node or one below it has an edit callback
    bool getBelow = false;                        // the same for retrievals
    const NodeConstraints *constraints = nullptr; // null: nothing to check
};

inline NodeInfo &infoOf(const lysc_node *node)
{
    return *static_cast<NodeInfo *>(node->priv);
}

class Schema {
public:
    // Compiles what was loaded, binds the registrations. Throws StartFailure.
    void build(Context &context, Registry &registry);
    // Takes over a registration made, changed or removed after that; null stands for a removed one.
    void rebind(const lysc_node *node, const Registration *registration);

    // Every node, parents before children, in schema order.
    const std::deque<NodeInfo> &nodes() const { return nodes_; }

private:
    void add(const lysc_node *node);
    void addChildren(const lysc_node *parent);
    void addOutput(lysc_node_action *operation);
    void setRegistration(NodeInfo &info, const Registration &registration);

    std::deque<NodeInfo> nodes_;
    std::map<const lysc_node *, OperationCallbacks> operations_;
};

Schema *currentSchema();
void setCurrentSchema(Schema *schema);

// Helpers on compiled nodes.
inline bool isLeafKind(const lysc_node *node)
{
    return node->nodetype & (LYS_LEAF | LYS_LEAFLIST | LYS_ANYDATA | LYS_ANYXML);
}
inline bool isPresence(const lysc_node *node)
{
    return node->nodetype == LYS_CONTAINER && (node->flags & LYS_PRESENCE);
}
// Exists or doesn't by itself: a list entry or a presence container.
inline bool isEntry(const lysc_node *node)
{
    return node->nodetype == LYS_LIST || isPresence(node);
}
inline bool isPlainContainer(const lysc_node *node)
{
    return node->nodetype == LYS_CONTAINER && !(node->flags & LYS_PRESENCE);
}
inline bool isConfigNode(const lysc_node *node)
{
    return (node->flags & LYS_CONFIG_MASK) == LYS_CONFIG_W;
}
inline bool isKey(const lysc_node *node)
{
    return (node->flags & LYS_KEY) != 0;
}
// The nearest data node or operation above, past choices and cases; null at the top.
const lysc_node *dataParent(const lysc_node *node);
// The data children in schema order, choices and cases left out; pass null to begin.
inline const lysc_node *nextDataChild(const lysc_node *previous, const lysc_node *parent)
{
    return lys_getnext(previous, parent, nullptr, 0);
}
// "/module:a/b/module2:c", for messages.
std::string schemaPath(const lysc_node *node);

} // namespace tk
