#include "toolkit/datastores.h"

#include "datastores_impl.h"
#include "errors.h"
#include "toolkit/log.h"

#include <algorithm>
#include <future>

namespace tk {

namespace {

constexpr char kRunningDiffers[] = "Running holds changes that startup lacks, so that this edit cannot be "
                                   "saved; copy running to startup first";

const char *nameOf(Datastore store)
{
    switch (store) {
    case Datastore::running:
        return "running";
    case Datastore::candidate:
        return "candidate";
    case Datastore::startup:
        break;
    }
    return "startup";
}

Failure cannotSave(const std::string &reason)
{
    return operationFailed({}, "Startup cannot be written: " + reason);
}

Tree copyOf(const lyd_node *tree)
{
    lyd_node *copy = nullptr;
    if (tree && lyd_dup_siblings(tree, nullptr, LYD_DUP_RECURSIVE | LYD_DUP_WITH_FLAGS, &copy))
        throw Failure(takeErrors(LYD_CTX(tree), "The data cannot be copied."));
    return Tree(copy);
}

std::string asJson(const lyd_node *tree)
{
    return tree ? printNodes(tree, Encoding::json, LYD_PRINT_WITHSIBLINGS | LYD_PRINT_WD_EXPLICIT) : "{}\n";
}

// Makes running, or another tree, hold what `tree` holds.
EditTree replacement(Tree tree, bool toldAsMerge)
{
    EditTree edit;
    edit.tree = std::move(tree);
    edit.rootAsk = Ask::replace;
    edit.toldAsMerge = toldAsMerge;
    return edit;
}

Ask askOf(DefaultOperation operation)
{
    switch (operation) {
    case DefaultOperation::merge:
        return Ask::merge;
    case DefaultOperation::replace:
        return Ask::replace;
    case DefaultOperation::none:
        break;
    }
    return Ask::none;
}

} // namespace

// An edit of running by a NETCONF client: startup does not follow.
class Datastores::Impl::UnsavedEdit : public EditWatch {
public:
    explicit UnsavedEdit(Impl &stores)
        : stores_(stores)
    {
    }
    void checked(const ChangeNode &, const lyd_node *) override { }
    void carriedOut() override { stores_.startup_.differs = true; }

private:
    Impl &stores_;
};

// An edit by RESTCONF: it is written down before any callback hears of it, so that a full disk refuses it.
class Datastores::Impl::SavedEdit : public EditKeeper::Edit {
public:
    explicit SavedEdit(Impl &stores)
        : stores_(stores)
    {
    }

    void mayBegin() override
    {
        stores_.checkLock(0, Datastore::running);
        stores_.checkLock(0, Datastore::startup);
    }

    void checked(const ChangeNode &root, const lyd_node *tree) override
    {
        const std::string description = describeEdit(root, tree);
        if (description.empty())
            return;
        try {
            if (stores_.startup_.differs)
                change_ = stores_.changeStartup(description);
            record_ = stores_.storage_.append(description);
        } catch (const StorageError &failure) {
            throw cannotSave(failure.what());
        }
    }

    void failed() override
    {
        stores_.storage_.takeBack(record_);
        change_.reset();
    }

    void carriedOut() override
    {
        if (change_)
            change_->changes.accept();
        try {
            if (stores_.storage_.wantsRewrite(stores_.options_.compactAt))
                stores_.rewriteStartup();
        } catch (const std::exception &failure) {
            log_error("\nstartup stays as it is and its log grows: %s\n", failure.what());
        }
    }

