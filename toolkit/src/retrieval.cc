#include "retrieval.h"

#include "errors.h"
#include "request.h"
#include "toolkit/edit.h"
#include "toolkit/log.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace tk {

namespace {

// Down to the target only what the target's own selection wants is asked for.
Selection restrictTo(const Target::Node &target, std::size_t index, const Selection &selection)
{
    if (index == target.steps.size())
        return selection;
    Selection narrowed;
    narrowed.children.emplace(target.steps[index].schema, restrictTo(target, index + 1, selection));
    return narrowed;
}

std::vector<std::string> keysOf(const lyd_node *entry)
{
    std::vector<std::string> keys;
    for (const lyd_node *key = lyd_child(entry); key && isKey(key->schema); key = key->next)
        keys.emplace_back(lyd_get_value(key));
    return keys;
}

const lysc_node *keyNode(const lysc_node *list, std::size_t index)
{
    const lysc_node *key = lysc_node_child(list);
    while (index-- && key)
        key = key->next;
    return key;
}

unsigned levelOf(const AnswerNode *node)
{
    unsigned level = 0;
    for (; node; node = node->above)
        level += node->schema->nodetype == LYS_LIST;
    return level;
}

void addKeys(GetBlock &block, const lysc_node *list, const std::vector<std::string> &keys, unsigned level,
             bool fixed)
{
    for (std::size_t i = 0; i < keys.size(); ++i) {
        Status status = kOk;
        if (auto value = makeLeaf(keyNode(list, i), keys[i].c_str(), &status))
            block.keys.push_back({std::move(value), level, fixed});
    }
}

void addAncestorKeys(GetBlock &block, const AnswerNode *node)
{
    if (!node)
        return;
    addAncestorKeys(block, node->above);
    if (node->schema->nodetype == LYS_LIST)
        addKeys(block, node->schema, node->keys, levelOf(node), true);
}

} // namespace

void Retrieval::run(const Target::Node &target, const Selection &selection, unsigned depth)
{
    if (target.steps.empty()) {
        named_ = false;
        const Schema &schema = *currentSchema();
        for (const NodeInfo &info : schema.nodes())
            if (!info.node->parent && info.getBelow)
                if (const Selection *wanted = selection.of(info.node))
                    visit(info.node, nullptr, *wanted, depth);
        return;
    }
    std::vector<AnswerNode> chain(target.steps.size());
    // What has a callback of its own is not asked of those above it.
    std::size_t asked = chain.size() - 1;
    while (asked > 0 && !infoOf(target.steps[asked].schema).get)
        --asked;
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const auto &step = target.steps[i];
        AnswerNode *above = i ? &chain[i - 1] : nullptr;
        const bool last = i + 1 == chain.size();
        if (last && step.schema->nodetype == LYS_LIST && !step.hasKeys)
            return visitList(step.schema, above, selection, depth, true);
        const lyd_node *siblings = firstRunning(above);
        chain[i] = {above, step.schema, findStep(const_cast<lyd_node *>(siblings), step), step.keys, nullptr};
        const Selection wanted = restrictTo(target, i + 1, selection);
        if (step.schema->nodetype == LYS_LIST) {
            if (i >= asked || !chain[i].running)
                askList(step.schema, above, &step.keys, wanted, last ? depth : kUnlimited);
            if (!chain[i].running && !isAnswered(chain[i]))
                return; // nobody knows this entry
        } else if (i >= asked) {
            ask(step.schema, chain[i], wanted, last ? depth : kUnlimited);
        }
    }
    if (depth > 1)
        visitChildren(target.schema(), &chain.back(), selection, oneLess(depth));
}

void Retrieval::visitChildren(const lysc_node *parent, AnswerNode *above, const Selection &selection,
                              unsigned depth)
{
    const lysc_node *child = nullptr;
    while ((child = nextDataChild(child, parent)))
        if (const Selection *wanted = infoOf(child).getBelow ? selection.of(child) : nullptr)
            visit(child, above, *wanted, depth);
}

void Retrieval::visit(const lysc_node *node, AnswerNode *above, const Selection &selection, unsigned depth)
{
    if (depth == 0)
        return;
    if (node->nodetype == LYS_LIST)
        return visitList(node, above, selection, depth);
    const Target::Node::Step step{node, {}, false};
    AnswerNode answer{above, node, findStep(const_cast<lyd_node *>(firstRunning(above)), step), {}, nullptr};
    ask(node, answer, selection, depth);
    if (depth > 1 && (node->nodetype & LYD_NODE_INNER))
        visitChildren(node, &answer, selection, oneLess(depth));
}

void Retrieval::visitList(const lysc_node *list, AnswerNode *above, const Selection &selection,
                          unsigned depth, bool isTarget)
{
    const bool outer = std::exchange(named_, isTarget);
    askList(list, above, nullptr, selection, depth);
    named_ = false; // its entries are many
    if (depth > 1)
        for (AnswerNode &entry : instances(list, above))
            visitChildren(list, &entry, selection, oneLess(depth));
    named_ = outer;
}

std::vector<AnswerNode> Retrieval::instances(const lysc_node *list, AnswerNode *above)
{
    std::vector<AnswerNode> entries;
    for (const lyd_node *node = firstRunning(above); node; node = node->next)
        if (node->schema == list)
            entries.push_back({above, list, node, keysOf(node), nullptr});
    // Entries that only callbacks know.
    const lyd_node *runningFirst = firstRunning(above);
    for (lyd_node *node = firstResult(above); node; node = node->next)
        if (node->schema == list && !findInstance(const_cast<lyd_node *>(runningFirst), node))
            entries.push_back({above, list, nullptr, keysOf(node), node});
    return entries;
}

