// Running: the data, its transactions and their callbacks.
#pragma once

#include "constraints.h"
#include "plan.h"
#include "request.h"

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <shared_mutex>

namespace tk {

// Who takes part in an edit of running without being told of nodes. Everything is called with the turn held.
class EditWatch {
public:
    virtual ~EditWatch() = default;
    // The edit changes something and passed all checks, and no callback was told yet. Throws to refuse it.
    virtual void checked(const ChangeNode &root, const lyd_node *tree) = 0;
    virtual void failed() { } // after checked(): the edit was taken back
    virtual void carriedOut() { }
};

enum class EditMode {
    carryOut,
    testOnly, // everything up to the `validate` calls, and then the edit is taken back
};

class Engine {
public:
    Engine(const Context &context, const ConstraintIndex &index)
        : context_(context)
        , index_(index)
    {
    }
    ~Engine();
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    // Changes running and drives the callbacks. `change` is called with the tree locked; it throws Failure to
    // refuse. Returns whether running differs now. Throws Failure; running is then as it was.
    bool edit(const std::function<void(Editor &, lyd_node *root)> &change, EditWatch *watch = nullptr,
              EditMode mode = EditMode::carryOut);
    // Fills an empty running and drives `load`.
    void loadStartup(Tree data);

    // One callback at a time: held by whoever may call one.
    std::unique_lock<std::mutex> takeTurn() { return std::unique_lock(turn_); }

    // Running for a reader. While an edit's callbacks work the tree stands as it will be; `before` shows what
    // it was. The lock is shared; hold it briefly.
    struct Reading {
        std::shared_lock<std::shared_mutex> lock;
        lyd_node *root;
        const Changes *before; // null: no edit is on its way
    };
    Reading read() const;

    Stamp stamp() const;

    // Caches of top-level nodes.
    Value *initCache(const lysc_node *node);
    Status checkCache(Value **cache);

private:
    void run(Plan &plan, EditMode mode);
    void takeBack(Changes &changes, Plan &plan);
    Status call(Told &told, EditPhase phase, RequestFrame &frame);
    void callOrThrow(Told &told, EditPhase phase, const std::vector<Told *> &applied);
    void rollBack(const std::vector<Told *> &applied, const Told *failed);
    void loadPhase(Plan &plan, EditPhase phase);
    void renewStamp();
    void refreshCaches();
    void refreshCache(Value &cache) const;

    const Context &context_;
    const ConstraintIndex &index_;
    ValueIndex values_; // of running
    std::mutex turn_;
    mutable std::shared_mutex treeLock_;
    lyd_node *running_ = nullptr;
    const Changes *pending_ = nullptr;
    mutable std::mutex stampLock_;
    Stamp stamp_;
    std::uint64_t generation_ = 0;
    std::string session_; // differs from one start to the next
    ValueView liveView_;
    std::map<const lysc_node *, std::unique_ptr<Value>> caches_;
};

Engine *currentEngine();
void setCurrentEngine(Engine *engine);

} // namespace tk
