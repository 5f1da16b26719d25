#include "tests/unit/support/switch_bench.h"

extern "C" Status y_app_yang_agent_init(const char *, const char *);
extern "C" Status y_app_yang_agent_init2();
extern "C" void y_app_yang_agent_cleanup();

namespace test {

SwitchBench::SwitchBench(const std::string &startup, int platformType,
                         const std::function<void(tk::Host &)> &more)
    : switch_(switchsim::startInProcessSwitch({"", platformType}))
{
    plugIn();
    if (const Status status = y_app_yang_agent_init("app_yang_agent", ""))
        throw std::runtime_error("the bundle does not start: status " + std::to_string(status));
    host_->impl().bundles.push_back({"app_yang_agent", y_app_yang_agent_init2, y_app_yang_agent_cleanup});
    if (more)
        more(*host_);
    host_->seal();
    host_->loadStartup(startup, tk::Encoding::json);
    host_->finishStart();
    sent();
}

SwitchBench::~SwitchBench()
{
    host_.reset();
    unplug();
}

std::vector<std::string> SwitchBench::sent()
{
    std::vector<std::string> requests;
    for (const auto &line : switch_->simulator().journal().readAfter(seen_, 100'000)) {
        seen_ = line.seq;
        const auto json = switchsim::asJson(line);
        requests.push_back(json.at("call").get<std::string>() + " " + json.at("request").dump());
    }
    return requests;
}

void SwitchBench::unplug()
{
    backend::setTransport(nullptr);
}

void SwitchBench::plugIn()
{
    backend::setTransport(switch_->transport());
}

} // namespace test
