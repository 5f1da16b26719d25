#include "engine.h"

#include "errors.h"
#include "toolkit/log.h"

#include <algorithm>
#include <cinttypes>
#include <random>

namespace tk {

namespace {

Engine *theEngine = nullptr;

std::string toldPath(const void *told)
{
    return static_cast<const Told *>(told)->path();
}

} // namespace

Engine *currentEngine()
{
    return theEngine;
}

void setCurrentEngine(Engine *engine)
{
    theEngine = engine;
}

Engine::~Engine()
{
    lyd_free_all(running_);
}

bool Engine::edit(const std::function<void(Editor &, lyd_node *root)> &change, EditWatch *watch,
                  EditMode mode)
{
    const auto turn = takeTurn();
    Changes changes(&running_);
    ChangeNode root;
    Editor editor(changes, root);
    Checker checker(index_, &values_, changes, editor, context_.ly());
    Plan plan;
    bool isWatched = false;
    {
        const std::unique_lock lock(treeLock_);
        try {
            change(editor, running_);
            checker.run();
            if (watch && !changes.empty())
                watch->checked(root, running_);
            isWatched = watch != nullptr && !changes.empty();
            plan = planEdit(root, changes);
        } catch (...) {
            values_.discard();
            changes.undo();
            if (isWatched)
                watch->failed();
            throw;
        }
        if (changes.empty() && plan.empty())
            return false;
        pending_ = &changes;
    }
    try {
        run(plan, mode);
    } catch (...) {
        takeBack(changes, plan);
        if (isWatched)
            watch->failed();
        throw;
    }
    const bool differs = !changes.empty() && !root.children.empty();
    if (mode == EditMode::testOnly) {
        takeBack(changes, plan);
        return differs;
    }
    {
        const std::unique_lock lock(treeLock_);
        pending_ = nullptr;
        plan.clear();
        checker.keepValues();
        changes.accept();
        refreshCaches();
        if (differs)
            renewStamp();
    }
    if (isWatched)
        watch->carriedOut();
    return differs;
}

void Engine::takeBack(Changes &changes, Plan &plan)
{
    const std::unique_lock lock(treeLock_);
    pending_ = nullptr;
    plan.clear();
    values_.discard();
    changes.undo();
    refreshCaches();
}

void Engine::run(Plan &plan, EditMode mode)
{
    std::vector<Told *> applied;
    for (const auto &told : plan)
        callOrThrow(*told, validate, applied);
    if (mode == EditMode::testOnly)
        return;
    for (Told *told : applyOrder(plan)) {
        callOrThrow(*told, apply, applied);
        applied.push_back(told);
    }
    for (const auto &told : plan)
        callOrThrow(*told, commit, applied);
}

Status Engine::call(Told &told, EditPhase phase, RequestFrame &frame)
{
    frame.header.pathOf = toldPath;
    frame.header.subject = &told;
    frame.transaction.told = &told;
    return told.info->edit(&frame.session, &frame.request, phase, told.op, told.newval.get(),
                           told.currentIn(phase));
}

void Engine::callOrThrow(Told &told, EditPhase phase, const std::vector<Told *> &applied)
{
    RequestFrame frame;
    const Status status = call(told, phase, frame);
    if (status == kOk)
        return;
    auto errors = frame.header.errors(0, status);
    if (phase != validate)
        rollBack(applied, &told);
    throw Failure(std::move(errors));
}

void Engine::rollBack(const std::vector<Told *> &applied, const Told *failed)
{
    const auto undo = [this](Told &told) {
        if (told.has(swappedInRollback))
            told.swapChildEdits();
        RequestFrame frame;
        const Status status = call(told, rollback, frame);
        if (status && log_get_system_log_level() >= 1)
            log_error("\nrollback of %s ended with status %u\n", told.path().c_str(), status);
    };
    if (failed->has(undoesItself))
        undo(const_cast<Told &>(*failed));
    for (auto told = applied.rbegin(); told != applied.rend(); ++told)
        if (*told != failed && !(*told)->has(noRollback))
            undo(**told);
}

Engine::Reading Engine::read() const
{
    std::shared_lock lock(treeLock_);
    return {std::move(lock), running_, pending_};
}

void Engine::renewStamp()
{
    const std::lock_guard lock(stampLock_);
    if (session_.empty()) {
        std::random_device random;
        char text[24];
        std::snprintf(text, sizeof text, "%08x%08x", random(), random());
        session_ = text;
    }
    stamp_.tag = session_ + "-" + std::to_string(++generation_);
    stamp_.modified = std::chrono::system_clock::now();
}

Stamp Engine::stamp() const
{
    const std::lock_guard lock(stampLock_);
    return stamp_;
}

void Engine::refreshCache(Value &cache) const
{
    lyd_node *match = nullptr;
    if (running_)
        lyd_find_sibling_val(running_, cache.schema, nullptr, 0, &match);
    cache.node = match;
    cache.children.clear();
    cache.expanded = false;
}

void Engine::refreshCaches()
{
    for (auto &[node, cache] : caches_)
        refreshCache(*cache);
}

Value *Engine::initCache(const lysc_node *node)
{
    auto &cache = caches_[node];
    if (!cache)
        cache = showNode(node, nullptr, &liveView_, nullptr);
    refreshCache(*cache);
    return cache->node ? cache.get() : nullptr;
}

} // namespace tk

using namespace tk;

extern "C" Value *agt_init_cache(const char *module, const char *name, Status *res)
{
    Object *object = ncx_find_object(ncx_find_module(module, nullptr), name);
    const lysc_node *node = object ? currentContext()->nodeOf(object) : nullptr;
    *res = node && currentEngine() ? kOk : kNotFound;
    return *res == kOk ? currentEngine()->initCache(node) : nullptr;
}

extern "C" Status agt_check_cache(Value **cache, Value *newval, Value *curval, EditOp editop)
{
    const Value *value = newval ? newval : curval;
    if (!cache || !value || !currentEngine())
        return set_error(__FILE__, __LINE__, kInternal, 0);
    *cache = editop == del ? nullptr : currentEngine()->initCache(value->schema);
    return kOk;
}
