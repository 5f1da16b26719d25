#include "plan.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

namespace tk {

namespace {

const lyd_node *anySide(const ChangeNode &node)
{
    return node.after ? node.after : node.before;
}

// A node that is new or gone as a whole gets the records of what is in it.
void expand(ChangeNode &node)
{
    if (!node.schema || !node.children.empty() || (node.before && node.after))
        return;
    lyd_node *tree = node.after ? node.after : node.before;
    if (!tree || !(tree->schema->nodetype & LYD_NODE_INNER))
        return;
    for (lyd_node *child = lyd_child(tree); child; child = child->next)
        if (holdsAnything(child))
            node.add(child->schema, node.after ? nullptr : child, node.after ? child : nullptr,
                     node.effective, false);
}

class Planner {
public:
    Planner(const Changes *changes, EditOp only)
        : changes_(changes)
        , only_(only)
    {
    }

    Plan take() { return std::move(plan_); }

    void tellOnly(ChangeNode &node)
    {
        expand(node);
        tell(node, infoOf(node.schema), Around::nothing);
    }

    // What becomes of the nearest entry around a node.
    enum class Around { nothing, created, deleted, replaced, kept };

    void visit(ChangeNode &node, Around around, bool mute)
    {
        expand(node);
        sortChildren(node);
        Around inside = around;
        if (node.schema) {
            const NodeInfo &info = infoOf(node.schema);
            if (!info.editBelow)
                return;
            if (isEntry(node.schema))
                inside = entryFate(node);
            if (info.edit && !mute)
                tell(node, info, around);
            mute = mute || ((info.options & wholeEntry) && inside == Around::replaced);
            retellBeside(node, inside);
            sortChildren(node);
        }
        for (auto &child : node.children)
            visit(*child, inside, mute);
    }

private:
    static void sortChildren(ChangeNode &node)
    {
        std::stable_sort(node.children.begin(), node.children.end(), [](const auto &a, const auto &b) {
            return infoOf(a->schema).order < infoOf(b->schema).order;
        });
    }

    // Marks what a change tells again in a node; unchanged nodes get a record. True when there is anything.
    static bool markRetold(ChangeNode &node)
    {
        if (!node.before || !node.after)
            return false; // what is new or gone is told anyway
        bool any = (infoOf(node.schema).options & retold) && holdsAnything(node.after);
        node.retold = any;
        for (lyd_node *child = lyd_child(node.after); child; child = child->next) {
            if (!infoOf(child->schema).editBelow)
                continue;
            const auto known = std::find_if(node.children.begin(), node.children.end(),
                                            [child](const auto &one) { return one->after == child; });
            if (known != node.children.end()) {
                any |= markRetold(**known);
                continue;
            }
            ChangeNode &same = node.add(child->schema, child, child, Ask::none, true);
            if (markRetold(same))
                any = true;
            else
                node.children.pop_back();
        }
        return any;
    }

    void retellBeside(ChangeNode &node, Around inside) const
    {
        const auto retellsHere = [&](const auto &child) {
            const NodeInfo &info = infoOf(child->schema);
            return (info.options & retellsSiblings) && opOf(*child, info, inside) != noOperation;
        };
        if (std::any_of(node.children.begin(), node.children.end(), retellsHere))
            markRetold(node);
    }

    static Around entryFate(const ChangeNode &node)
    {
        if (node.isCreated())
            return Around::created;
        if (node.isDeleted())
            return Around::deleted;
        return node.effective == Ask::replace ? Around::replaced : Around::kept;
    }

    void tell(ChangeNode &node, const NodeInfo &info, Around around)
    {
        const EditOp op = only_ != noOperation ? only_ : opOf(node, info, around);
        if (op == noOperation)
            return;
        auto told = std::make_unique<Told>();
        told->info = &info;
        told->op = op;
        told->where = &node;
        told->position = static_cast<unsigned>(plan_.size());
        if (op == replace && (info.options & beforeItsEntries))
            leading_[&node] = told->position;
        if (op == del)
            told->behind = leaderOf(node);
        if ((op == merge || op == replace) && (info.options & retells))
            markRetold(node);
        giveValues(*told, node);
        if (op == merge || op == replace || op == create)
            collectChildEdits(*told, node);
        plan_.push_back(std::move(told));
    }

    // The position of the node that a deletion inside it has to follow.
    std::optional<unsigned> leaderOf(const ChangeNode &node) const
    {
        for (const ChangeNode *up = node.parent; up && !leading_.empty(); up = up->parent)
            if (const auto found = leading_.find(up); found != leading_.end())
                return found->second;
        return std::nullopt;
    }

    EditOp opOf(const ChangeNode &node, const NodeInfo &info, Around around) const
    {
        const EditOp op = opOfDifference(node, info, around);
        return op == noOperation && node.retold ? merge : op;
    }

