// The set of loaded modules. Modules are parsed as they are asked for and compiled once, at the end:
// compiling after each would take seven times as long.
#pragma once

#include "toolkit/host.h"

#include <libyang/libyang.h>

#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <unordered_map>

namespace tk {

struct ModuleHandle {
    std::string name;
    lys_module *module = nullptr;
};

// A schema node as the bundle sees it. A top-level node that was asked for before the schema is compiled
// finds its compiled node later.
struct Object {
    const lysc_node *node = nullptr;
    const lys_module *module = nullptr; // of a top-level node not compiled yet
    std::string name;
};

class Context {
public:
    explicit Context(const std::vector<std::string> &moduleDirs);
    ~Context();
    Context(const Context &) = delete;
    Context &operator=(const Context &) = delete;

    // Parses and marks as implemented. Null, with the reason in error(), when that fails.
    ModuleHandle *load(const std::string &name, const char *revision,
                       const std::vector<std::string> &features = {});
    ModuleHandle *find(const std::string &name, const char *revision) const;
    const std::string &error() const { return error_; }

    void compile(); // throws StartFailure
    bool isCompiled() const { return compiled_; }

    Object *objectOf(const lysc_node *node) const; // one Object a node, null for null
    Object *topLevelObject(ModuleHandle *module, const std::string &name);
    const lysc_node *nodeOf(const Object *object) const;

    const ly_ctx *ly() const { return context_.get(); }
    ly_ctx *ly() { return context_.get(); }
    const std::vector<const lys_module *> &loadOrder() const { return loadOrder_; }

private:
    bool hasFile(const std::string &name) const;

    struct Free {
        void operator()(ly_ctx *context) const { ly_ctx_destroy(context); }
    };
    std::unique_ptr<ly_ctx, Free> context_;
    std::string error_;
    bool compiled_ = false;
    bool failed_ = false; // a module did not load, and took the others with it
    std::unordered_map<std::string, std::unique_ptr<ModuleHandle>> modules_;
    std::vector<const lys_module *> loadOrder_;
    std::deque<std::unique_ptr<Object>> pending_;
    mutable std::mutex objectsLock_;
    mutable std::unordered_map<const lysc_node *, std::unique_ptr<Object>> objects_;
};

// A top-level data node or RPC of a compiled module, or null.
const lysc_node *findTopLevel(const lys_module *module, const std::string &name);

// The context of the one host in the process, for the plain C functions; null before and after.
Context *currentContext();
void setCurrentContext(Context *context);

} // namespace tk
