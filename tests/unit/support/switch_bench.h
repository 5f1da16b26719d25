// The bundle over the simulated switch.
//
// A case reads: given this running, this edit makes exactly these requests, and the client sees this.
//
//   SwitchBench bench(R"({"lyn-openconfig-jumbo:jumbo": {"config": {"enabled": false}}})");
//   EXPECT_TRUE(bench.patch("lyn-openconfig-jumbo:jumbo/config", R"({...})").ok());
//   EXPECT_THAT(bench.sent(), ElementsAre(R"(ui_fe_qos_jumbo {"opcode":1,"value":1})"));
#pragma once

#include "switchsim/simulator.h"
#include "switchsim/switch.h"
#include "tests/unit/support/host_bench.h"

namespace test {

class SwitchBench : public HostBench {
public:
    // Starts the bundle; `more` may load modules and register callbacks of a test's own before the schema is
    // compiled.
    explicit SwitchBench(const std::string &startup = {}, int platformType = 1,
                         const std::function<void(tk::Host &)> &more = {});
    ~SwitchBench() override;

    // The requests since the last call of this function, oldest first: the call's name and its fields as
    // JSON.
    std::vector<std::string> sent();
    switchsim::Simulator &device() { return switch_->simulator(); }
    // The device cannot be reached from now on, or can again.
    void unplug();
    void plugIn();

private:
    std::unique_ptr<switchsim::InProcessSwitch> switch_;
    std::uint64_t seen_ = 0;
};

} // namespace test
