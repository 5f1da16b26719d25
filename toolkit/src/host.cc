#include "toolkit/host.h"

#include "errors.h"
#include "host_impl.h"
#include "operation.h"
#include "toolkit/log.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace tk {

std::string printNodes(const lyd_node *node, Encoding encoding, std::uint32_t options)
{
    char *text = nullptr;
    if (lyd_print_mem(&text, node, encoding == Encoding::json ? LYD_JSON : LYD_XML, options))
        throw Failure(takeErrors(LYD_CTX(node), "The data cannot be printed."));
    std::string copy = text ? text : "";
    std::free(text);
    return copy;
}

std::uint32_t printOptions(WithDefaults mode)
{
    switch (mode) {
    case WithDefaults::explicitOnly:
        return LYD_PRINT_WD_EXPLICIT;
    case WithDefaults::trim:
        return LYD_PRINT_WD_TRIM;
    case WithDefaults::reportAll:
        return LYD_PRINT_WD_ALL;
    case WithDefaults::reportAllTagged:
        return LYD_PRINT_WD_ALL_TAG;
    }
    return 0;
}

Host::Impl::Impl(const HostOptions &options)
    : context(options.moduleDirs)
    , engine(context, constraints)
{
    if (currentContext())
        throw StartFailure("there is a host in this process already");
    log_set_system_log_level(options.logLevel);
    setCurrentContext(&context);
    setCurrentRegistry(&registry);
    setCurrentEngine(&engine);
}

Host::Impl::~Impl()
{
    for (auto bundle = bundles.rbegin(); bundle != bundles.rend(); ++bundle)
        if (bundle->cleanup)
            bundle->cleanup();
    setCurrentEngine(nullptr);
    setCurrentSchema(nullptr);
    setCurrentRegistry(nullptr);
    setCurrentContext(nullptr);
}

namespace {

template <class Function>
Function symbolOf(void *library, const std::string &name)
{
    return reinterpret_cast<Function>(dlsym(library, name.c_str()));
}

} // namespace

void Host::Impl::loadBundle(const std::string &library, const std::string &name)
{
    // The library stays open: its functions are registered until the process ends.
    void *handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        throw StartFailure(std::string("cannot open the bundle: ") + dlerror());
    const auto init = symbolOf<Status (*)(const char *, const char *)>(handle, "y_" + name + "_init");
    Bundle bundle{name, symbolOf<Status (*)()>(handle, "y_" + name + "_init2"),
                  symbolOf<void (*)()>(handle, "y_" + name + "_cleanup")};
    if (!init || !bundle.init2 || !bundle.cleanup)
        throw StartFailure(library + " has no bundle " + name);
    bundles.push_back(bundle);
    if (const Status status = init(name.c_str(), ""))
        throw StartFailure("bundle " + name + " cannot start: status " + std::to_string(status) +
                           (context.error().empty() ? "" : ", " + context.error()));
}

namespace {

// Where the modules lie on this machine is nobody's business; clients get them by their names.
void dropLocations(lyd_node *library)
{
    std::vector<lyd_node *> locations;
    lyd_node *node = nullptr;
    if (!library)
        return;
    LYD_TREE_DFS_BEGIN(library, node)
    {
        if (node->schema && std::strcmp(node->schema->name, "location") == 0)
            locations.push_back(node);
        LYD_TREE_DFS_END(library, node);
    }
    for (lyd_node *location : locations)
        lyd_free_tree(location);
}

} // namespace

void Host::Impl::seal()
{
    schema.build(context, registry);
    setCurrentSchema(&schema);
    constraints.build(schema);
    std::size_t hash = 0;
    std::uint32_t index = 0;
    while (const lys_module *module = ly_ctx_get_module_iter(context.ly(), &index))
        hash = hash * 31 +
            std::hash<std::string>()(std::string(module->name) + "@" +
                                     (module->revision ? module->revision : ""));
    contentId = std::to_string(hash);
    providers.push_back({"ietf-yang-library", [this] {
                             lyd_node *tree = nullptr;
                             ly_ctx_get_yanglib_data(context.ly(), &tree, "%s", contentId.c_str());
                             dropLocations(tree);
                             return tree;
                         }});
}

void Host::Impl::loadStartup(std::string_view data, Encoding encoding)
{
    ly_in *in = nullptr;
    const std::string text(data);
    lyd_node *tree = nullptr;
    clearErrors(context.ly());
    if (text.find_first_not_of(" \t\r\n") != text.npos) {
        if (ly_in_new_memory(text.c_str(), &in))
            throw StartFailure("the startup data cannot be read");
        // Not strict: data of modules that are not served here are passed over.
        const LY_ERR result =
            lyd_parse_data(context.ly(), nullptr, in, encoding == Encoding::json ? LYD_JSON : LYD_XML,
                           LYD_PARSE_ONLY, 0, &tree);
        ly_in_free(in, 0);
        if (result)
            throw StartFailure("the startup data cannot be read: " +
                               takeErrorLine(context.ly(), "unknown reason"));
    }
    try {
        engine.loadStartup(Tree(tree));
    } catch (const Failure &failure) {
        throw StartFailure("the startup data are not valid: " + failure.errors.front().message + " " +
                           failure.errors.front().path);
    }
}

void Host::Impl::finishStart()
{
    for (const Bundle &bundle : bundles)
        if (const Status status = bundle.init2())
            throw StartFailure("bundle " + bundle.name + " cannot finish its start: status " +
                               std::to_string(status));
}

