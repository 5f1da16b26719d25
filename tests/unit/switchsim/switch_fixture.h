// A switch that the client functions reach, over either transport.
#pragma once

#include "backend/transport.h"
#include "switchsim/simulator.h"
#include "switchsim/socket_server.h"
#include "switchsim/switch.h"
#include "tests/unit/server/temporary_folder.h"

#include <gtest/gtest.h>

namespace switchsim {

using agentd::test::TemporaryFolder;

enum class Way { inProcess, socket };

inline std::string nameOfWay(const ::testing::TestParamInfo<Way> &way)
{
    return way.param == Way::inProcess ? "inProcess" : "socket";
}

// Starts a switch and makes it the device of the process.
class SwitchTest : public ::testing::TestWithParam<Way> {
protected:
    SwitchTest()
    {
        if (GetParam() == Way::inProcess) {
            local = startInProcessSwitch({});
            backend::setTransport(local->transport());
            return;
        }
        const std::string path = folder.path() / "socket";
        remote = std::make_unique<Simulator>();
        server = std::make_unique<SocketServer>(*remote, path, Serves::controlAndMessages);
        backend::setTransport(backend::makeSocketTransport(path));
    }

    ~SwitchTest() override
    {
        backend::setTransport(nullptr);
        backend::setTimeout(backend::kDefaultTimeout);
    }

    Simulator &device() { return local ? local->simulator() : *remote; }

    // All lines of the journal, oldest first.
    Json journal()
    {
        Json lines = Json::array();
        for (const auto &line : device().journal().readAfter(0, Journal::kMaxLines))
            lines.push_back(asJson(line));
        return lines;
    }

    // The last line without its number; what must be in the journal.
    Json lastLine()
    {
        Json line = journal().empty() ? Json() : journal().back();
        line.erase("seq");
        return line;
    }

    TemporaryFolder folder;
    std::unique_ptr<InProcessSwitch> local;
    std::unique_ptr<Simulator> remote;
    std::unique_ptr<SocketServer> server;
};

} // namespace switchsim
