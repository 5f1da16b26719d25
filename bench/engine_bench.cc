// What an edit costs at the toolkit's own entry, with callbacks that do nothing: beside 0, 4,000 and 40,000
// list entries, for leaves that a rule elsewhere reads, too. It must follow the edit and not what else there
// is.
#include "bench/collector.h"
#include "tests/unit/support/host_bench.h"
#include "toolkit/agt.h"

#include <cstdio>
#include <stdexcept>

namespace {

using namespace tk;

constexpr double kAim = 1.3;             // 40,000 entries may cost so many times what none do
constexpr double kTransactions = 50'000; // aim for a leaf, a second

Status doNothing(Session *, Request *, EditPhase, EditOp, Value *, Value *)
{
    return kOk;
}

std::string entry(std::int64_t number)
{
    const std::string n = std::to_string(number);
    return R"({"name":"n)" + n + R"(","tag":"t)" + n + R"(","needed":"x","by-road":"r"})";
}

std::string entries(std::int64_t from, std::int64_t count)
{
    std::string list;
    for (std::int64_t i = from; i < from + count; ++i)
        list += (list.empty() ? "" : ",") + entry(i);
    return "[" + list + "]";
}

// Running with one entry that nothing edits, and so many more.
class Rig : public test::HostBench {
public:
    explicit Rig(std::int64_t count)
    {
        ModuleHandle *module = nullptr;
        if (ncxmod_load_module("checks", nullptr, agt_get_savedevQ(), &module))
            throw std::runtime_error("the module does not load");
        for (const char *path : {"/checks:checks", "/checks:checks/checks:item"})
            agt_cb_register_edit2_callback("checks", path, "2024-01-01", doNothing);
        host_->seal();
        host_->loadStartup(R"({"checks:checks":{"mode":"fancy","item":)" + entries(0, count + 1) + "}}",
                           Encoding::json);
    }

    void must(const test::Outcome &outcome)
    {
        if (!outcome.ok())
            throw std::runtime_error(outcome.message());
    }
};

// Two edits, each of which takes back what the other did.
struct Pair {
    const char *name;
    Method method;
    const char *path;
    const char *bodies[2];
};

const Pair kPairs[] = {
    {"plainLeaf",
     Method::put,
     "checks:checks/item=n0/needed",
     {R"({"checks:needed":"a"})", R"({"checks:needed":"b"})"}},
    {"leafThatAMustReads",
     Method::put,
     "checks:checks/cap",
     {R"({"checks:cap":500})", R"({"checks:cap":600})"}},
    {"leafWithAMust",
     Method::put,
     "checks:checks/current",
     {R"({"checks:current":50})", R"({"checks:current":60})"}},
    {"leafThatAWhenReads",
     Method::put,
     "checks:checks/mode",
     {R"({"checks:mode":"plain"})", R"({"checks:mode":"fancy"})"}},
    {"leafref", Method::put, "checks:checks/item=n0/friend", {R"({"checks:friend":"n0"})", ""}},
    {"uniqueLeaf",
     Method::put,
     "checks:checks/item=n0/tag",
     {R"({"checks:tag":"u"})", R"({"checks:tag":"v"})"}},
    {"choice",
     Method::put,
     "checks:checks/item=n0/by-road",
     {R"({"checks:by-road":"a"})", R"({"checks:by-road":"b"})"}},
    {"newEntryAndGone",
     Method::put,
     "checks:checks/item=new",
     {R"({"checks:item":[{"name":"new","tag":"new","needed":"x","by-road":"r"}]})", ""}},
};

void measure(benchmark::State &state, const Pair &pair)
{
    Rig rig(state.range(0));
    const auto editWith = [&](const char *body) {
        return EditRequest{
            *body ? pair.method : Method::remove, rig.target(pair.path), body, Encoding::json, {}, {}, false};
    };
    const EditRequest edits[] = {editWith(pair.bodies[0]), editWith(pair.bodies[1])};
    std::size_t turn = 0;
    for (auto _ : state)
        if (!rig.host().edit(edits[turn++ % 2]).changed)
            throw std::runtime_error("the edit changed nothing");
    state.SetItemsProcessed(state.iterations());
}

// One edit with so many new entries.
void manyEntries(benchmark::State &state)
{
    Rig rig(0);
    const std::string body = R"({"checks:checks":{"item":)" + entries(10, state.range(0)) + "}}";
    for (auto _ : state) {
        rig.must(rig.patch("checks:checks", body));
        state.PauseTiming();
        rig.must(rig.put("checks:checks", R"({"checks:checks":{"mode":"fancy"}})"));
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void registerAll()
{
    for (const Pair &pair : kPairs) {
        auto *all = benchmark::RegisterBenchmark(pair.name,
                                                 [&pair](benchmark::State &state) { measure(state, pair); });
        for (const std::int64_t size : {0, 4'000, 40'000})
            all->Arg(size);
        all->Unit(benchmark::kMicrosecond)
            ->UseRealTime()
            ->MinTime(0.1)
            ->Repetitions(5)
            ->ReportAggregatesOnly(false);
    }
    auto *many = benchmark::RegisterBenchmark("manyEntries", manyEntries);
    for (const std::int64_t size : {1'000, 4'000, 16'000})
        many->Arg(size);
    many->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(0.1)->Repetitions(3);
}

void compare(Collector &collector)
{
    for (const Pair &pair : kPairs) {
        const std::string name = pair.name;
        if (!collector.has(name + "/0") || !collector.has(name + "/40000"))
            continue;
        const double none = collector.median(name + "/0"), many = collector.median(name + "/40000");
        std::printf("%-20s %7.2f us beside none, %7.2f us beside 40,000 = %.2f x, aim %.1f x: %s\n",
                    pair.name, none * 1e6, many * 1e6, many / none, kAim,
                    many / none <= kAim ? "met" : "missed");
    }
    if (collector.has("plainLeaf/0")) {
        const double rate = 1 / collector.median("plainLeaf/0");
        std::printf("%.0f transactions a second, aim %.0f: %s\n", rate, kTransactions,
                    rate >= kTransactions ? "met" : "missed");
    }
}

} // namespace

int main(int argc, char **argv)
{
    benchmark::Initialize(&argc, argv);
    registerAll();
    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    compare(collector);
    return 0;
}
