// The parts of Datastores and how they hang together.
#pragma once

#include "filter.h"
#include "host_impl.h"
#include "netconf_edit.h"
#include "storage.h"

#include <map>
#include <mutex>
#include <shared_mutex>

namespace tk {

class Datastores::Impl : public EditKeeper {
public:
    Impl(Host::Impl &host, StorageOptions options);
    ~Impl() override;

    std::vector<std::string> load();
    std::string read(const GetRequest &request);
    void edit(SessionId session, const ConfigEdit &request);
    // `tree` is what `source` holds, or a configuration that came in the request.
    void copy(SessionId session, Tree tree, std::optional<Datastore> source, Datastore target);
    void removeStartup(SessionId session);
    void lock(SessionId session, Datastore store);
    void unlock(SessionId session, Datastore store);
    void commit(SessionId session, const CommitRequest &request);
    void cancelCommit(SessionId session, const std::optional<std::string> &persistId);
    void discardChanges(SessionId session);
    void validate(Datastore store);
    void sessionEnded(SessionId session);
    std::optional<std::chrono::steady_clock::time_point> confirmDeadline() const;
    void takeBackUnconfirmed();
    std::optional<LockInfo> lockOf(Datastore store) const;
    std::string invoke(const std::string &operation);
    void whenSaved(std::uint64_t record, Saved done, bool mayWait);
    void finishSaving() { storage_.finishSaving(); }

    Tree copyStore(Datastore store) const;
    Tree parseConfigElement(const std::string &config) const;
    const ly_ctx *context() const { return host_.context.ly(); }

    // As keeper of RESTCONF edits.
    std::unique_ptr<Edit> begin() override;
    void awaitSaved(std::uint64_t record) override;

private:
    class UnsavedEdit;
    class SavedEdit;

    // An edit of the startup tree that is undone unless its changes are accepted.
    struct StartupChange {
        explicit StartupChange(lyd_node **tree)
            : changes(tree)
        {
        }
        Changes changes;
        ChangeNode root;
    };
    struct Unconfirmed {
        Tree before; // running before the first of the commits
        SessionId session;
        std::optional<std::string> persist;
        std::chrono::steady_clock::time_point deadline;
    };

    Tree parseStored(const std::string &text) const;
    Tree treeOf(const StoredData &data, std::vector<std::string> *complaints) const;
    Tree startupTree() const;
    void rewriteStartup();
    void loadStartupTree();
    void forgetStartupTree();
    std::unique_ptr<StartupChange> changeStartup(const std::string &description);

    void editRunning(const std::function<void(Editor &, lyd_node *)> &change, EditMode mode);
    void replaceRunning(Tree tree, bool toldAsMerge, EditMode mode);
    void editCandidate(NetconfEdit &edit, TestOption test);
    void setCandidate(Tree tree, bool differs);
    void dropCandidate();

    void checkLock(SessionId session, Datastore store) const;
    void release(Datastore store);
    void checkFollowUp(SessionId session, const std::optional<std::string> &persistId) const;
    void takeBack() noexcept;

    std::string readTree(const GetRequest &request, const DataFilter *filter);
    void collect(const GetRequest &request, const std::vector<Piece> &pieces, Answer &answer);

    Host::Impl &host_;
    const StorageOptions options_;
    Storage storage_;

    mutable std::shared_mutex candidateLock_;
    struct {
        bool differs = false; // else it is what running is
        lyd_node *tree = nullptr;
    } candidate_;

    // The tree is only there once it was needed: an edit by RESTCONF while running and startup differ.
    struct {
        bool differs = false; // else it is what running is
        bool isLoaded = false;
        lyd_node *tree = nullptr;
    } startup_;

    mutable std::mutex mutex_; // what follows, where another thread looks at it
    std::map<Datastore, LockInfo> locks_;
    std::optional<Unconfirmed> unconfirmed_;
};

} // namespace tk
