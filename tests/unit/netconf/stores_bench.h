// A toy host with datastores in a folder that outlives it, so that a test can start it again.
#pragma once

#include "tests/unit/server/temporary_folder.h"
#include "tests/unit/toolkit/toy.h"
#include "toolkit/datastores.h"

#include <memory>
#include <string>
#include <vector>

namespace test {

struct StoresBench {
    // `factory`: content of toy:top as JSON, of a switch without startup.
    explicit StoresBench(const std::string &factory = "{}", std::size_t compactAt = std::size_t{1} << 20);

    // Ends it and starts it anew on what is on disk.
    void restart();

    // Edits by NETCONF. `nodes` is what stands in <config>; xmlns:nc and xmlns:y are declared around it.
    Outcome edit(tk::Datastore target, const std::string &nodes, tk::SessionId session = 1);
    Outcome edit(const tk::ConfigEdit &edit, tk::SessionId session = 1);
    // Any other call.
    Outcome attempt(const std::function<void()> &action) const;

    // The data as JSON-free XML; filters are the content of a <filter> element.
    std::string read(tk::Datastore source = tk::Datastore::running) const;
    std::string filtered(const std::string &filter, bool withState = false) const;

    std::string running() const { return read(); }
    tk::Datastores &stores() { return *stores_; }
    ToyBench &toy() { return *toy_; }

    agentd::test::TemporaryFolder folder;
    std::vector<std::string> complaints; // of the last start

private:
    const std::string factory_;
    const std::size_t compactAt_;
    std::unique_ptr<ToyBench> toy_;
    std::unique_ptr<tk::Datastores> stores_;
};

std::string configElement(const std::string &nodes);
// The content of <top> of the toy module.
std::string top(const std::string &content);

} // namespace test
