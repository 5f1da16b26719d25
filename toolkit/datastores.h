// The datastores of NETCONF on top of a Host: running, candidate and startup, their locks, confirmed commits,
// and what is kept on disk. For the front ends; XML texts go in and come out.
//
// Running is the host's own. The candidate is a tree of its own as long as it differs from running. Startup
// is a file and a log of edits, see StorageOptions.
//
// An edit by RESTCONF (Host::edit) is applied to startup as well, by itself: a change of running that a
// NETCONF client did not copy to startup is not carried along. Where the two cannot be brought together,
// because startup lacks what the edit refers to, the edit is refused before any callback hears of it.
//
// Threads: everything that changes something comes from one thread, the one that calls Host::edit and
// Host::invoke. What only reads configuration, lockOf() and confirmDeadline() may be called from any.
#pragma once

#include "toolkit/host.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tk {

enum class Datastore { running, candidate, startup };

using SessionId = std::uint32_t; // of a NETCONF session, from 1 on

struct Filter {
    enum class Kind { none, subtree, xpath };
    Kind kind = Kind::none;
    std::string text; // the <filter> element as a document of its own, or the expression
    std::vector<std::pair<std::string, std::string>> namespaces = {}; // xpath: what the prefixes stand for
};

struct GetRequest {
    Datastore source = Datastore::running;
    bool withState = false; // of running only
    Filter filter = {};
    WithDefaults withDefaults = WithDefaults::explicitOnly;
};

enum class DefaultOperation { merge, replace, none };
// byTarget: as the datastore has it. Running is always checked, the candidate when it is committed.
enum class TestOption { byTarget, testThenSet, set, testOnly };

struct ConfigEdit {
    Datastore target = Datastore::running; // or candidate
    DefaultOperation defaultOperation = DefaultOperation::merge;
    TestOption test = TestOption::byTarget;
    std::string config; // the <config> element as a document of its own
};

struct CommitRequest {
    bool confirmed = false;
    std::chrono::seconds timeout{600};
    std::optional<std::string> persist = {}, persistId = {};
};

struct LockInfo {
    SessionId session = 0;
    std::chrono::system_clock::time_point since;
};

// Below `folder`: startup.json is the datastore as it was last written as a whole, startup.log the edits
// since. Those that were in use before are kept as startup.json.1 and startup.log.1.
struct StorageOptions {
    std::filesystem::path folder;
    std::optional<std::string> factory; // what a switch holds that has no startup (JSON)
    std::size_t compactAt = std::size_t{1}
        << 20; // bytes of log, and as many as the file: then it is rewritten
};

class Datastores {
public:
    // The host outlives this. Throws StartFailure.
    Datastores(Host &host, StorageOptions options);
    ~Datastores();
    Datastores(const Datastores &) = delete;
    Datastores &operator=(const Datastores &) = delete;

    // At start, between Host::seal() and Host::finishStart(): finds the newest startup that is intact and
    // drives `load`. Returns what was damaged and what is used instead, a line each. Throws StartFailure.
    std::vector<std::string> load();

    // The content of <data>. Throws Failure.
    std::string read(const GetRequest &request);

    // All of these throw Failure; the datastores are then as they were.
    void edit(SessionId session, const ConfigEdit &edit);
    void copy(SessionId session, Datastore source, Datastore target);
    void copy(SessionId session, const std::string &config, Datastore target); // a <config> element
    void removeStartup(SessionId session);
    void lock(SessionId session, Datastore store);
    void unlock(SessionId session, Datastore store);
    void commit(SessionId session, const CommitRequest &request);
    void cancelCommit(SessionId session, const std::optional<std::string> &persistId);
    void discardChanges(SessionId session);
    void validate(Datastore store);
    void validate(const std::string &config);
    // The session is gone: its locks, what the candidate lock protects and an unconfirmed commit go with it.
    void sessionEnded(SessionId session) noexcept;

    // When an unconfirmed commit has to be taken back, and doing so if that time has come.
    std::optional<std::chrono::steady_clock::time_point> confirmDeadline() const;
    void takeBackUnconfirmed() noexcept;

    std::optional<LockInfo> lockOf(Datastore store) const;

    // Carries out the operation of a bundle: its element, or an <action> element. Returns the output's
    // elements.
    std::string invoke(const std::string &operation);

    // Edits that Host::edit() reports as EditOutcome::record with EditRequest::saveLater are on disk, or
    // cannot be: calls `done` with what went wrong or with null, from any thread and perhaps at once. A
    // caller that may wait for the disk saves two changes of threads where nobody else waits for it.
    using Saved = std::function<void(const Failure *)>;
    void whenSaved(std::uint64_t record, Saved done, bool mayWait = false);
    // Comes back when all that was written is on disk, or cannot be, and everybody who waits for it was told.
    void finishSaving();

    class Impl;

private:
    std::unique_ptr<Impl> impl_;
};

} // namespace tk
