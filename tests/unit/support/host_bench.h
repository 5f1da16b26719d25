// A host in a test: schema, running and callbacks, without a server in front.
//
// Paths are written as in a URI below /restconf/data: "lyn-openconfig-jumbo:jumbo/config",
// "toy:top/entry=a%2Fb". Bodies are JSON with the resource itself as the one member.
#pragma once

#include "toolkit/host.h"
#include "toolkit/src/host_impl.h"

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace test {

// What a client is told: statuses and texts of the error records; none for a success.
struct Refusal {
    Status status;
    std::string tag;
    std::string path;
    std::string message;

    bool operator==(const Refusal &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Refusal &refusal);

struct Outcome {
    std::vector<Refusal> refusals;
    bool created = false;
    bool changed = false;

    bool ok() const { return refusals.empty(); }
    // Status of the first record, 0 for a success or a refusal of the schema.
    Status status() const { return refusals.empty() ? kOk : refusals.front().status; }
    std::string tag() const { return refusals.empty() ? "" : refusals.front().tag; }
    std::string message() const { return refusals.empty() ? "" : refusals.front().message; }
};

// One callback, called by hand with a phase and an operation of the test's choice.
struct Callback {
    Status status = kOk;
    std::vector<tk::ErrorRecord> records;
};

class HostBench {
public:
    explicit HostBench(std::vector<std::string> moreModuleDirs = {});
    virtual ~HostBench() = default;

    tk::Host &host() { return *host_; }

    Outcome put(const std::string &path, const std::string &body)
    {
        return edit(tk::Method::put, path, body);
    }
    Outcome patch(const std::string &path, const std::string &body)
    {
        return edit(tk::Method::patch, path, body);
    }
    Outcome post(const std::string &path, const std::string &body)
    {
        return edit(tk::Method::post, path, body);
    }
    Outcome remove(const std::string &path) { return edit(tk::Method::remove, path, {}); }
    Outcome edit(tk::Method method, const std::string &path, const std::string &body,
                 std::optional<tk::Insert> insert = std::nullopt);

    // The data as JSON without white space; "" when there is none. Throws tk::Failure.
    std::string read(const std::string &path, tk::Content content = tk::Content::config);
    std::string running() { return read(""); }

    // Calls the edit callback that serves `path`. before and after are the node's own values ("{...}" of a
    // container, or the whole member value); nothing stands for a node that does not exist.
    Callback call(tk::EditPhase phase, tk::EditOp op, const std::string &path,
                  const std::optional<std::string> &before, const std::optional<std::string> &after);

    tk::Target target(const std::string &path) const;

protected:
    std::unique_ptr<tk::Host> host_;
};

// A case of a table prints as its member `name`, and is named by it.
template <class Case>
auto PrintTo(const Case &of, std::ostream *out) -> decltype(void(std::string(of.name)))
{
    *out << of.name;
}

// Names a case of a table by its member `name`.
struct CaseName {
    template <class Info>
    std::string operator()(const Info &of) const
    {
        return of.param.name;
    }
};

// A path as in a URI, taken apart.
std::vector<tk::PathStep> pathSteps(const std::string &path);

// The body of a PUT or PATCH: the value of the node at that path.
std::string member(const std::string &path, const std::string &value);

} // namespace test