Status Retrieval::call(GetBlock &block, const AnswerNode *above, const Keys *own, bool fixed)
{
    block.keys.clear();
    block.entries.clear();
    block.current = {};
    block.more = false;
    addAncestorKeys(block, above);
    if (own)
        addKeys(block, block.node, *own, levelOf(above) + 1, fixed);
    RequestFrame frame;
    const Status status = infoOf(block.node).get(&frame.session, &frame.header, &block);
    if (status && status != kNoInstance)
        report(status, frame.header, block.node);
    return status;
}

void Retrieval::report(Status status, const MessageHeader &header, const lysc_node *node) const
{
    auto errors = header.errors(0, status);
    for (Error &error : errors)
        error.path = schemaPath(node);
    if (named_)
        throw Failure(std::move(errors));
    if (log_get_system_log_level() >= 1)
        log_error("\nretrieval of %s ended with status %u\n", errors.front().path.c_str(), status);
}

void Retrieval::ask(const lysc_node *node, AnswerNode &answer, const Selection &selection, unsigned depth)
{
    if (!infoOf(node).get)
        return;
    GetBlock block;
    block.node = node;
    block.selection = &selection;
    block.depth = depth;
    const bool leaf = isLeafKind(node);
    if (call(block, &answer, nullptr, false) == kOk && !(leaf && !answer.above))
        addValues(block.current.values, leaf ? *answer.above : answer);
}

void Retrieval::askList(const lysc_node *list, AnswerNode *above, const Keys *keys,
                        const Selection &selection, unsigned depth)
{
    if (!infoOf(list).get)
        return;
    GetBlock block;
    block.node = list;
    block.selection = &selection;
    block.depth = depth;
    Keys last;
    Status status = call(block, above, keys, keys != nullptr);
    while (status == kOk) {
        if (!block.current.keys.empty())
            block.entries.push_back(std::move(block.current));
        if (block.entries.empty())
            return;
        Keys reached;
        for (const auto &key : block.entries.back().keys)
            reached.push_back(key->ownText);
        takeEntries(block, above, keys);
        // A walk that does not get on ends here.
        if (keys || !block.more || reached == last)
            return;
        last = std::move(reached);
        block.mode = getNext;
        status = call(block, above, &last, false);
    }
}

void Retrieval::takeEntries(GetBlock &block, AnswerNode *above, const Keys *asked)
{
    for (const auto &entry : block.entries) {
        AnswerNode answer{above, block.node, nullptr, {}, nullptr};
        for (std::size_t i = 0; i < entry.keys.size(); ++i) {
            // A key that the client gave may come back without its value.
            const Value &key = *entry.keys[i];
            const bool isOpen = key.type == btNone && key.ownText.empty();
            answer.keys.push_back(isOpen && asked && i < asked->size() ? (*asked)[i] : key.ownText);
        }
        make(answer);
        addValues(entry.values, answer);
    }
}

void Retrieval::addValues(const std::vector<std::unique_ptr<Value>> &values, AnswerNode &answer)
{
    for (const auto &value : values) {
        lyd_node *parent = makeParents(make(answer), value->schema, false), *match = nullptr;
        const bool single = !(value->schema->nodetype & (LYS_LIST | LYS_LEAFLIST));
        if (single && lyd_child(parent) &&
            !lyd_find_sibling_val(lyd_child(parent), value->schema, nullptr, 0, &match))
            continue;
        if (!buildTree(*value, parent, false))
            throw Failure(
                takeErrors(LYD_CTX(parent),
                           std::string("The state of \"") + value->schema->name + "\" cannot be shown."));
    }
}

bool Retrieval::isAnswered(const AnswerNode &entry) const
{
    std::vector<const AnswerNode *> chain;
    for (const AnswerNode *node = &entry; node; node = node->above)
        chain.insert(chain.begin(), node);
    lyd_node *siblings = *results_, *found = nullptr;
    for (const AnswerNode *node : chain) {
        found = findStep(siblings, Target::Node::Step{node->schema, node->keys, !node->keys.empty()});
        siblings = found ? lyd_child(found) : nullptr;
    }
    return found != nullptr;
}

lyd_node *Retrieval::firstResult(AnswerNode *above)
{
    if (!above)
        return *results_;
    const lyd_node *parent = make(*above);
    return parent ? lyd_child(parent) : nullptr;
}

const lyd_node *Retrieval::firstRunning(const AnswerNode *above) const
{
    if (!above)
        return running_;
    return above->running ? lyd_child(above->running) : nullptr;
}

lyd_node *Retrieval::make(AnswerNode &answer)
{
    if (answer.result)
        return answer.result;
    lyd_node *parent = answer.above ? make(*answer.above) : nullptr;
    lyd_node *siblings = parent ? lyd_child(parent) : *results_;
    const Target::Node::Step step{answer.schema, answer.keys, !answer.keys.empty()};
    if ((answer.result = findStep(siblings, step)))
        return answer.result;
    answer.result = makeStep(parent, step);
    if (!parent)
        lyd_insert_sibling(*results_, answer.result, results_);
    return answer.result;
}

} // namespace tk
