// What the toy module's data look like without a datastore: JSON that an edit is applied to by the book.
#pragma once

#include "tests/fuzz/choices.h"
#include "toolkit/host.h"

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace fuzz {

using nlohmann::json;

enum class Kind { text, truth, number, values, container, presence, list };

// A node of the schema. `branch` tells the cases of the one choice apart, 0 is none of them.
struct Schema {
    std::string name;
    Kind kind;
    std::vector<Schema> children = {}; // of a list the key comes first
    bool isOrdered = false;            // by the user
    bool isTold = false;               // has a callback
    int branch = 0;

    const std::string &key() const { return children.front().name; }
    bool isLeaf() const { return kind <= Kind::values; }
    bool isList() const { return kind == Kind::list || kind == Kind::values; }
};

const Schema &datastore();

// One resource: the nodes on the way with the key or value of each that has one.
struct Place {
    const Schema *schema;
    json key; // null: none
};
using Path = std::vector<Place>;

// "toy:top/entry=a/config", and the member that a body of this resource consists of.
std::string uri(const Path &path);
std::string bodyOf(const Path &path, const json &value);

struct Position {
    tk::InsertWhere where;
    json point; // of before and after
};

// Random choices: some resource, and some value of it.
Path somePath(Choices &choose);
json someValue(const Schema &schema, Choices &choose, const json &key = nullptr);

// The data of a toy host. An edit that has to be refused leaves them alone and returns the error-tag.
class Model {
public:
    // `value` is that of the target, of a POST that of the child at the end of the path.
    std::optional<std::string> edit(tk::Method method, const Path &path, const json &value,
                                    const std::optional<Position> &position);
    json data() const;                    // without what holds nothing
    static json sorted(const json &data); // entries that nobody orders by their keys, nothing empty

private:
    json data_ = json::object();
};

// The own leaves of each node with a callback, as callbacks are told of them: path, name, values.
using Leaves = std::map<std::string, std::map<std::string, std::set<std::string>>>;
Leaves leavesOf(const json &data);
// Entries of lists, presence containers and leaves that have callbacks of their own.
std::set<std::string> instancesOf(const json &data);

} // namespace fuzz
