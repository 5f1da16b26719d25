// The toolkit seen from the management server: schema, datastore, edits, retrievals and operations.
//
// The server hands in paths and texts and gets texts back; libyang stays behind this header.
// One Host exists in a process, because bundles reach it through plain C functions (agt.h and others).
//
// Threads. Callbacks of the bundle come one at a time: edit(), invoke() and a read() that asks for
// state wait for one another and block while a daemon works, so a server calls them from a worker
// thread. A read() of configuration only takes no such turn: while an edit is on its way it sees the
// values before that edit. All members may be called from any thread once finishStart() returned.
#pragma once

#include "toolkit/status.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tk {

enum class Encoding { json, xml };

// One error record, ready for an rpc-error or an error document.
struct Error {
    Status status = kOk; // 0: found by the server itself or by a schema check
    std::string tag;     // error-tag of RFC 6241, "invalid-value" and the like
    std::string appTag;  // error-app-tag: a callback's status in decimal, or the schema's own tag
    std::string path;    // instance-identifier with module names as prefixes; empty: none
    std::string message;
    // For error-info of NETCONF, where the tag has any.
    std::string badElement = {}, badAttribute = {}, badNamespace = {};
    std::optional<std::uint32_t> lockHolder = {}; // session that holds a lock, 0: none of NETCONF
};

// A request that failed: at least one record, the first of them decides the reply's status.
class Failure : public std::runtime_error {
public:
    explicit Failure(Error error)
        : Failure(std::vector<Error>{std::move(error)})
    {
    }
    explicit Failure(std::vector<Error> records)
        : std::runtime_error(records.at(0).message)
        , errors(std::move(records))
    {
    }
    std::vector<Error> errors;
};

// The server cannot start; what() is the one clear line that says why.
class StartFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// One segment of a resource path, percent-decoding done: module may be empty where it is that of the
// segment before. A list entry has the key values in the list's key order, a leaf-list entry its value.
struct PathStep {
    std::string module;
    std::string name;
    std::vector<std::string> keys;
    bool hasKeys = false;
};

enum class NodeKind { datastore, container, list, listEntry, leaf, leafList, leafListEntry, rpc, action };

// A path that the schema knows. Key values are canonical. Cheap to copy.
class Target {
public:
    NodeKind kind() const;
    bool isConfig() const;               // a configuration node (the datastore itself counts as one)
    bool mayHoldState() const;           // by the schema: state stands at or below it
    const std::string &path() const;     // instance-identifier; "/" for the datastore
    std::vector<PathStep> steps() const; // every step with its module: what a Location header spells

    struct Node;
    explicit Target(std::shared_ptr<const Node> resolved)
        : node_(std::move(resolved))
    {
    }
    const Node &node() const { return *node_; }

private:
    std::shared_ptr<const Node> node_;
};

enum class Content { all, config, nonconfig };
enum class WithDefaults { explicitOnly, trim, reportAll, reportAllTagged };

// A tree of names asked for by the `fields` parameter: an inner node without children is wanted whole.
struct FieldNode {
    std::string module; // may be empty, as in PathStep
    std::string name;
    std::vector<FieldNode> children;
};

struct ReadRequest {
    Target target;
    Content content = Content::all;
    unsigned depth = 0;            // levels, the target itself being level 1; 0: unbounded
    std::vector<FieldNode> fields; // empty: everything
    WithDefaults withDefaults = WithDefaults::explicitOnly;
    Encoding encoding = Encoding::json;
};

enum class Method { post, put, patch, remove };
enum class InsertWhere { first, last, before, after };

struct Insert {
    InsertWhere where;
    std::optional<Target> point; // with before and after
};

struct EditRequest {
    Method method;
    Target target;
    std::string body; // empty for remove
    Encoding encoding = Encoding::json;
    std::optional<Insert> insert;       // post and put into a list or leaf-list ordered by the user
    std::function<void()> precondition; // called under the edit's lock, throws to refuse (If-Match)
    // Where there are Datastores: come back as soon as the edit is written, before it is safely on disk, so
    // that edits that wait at the same time share the cost of that. EditOutcome::record says what to wait
    // for.
    bool saveLater = false;
};

struct EditOutcome {
    bool created = false;           // post always; put when the target was not there
    bool changed = false;           // running differs now
    std::optional<Target> resource; // post: what was created
    std::uint64_t record = 0;       // for Datastores::whenSaved(), 0: nothing was written
};

// Version of running: changes with every committed edit. The tag also differs from one start to the next.
struct Stamp {
    std::string tag;
    std::chrono::system_clock::time_point modified;
};

struct HostOptions {
    std::vector<std::string> moduleDirs; // searched in this order for NAME.yang and NAME@REVISION.yang
    int logLevel = 2; // 0 off, 1 error, 2 warning, 3 info, 4 debug ... 9; written to standard error
};

struct ModuleInfo {
    std::string name, revision, nameSpace;
    bool implemented = true;
    std::vector<std::string> features;
    std::vector<std::string> deviations; // names of the modules that deviate this one
    bool isVersion1 = true;              // of the YANG language, else 1.1
};

class Host {
public:
    explicit Host(HostOptions options);
    ~Host(); // runs the cleanup of the loaded bundles, frees everything
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;

    // Start, in this order; every failure is a StartFailure.
    void loadServerModule(const std::string &name, const std::vector<std::string> &features = {});
    void loadBundle(const std::string &library, const std::string &name); // dlopen, then y_<name>_init
    void seal(); // compiles the schema once; nothing is loaded after this
    void loadStartup(std::string_view data, Encoding encoding); // drives `load`; unknown nodes are skipped
    void finishStart();                                         // init2 of the bundles

    // Schema
    std::vector<ModuleInfo> modules() const;
    std::string contentId() const; // of yang-library: changes with the set of modules
    // The module's YANG text; an empty revision takes the one that is loaded. Nothing if unknown.
    std::optional<std::string> moduleText(const std::string &name, const std::string &revision) const;
    // Every RPC of the modules served.
    std::vector<PathStep> operations() const;
    // Resolves a path; throws Failure ("unknown-element", "invalid-value" for a bad key, and so on).
    Target resolve(const std::vector<PathStep> &steps) const;
    // State that the server itself provides below one of its own modules' top-level nodes: JSON text.
    void addStateProvider(const std::string &module, std::function<std::string()> provider);

    // Data. All throw Failure.
    // Nothing: the target is known to the schema but holds no data.
    std::optional<std::string> read(const ReadRequest &request);
    EditOutcome edit(const EditRequest &request);
    // rpc or action with its input document ({"module:input": {...}} or <input>, empty: no input).
    // Returns the output document, "module:output" as its root, or nothing if there is no output.
    std::optional<std::string> invoke(const Target &operation, const std::string &input,
                                      Encoding inputEncoding, Encoding outputEncoding);
    Stamp stamp() const;

    class Impl;
    Impl &impl() { return *impl_; }

private:
    std::unique_ptr<Impl> impl_;
};

} // namespace tk
