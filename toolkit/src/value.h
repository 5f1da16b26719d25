// Value nodes: what callbacks see of the datastore, and what they make themselves.
#pragma once

#include "changes.h"
#include "toolkit/val.h"

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace tk {

// How the children of a given node are found: the tree as it is, or as it was before the changes.
struct ValueView {
    const Changes *before = nullptr; // null: as it is
    EditOp op = noOperation;         // what was asked of the node and what is below it
    bool withDefaults = false;       // leaves that are not there show their schema default
};

struct Value {
    const lysc_node *schema = nullptr;
    const lyd_node *node = nullptr; // what a given value shows; null for made ones and for an empty container
    Value *parent = nullptr;
    EditOp op = noOperation;
    Status status = kOk;

    // The simple value. `text` points into the data tree or to `ownText`.
    BaseType type = btNone;
    const char *text = "";
    std::string ownText;
    bool boolean = false;
    std::int64_t integer = 0;
    std::uint64_t natural = 0;

    // Children of a given node are made when somebody asks for them.
    const ValueView *view = nullptr;
    bool expanded = false;
    std::vector<std::unique_ptr<Value>> children;

    // At the top of a value that a callback was given: the keys of the list entries around and with it.
    const std::vector<std::unique_ptr<Value>> *pathKeys = nullptr;

    void expand();
    void addDefaults();
};

// A value that shows a node of the data tree, or an empty container when node is null. `view` must outlive
// it.
std::unique_ptr<Value> showNode(const lysc_node *schema, const lyd_node *node, const ValueView *view,
                                Value *parent);
// A leaf of the bundle's own making. Null and kInvalidValue when the text is none of the type.
std::unique_ptr<Value> makeLeaf(const lysc_node *schema, const char *text, Status *status);

// Whether a leaf's value must not be shown to people.
bool isSecret(const lysc_node *schema);
// The same by the leaf's name, or the end of a path that begins with it.
bool isSecretName(const char *name);

// Canonical text with an identity's prefix.
const char *canonicalText(const lyd_node *node);
// An identity without its prefix, anything else as it is.
const char *localText(const lyd_node *node);

// The node below `top` that a node of the schema stands in; containers on the way are made.
lyd_node *makeParents(lyd_node *top, const lysc_node *schema, bool output);
// Builds the data tree of a made value below `parent`. False when libyang does not take a value.
bool buildTree(const Value &value, lyd_node *parent, bool output);

} // namespace tk
