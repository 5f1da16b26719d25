// Reading state: which get callbacks are asked for what, and how their answers are put together.
#pragma once

#include "selection.h"
#include "toolkit/getcb.h"

namespace tk {

// A retrieval under way, as a callback sees it.
struct GetBlock {
    const lysc_node *node = nullptr;
    GetMode mode = getValue;
    bool more = false;
    const Selection *selection = nullptr;
    unsigned depth = kUnlimited; // of the node itself

    struct Key {
        std::unique_ptr<Value> value;
        unsigned level; // the outermost list is 1
        bool fixed;
    };
    std::vector<Key> keys; // ancestors first; the own key of a list only if it is asked for

    struct Entry {
        std::vector<std::unique_ptr<Value>> keys, values;
    };
    std::vector<Entry> entries; // closed ones
    Entry current;
};

// One level of the answer that is being built, made when something stands below it.
struct AnswerNode {
    AnswerNode *above = nullptr;
    const lysc_node *schema = nullptr;
    const lyd_node *running = nullptr; // the instance in running, or null
    std::vector<std::string> keys;     // of a list entry
    lyd_node *result = nullptr;
};

class Retrieval {
public:
    // `results` receives the answer's top-level nodes; it may hold configuration already.
    Retrieval(lyd_node **results, lyd_node *running)
        : results_(results)
        , running_(running)
    {
    }

    // Asks for the state at and below a target. Throws Failure when a callback fails that the client named;
    // one that a walk over many instances met is logged, so that one port cannot hide the others.
    void run(const Target::Node &target, const Selection &selection, unsigned depth);

private:
    using Keys = std::vector<std::string>;

    void visitChildren(const lysc_node *parent, AnswerNode *above, const Selection &selection,
                       unsigned depth);
    void visit(const lysc_node *node, AnswerNode *above, const Selection &selection, unsigned depth);
    void visitList(const lysc_node *list, AnswerNode *above, const Selection &selection, unsigned depth,
                   bool isTarget = false);
    void ask(const lysc_node *node, AnswerNode &answer, const Selection &selection, unsigned depth);
    void askList(const lysc_node *list, AnswerNode *above, const Keys *keys, const Selection &selection,
                 unsigned depth);
    Status call(GetBlock &block, const AnswerNode *above, const Keys *own, bool fixed);
    void report(Status status, const struct MessageHeader &header, const lysc_node *node) const;
    void takeEntries(GetBlock &block, AnswerNode *above, const Keys *asked);
    void addValues(const std::vector<std::unique_ptr<Value>> &values, AnswerNode &answer);
    lyd_node *make(AnswerNode &answer);
    bool isAnswered(const AnswerNode &entry) const; // it stands in the answer already
    lyd_node *firstResult(AnswerNode *above);
    const lyd_node *firstRunning(const AnswerNode *above) const;
    std::vector<AnswerNode> instances(const lysc_node *list, AnswerNode *above);

    lyd_node **results_;
    lyd_node *running_;
    bool named_ = true; // the client named the instance that we are at
};

} // namespace tk
