#include "tests/unit/netconf/stores_bench.h"

namespace test {

using namespace tk;

std::string configElement(const std::string &nodes)
{
    return "<config xmlns:nc=\"urn:ietf:params:xml:ns:netconf:base:1.0\" "
           "xmlns:y=\"urn:ietf:params:xml:ns:yang:1\" "
           "xmlns:wd=\"urn:ietf:params:xml:ns:netconf:default:1.0\">" +
        nodes + "</config>";
}

std::string top(const std::string &content)
{
    return content.empty() ? "" : "<top xmlns=\"urn:test:toy\">" + content + "</top>";
}

StoresBench::StoresBench(const std::string &factory, std::size_t compactAt)
    : factory_("{\"toy:top\":" + factory + "}")
    , compactAt_(compactAt)
{
    restart();
}

void StoresBench::restart()
{
    stores_.reset();
    toy_.reset();
    toy_ = std::make_unique<ToyBench>("", std::map<std::string, unsigned>(),
                                      std::vector<std::string>{"ietf-netconf-with-defaults"});
    stores_ = std::make_unique<Datastores>(toy_->host(), StorageOptions{folder.path(), factory_, compactAt_});
    complaints = stores_->load();
    toy_->told();
}

Outcome StoresBench::attempt(const std::function<void()> &action) const
{
    Outcome outcome;
    try {
        action();
    } catch (const Failure &failure) {
        for (const Error &error : failure.errors)
            outcome.refusals.push_back({error.status, error.tag, error.path, error.message});
    }
    return outcome;
}

Outcome StoresBench::edit(const ConfigEdit &edit, SessionId session)
{
    return attempt([&] { stores_->edit(session, edit); });
}

Outcome StoresBench::edit(Datastore target, const std::string &nodes, SessionId session)
{
    return edit({.target = target, .config = configElement(nodes)}, session);
}

std::string StoresBench::read(Datastore source) const
{
    return stores_->read({.source = source});
}

std::string StoresBench::filtered(const std::string &filter, bool withState) const
{
    return stores_->read(
        {.withState = withState, .filter = {Filter::Kind::subtree, "<filter>" + filter + "</filter>"}});
}

} // namespace test
