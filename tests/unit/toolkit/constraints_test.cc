// Edits that break a rule of the schema are refused, whichever node the rule stands on, and leave no trace.
#include "tests/unit/support/host_bench.h"
#include "toolkit/agt.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;

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

std::string member(const std::string &path, const std::string &value)
{
    if (value.empty())
        return {};
    const std::string last = path.empty() ? "checks" : path.substr(path.rfind('/') + 1);
    return R"({"checks:)" + last.substr(0, last.find('=')) + "\":" + value + "}";
}

TEST_P(Checks, RefusesOrTakes)
{
    const Case &c = GetParam();
    ChecksBench bench(c.running);
    const std::string before = bench.running();
    const std::string below = c.path.empty() ? "" : "/" + c.path;
    const std::string body = c.method == Method::post ? c.body : member(c.path, c.body);
    const Outcome outcome = bench.edit(c.method, "checks:checks" + below, body);
    EXPECT_EQ(outcome.tag(), c.tag) << outcome.message();
    const std::string expected =
        c.tag.empty() ? R"({"ietf-restconf:data":{"checks:checks":)" + c.after + "}}" : before;
    EXPECT_EQ(bench.running(), expected);
}

const std::string kTwo =
    R"({"item":[{"name":"a","tag":"x","needed":"n","by-road":"r"},{"name":"b","tag":"y","needed":"n","by-road":"r"}]})";

