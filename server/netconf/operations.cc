#include "server/netconf/operations.h"

#include "server/netconf/parameters.h"
#include "server/netconf/xml.h"

#include <algorithm>
#include <utility>

namespace agentd::netconf {

namespace {

using tk::Datastore;

constexpr char kMonitoringNamespace[] = "urn:ietf:params:xml:ns:yang:ietf-netconf-monitoring";

struct Asked {
    const OperationContext &context;
    Parameters &parameters;
    std::uint32_t session;
};

const char *nameOf(Datastore store)
{
    return store == Datastore::running ? "running" : store == Datastore::candidate ? "candidate" : "startup";
}

// Changes run where the callbacks run: each sees what the ones before it left.
Plan change(std::string audited, std::function<void()> action)
{
    return {[action = std::move(action)](const Envelope &envelope) {
                action();
                return envelope.ok();
            },
            true, false, std::move(audited)};
}

Plan get(const Asked &asked)
{
    tk::GetRequest request{.withState = true, .filter = asked.parameters.filter()};
    request.withDefaults = asked.parameters.withDefaults();
    return {[&stores = asked.context.stores, request](const Envelope &envelope) {
                return envelope.data(stores.read(request));
            },
            true};
}

Plan getConfig(const Asked &asked)
{
    tk::GetRequest request{.source = asked.parameters.datastore("source"),
                           .filter = asked.parameters.filter()};
    request.withDefaults = asked.parameters.withDefaults();
    return {[&stores = asked.context.stores, request](const Envelope &envelope) {
        return envelope.data(stores.read(request));
    }};
}

Plan editConfig(const Asked &asked)
{
    Parameters &parameters = asked.parameters;
    tk::ConfigEdit edit{.target = parameters.datastore("target"), .config = {}};
    edit.defaultOperation =
        parameters.choice<tk::DefaultOperation>("default-operation",
                                                {{"merge", tk::DefaultOperation::merge},
                                                 {"replace", tk::DefaultOperation::replace},
                                                 {"none", tk::DefaultOperation::none}});
    edit.test = parameters.choice<tk::TestOption>("test-option",
                                                  {{"", tk::TestOption::byTarget},
                                                   {"test-then-set", tk::TestOption::testThenSet},
                                                   {"set", tk::TestOption::set},
                                                   {"test-only", tk::TestOption::testOnly}});
    // Whatever is asked for after an error: an edit is carried out as a whole or not at all.
    parameters.choice<bool>(
        "error-option", {{"stop-on-error", true}, {"continue-on-error", true}, {"rollback-on-error", true}});
    edit.config = detached(parameters.requiredElement("config"));
    return change(std::string("edit-config ") + nameOf(edit.target),
                  [&stores = asked.context.stores, session = asked.session, edit = std::move(edit)] {
                      stores.edit(session, edit);
                  });
}

Plan copyConfig(const Asked &asked)
{
    const Datastore target = asked.parameters.datastore("target");
    const auto source = asked.parameters.store("source", true);
    if (asked.parameters.withDefaults() != tk::WithDefaults::explicitOnly)
        throw notSupported("with-defaults", "A datastore holds the values that somebody set.");
    if (const auto *store = std::get_if<Datastore>(&source); store && *store == target)
        throw invalidValue("Source and target are the same datastore.");
    return change(std::string("copy-config ") + nameOf(target),
                  [&stores = asked.context.stores, session = asked.session, source, target] {
                      if (const auto *store = std::get_if<Datastore>(&source))
                          stores.copy(session, *store, target);
                      else
                          stores.copy(session, std::get<std::string>(source), target);
                  });
}

Plan deleteConfig(const Asked &asked)
{
    const Datastore target = asked.parameters.datastore("target");
    if (target != Datastore::startup)
        throw notSupported(nameOf(target),
                           std::string("The ") + nameOf(target) + " datastore cannot be deleted.");
    return change("delete-config startup", [&stores = asked.context.stores, session = asked.session] {
        stores.removeStartup(session);
    });
}

Plan lock(const Asked &asked)
{
    const Datastore target = asked.parameters.datastore("target");
    return change(
        std::string("lock ") + nameOf(target),
        [&stores = asked.context.stores, session = asked.session, target] { stores.lock(session, target); });
}

Plan unlock(const Asked &asked)
{
    const Datastore target = asked.parameters.datastore("target");
    return change(std::string("unlock ") + nameOf(target),
                  [&stores = asked.context.stores, session = asked.session, target] {
                      stores.unlock(session, target);
                  });
}

Plan commit(const Asked &asked)
{
    tk::CommitRequest request;
    request.confirmed = asked.parameters.flag("confirmed");
    const auto timeout = asked.parameters.number("confirm-timeout");
    if (timeout)
        request.timeout = std::chrono::seconds(*timeout);
    request.persist = asked.parameters.text("persist");
    request.persistId = asked.parameters.text("persist-id");
    if (!request.confirmed && (timeout || request.persist))
        throw badElement(timeout ? "confirm-timeout" : "persist", "This goes with <confirmed> only.");
    return change("commit", [&stores = asked.context.stores, session = asked.session, request] {
        stores.commit(session, request);
    });
}

Plan cancelCommit(const Asked &asked)
{
    const auto persistId = asked.parameters.text("persist-id");
    return change("cancel-commit", [&stores = asked.context.stores, session = asked.session, persistId] {
        stores.cancelCommit(session, persistId);
    });
}

Plan discardChanges(const Asked &asked)
{
    return change("discard-changes", [&stores = asked.context.stores, session = asked.session] {
        stores.discardChanges(session);
    });
}

Plan validate(const Asked &asked)
{
    const auto source = asked.parameters.store("source", true);
    Plan plan = change({}, [&stores = asked.context.stores, source] {
        if (const auto *store = std::get_if<Datastore>(&source))
            stores.validate(*store);
        else
            stores.validate(std::get<std::string>(source));
    });
    return plan;
}

Plan closeSession(const Asked &)
{
    return {[](const Envelope &envelope) { return envelope.ok(); }, false, true};
}

Plan killSession(const Asked &asked)
{
    const auto id = asked.parameters.number("session-id");
    if (!id)
        throw missingElement("session-id");
    if (*id == asked.session)
        throw invalidValue("A session cannot kill itself.");
    return {[kill = asked.context.kill, id = *id](const Envelope &envelope) {
                if (!kill(id))
                    throw invalidValue("There is no session " + std::to_string(id) + ".");
                return envelope.ok();
            },
            false, false, "kill-session " + std::to_string(*id)};
}

Plan getSchema(const Asked &asked)
{
    const std::string name = asked.parameters.requiredText("identifier");
    const std::string version = asked.parameters.text("version").value_or("");
    const std::string format = asked.parameters.text("format").value_or("yang");
    if (tk::localName(format) != "yang")
        throw invalidValue("Modules are there as YANG only.");
    return {[&host = asked.context.host, name, version](const Envelope &envelope) {
        const auto text = host.moduleText(name, version);
        if (!text)
            throw invalidValue("There is no module \"" + name + "\"" +
                               (version.empty() ? "." : " of revision \"" + version + "\"."));
        return envelope.content(std::string("<data xmlns=\"") + kMonitoringNamespace + "\">" +
                                escaped(*text) + "</data>");
    }};
}

void checkNamespace(const tk::Host &host, const pugi::xml_node &operation)
{
    const std::string nameSpace = tk::namespaceOf(operation);
    const auto modules = host.modules();
    if (std::none_of(modules.begin(), modules.end(),
                     [&](const tk::ModuleInfo &module) { return module.nameSpace == nameSpace; }))
        throw unknownNamespace(tk::localName(operation), nameSpace);
}

// What the bundle provides.
Plan invoke(const OperationContext &context, const pugi::xml_node &operation)
{
    const std::string name(tk::localName(operation));
    const bool isAction = tk::namespaceOf(operation) == tk::kYangNamespace;
    return {[&stores = context.stores, request = detached(operation)](const Envelope &envelope) {
                const std::string output = stores.invoke(request);
                return output.empty() ? envelope.ok() : envelope.content(output);
            },
            true, false, isAction ? name : "rpc " + name};
}

struct Row {
    std::string_view name;
    Plan (*plan)(const Asked &);
};

constexpr Row kOperations[] = {
    {"get", get},
    {"get-config", getConfig},
    {"edit-config", editConfig},
    {"copy-config", copyConfig},
    {"delete-config", deleteConfig},
    {"lock", lock},
    {"unlock", unlock},
    {"commit", commit},
    {"cancel-commit", cancelCommit},
    {"discard-changes", discardChanges},
    {"validate", validate},
    {"close-session", closeSession},
    {"kill-session", killSession},
};
constexpr Row kMonitoringOperations[] = {{"get-schema", getSchema}};

template <std::size_t N>
Plan planFrom(const Row (&rows)[N], const OperationContext &context, const pugi::xml_node &operation,
              std::uint32_t session)
{
    const std::string_view name = tk::localName(operation);
    const auto row =
        std::find_if(std::begin(rows), std::end(rows), [name](const Row &r) { return r.name == name; });
    if (row == std::end(rows))
        throw unknownOperation(name);
    Parameters parameters(operation);
    Plan plan = row->plan({context, parameters, session});
    parameters.done();
    return plan;
}

} // namespace

Plan planOperation(const OperationContext &context, const pugi::xml_node &operation,
                   const SessionRecord &session)
{
    const std::string nameSpace = tk::namespaceOf(operation);
    if (nameSpace == tk::kNetconfNamespace)
        return planFrom(kOperations, context, operation, session.id);
    if (nameSpace == kMonitoringNamespace)
        return planFrom(kMonitoringOperations, context, operation, session.id);
    if (nameSpace == tk::kYangNamespace && tk::localName(operation) != "action")
        throw unknownOperation(tk::localName(operation));
    if (nameSpace != tk::kYangNamespace)
        checkNamespace(context.host, operation);
    return invoke(context, operation);
}

} // namespace agentd::netconf
