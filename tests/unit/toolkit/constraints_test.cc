// Edits that break a rule of the schema are refused, whichever node the rule stands on, and leave no trace.
#include "tests/unit/support/host_bench.h"
#include "toolkit/agt.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using enum Method;

class ChecksBench : public HostBench {
public:
    explicit ChecksBench(const std::string &content)
    {
        ModuleHandle *module = nullptr;
        ncxmod_load_module("checks", nullptr, agt_get_savedevQ(), &module);
        host_->seal();
        host_->loadStartup(R"({"checks:checks":)" + content + "}", Encoding::json);
    }
};

struct Case {
    std::string name;
    std::string running;
    Method method;
    std::string path, body; // path below checks:checks, body the content of its last member
    std::string tag;        // "" for an edit that is right
    std::string after = {}; // running then, if it is right
};

class Checks : public testing::TestWithParam<Case> { };

TEST_P(Checks, RefusesOrTakes)
{
    const Case &c = GetParam();
    ChecksBench bench(c.running);
    const std::string before = bench.running();
    const std::string path = "checks:checks" + (c.path.empty() ? "" : "/" + c.path);
    const bool isValue = c.method != post && c.method != remove;
    const Outcome outcome = bench.edit(c.method, path, isValue ? member(path, c.body) : c.body);
    EXPECT_EQ(outcome.tag(), c.tag) << outcome.message();
    const std::string expected =
        c.tag.empty() ? R"({"ietf-restconf:data":{"checks:checks":)" + c.after + "}}" : before;
    EXPECT_EQ(bench.running(), expected);
}

const std::string kTwo =
    R"({"item":[{"name":"a","tag":"x","needed":"n","by-road":"r"},{"name":"b","tag":"y","needed":"n","by-road":"r"}]})";

const Case kCases[] = {
    {"when_comes_true_in_the_same_edit", "{}", patch, "", R"({"ornament":"o","mode":"fancy"})", "",
     R"({"mode":"fancy","ornament":"o"})"},
    {"when_that_turns_false_takes_its_nodes", R"({"mode":"fancy","ornament":"o","frill":{"size":1}})", put,
     "mode", "\"plain\"", "", R"({"mode":"plain"})"},
    {"when_back_to_a_default_takes_its_nodes", R"({"mode":"fancy","ornament":"o","cap":5})", remove, "mode",
     "", "", R"({"cap":5})"},
    {"when_inside_a_container", "{}", patch, "frill", R"({"size":1})", "unknown-element"},
    {"must_of_another_leaf", R"({"cap":5,"current":5})", put, "cap", "4", "operation-failed"},
    {"must_when_its_input_goes_back_to_a_default", R"({"cap":200,"current":150})", remove, "cap", "",
     "operation-failed"},
    {"must_that_holds", R"({"cap":200,"current":50})", put, "cap", "60", "", R"({"cap":60,"current":50})"},
    {"must_that_counts",
     R"({"total":1,"item":[{"name":"a","needed":"n","by-road":"r"},{"name":"b","needed":"n","by-road":"r"},)"
     R"({"name":"c","needed":"n","by-road":"r"}]})",
     post, "", R"({"checks:item":[{"name":"d","needed":"n","by-road":"r"}]})", "operation-failed"},
    {"mandatory_that_goes", kTwo, remove, "item=a/needed", "", "data-missing"},
    {"mandatory_choice_that_goes", kTwo, remove, "item=a/by-road", "", "data-missing"},
    {"two_cases_in_one_edit", "{}", patch, "",
     R"({"item":[{"name":"a","needed":"n","by-road":"r","by-sea":"s","port":"p"}]})", "bad-element"},
    {"leafref_and_target_go_together",
     R"({"cap":1,"item":[{"name":"a","needed":"n","by-road":"r","friend":"a"}]})", remove, "item=a", "", "",
     R"({"cap":1})"},
    {"too_few_when_none_is_there", "{}", put, "group", "{}", "operation-failed"},
    {"too_few_when_one_goes", R"({"group":{"member":["a","b"]}})", remove, "group/member=a", "",
     "operation-failed"},
    {"group_goes_as_a_whole", R"({"group":{"member":["a","b"]},"cap":1})", remove, "group", "", "",
     R"({"cap":1})"},
};
INSTANTIATE_TEST_SUITE_P(Table, Checks, testing::ValuesIn(kCases), CaseName());

