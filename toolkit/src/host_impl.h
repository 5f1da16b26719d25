// The parts of a Host and how they hang together.
#pragma once

#include "body.h"
#include "engine.h"
#include "retrieval.h"
#include "toolkit/host.h"

#include <string>
#include <vector>

namespace tk {

// The tree of an answer while it is put together.
struct Answer {
    lyd_node *root = nullptr;

    Answer() = default;
    ~Answer();
    Answer(const Answer &) = delete;
    Answer &operator=(const Answer &) = delete;

    void add(lyd_node *node); // at the top
    // The nodes of a target's first steps, made where they are missing; the last of them, null for none.
    lyd_node *makeSteps(const Target::Node &target, std::size_t count);
};

// Keeps what RESTCONF edits changed, and says whether they may.
class EditKeeper {
public:
    // One edit, from before it is applied until it is carried out or has failed.
    class Edit : public EditWatch {
    public:
        virtual void mayBegin() = 0;              // called with the turn held, throws to refuse
        virtual std::uint64_t record() const = 0; // that was written for it, 0: none
    };

    virtual ~EditKeeper() = default;
    virtual std::unique_ptr<Edit> begin() = 0;
    virtual void awaitSaved(std::uint64_t record) = 0; // throws if it is not saved
};

class Host::Impl {
public:
    explicit Impl(const HostOptions &options);
    ~Impl();
    Impl(const Impl &) = delete;
    Impl &operator=(const Impl &) = delete;

    void loadBundle(const std::string &library, const std::string &name);
    void finishStart();
    void seal();
    void loadStartup(std::string_view data, Encoding encoding);

    EditOutcome edit(const EditRequest &request);
    std::optional<std::string> read(const ReadRequest &request);

    // Adds the configuration of a target, as a reading has it, to an answer.
    static void copyConfig(const Engine::Reading &reading, const Target::Node &target,
                           const Selection &selection, unsigned depth, Answer &answer);
    // The same for the target's state. The engine's turn must be held.
    void addState(const Target::Node &target, const Selection &selection, Answer &answer);

    struct Bundle {
        std::string name;
        Status (*init2)() = nullptr;
        void (*cleanup)() = nullptr;
    };
    struct Provider {
        std::string module;
        std::function<lyd_node *()> tree; // made anew for each call, the caller's
    };

    Context context;
    Registry registry;
    Schema schema;
    ConstraintIndex constraints;
    Engine engine;
    std::vector<Bundle> bundles;
    std::vector<Provider> providers;
    std::string contentId;
    EditKeeper *keeper = nullptr; // of RESTCONF edits; null: nobody keeps them

private:
    std::optional<std::string> readDirectly(const ReadRequest &request);
    void copyRunning(const Target::Node &target, const Selection &selection, unsigned depth, Answer &answer);
    void addProvided(const Target::Node &target, const Selection &selection, unsigned depth, Answer &answer);
    void addDefaults(const Target::Node &target, const Selection &wanted, unsigned depth, Answer &answer);
    std::optional<std::string> print(const ReadRequest &request, lyd_node *results);
    bool hasState(const Target::Node &target) const; // callbacks or providers at or below it
    bool existsByItself(const Target::Node &target, lyd_node *results);
    bool isReachable(const Target::Node &target, std::size_t steps, lyd_node *results);
};

// An edit request of RESTCONF as a change of a tree.
class RestEdit {
public:
    RestEdit(const ly_ctx *context, const EditRequest &request);

    // Applies it; what it created is known afterwards.
    void apply(Editor &editor, lyd_node *root);
    bool created() const { return created_; }
    std::optional<Target> resource(const Context &context) const;

private:
    void parseWhole();
    void parseTarget();
    void parseChild();
    void place(const lyd_node *node, lyd_node *root);

    const ly_ctx *context_;
    const EditRequest &request_;
    const Target::Node &target_;
    EditTree edit_;
    lyd_node *node_ = nullptr; // the one that the request is about
    std::vector<PathStep> createdSteps_;
    bool created_ = false;
};

std::string printNodes(const lyd_node *node, Encoding encoding, std::uint32_t options);
std::uint32_t printOptions(WithDefaults mode);

} // namespace tk