    EditOp opOfDifference(const ChangeNode &node, const NodeInfo &info, Around around) const
    {
        if (around == Around::deleted && (info.options & spared))
            return noOperation;
        if (!isPlainContainer(node.schema)) {
            const EditOp existing = opOfExisting(node);
            const bool changed = existing == merge || existing == replace;
            return changed && (info.options & emptiedIsDelete) && isEmptied(node) ? del : existing;
        }
        const EditOp op = opOfContainer(node, info, around);
        if (op != merge && op != replace)
            return op;
        if ((info.options & emptiedIsDelete) && !holdsAnything(node.after) && holdsBefore(node))
            return del;
        if ((info.options & firstFillIsCreate) && holdsAnything(node.after) && !holdsBefore(node))
            return create;
        return op;
    }

    // An entry, a presence container or a leaf exists or doesn't.
    EditOp opOfExisting(const ChangeNode &node) const
    {
        if (node.isCreated())
            return create;
        if (node.isDeleted())
            return del;
        if (node.effective == Ask::replace)
            return replace;
        return node.moved || ownLeavesDiffer(node) ? merge : noOperation;
    }

    EditOp opOfContainer(const ChangeNode &node, const NodeInfo &info, Around around) const
    {
        if (around == Around::created)
            return holdsAnything(node.after) ? create : noOperation;
        if (around == Around::deleted)
            return holdsBefore(node) ? del : noOperation;
        if (around == Around::replaced && (info.options & replacedWithEntry))
            return replace;
        switch (node.told) {
        case Ask::replace:
            return replace;
        case Ask::create:
            return create;
        case Ask::del:
        case Ask::remove:
            return holdsBefore(node) ? del : noOperation;
        case Ask::none:
        case Ask::merge:
            break;
        }
        return ownLeavesDiffer(node) ? merge : noOperation;
    }

    // A presence container that still exists, but lost all that it held.
    bool isEmptied(const ChangeNode &node) const
    {
        for (const lyd_node *child = lyd_child(node.after); child; child = child->next)
            if (holdsAnything(child))
                return false;
        return holdsBefore(node);
    }

    bool holdsBefore(const ChangeNode &node) const
    {
        if (!node.before)
            return false;
        if (!changes_)
            return holdsAnything(node.before);
        if (changes_->heldBefore(node.before))
            return true;
        // What it held may stand in containers that the edit emptied.
        return std::any_of(node.children.begin(), node.children.end(), [this](const auto &child) {
            return isPlainContainer(child->schema) && holdsBefore(*child);
        });
    }

    // A node's own leaves are those with no nearer registered node above them.
    static bool ownLeavesDiffer(const ChangeNode &node)
    {
        if (isLeafKind(node.schema))
            return true;
        return std::any_of(node.children.begin(), node.children.end(), [](const auto &child) {
            expand(*child);
            return !infoOf(child->schema).edit && ownLeavesDiffer(*child);
        });
    }

    void giveValues(Told &told, ChangeNode &node)
    {
        const bool defaults = told.has(withDefaults);
        told.newView = {nullptr, told.op, defaults};
        told.curView = {changes_, told.op, defaults};
        const bool created = told.op == create || told.op == load;
        if (told.op != del)
            told.newval = showNode(node.schema, node.after, &told.newView, nullptr);
        if (!created)
            told.curval = showNode(node.schema, node.before, &told.curView, nullptr);
        if (told.op == merge && told.has(mergedCurrent))
            told.mergedCurval = showNode(node.schema, node.after, &told.newView, nullptr);
        for (const ChangeNode *up = &node; up && up->schema; up = up->parent)
            if (up->schema->nodetype == LYS_LIST)
                addKeys(told, *up);
        std::reverse(told.keys.begin(), told.keys.end());
        for (Value *value : {told.newval.get(), told.curval.get(), told.mergedCurval.get()})
            if (value)
                value->pathKeys = &told.keys;
    }

    // Collected from the innermost key outwards and reversed afterwards.
    void addKeys(Told &told, const ChangeNode &entry)
    {
        std::vector<const lyd_node *> keys;
        for (const lyd_node *child = lyd_child(anySide(entry)); child && isKey(child->schema);
             child = child->next)
            keys.push_back(child);
        for (auto key = keys.rbegin(); key != keys.rend(); ++key)
            told.keys.push_back(showNode((*key)->schema, *key, &told.newView, nullptr));
    }

    void collectChildEdits(Told &told, const ChangeNode &node)
    {
        if (isLeafKind(node.schema))
            return;
        for (const auto &child : node.children) {
            if (infoOf(child->schema).edit)
                continue;
            expand(*child);
            if (isLeafKind(child->schema))
                addChildEdit(told, *child);
            else
                collectChildEdits(told, *child);
        }
    }