// The rules that compare many entries hold beside any number of others, from edit to edit.
class ChecksAtSize : public testing::TestWithParam<int> { };

std::string item(const std::string &name, const std::string &tag, const std::string &more = {})
{
    return R"({"name":")" + name + R"(","tag":")" + tag + R"(","needed":"n","by-road":"r")" + more + "}";
}

TEST_P(ChecksAtSize, FollowTheEdits)
{
    std::string running = item("a", "x") + "," + item("b", "y");
    for (int i = 0; i < GetParam(); ++i)
        running += "," + item("n" + std::to_string(i), "t" + std::to_string(i));
    ChecksBench bench(R"({"item":[)" + running + "]}");
    const auto items = [](const std::string &list) { return R"({"item":[)" + list + "]}"; };
    struct Step {
        Method method;
        std::string path, value, tag = ""; // of the node at the path
    };
    const std::string twice = "operation-failed", nowhere = "data-missing";
    const Step steps[] = {
        // Unique.
        {patch, "", items(item("c", "x")), twice},
        {patch, "", items(item("c", "z") + "," + item("d", "z")), twice},
        {patch, "", items(item("c", "z"))},
        {put, "/item=b/tag", R"("z")", twice},
        {put, "/item=c/tag", R"("w")"},
        {put, "/item=b/tag", R"("z")"},
        {patch, "", items(R"({"name":"b","tag":"w"},{"name":"c","tag":"z"})")}, // they change places
        {put, "/item=a/tag", R"("z")", twice},
        {remove, "/item=c", ""},
        {put, "/item=a/tag", R"("z")"},
        {remove, "/item=a/tag", ""},
        {put, "/item=b/tag", R"("z")"},
        {put, "/item=a/tag", R"("z")", twice},
        // Leafrefs, both ways.
        {put, "/item=a/friend", R"("e")", nowhere},
        {patch, "", items(item("e", "e") + R"(,{"name":"a","friend":"e"})")},
        {remove, "/item=e", "", nowhere},
        {put, "/chosen", R"("e")"},
        {put, "/item=a/friend", R"("b")"},
        {remove, "/item=e", "", nowhere},
        {remove, "/chosen", ""},
        {remove, "/item=e", ""},
        {remove, "/item=b", "", nowhere},
        {remove, "/item=a", ""},
        {remove, "/item=b", ""},
        {patch, "", items(item("b", "z") + "," + item("c", "y", R"(,"friend":"b")"))},
        {remove, "/item=b", "", nowhere},
        // Rules within an entry, and on numbers of them.
        {post, "", R"({"checks:item":[{"name":"f","by-road":"r"}]})", nowhere},
        {put, "/item=c/by-sea", R"("s")", nowhere},
        {patch, "", R"({"few":["1","2","3","4"]})", "operation-failed"},
        {patch, "", R"({"group":{"member":["1"]}})", "operation-failed"},
        {put, "/current", "101", "operation-failed"},
        {put, "/ornament", R"("o")", "unknown-element"},
        {put, "/total", "1", GetParam() > 1 ? "operation-failed" : ""},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.path + " " + step.value);
        const std::string path = "checks:checks" + step.path;
        const bool isValue = step.method != post && step.method != remove;
        const Outcome outcome =
            bench.edit(step.method, path, isValue ? member(path, step.value) : step.value);
        EXPECT_EQ(outcome.tag(), step.tag) << outcome.message();
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, ChecksAtSize, testing::Values(0, 4'000, 40'000),
                         [](const auto &of) { return std::to_string(of.param); });

TEST(ChecksText, MustKeepsItsMessageTagAndPath)
{
    ChecksBench bench(R"({"cap":5})");
    const Outcome outcome = bench.put("checks:checks/current", R"({"checks:current":6})");
    EXPECT_EQ(outcome.refusals.at(0),
              (Refusal{0, "operation-failed", "/checks:checks/current", "current must not be above cap"}));
}

} // namespace
} // namespace test