const Case kCases[] = {
    {"when_of_a_default_is_false", "{}", Method::patch, "", R"({"ornament":"o"})", "unknown-element"},
    {"when_comes_true_in_the_same_edit", "{}", Method::patch, "", R"({"ornament":"o","mode":"fancy"})", "",
     R"({"mode":"fancy","ornament":"o"})"},
    {"when_that_turns_false_takes_its_nodes", R"({"mode":"fancy","ornament":"o","frill":{"size":1}})",
     Method::put, "mode", "\"plain\"", "", R"({"mode":"plain"})"},
    {"when_back_to_a_default_takes_its_nodes", R"({"mode":"fancy","ornament":"o","cap":5})", Method::remove,
     "mode", "", "", R"({"cap":5})"},
    {"when_inside_a_container", "{}", Method::patch, "frill", R"({"size":1})", "unknown-element"},
    {"must_of_the_edited_leaf", R"({"cap":5})", Method::put, "current", "6", "operation-failed"},
    {"must_against_a_default", "{}", Method::put, "current", "101", "operation-failed"},
    {"must_of_another_leaf", R"({"cap":5,"current":5})", Method::put, "cap", "4", "operation-failed"},
    {"must_when_its_input_goes_back_to_a_default", R"({"cap":200,"current":150})", Method::remove, "cap", "",
     "operation-failed"},
    {"must_that_holds", R"({"cap":200,"current":50})", Method::put, "cap", "60", "",
     R"({"cap":60,"current":50})"},
    {"must_that_counts",
     R"({"total":1,"item":[{"name":"a","needed":"n","by-road":"r"},{"name":"b","needed":"n","by-road":"r"},)"
     R"({"name":"c","needed":"n","by-road":"r"}]})",
     Method::post, "", R"({"checks:item":[{"name":"d","needed":"n","by-road":"r"}]})", "operation-failed"},
    {"mandatory_in_a_new_entry", "{}", Method::patch, "", R"({"item":[{"name":"a","by-road":"r"}]})",
     "data-missing"},
    {"mandatory_that_goes", kTwo, Method::remove, "item=a/needed", "", "data-missing"},
    {"mandatory_choice", "{}", Method::patch, "", R"({"item":[{"name":"a","needed":"n"}]})", "data-missing"},
    {"mandatory_choice_that_goes", kTwo, Method::remove, "item=a/by-road", "", "data-missing"},
    {"mandatory_in_an_active_case", kTwo, Method::patch, "item=a", R"([{"name":"a","by-sea":"s"}])",
     "data-missing"},
    {"two_cases_in_one_edit", "{}", Method::patch, "",
     R"({"item":[{"name":"a","needed":"n","by-road":"r","by-sea":"s","port":"p"}]})", "bad-element"},
    {"leafref_to_nothing", kTwo, Method::put, "chosen", "\"c\"", "data-missing"},
    {"leafref_inside_the_list", kTwo, Method::put, "item=a/friend", "\"c\"", "data-missing"},
    {"leafref_target_goes", R"({"item":[{"name":"a","needed":"n","by-road":"r"}],"chosen":"a"})",
     Method::remove, "item=a", "", "data-missing"},
    {"leafref_between_entries_target_goes",
     R"({"item":[{"name":"a","needed":"n","by-road":"r","friend":"b"},{"name":"b","needed":"n","by-road":"r"}]})",
     Method::remove, "item=b", "", "data-missing"},
    {"leafref_and_target_go_together",
     R"({"cap":1,"item":[{"name":"a","needed":"n","by-road":"r","friend":"a"}]})", Method::remove, "item=a",
     "", "", R"({"cap":1})"},
    {"unique", kTwo, Method::put, "item=b/tag", "\"x\"", "operation-failed"},
    {"unique_in_a_new_entry", kTwo, Method::post, "",
     R"({"checks:item":[{"name":"c","tag":"y","needed":"n","by-road":"r"}]})", "operation-failed"},
    {"too_many", R"({"few":["a","b","c"]})", Method::patch, "", R"({"few":["d"]})", "operation-failed"},
    {"too_few_in_something_new", "{}", Method::put, "group", R"({"member":["a"]})", "operation-failed"},
    {"too_few_when_none_is_there", "{}", Method::put, "group", "{}", "operation-failed"},
    {"too_few_when_one_goes", R"({"group":{"member":["a","b"]}})", Method::remove, "group/member=a", "",
     "operation-failed"},
    {"group_goes_as_a_whole", R"({"group":{"member":["a","b"]},"cap":1})", Method::remove, "group", "", "",
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
    const auto items = [](const std::string &list) { return R"({"checks:checks":{"item":[)" + list + "]}}"; };
    const auto leaf = [](const std::string &name, const std::string &value) {
        return R"({"checks:)" + name + R"(":")" + value + R"("})";
    };
    struct Step {
        Method method;
        std::string path, body, tag;
    };
    const std::string ok, twice = "operation-failed", nowhere = "data-missing";
    const Step steps[] = {
        // Unique.
        {Method::patch, "", items(item("c", "x")), twice},
        {Method::patch, "", items(item("c", "z") + "," + item("d", "z")), twice},
        {Method::patch, "", items(item("c", "z")), ok},
        {Method::put, "/item=b/tag", leaf("tag", "z"), twice},
        {Method::put, "/item=c/tag", leaf("tag", "w"), ok},
        {Method::put, "/item=b/tag", leaf("tag", "z"), ok},
        {Method::patch, "", items(R"({"name":"b","tag":"w"},{"name":"c","tag":"z"})"),
         ok}, // they change places
        {Method::put, "/item=a/tag", leaf("tag", "z"), twice},
        {Method::remove, "/item=c", {}, ok},
        {Method::put, "/item=a/tag", leaf("tag", "z"), ok},
        {Method::remove, "/item=a/tag", {}, ok},
        {Method::put, "/item=b/tag", leaf("tag", "z"), ok},
        {Method::put, "/item=a/tag", leaf("tag", "z"), twice},
        // Leafrefs, both ways.
        {Method::put, "/item=a/friend", leaf("friend", "e"), nowhere},
        {Method::patch, "", items(item("e", "e") + R"(,{"name":"a","friend":"e"})"), ok},
        {Method::remove, "/item=e", {}, nowhere},
        {Method::put, "/chosen", leaf("chosen", "e"), ok},
        {Method::put, "/item=a/friend", leaf("friend", "b"), ok},
        {Method::remove, "/item=e", {}, nowhere},
        {Method::remove, "/chosen", {}, ok},
        {Method::remove, "/item=e", {}, ok},
        {Method::remove, "/item=b", {}, nowhere},
        {Method::remove, "/item=a", {}, ok},
        {Method::remove, "/item=b", {}, ok},
        {Method::patch, "", items(item("b", "z") + "," + item("c", "y", R"(,"friend":"b")")), ok},
        {Method::remove, "/item=b", {}, nowhere},
        // Rules within an entry, and on numbers of them.
        {Method::post, "", R"({"checks:item":[{"name":"f","by-road":"r"}]})", nowhere},
        {Method::put, "/item=c/by-sea", leaf("by-sea", "s"), nowhere},
        {Method::patch, "", R"({"checks:checks":{"few":["1","2","3","4"]}})", "operation-failed"},
        {Method::patch, "", R"({"checks:checks":{"group":{"member":["1"]}}})", "operation-failed"},
        {Method::put, "/current", R"({"checks:current":101})", "operation-failed"},
        {Method::put, "/ornament", leaf("ornament", "o"), "unknown-element"},
        {Method::put, "/total", R"({"checks:total":1})", GetParam() > 1 ? "operation-failed" : ok},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.path + " " + step.body);
        const Outcome outcome = bench.edit(step.method, "checks:checks" + step.path, step.body);
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