    void addChildEdit(Told &told, const ChangeNode &leaf)
    {
        auto edit = std::make_unique<ChildEdit>();
        edit->op = leaf.isCreated() ? create : leaf.isDeleted() ? del : merge;
        const auto show = [&](const lyd_node *node, const ValueView &view) {
            auto value = showNode(leaf.schema, node, &view, nullptr);
            value->op = edit->op;
            value->pathKeys = &told.keys;
            return value;
        };
        // A value that leaves a leaf-list stands in both, the new one marked `delete`; so does a leaf where
        // the row asks for it.
        const bool stays = leaf.isDeleted() && told.op == merge && told.has(deletedLeafStays);
        const bool goneValue = stays || (leaf.isDeleted() && leaf.schema->nodetype == LYS_LEAFLIST);
        if (leaf.after || goneValue)
            edit->newval = show(leaf.after ? leaf.after : leaf.before, told.newView);
        if (leaf.before)
            edit->curval = show(leaf.before, told.curView);
        if (stays && leaf.parent == told.where)
            addDeleted(*told.newval, show(leaf.before, told.newView));
        if (!told.childEdits.empty())
            told.childEdits.back()->next = edit.get();
        told.childEdits.push_back(std::move(edit));
    }

    static void addDeleted(Value &parent, std::unique_ptr<Value> leaf)
    {
        parent.expand();
        leaf->parent = &parent;
        leaf->pathKeys = nullptr;
        parent.children.push_back(std::move(leaf));
    }

    const Changes *changes_;
    EditOp only_;
    Plan plan_;
    std::unordered_map<const ChangeNode *, unsigned> leading_; // nodes that go before deletions in them
};

// Nodes that ask to be told before the rest, or to go after it, take those around them along.
void markFirst(Plan &plan)
{
    std::unordered_set<const ChangeNode *> written, deleted;
    for (const auto &told : plan)
        if (told->has(toldFirst))
            for (const ChangeNode *up = told->where; up; up = up->parent)
                (told->op == del ? deleted : written).insert(up);
    for (const auto &told : plan)
        told->first = (told->op == del ? deleted : written).count(told->where) != 0;
}

// Where a call stands among the others: deletions first, the last one first.
std::array<std::int64_t, 3> rankOf(const Told &told)
{
    const std::int64_t position = told.position;
    if (told.op != del)
        return {told.first ? 1 : 2, position, 0};
    if (told.behind)
        return {2, *told.behind, INT64_MAX - position};
    return {told.first ? 3 : 0, -position, 0};
}

std::string keyPredicates(const lyd_node *entry)
{
    std::string text;
    for (const lyd_node *key = lyd_child(entry); key && isKey(key->schema); key = key->next) {
        const char *value = lyd_get_value(key);
        const char quote = std::strchr(value, '\'') ? '"' : '\'';
        text += std::string("[") + key->schema->name + "=" + quote + value + quote + "]";
    }
    return text;
}

} // namespace

std::string changePath(const ChangeNode &node)
{
    std::string path;
    for (const ChangeNode *up = &node; up && up->schema; up = up->parent) {
        const bool qualify =
            !up->parent || !up->parent->schema || up->parent->schema->module != up->schema->module;
        std::string step = "/";
        if (qualify)
            step += std::string(up->schema->module->name) + ":";
        step += up->schema->name;
        if (up->schema->nodetype == LYS_LIST)
            step += keyPredicates(anySide(*up));
        path.insert(0, step);
    }
    return path;
}

std::string Told::path() const
{
    return changePath(*where);
}

void Told::swapChildEdits()
{
    for (const auto &edit : childEdits) {
        edit->op = edit->op == create ? del : edit->op == del ? create : edit->op;
        edit->newval.swap(edit->curval);
        for (Value *value : {edit->newval.get(), edit->curval.get()})
            if (value)
                value->op = edit->op;
    }
}

Plan planEdit(ChangeNode &root, const Changes &changes)
{
    Planner planner(&changes, noOperation);
    planner.visit(root, Planner::Around::nothing, false);
    Plan plan = planner.take();
    markFirst(plan);
    std::sort(plan.begin(), plan.end(), [](const auto &a, const auto &b) { return rankOf(*a) < rankOf(*b); });
    return plan;
}

std::vector<Told *> applyOrder(const Plan &plan)
{
    std::vector<Told *> order;
    for (const auto &told : plan)
        order.push_back(told.get());
    std::stable_partition(order.begin(), order.end(), [](const Told *told) {
        return (told->op == del && told->has(refusesDelete)) ||
            (told->op == replace && told->has(refusesReplace));
    });
    return order;
}

std::unique_ptr<Told> tellOne(ChangeNode &node, const Changes &changes, EditOp op)
{
    Planner planner(&changes, op);
    planner.tellOnly(node);
    return std::move(planner.take().at(0));
}

Plan planLoad(ChangeNode &root, lyd_node *tree)
{
    for (lyd_node *node = tree; node; node = node->next)
        if (holdsAnything(node))
            root.add(node->schema, nullptr, node, Ask::none, false);
    Planner planner(nullptr, load);
    planner.visit(root, Planner::Around::created, false);
    return planner.take();
}

} // namespace tk