    std::uint64_t record() const override { return record_; }

private:
    Impl &stores_;
    std::uint64_t record_ = 0;
    std::unique_ptr<StartupChange> change_;
};

Datastores::Impl::Impl(Host::Impl &host, StorageOptions options)
    : host_(host)
    , options_(std::move(options))
    , storage_(options_.folder)
{
    host_.keeper = this;
}

Datastores::Impl::~Impl()
{
    host_.keeper = nullptr;
    dropCandidate();
    forgetStartupTree();
}

// Startup

std::vector<std::string> Datastores::Impl::load()
try {
    std::vector<std::string> complaints;
    const StoredData data = storage_.open(complaints);
    host_.engine.loadStartup(treeOf(data, &complaints));
    return complaints;
} catch (const StorageError &failure) {
    throw StartFailure(failure.what());
} catch (const Failure &failure) {
    throw StartFailure("the startup data are not valid: " + failure.errors.front().message + " " +
                       failure.errors.front().path);
}

Tree Datastores::Impl::parseStored(const std::string &text) const
{
    lyd_node *tree = nullptr;
    clearErrors(context());
    // Not strict: data of modules that are not served here are passed over.
    const bool isBlank = text.find_first_not_of(" \t\r\n") == text.npos;
    if (!isBlank && lyd_parse_data_mem(context(), text.c_str(), LYD_JSON, LYD_PARSE_ONLY, 0, &tree))
        throw StorageError("the startup data cannot be read: " + takeErrorLine(context(), "unknown reason"));
    return Tree(tree);
}

Tree Datastores::Impl::treeOf(const StoredData &data, std::vector<std::string> *complaints) const
{
    lyd_node *root = parseStored(data.base ? *data.base : options_.factory.value_or("")).release();
    Tree owner; // takes the root in the end, whatever it became
    for (const std::string &record : data.records) {
        Changes changes(&root);
        ChangeNode top;
        Editor editor(changes, top);
        try {
            replayEdit(context(), record, editor, root);
            changes.accept();
        } catch (const Failure &failure) {
            changes.undo();
            if (complaints)
                complaints->push_back(
                    std::string("startup.log: an edit does not fit the data any more and is "
                                "left out: ") +
                    failure.what());
        }
    }
    owner.reset(root);
    return owner;
}

Tree Datastores::Impl::startupTree() const
{
    const StoredData data = storage_.read();
    return data.base || !data.records.empty() ? treeOf(data, nullptr) : Tree();
}

// As one file instead of a file and a log. The turn is held.
void Datastores::Impl::rewriteStartup()
{
    if (startup_.differs) {
        loadStartupTree();
        return storage_.rewrite(asJson(startup_.tree), true);
    }
    const auto reading = host_.engine.read();
    storage_.rewrite(asJson(reading.root), true);
}

void Datastores::Impl::loadStartupTree()
{
    if (startup_.isLoaded)
        return;
    startup_.tree = treeOf(storage_.read(), nullptr).release();
    markWhens(startup_.tree);
    startup_.isLoaded = true;
}

void Datastores::Impl::forgetStartupTree()
{
    lyd_free_all(startup_.tree);
    startup_.tree = nullptr;
    startup_.isLoaded = false;
}

std::unique_ptr<Datastores::Impl::StartupChange>
Datastores::Impl::changeStartup(const std::string &description)
{
    loadStartupTree();
    auto change = std::make_unique<StartupChange>(&startup_.tree);
    Editor editor(change->changes, change->root);
    try {
        replayEdit(context(), description, editor, startup_.tree);
        Checker(host_.constraints, nullptr, change->changes, editor, context()).run();
    } catch (const Failure &failure) {
        const Error &error = failure.errors.front();
        throw operationFailed(error.path, std::string(kRunningDiffers) + ": " + error.message);
    }
    return change;
}

// A log that could not be relied on any more is replaced before the next edit, or that one is refused.
std::unique_ptr<EditKeeper::Edit> Datastores::Impl::begin()
{
    if (storage_.isBroken()) {
        const auto turn = host_.engine.takeTurn();
        try {
            rewriteStartup();
        } catch (const StorageError &failure) {
            throw cannotSave(failure.what());
        }
    }
    return std::make_unique<SavedEdit>(*this);
}

void Datastores::Impl::awaitSaved(std::uint64_t record)
{
    std::promise<void> saved;
    const auto done = [&saved](const Failure *failure) {
        if (failure)
            saved.set_exception(std::make_exception_ptr(*failure));
        else
            saved.set_value();
    };
    whenSaved(record, done, true);
    saved.get_future().get();
}

void Datastores::Impl::whenSaved(std::uint64_t record, Saved done, bool mayWait)
{
    const auto tell = [done = std::move(done)](const std::string *reason) {
        if (!reason)
            return done(nullptr);
        const Failure failure =
            operationFailed({}, "The edit was carried out but could not be saved: " + *reason);
        done(&failure);
    };
    storage_.whenSaved(record, tell, mayWait);
}

// Reading

Tree Datastores::Impl::copyStore(Datastore store) const
{
    if (store == Datastore::startup)
        return startupTree();
    const std::shared_lock lock(candidateLock_);
    if (store == Datastore::candidate && candidate_.differs)
        return copyOf(candidate_.tree);
    const auto reading = host_.engine.read();
    if (!reading.before)
        return copyOf(reading.root);
    Answer answer;
    Host::Impl::copyConfig(reading, wholeDatastore(host_.context).node(), {}, kUnlimited, answer);
    return Tree(std::exchange(answer.root, nullptr));
}

// Editing

void Datastores::Impl::editRunning(const std::function<void(Editor &, lyd_node *)> &change, EditMode mode)
{
    UnsavedEdit watch(*this);
    host_.engine.edit(change, mode == EditMode::carryOut ? &watch : nullptr, mode);
}

void Datastores::Impl::replaceRunning(Tree tree, bool toldAsMerge, EditMode mode)
{
    EditTree edit = replacement(std::move(tree), toldAsMerge);
    editRunning([&edit](Editor &editor, lyd_node *) { editor.apply(edit); }, mode);
}

void Datastores::Impl::edit(SessionId session, const ConfigEdit &request)
{
    if (request.target == Datastore::startup)
        throw notSupported({}, "Startup is not edited: copy a datastore to it.");
    checkLock(session, request.target);
    NetconfEdit edit(context(), request.config, askOf(request.defaultOperation), NetconfEdit::Manner::strict);
    if (request.target == Datastore::candidate)
        return editCandidate(edit, request.test);
    const bool testOnly = request.test == TestOption::testOnly;
    editRunning([&edit](Editor &editor, lyd_node *root) { edit.apply(editor, root); },
                testOnly ? EditMode::testOnly : EditMode::carryOut);
}

// Constraints are enforced when the candidate is committed, unless the client asks for it (RFC 7950, 8.3.3).
void Datastores::Impl::editCandidate(NetconfEdit &edit, TestOption test)
{
    const bool differed = candidate_.differs;
    if (!differed)
        setCandidate(copyStore(Datastore::running), true);
    try {
        const std::unique_lock lock(candidateLock_);
        Changes changes(&candidate_.tree);
        ChangeNode root;
        Editor editor(changes, root);
        edit.apply(editor, candidate_.tree);
        if (test == TestOption::testThenSet || test == TestOption::testOnly)
            checkWholeTree(candidate_.tree, context(), nullptr);
        if (test != TestOption::testOnly)
            changes.accept();
    } catch (...) {
        if (!differed)
            dropCandidate();
        throw;
    }
    if (!differed && test == TestOption::testOnly)
        dropCandidate();
}

void Datastores::Impl::setCandidate(Tree tree, bool differs)
{
    const std::unique_lock lock(candidateLock_);
    lyd_free_all(candidate_.tree);
    candidate_.tree = tree.release();
    candidate_.differs = differs;
}

void Datastores::Impl::dropCandidate()
{
    setCandidate({}, false);
}

Tree Datastores::Impl::parseConfigElement(const std::string &config) const
{
    NetconfEdit edit(context(), config, Ask::merge, NetconfEdit::Manner::strict);
    lyd_node *root = nullptr;
    {
        Changes changes(&root);
        ChangeNode top;
        Editor editor(changes, top);
        edit.apply(editor, root);
        changes.accept();
    }
    return Tree(root);
}

void Datastores::Impl::copy(SessionId session, Tree tree, std::optional<Datastore> source, Datastore target)
{
    checkLock(session, target);
    if (target == Datastore::running)
        return replaceRunning(std::move(tree), false, EditMode::carryOut);
    if (target == Datastore::candidate)
        return source == Datastore::running ? dropCandidate() : setCandidate(std::move(tree), true);
    if (source != Datastore::running)
        checkWholeTree(tree.get(), context(), nullptr);
    const auto turn = host_.engine.takeTurn();
    try {
        storage_.rewrite(asJson(tree.get()), false);
    } catch (const StorageError &failure) {
        throw cannotSave(failure.what());
    }
    forgetStartupTree();
    startup_.differs = source != Datastore::running;
}

void Datastores::Impl::removeStartup(SessionId session)
{
    checkLock(session, Datastore::startup);
    const auto turn = host_.engine.takeTurn();
    try {
        storage_.rewrite(std::nullopt, false);
    } catch (const StorageError &failure) {
        throw cannotSave(failure.what());
    }
    forgetStartupTree();
    startup_.differs = true;
}

// Locks

void Datastores::Impl::checkLock(SessionId session, Datastore store) const
{
    const auto held = lockOf(store);
    if (!held || held->session == session)
        return;
    Failure failure =
        inUse(std::string("Session ") + std::to_string(held->session) + " has locked " + nameOf(store) + ".");
    throw failure;
}

std::optional<LockInfo> Datastores::Impl::lockOf(Datastore store) const
{
    const std::lock_guard lock(mutex_);
    const auto found = locks_.find(store);
    return found != locks_.end() ? std::optional(found->second) : std::nullopt;
}

void Datastores::Impl::lock(SessionId session, Datastore store)
{
    if (const auto held = lockOf(store))
        throw lockDenied(held->session, "The lock is held already.");
    if (store == Datastore::candidate && candidate_.differs)
        throw lockDenied(0, "The candidate holds changes that were neither committed nor discarded.");
    if (store == Datastore::running && unconfirmed_ && unconfirmed_->session != session)
        throw lockDenied(unconfirmed_->session, "A commit of another session is not confirmed yet.");
    const std::lock_guard guard(mutex_);
    locks_[store] = {session, std::chrono::system_clock::now()};
}

void Datastores::Impl::unlock(SessionId session, Datastore store)
{
    const auto held = lockOf(store);
    if (!held)
        throw operationFailed({}, std::string("There is no lock on ") + nameOf(store) + ".");
    if (held->session != session)
        throw operationFailed({}, "The lock is held by session " + std::to_string(held->session) + ".");
    release(store);
}

// What the candidate lock protected goes with it (RFC 6241, section 8.3.5.2).
void Datastores::Impl::release(Datastore store)
{
    {
        const std::lock_guard guard(mutex_);
        locks_.erase(store);
    }
    if (store == Datastore::candidate)
        dropCandidate();
}

void Datastores::Impl::sessionEnded(SessionId session)
{
    for (const Datastore store : {Datastore::running, Datastore::candidate, Datastore::startup})
        if (const auto held = lockOf(store); held && held->session == session)
            release(store);
    if (unconfirmed_ && !unconfirmed_->persist && unconfirmed_->session == session)
        takeBack();
}

// Commits

void Datastores::Impl::checkFollowUp(SessionId session, const std::optional<std::string> &persistId) const
{
    if (persistId && (!unconfirmed_ || unconfirmed_->persist != persistId))
        throw invalidValue({}, "There is no unconfirmed commit of this persist-id.");
    if (!unconfirmed_ || persistId)
        return;
    if (unconfirmed_->persist)
        throw invalidValue({}, "The unconfirmed commit has a persist-id, which must be given.");
    if (unconfirmed_->session != session)
        throw inUse("A commit of session " + std::to_string(unconfirmed_->session) +
                    " is not confirmed yet.");
}

void Datastores::Impl::commit(SessionId session, const CommitRequest &request)
{
    checkLock(session, Datastore::running);
    checkLock(session, Datastore::candidate);
    checkFollowUp(session, request.persistId);
    Tree before;
    if (request.confirmed && !unconfirmed_)
        before = copyStore(Datastore::running);
    if (candidate_.differs)
        replaceRunning(copyStore(Datastore::candidate), true, EditMode::carryOut);
    dropCandidate();
    const std::lock_guard guard(mutex_);
    if (!request.confirmed) {
        unconfirmed_.reset();
        return;
    }
    if (unconfirmed_)
        before = std::move(unconfirmed_->before);
    const auto deadline = std::chrono::steady_clock::now() + request.timeout;
    unconfirmed_ = Unconfirmed{std::move(before), session, request.persist, deadline};
}

void Datastores::Impl::cancelCommit(SessionId session, const std::optional<std::string> &persistId)
{
    if (!unconfirmed_)
        throw operationFailed({}, "There is no unconfirmed commit.");
    checkFollowUp(session, persistId);
    checkLock(session, Datastore::running);
    replaceRunning(copyOf(unconfirmed_->before.get()), true, EditMode::carryOut);
    const std::lock_guard guard(mutex_);
    unconfirmed_.reset();
}

void Datastores::Impl::takeBack() noexcept
{
    Tree before;
    {
        const std::lock_guard guard(mutex_);
        before = std::move(unconfirmed_->before);
        unconfirmed_.reset();
    }
    try {
        replaceRunning(std::move(before), true, EditMode::carryOut);
    } catch (const std::exception &failure) {
        log_error("\nan unconfirmed commit cannot be taken back: %s\n", failure.what());
    }
}

std::optional<std::chrono::steady_clock::time_point> Datastores::Impl::confirmDeadline() const
{
    const std::lock_guard guard(mutex_);
    return unconfirmed_ ? std::optional(unconfirmed_->deadline) : std::nullopt;
}

void Datastores::Impl::takeBackUnconfirmed()
{
    if (unconfirmed_ && unconfirmed_->deadline <= std::chrono::steady_clock::now())
        takeBack();
}

void Datastores::Impl::discardChanges(SessionId session)
{
    checkLock(session, Datastore::candidate);
    dropCandidate();
}

// Checking

void Datastores::Impl::validate(Datastore store)
{
    if (store == Datastore::candidate && candidate_.differs)
        return replaceRunning(copyStore(Datastore::candidate), true, EditMode::testOnly);
    const Tree tree = copyStore(store);
    checkWholeTree(tree.get(), context(), nullptr);
}

// The outside

Datastores::Datastores(Host &host, StorageOptions options)
    : impl_(std::make_unique<Impl>(host.impl(), std::move(options)))
{
}

Datastores::~Datastores() = default;

std::vector<std::string> Datastores::load()
{
    return impl_->load();
}

namespace {

// What fails on disk while a request is served is that request's failure.
template <class Action>
auto served(Action action)
{
    try {
        return action();
    } catch (const StorageError &failure) {
        throw operationFailed({}, failure.what());
    }
}

} // namespace

std::string Datastores::read(const GetRequest &request)
{
    return served([&] { return impl_->read(request); });
}

void Datastores::edit(SessionId session, const ConfigEdit &edit)
{
    impl_->edit(session, edit);
}

void Datastores::copy(SessionId session, Datastore source, Datastore target)
{
    served([&] { impl_->copy(session, impl_->copyStore(source), source, target); });
}

void Datastores::copy(SessionId session, const std::string &config, Datastore target)
{
    impl_->copy(session, impl_->parseConfigElement(config), std::nullopt, target);
}

void Datastores::removeStartup(SessionId session)
{
    impl_->removeStartup(session);
}

void Datastores::lock(SessionId session, Datastore store)
{
    impl_->lock(session, store);
}

void Datastores::unlock(SessionId session, Datastore store)
{
    impl_->unlock(session, store);
}

void Datastores::commit(SessionId session, const CommitRequest &request)
{
    impl_->commit(session, request);
}

void Datastores::cancelCommit(SessionId session, const std::optional<std::string> &persistId)
{
    impl_->cancelCommit(session, persistId);
}

void Datastores::discardChanges(SessionId session)
{
    impl_->discardChanges(session);
}

void Datastores::validate(Datastore store)
{
    served([&] { impl_->validate(store); });
}

void Datastores::validate(const std::string &config)
{
    const Tree tree = impl_->parseConfigElement(config);
    checkWholeTree(tree.get(), impl_->context(), nullptr);
}

void Datastores::sessionEnded(SessionId session) noexcept
{
    impl_->sessionEnded(session);
}

std::optional<std::chrono::steady_clock::time_point> Datastores::confirmDeadline() const
{
    return impl_->confirmDeadline();
}

void Datastores::takeBackUnconfirmed() noexcept
{
    impl_->takeBackUnconfirmed();
}

std::optional<LockInfo> Datastores::lockOf(Datastore store) const
{
    return impl_->lockOf(store);
}

std::string Datastores::invoke(const std::string &operation)
{
    return impl_->invoke(operation);
}

void Datastores::whenSaved(std::uint64_t record, Saved done, bool mayWait)
{
    impl_->whenSaved(record, std::move(done), mayWait);
}

void Datastores::finishSaving()
{
    impl_->finishSaving();
}

} // namespace tk
