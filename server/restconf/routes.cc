#include "server/restconf/routes.h"

#include "server/restconf/errors.h"

#include <array>

namespace agentd::restconf {
namespace {

using boost::beast::http::verb;

struct Route {
    ResourceKind kind;
    verb method;
    Action action;
};

// GET brings HEAD with it, and OPTIONS works everywhere.
constexpr std::array kRoutes{
    Route{ResourceKind::hostMeta, verb::get, Action::readHostMeta},
    Route{ResourceKind::api, verb::get, Action::readApi},
    Route{ResourceKind::libraryVersion, verb::get, Action::readLibraryVersion},
    Route{ResourceKind::operationList, verb::get, Action::readOperations},
    Route{ResourceKind::datastore, verb::get, Action::read},
    Route{ResourceKind::datastore, verb::post, Action::create},
    Route{ResourceKind::datastore, verb::put, Action::replace},
    Route{ResourceKind::datastore, verb::patch, Action::merge},
    Route{ResourceKind::parent, verb::get, Action::read},
    Route{ResourceKind::parent, verb::post, Action::create},
    Route{ResourceKind::parent, verb::put, Action::replace},
    Route{ResourceKind::parent, verb::patch, Action::merge},
    Route{ResourceKind::parent, verb::delete_, Action::remove},
    Route{ResourceKind::value, verb::get, Action::read},
    Route{ResourceKind::value, verb::put, Action::replace},
    Route{ResourceKind::value, verb::patch, Action::merge},
    Route{ResourceKind::value, verb::delete_, Action::remove},
    Route{ResourceKind::sequence, verb::get, Action::read},
    Route{ResourceKind::state, verb::get, Action::read},
    Route{ResourceKind::operation, verb::post, Action::invoke},
};

ResourceKind kindOfData(const tk::Target &target)
{
    switch (target.kind()) {
    case tk::NodeKind::datastore:
        return ResourceKind::datastore;
    case tk::NodeKind::action:
        return ResourceKind::operation;
    case tk::NodeKind::rpc:
        throw unknownResource("an operation is not data: it stands below " + std::string(kRoot) +
                              "/operations");
    default:
        break;
    }
    if (!target.isConfig())
        return ResourceKind::state;
    if (target.kind() == tk::NodeKind::list || target.kind() == tk::NodeKind::leafList)
        return ResourceKind::sequence;
    const bool isParent =
        target.kind() == tk::NodeKind::container || target.kind() == tk::NodeKind::listEntry;
    return isParent ? ResourceKind::parent : ResourceKind::value;
}

ResourceKind kindOfOperation(const tk::Target &target)
{
    if (target.kind() != tk::NodeKind::rpc)
        throw unknownResource("this is no operation");
    return ResourceKind::operation;
}

} // namespace

ResourceKind kindOf(Resource resource, const std::optional<tk::Target> &target)
{
    switch (resource) {
    case Resource::hostMeta:
        return ResourceKind::hostMeta;
    case Resource::api:
        return ResourceKind::api;
    case Resource::yangLibraryVersion:
        return ResourceKind::libraryVersion;
    case Resource::operations:
        return ResourceKind::operationList;
    case Resource::operation:
        return kindOfOperation(target.value());
    case Resource::data:
        break;
    }
    return kindOfData(target.value());
}

std::optional<Action> actionFor(ResourceKind kind, verb method)
{
    if (method == verb::options)
        return Action::describe;
    const verb wanted = method == verb::head ? verb::get : method;
    for (const Route &route : kRoutes) {
        if (route.kind == kind && route.method == wanted)
            return route.action;
    }
    return std::nullopt;
}

std::string allowOf(ResourceKind kind, verb refused)
{
    std::string allow;
    for (const verb method :
         {verb::get, verb::head, verb::post, verb::put, verb::patch, verb::delete_, verb::options}) {
        if (method != refused && actionFor(kind, method))
            allow.append(allow.empty() ? "" : ", ").append(std::string(to_string(method)));
    }
    return allow;
}

} // namespace agentd::restconf