EditOutcome Host::Impl::edit(const EditRequest &request)
{
    RestEdit edit(context.ly(), request);
    EditOutcome outcome;
    const auto kept = keeper ? keeper->begin() : nullptr;
    const auto change = [&](Editor &editor, lyd_node *root) {
        if (kept)
            kept->mayBegin();
        edit.apply(editor, root);
    };
    outcome.changed = engine.edit(change, kept.get());
    outcome.record = kept ? kept->record() : 0;
    if (outcome.record && !request.saveLater)
        keeper->awaitSaved(outcome.record);
    outcome.created = edit.created();
    outcome.resource = edit.resource(context);
    return outcome;
}

Host::Host(HostOptions options)
    : impl_(std::make_unique<Impl>(options))
{
}

Host::~Host() = default;

void Host::loadServerModule(const std::string &name, const std::vector<std::string> &features)
{
    if (!impl_->context.load(name, nullptr, features))
        throw StartFailure(impl_->context.error());
}

void Host::loadBundle(const std::string &library, const std::string &name)
{
    impl_->loadBundle(library, name);
}

void Host::seal()
{
    impl_->seal();
}

void Host::loadStartup(std::string_view data, Encoding encoding)
{
    impl_->loadStartup(data, encoding);
}

void Host::finishStart()
{
    impl_->finishStart();
}

namespace {

std::vector<std::string> enabledFeatures(const lys_module *module)
{
    std::vector<std::string> names;
    std::uint32_t index = 0;
    for (lysp_feature *feature = nullptr;
         module->parsed && (feature = lysp_feature_next(feature, module->parsed, &index));)
        if (lys_feature_value(module, feature->name) == LY_SUCCESS)
            names.emplace_back(feature->name);
    return names;
}

ModuleInfo describe(const lys_module *module)
{
    ModuleInfo info{module->name,
                    module->revision ? module->revision : "",
                    module->ns,
                    module->implemented != 0,
                    enabledFeatures(module),
                    {}};
    info.isVersion1 = !module->parsed || module->parsed->version < LYS_VERSION_1_1;
    LY_ARRAY_COUNT_TYPE i;
    LY_ARRAY_FOR(module->deviated_by, i)
    info.deviations.emplace_back(module->deviated_by[i]->name);
    return info;
}

} // namespace

std::vector<ModuleInfo> Host::modules() const
{
    std::vector<ModuleInfo> infos;
    std::uint32_t index = 0;
    while (const lys_module *module = ly_ctx_get_module_iter(impl_->context.ly(), &index))
        infos.push_back(describe(module));
    return infos;
}

std::string Host::contentId() const
{
    return impl_->contentId;
}

std::optional<std::string> Host::moduleText(const std::string &name, const std::string &revision) const
{
    const ly_ctx *context = impl_->context.ly();
    const lys_module *module = revision.empty() ? ly_ctx_get_module_latest(context, name.c_str())
                                                : ly_ctx_get_module(context, name.c_str(), revision.c_str());
    if (!module)
        return std::nullopt;
    if (module->filepath) {
        std::ifstream file(module->filepath);
        std::ostringstream text;
        text << file.rdbuf();
        if (file && !text.str().empty())
            return text.str();
    }
    char *text = nullptr;
    if (lys_print_mem(&text, module, LYS_OUT_YANG, 0))
        return std::nullopt;
    std::string copy = text;
    std::free(text);
    return copy;
}

Target Host::resolve(const std::vector<PathStep> &steps) const
{
    return resolveTarget(impl_->context, steps);
}

std::vector<PathStep> Host::operations() const
{
    std::vector<PathStep> names;
    std::uint32_t index = 0;
    while (const lys_module *module = ly_ctx_get_module_iter(impl_->context.ly(), &index))
        for (const lysc_node_action *rpc = module->compiled ? module->compiled->rpcs : nullptr; rpc;
             rpc = rpc->next)
            names.push_back({module->name, rpc->name, {}, false});
    return names;
}

void Host::addStateProvider(const std::string &module, std::function<std::string()> provider)
{
    const ly_ctx *context = impl_->context.ly();
    impl_->providers.push_back({module, [context, provider = std::move(provider)] {
                                    Tree tree;
                                    parseData(context, provider(), Encoding::json, nullptr, tree);
                                    return tree.release();
                                }});
}

std::optional<std::string> Host::read(const ReadRequest &request)
{
    return impl_->read(request);
}

EditOutcome Host::edit(const EditRequest &request)
{
    return impl_->edit(request);
}

std::optional<std::string> Host::invoke(const Target &operation, const std::string &input,
                                        Encoding inputEncoding, Encoding outputEncoding)
{
    lyd_node *reply = nullptr;
    const Tree output =
        runOperation(impl_->engine, impl_->context, operation.node(), input, inputEncoding, &reply);
    if (!output)
        return std::nullopt;
    const lys_module *module = reply->schema->module;
    if (outputEncoding == Encoding::json) {
        // Printed under the operation's name, which is what it goes without: {"module:name": {...}}.
        std::string text = printNodes(reply, outputEncoding, 0);
        const std::string name = std::string(module->name) + ":" + reply->schema->name;
        return text.replace(text.find(name), name.size(), std::string(module->name) + ":output");
    }
    const std::string inner = printNodes(lyd_child(reply), outputEncoding, LYD_PRINT_WITHSIBLINGS);
    return std::string("<output xmlns=\"") + module->ns + "\">\n" + inner + "</output>\n";
}

Stamp Host::stamp() const
{
    return impl_->engine.stamp();
}

} // namespace tk
