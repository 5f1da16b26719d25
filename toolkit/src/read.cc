// Answering a read: configuration out of running, state out of callbacks and the server's own providers.
#include "errors.h"
#include "host_impl.h"

#include <algorithm>

namespace tk {

namespace {

// The siblings of a reading, before the edit that is on its way.
std::vector<lyd_node *> siblingsOf(const Engine::Reading &reading, const lyd_node *parent)
{
    if (reading.before)
        return reading.before->childrenBefore(parent);
    std::vector<lyd_node *> siblings;
    for (lyd_node *node = parent ? lyd_child(parent) : reading.root; node; node = node->next)
        siblings.push_back(node);
    return siblings;
}

lyd_node *findIn(const Engine::Reading &reading, const Target::Node &target, std::size_t steps)
{
    lyd_node *found = nullptr;
    for (std::size_t i = 0; i < steps; ++i) {
        const auto &step = target.steps[i];
        lyd_node *parent = found;
        found = reading.before ? findStep(siblingsOf(reading, parent), step)
                               : findStep(parent ? lyd_child(parent) : reading.root, step);
        if (!found)
            return nullptr;
    }
    return found;
}

bool isMany(const Target::Node &target)
{
    return target.kind == NodeKind::list || target.kind == NodeKind::leafList;
}

std::string wrap(const std::string &inner, Encoding encoding)
{
    if (encoding == Encoding::json)
        return "{\"ietf-restconf:data\": " + (inner.empty() ? "{}" : inner) + "}\n";
    return "<data xmlns=\"urn:ietf:params:xml:ns:yang:ietf-restconf\">\n" + inner + "</data>\n";
}

bool addsDefaults(const ReadRequest &request)
{
    return request.withDefaults == WithDefaults::reportAll ||
        request.withDefaults == WithDefaults::reportAllTagged;
}

unsigned depthOf(const ReadRequest &request)
{
    return request.depth ? request.depth : kUnlimited;
}

// libyang passes over a container that looks like one that it made itself a moment ago.
void addDefaultsBelow(lyd_node *node)
{
    node->flags &= ~static_cast<std::uint32_t>(LYD_NEW);
    lyd_new_implicit_tree(node, LYD_IMPLICIT_NO_STATE, nullptr);
}

// The level of the target's own children: a datastore is a level of its own.
void takeSiblings(const std::vector<lyd_node *> &siblings, const Changes *before, const Selection &selection,
                  unsigned depth, Answer &answer)
{
    for (const lyd_node *node : siblings)
        if (const Selection *wanted = depth > 1 ? selection.of(node->schema) : nullptr)
            answer.add(copyWanted(node, before, *wanted, oneLess(depth), nullptr));
}

} // namespace

std::optional<std::string> Host::Impl::read(const ReadRequest &request)
{
    const Target::Node &target = request.target.node();
    if (target.kind == NodeKind::rpc || target.kind == NodeKind::action)
        throw notSupported(target.path, "An operation holds no data.");
    const bool state = request.content != Content::config && hasState(target);
    const bool config = request.content != Content::nonconfig;
    const bool filtered = request.depth != 0 || !request.fields.empty();
    if (config && !state && !filtered && !addsDefaults(request))
        if (auto text = readDirectly(request))
            return text;
    const Selection wanted = selectFields(context, target.schema(), request.fields);
    // Defaults go into the whole target; what is not wanted of it is left out afterwards.
    const Selection selection = addsDefaults(request) ? Selection() : wanted;
    const unsigned depth = addsDefaults(request) ? kUnlimited : depthOf(request);
    // Who needs no callback does not wait for one that is busy.
    const auto turn = state ? engine.takeTurn() : std::unique_lock<std::mutex>();
    Answer answer;
    if (config)
        copyRunning(target, selection, depth, answer);
    if (state) {
        Retrieval(&answer.root, engine.read().root).run(target, selection, depth);
        addProvided(target, selection, depth, answer);
    }
    if (addsDefaults(request) && config)
        addDefaults(target, wanted, depthOf(request), answer);
    return print(request, answer.root);
}

void Host::Impl::addState(const Target::Node &target, const Selection &selection, Answer &answer)
{
    if (!hasState(target))
        return;
    Retrieval(&answer.root, engine.read().root).run(target, selection, kUnlimited);
    addProvided(target, selection, kUnlimited, answer);
}

bool Host::Impl::hasState(const Target::Node &target) const
{
    if (target.steps.empty() || infoOf(target.schema()).getBelow)
        return true;
    const auto asks = [](const auto &step) { return infoOf(step.schema).get != nullptr; };
    const auto provides = [&](const Provider &provider) {
        return provider.module == target.steps.front().schema->module->name;
    };
    return std::any_of(target.steps.begin(), target.steps.end(), asks) ||
        std::any_of(providers.begin(), providers.end(), provides);
}

// The common case needs no copy: nothing is left out and no edit is on its way.
std::optional<std::string> Host::Impl::readDirectly(const ReadRequest &request)
{
    const Target::Node &target = request.target.node();
    const auto reading = engine.read();
    if (reading.before || isMany(target))
        return std::nullopt;
    const std::uint32_t options = printOptions(request.withDefaults);
    if (target.steps.empty())
        return wrap(
            reading.root ? printNodes(reading.root, request.encoding, options | LYD_PRINT_WITHSIBLINGS) : "",
            request.encoding);
    const lyd_node *node = findTarget(reading.root, target);
    return node ? std::optional(printNodes(node, request.encoding, options)) : std::nullopt;
}

void Host::Impl::copyRunning(const Target::Node &target, const Selection &selection, unsigned depth,
                             Answer &answer)
{
    copyConfig(engine.read(), target, selection, depth, answer);
}

void Host::Impl::copyConfig(const Engine::Reading &reading, const Target::Node &target,
                            const Selection &selection, unsigned depth, Answer &answer)
{
    if (target.steps.empty())
        return takeSiblings(siblingsOf(reading, nullptr), reading.before, selection, depth, answer);
    const std::size_t above = target.steps.size() - 1;
    const lyd_node *runningParent = findIn(reading, target, above);
    if (above && !runningParent)
        return;
    std::vector<lyd_node *> wanted;
    if (isMany(target)) {
        for (lyd_node *node : siblingsOf(reading, runningParent))
            if (node->schema == target.schema())
                wanted.push_back(node);
    } else if (lyd_node *node = findIn(reading, target, target.steps.size())) {
        wanted.push_back(node);
    }
    lyd_node *parent = wanted.empty() ? nullptr : answer.makeSteps(target, above);
    for (const lyd_node *node : wanted)
        if (lyd_node *copy = copyWanted(node, reading.before, selection, depth, parent); !parent)
            answer.add(copy);
}

void Host::Impl::addProvided(const Target::Node &target, const Selection &selection, unsigned depth,
                             Answer &answer)
{
    for (const Provider &provider : providers) {
        if (!target.steps.empty() && provider.module != target.steps.front().schema->module->name)
            continue;
        Answer provided;
        provided.root = provider.tree();
        if (target.steps.empty()) {
            std::vector<lyd_node *> siblings;
            for (lyd_node *node = provided.root; node; node = node->next)
                siblings.push_back(node);
            takeSiblings(siblings, nullptr, selection, depth, answer);
            continue;
        }
        const std::size_t above = target.steps.size() - 1;
        const Engine::Reading reading{{}, provided.root, nullptr};
        lyd_node *providedParent = findIn(reading, target, above);
        for (lyd_node *node : siblingsOf(reading, providedParent)) {
            const bool fits = isMany(target)
                ? node->schema == target.schema()
                : findStep(std::vector<lyd_node *>{node}, target.steps.back()) != nullptr;
            if (!fits || (above && !providedParent))
                continue;
            lyd_node *parent = answer.makeSteps(target, above);
            if (lyd_node *copy = copyWanted(node, nullptr, selection, depth, parent); !parent)
                answer.add(copy);
        }
    }
}

void Host::Impl::addDefaults(const Target::Node &target, const Selection &wanted, unsigned depth,
                             Answer &answer)
{
    Answer filtered;
    if (target.steps.empty()) {
        lyd_new_implicit_all(&answer.root, context.ly(), LYD_IMPLICIT_NO_STATE, nullptr);
        std::vector<lyd_node *> siblings;
        for (lyd_node *node = answer.root; node; node = node->next)
            siblings.push_back(node);
        takeSiblings(siblings, nullptr, wanted, depth, filtered);
    } else {
        const bool plain = isPlainContainer(target.schema()) && existsByItself(target, answer.root);
        lyd_node *parent =
            plain ? answer.makeSteps(target, target.steps.size()) : findTarget(answer.root, target);
        const std::size_t above = target.steps.size() - 1;
        if (!parent && target.schema()->nodetype == LYS_LEAF && isReachable(target, above, answer.root)) {
            // A leaf that only its default fills appears with its parent's defaults.
            if (lyd_node *around = answer.makeSteps(target, above))
                addDefaultsBelow(around);
            parent = findTarget(answer.root, target);
        }
        if (!parent)
            return;
        std::vector<lyd_node *> nodes{parent};
        for (lyd_node *next = isMany(target) ? parent->next : nullptr; next; next = next->next)
            if (next->schema == parent->schema)
                nodes.push_back(next);
        lyd_node *into = filtered.makeSteps(target, above);
        for (lyd_node *node : nodes) {
            if (node->schema->nodetype & LYD_NODE_INNER)
                addDefaultsBelow(node);
            if (lyd_node *copy = copyWanted(node, nullptr, wanted, depth, into); !into)
                filtered.add(copy);
        }
    }
    std::swap(filtered.root, answer.root);
}

// A container without presence is there as soon as what is around it is.
bool Host::Impl::existsByItself(const Target::Node &target, lyd_node *results)
{
    return !target.steps.empty() && isPlainContainer(target.schema()) &&
        isReachable(target, target.steps.size() - 1, results);
}

// Whether the entries among the first steps exist.
bool Host::Impl::isReachable(const Target::Node &target, std::size_t steps, lyd_node *results)
{
    const auto reading = engine.read();
    for (std::size_t i = steps; i > 0; --i) {
        if (!isEntry(target.steps[i - 1].schema))
            continue;
        const Engine::Reading answered{{}, results, nullptr};
        return findIn(reading, target, i) || findIn(answered, target, i);
    }
    return true;
}

std::optional<std::string> Host::Impl::print(const ReadRequest &request, lyd_node *results)
{
    const Target::Node &target = request.target.node();
    const std::uint32_t options = printOptions(request.withDefaults);
    if (target.steps.empty())
        return wrap(results ? printNodes(results, request.encoding, options | LYD_PRINT_WITHSIBLINGS) : "",
                    request.encoding);
    lyd_node *node = findTarget(results, target);
    if (node && isMany(target)) {
        Answer many;
        for (; node; node = node->next)
            if (node->schema == target.schema())
                many.add(copyWanted(node, nullptr, {}, kUnlimited, nullptr));
        return printNodes(many.root, request.encoding, options | LYD_PRINT_WITHSIBLINGS);
    }
    Answer empty;
    if (!node && existsByItself(target, results))
        node = empty.makeSteps(target, target.steps.size());
    if (!node)
        return std::nullopt;
    return printNodes(node, request.encoding, options | (empty.root ? LYD_PRINT_KEEPEMPTYCONT : 0));
}

Answer::~Answer()
{
    lyd_free_all(root);
}

void Answer::add(lyd_node *node)
{
    lyd_insert_sibling(root, node, &root);
}

lyd_node *Answer::makeSteps(const Target::Node &target, std::size_t count)
{
    lyd_node *parent = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        lyd_node *found = findStep(parent ? lyd_child(parent) : root, target.steps[i]);
        if (!found) {
            found = makeStep(parent, target.steps[i]);
            if (!parent)
                add(found);
        }
        parent = found;
    }
    return parent;
}

} // namespace tk
