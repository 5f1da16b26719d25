// What the routing table costs a client: the whole RPC over the simulated switch, page by page. Half of its
// routes have two lines, so that the report outgrows the room that it was given first.
#include "backend/transport.h"
#include "bench/collector.h"
#include "switchsim/simulator.h"
#include "switchsim/switch.h"
#include "toolkit/host.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

constexpr std::int64_t kFew = 1'000, kMany = 100'000;
constexpr double kAim = 2; // a route of many may cost so many times what one of few does

class Rig {
public:
    Rig()
        : switch_(switchsim::startInProcessSwitch({}))
        , host_({{YANG_DIR "/lyn", YANG_DIR "/openconfig", YANG_DIR "/ietf"}, 0})
    {
        backend::setTransport(switch_->transport());
        host_.loadBundle(BUNDLE, "app_yang_agent");
        host_.seal();
        host_.loadStartup({}, tk::Encoding::json);
        host_.finishStart();
    }
    ~Rig() { backend::setTransport(nullptr); }
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    void setRoutes(std::int64_t routes) { switch_->simulator().setValue("routes", routes); }

    std::size_t show()
    {
        const auto target = host_.resolve({{"lyn-openconfig-iproute", "iproute", {}, false}});
        const auto text =
            host_.invoke(target, R"({"lyn-openconfig-iproute:input":{"route-table":{"all":[null]}}})",
                         tk::Encoding::json, tk::Encoding::json);
        return text ? text->size() : 0;
    }

private:
    std::unique_ptr<switchsim::InProcessSwitch> switch_;
    tk::Host host_;
};

void showRoutes(benchmark::State &state, Rig &rig)
{
    rig.setRoutes(state.range(0));
    for (auto _ : state) {
        const std::size_t length = rig.show();
        if (length < static_cast<std::size_t>(state.range(0)) * 80)
            throw std::runtime_error("the report is too short");
        benchmark::DoNotOptimize(length);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

} // namespace

int main(int argc, char **argv)
{
    Rig rig;
    auto *all = benchmark::RegisterBenchmark("showRoutes",
                                             [&rig](benchmark::State &state) { showRoutes(state, rig); });
    all->Arg(kFew)
        ->Arg(10'000)
        ->Arg(kMany)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MinTime(0.2)
        ->Repetitions(3);
    benchmark::Initialize(&argc, argv);
    Collector collector;
    if (benchmark::RunSpecifiedBenchmarks(&collector) < 3)
        return 1;                                           // a filter left some out
    const auto costOf = [&collector](std::int64_t routes) { // microseconds a route
        return collector.median("showRoutes/" + std::to_string(routes)) * 1e6 / static_cast<double>(routes);
    };
    const double few = costOf(kFew), many = costOf(kMany);
    std::printf("a route of %lld: %.2f us, of %lld: %.2f us = %.2f x, aim %.0f x: %s\n",
                static_cast<long long>(kFew), few, static_cast<long long>(kMany), many, many / few, kAim,
                many / few <= kAim ? "met" : "missed");
    return 0;
}
