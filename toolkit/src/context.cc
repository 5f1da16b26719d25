#include "context.h"

#include "errors.h"
#include "toolkit/agt.h"
#include "toolkit/edit.h"
#include "toolkit/log.h"

#include <cstdlib>
#include <cstring>

namespace tk {

namespace {

Context *theContext = nullptr;

// Whether the parsed module defines a top-level data node or RPC, directly or by using a grouping. Asked
// before anything is compiled.
class TopLevelSearch {
public:
    TopLevelSearch(const lysp_module *module, std::string_view name)
        : module_(module)
        , name_(name)
    {
    }

    bool found() const
    {
        if (inNodes(module_->data) || inNodes(asNode(module_->rpcs)))
            return true;
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(module_->includes, i)
        if (const auto *part = module_->includes[i].submodule;
            part && (inNodes(part->data) || inNodes(asNode(part->rpcs))))
            return true;
        return false;
    }

private:
    static const lysp_node *asNode(const lysp_node_action *action)
    {
        return reinterpret_cast<const lysp_node *>(action);
    }

    bool inNodes(const lysp_node *nodes) const
    {
        for (const lysp_node *node = nodes; node; node = node->next) {
            if (node->nodetype == LYS_USES) {
                if (inGrouping(node->name))
                    return true;
            } else if (name_ == node->name) {
                return true;
            }
        }
        return false;
    }

    bool inGrouping(std::string_view reference) const
    {
        const auto colon = reference.find(':');
        if (colon == std::string_view::npos)
            return inLocalGrouping(reference);
        const auto prefix = reference.substr(0, colon), name = reference.substr(colon + 1);
        if (prefix == module_->mod->prefix)
            return inLocalGrouping(name);
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(module_->imports, i)
        if (prefix == module_->imports[i].prefix)
            return TopLevelSearch(module_->imports[i].module->parsed, name_).inLocalGrouping(name);
        return false;
    }

    bool inLocalGrouping(std::string_view name) const
    {
        if (inGroupings(module_->groupings, name))
            return true;
        LY_ARRAY_COUNT_TYPE i;
        LY_ARRAY_FOR(module_->includes, i)
        if (const auto *part = module_->includes[i].submodule; part && inGroupings(part->groupings, name))
            return true;
        return false;
    }

    bool inGroupings(const lysp_node_grp *groupings, std::string_view name) const
    {
        for (const lysp_node_grp *grouping = groupings; grouping; grouping = grouping->next)
            if (name == grouping->name)
                return inNodes(lysp_node_child(&grouping->node));
        return false;
    }

