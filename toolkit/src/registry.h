// Which callback serves which path. Filled while the bundles initialise, bound to schema nodes once the
// schema is compiled.
#pragma once

#include "context.h"
#include "toolkit/agt.h"

#include <map>
#include <string>
#include <vector>

namespace tk {

struct OperationCallbacks {
    RpcCallback rpc[2] = {};
    ActionCallback action[2] = {};
};

// One served path.
struct Registration {
    std::string module;
    EditCallback edit = nullptr;
    GetCallback get = nullptr;
    OperationCallbacks operation;
    unsigned options = optNone;
    const lysc_node *node = nullptr; // once the schema is compiled
};

class Registry {
public:
    // The entry of a path, made when there is none. After binding: null for a path that the schema lacks.
    Registration *entry(const std::string &module, const std::string &path);
    Registration *find(const std::string &path);
    void erase(const std::string &path);

    // Resolves every path. Throws StartFailure that names the paths that the schema does not know.
    void bind(const Context &context);

private:
    const Context *context_ = nullptr;
    std::map<std::string, Registration> entries_;

    friend class Schema;
};

// The schema node of a registered path, or null.
const lysc_node *resolvePath(const Context &context, std::string_view path);

Registry *currentRegistry();
void setCurrentRegistry(Registry *registry);

} // namespace tk
