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
    {"leafref_and_target_go_together", R"({"cap":1,"item":[{"name":"a","needed":"n","by-road":"r","friend":"a"}]})",
     Method::remove, "item=a", "", "", R"({"cap":1})"},
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

TEST(ChecksText, MustKeepsItsMessageTagAndPath)
{
    ChecksBench bench(R"({"cap":5})");
    const Outcome outcome = bench.put("checks:checks/current", R"({"checks:current":6})");
    EXPECT_EQ(outcome.refusals.at(0),
              (Refusal{0, "operation-failed", "/checks:checks/current", "current must not be above cap"}));
}

} // namespace
} // namespace test