    const lysp_module *module_;
    std::string_view name_;
};

} // namespace

const lysc_node *findTopLevel(const lys_module *module, const std::string &name)
{
    if (!module->compiled)
        return nullptr;
    if (const lysc_node *node = lys_find_child(nullptr, module, name.c_str(), 0, 0, 0))
        return node;
    for (const auto *rpc = reinterpret_cast<const lysc_node *>(module->compiled->rpcs); rpc; rpc = rpc->next)
        if (name == rpc->name)
            return rpc;
    return nullptr;
}

Context *currentContext()
{
    return theContext;
}

void setCurrentContext(Context *context)
{
    theContext = context;
}

Context::Context(const std::vector<std::string> &moduleDirs)
{
    ly_log_options(LY_LOSTORE);
    ly_log_level(LY_LLERR);
    ly_ctx *context = nullptr;
    if (ly_ctx_new(nullptr, LY_CTX_EXPLICIT_COMPILE | LY_CTX_REF_IMPLEMENTED | LY_CTX_DISABLE_SEARCHDIR_CWD,
                   &context))
        throw StartFailure("cannot create a YANG context");
    context_.reset(context);
    for (const auto &dir : moduleDirs)
        if (const auto result = ly_ctx_set_searchdir(context, dir.c_str()); result && result != LY_EEXIST)
            throw StartFailure("cannot read the module folder " + dir);
    clearErrors(context);
}

Context::~Context() = default;

ModuleHandle *Context::load(const std::string &name, const char *revision,
                            const std::vector<std::string> &features)
{
    if (ModuleHandle *known = find(name, revision))
        return known;
    if (compiled_) {
        error_ = "module " + name + " comes after the schema was compiled";
        return nullptr;
    }
    if (!hasFile(name)) {
        error_ = "cannot find module " + name + " in the module folders";
        return nullptr;
    }
    std::vector<const char *> enabled;
    for (const auto &feature : features)
        enabled.push_back(feature.c_str());
    enabled.push_back(nullptr);
    clearErrors(ly());
    lys_module *module = ly_ctx_load_module(ly(), name.c_str(), revision, enabled.data());
    if (!module) {
        error_ = "cannot load module " + name + (revision ? std::string("@") + revision : "") + ": " +
            takeErrorLine(ly(), "not found");
        // libyang gives up all modules that are not compiled yet together with the one that fails.
        modules_.clear();
        loadOrder_.clear();
        failed_ = true;
        return nullptr;
    }
    clearErrors(ly());
    loadOrder_.push_back(module);
    auto &slot = modules_[name];
    slot = std::make_unique<ModuleHandle>(ModuleHandle{name, module});
    return slot.get();
}

bool Context::hasFile(const std::string &name) const
{
    if (ly_ctx_get_module_latest(ly(), name.c_str()))
        return true;
    char *path = nullptr;
    LYS_INFORMAT format;
    lys_search_localfile(ly_ctx_get_searchdirs(ly()), 0, name.c_str(), nullptr, &path, &format);
    const bool found = path != nullptr;
    std::free(path);
    return found;
}

ModuleHandle *Context::find(const std::string &name, const char *revision) const
{
    const auto found = modules_.find(name);
    if (found == modules_.end())
        return nullptr;
    const char *loaded = found->second->module->revision;
    const bool fits = !revision || (loaded && std::strcmp(loaded, revision) == 0);
    return fits ? found->second.get() : nullptr;
}

void Context::compile()
{
    if (failed_)
        throw StartFailure(error_);
    // Modules that only define identities are needed as soon as somebody writes one of them.
    std::uint32_t index = 0;
    std::vector<lys_module *> identities;
    while (lys_module *module = ly_ctx_get_module_iter(ly(), &index))
        if (!module->implemented && module->identities && module->parsed && !module->parsed->data &&
            !module->parsed->augments)
            identities.push_back(module);
    clearErrors(ly());
    for (lys_module *module : identities)
        if (lys_set_implemented(module, nullptr))
            throw StartFailure(std::string("cannot implement module ") + module->name + ": " +
                               takeErrorLine(ly(), "unknown reason"));
    if (ly_ctx_compile(ly()))
        throw StartFailure("the modules do not fit together: " + takeErrorLine(ly(), "unknown reason"));
    clearErrors(ly());
    compiled_ = true;
}

Object *Context::objectOf(const lysc_node *node) const
{
    if (!node)
        return nullptr;
    const std::lock_guard lock(objectsLock_);
    auto &slot = objects_[node];
    if (!slot)
        slot = std::make_unique<Object>(Object{node, node->module, node->name ? node->name : ""});
    return slot.get();
}

Object *Context::topLevelObject(ModuleHandle *module, const std::string &name)
{
    if (compiled_) {
        return objectOf(findTopLevel(module->module, name));
    }
    if (!module->module->parsed || !TopLevelSearch(module->module->parsed, name).found())
        return nullptr;
    pending_.push_back(std::make_unique<Object>(Object{nullptr, module->module, name}));
    return pending_.back().get();
}

const lysc_node *Context::nodeOf(const Object *object) const
{
    if (!object)
        return nullptr;
    if (object->node || !compiled_)
        return object->node;
    return findTopLevel(object->module, object->name);
}

} // namespace tk

using namespace tk;

extern "C" DeviationQueue *agt_get_savedevQ()
{
    // The context itself keeps the deviations: it compiles once, when every module is known.
    static char queue;
    return reinterpret_cast<DeviationQueue *>(&queue);
}

extern "C" Status ncxmod_load_deviation(const char *deviation, DeviationQueue *deviations)
{
    ModuleHandle *module = nullptr;
    return ncxmod_load_module(deviation, nullptr, deviations, &module);
}

extern "C" Status ncxmod_load_module(const char *name, const char *revision, DeviationQueue *,
                                     ModuleHandle **module)
{
    Context *context = currentContext();
    if (!context || !name || !module)
        return set_error(__FILE__, __LINE__, kInternal, 0);
    *module = context->load(name, revision);
    if (!*module && log_get_system_log_level() >= 1)
        log_error("\n%s\n", context->error().c_str());
    return *module ? kOk : kFailed;
}

extern "C" ModuleHandle *ncx_find_module(const char *name, const char *revision)
{
    Context *context = currentContext();
    return context && name ? context->find(name, revision) : nullptr;
}

extern "C" Object *ncx_find_object(ModuleHandle *module, const char *name)
{
    Context *context = currentContext();
    return context && module && name ? context->topLevelObject(module, name) : nullptr;
}
