#include "server/netconf/monitoring.h"

#include <algorithm>
#include <ctime>
#include <nlohmann/json.hpp>

namespace agentd::netconf {

namespace {

using nlohmann::json;

constexpr const char *kCapabilities[] = {
    "urn:ietf:params:netconf:base:1.0",
    "urn:ietf:params:netconf:base:1.1",
    "urn:ietf:params:netconf:capability:writable-running:1.0",
    "urn:ietf:params:netconf:capability:candidate:1.0",
    "urn:ietf:params:netconf:capability:confirmed-commit:1.1",
    "urn:ietf:params:netconf:capability:rollback-on-error:1.0",
    "urn:ietf:params:netconf:capability:validate:1.1",
    "urn:ietf:params:netconf:capability:startup:1.0",
    "urn:ietf:params:netconf:capability:xpath:1.0",
};
constexpr char kWithDefaults[] = "urn:ietf:params:netconf:capability:with-defaults:1.0?basic-mode=explicit"
                                 "&also-supported=report-all,report-all-tagged,trim";
constexpr char kLibraryModule[] = "ietf-yang-library";

template <class Items>
std::string joined(const Items &items)
{
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : ",") + item;
    return text;
}

// Modules of YANG 1 are announced one by one, the others by the library alone (RFC 7950, section 5.6.4).
std::string moduleCapability(const tk::ModuleInfo &module)
{
    std::string text = module.nameSpace + "?module=" + module.name;
    if (!module.revision.empty())
        text += "&revision=" + module.revision;
    if (!module.features.empty())
        text += "&features=" + joined(module.features);
    if (!module.deviations.empty())
        text += "&deviations=" + joined(module.deviations);
    return text;
}

std::string dateAndTime(SystemTime time)
{
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[40];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

json countersOf(const Counters &counters)
{
    return {{"in-rpcs", counters.inRpcs.load()},
            {"in-bad-rpcs", counters.inBadRpcs.load()},
            {"out-rpc-errors", counters.outRpcErrors.load()},
            {"out-notifications", 0}};
}

json datastoresOf(const tk::Datastores &stores)
{
    static constexpr std::pair<tk::Datastore, const char *> kStores[] = {
        {tk::Datastore::running, "running"},
        {tk::Datastore::candidate, "candidate"},
        {tk::Datastore::startup, "startup"},
    };
    json list = json::array();
    for (const auto &[store, name] : kStores) {
        json entry{{"name", name}};
        if (const auto lock = stores.lockOf(store))
            entry["locks"]["global-lock"] = {{"locked-by-session", lock->session},
                                             {"locked-time", dateAndTime(lock->since)}};
        list.push_back(std::move(entry));
    }
    return list;
}

json schemasOf(const tk::Host &host)
{
    json list = json::array();
    for (const tk::ModuleInfo &module : host.modules())
        list.push_back({{"identifier", module.name},
                        {"version", module.revision},
                        {"format", "ietf-netconf-monitoring:yang"},
                        {"namespace", module.nameSpace},
                        {"location", {"NETCONF"}}});
    return list;
}

std::string hostOf(const std::string &peer)
{
    std::string host = peer.substr(0, peer.rfind(':'));
    if (host.size() > 2 && host.front() == '[')
        host = host.substr(1, host.size() - 2);
    return host;
}

json sessionsOf(const Sessions &sessions)
{
    json list = json::array();
    for (const SessionPointer &session : sessions.all()) {
        json entry = countersOf(session->counters);
        entry["session-id"] = session->id;
        entry["transport"] = "ietf-netconf-monitoring:netconf-ssh";
        entry["username"] = session->user;
        entry["source-host"] = hostOf(session->peer);
        entry["login-time"] = dateAndTime(session->since);
        list.push_back(std::move(entry));
    }
    return list;
}

json statisticsOf(const Sessions &sessions)
{
    json statistics = countersOf(sessions.totals);
    statistics["netconf-start-time"] = dateAndTime(sessions.start);
    statistics["in-bad-hellos"] = sessions.inBadHellos.load();
    statistics["in-sessions"] = sessions.begun.load();
    statistics["dropped-sessions"] = sessions.dropped.load();
    return statistics;
}

} // namespace

std::vector<std::string> serverCapabilities(const tk::Host &host)
{
    std::vector<std::string> capabilities(std::begin(kCapabilities), std::end(kCapabilities));
    capabilities.emplace_back(kWithDefaults);
    for (const tk::ModuleInfo &module : host.modules()) {
        if (module.name == kLibraryModule)
            capabilities.push_back("urn:ietf:params:netconf:capability:yang-library:1.1?revision=" +
                                   module.revision + "&content-id=" + host.contentId());
        if (module.implemented && module.isVersion1)
            capabilities.push_back(moduleCapability(module));
    }
    return capabilities;
}

void loadModules(tk::Host &host)
{
    host.loadServerModule("ietf-netconf",
                          {"writable-running", "candidate", "confirmed-commit", "rollback-on-error",
                           "validate", "startup", "xpath"});
    host.loadServerModule("ietf-netconf-with-defaults");
    host.loadServerModule("ietf-netconf-monitoring");
}

std::string netconfState(const tk::Host &host, const tk::Datastores &stores, const Sessions &sessions)
{
    json state;
    state["capabilities"]["capability"] = serverCapabilities(host);
    state["datastores"]["datastore"] = datastoresOf(stores);
    state["schemas"]["schema"] = schemasOf(host);
    const json list = sessionsOf(sessions);
    if (!list.empty())
        state["sessions"]["session"] = list;
    state["statistics"] = statisticsOf(sessions);
    return json{{"ietf-netconf-monitoring:netconf-state", std::move(state)}}.dump();
}

} // namespace agentd::netconf
