// State: which callbacks are asked, for what, and what becomes of their answers.
#include "tests/unit/toolkit/toy.h"
#include "toolkit/src/legible.h"

#include <gmock/gmock.h>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;

std::vector<std::string> asked; // one line a call: node, mode, keys, wanted children
Status answer = kOk;

std::string describe(GetBlock *get2cb)
{
    std::string line =
        obj_get_name(getcb_get_obj(get2cb)) + std::string(getcb_get_mode(get2cb) == getNext ? " next" : "");
    for (const Value *key = getcb_first_key(get2cb); key; key = getcb_next_key(get2cb, key))
        line += std::string(" ") + val_get_string(key) + (getcb_is_key_fixed(get2cb, key) ? "" : "+");
    line += ":";
    for (Object *child = getcb_first_requested_child(get2cb, getcb_get_obj(get2cb)); child;
         child = getcb_next_requested_child(get2cb, child))
        line += std::string(" ") + obj_get_name(child);
    return line;
}

Status getState(Session *, MessageHeader *, GetBlock *get2cb)
{
    asked.push_back(describe(get2cb));
    const Object *state = getcb_get_obj(get2cb);
    for (Object *child = getcb_first_requested_child(get2cb, state); child;
         child = getcb_next_requested_child(get2cb, child)) {
        Status status = kOk;
        const std::string name = obj_get_name(child);
        Value *leaf = name == "enabled" ? agt_make_boolean_leaf(child, "toy", "enabled", true, &status)
            : name == "count"           ? agt_make_uint_leaf2(child, "toy", "count", 42, &status)
                                        : agt_make_leaf2(child, "toy", "form", "round", &status);
        getcb_add_return_val(get2cb, leaf);
    }
    return answer;
}

// Five rows, two in each bulk answer.
Status getRows(Session *, MessageHeader *, GetBlock *get2cb)
{
    asked.push_back(describe(get2cb));
    const Object *row = getcb_get_obj(get2cb);
    const Value *key = getcb_find_key_str(get2cb, "toy", "id");
    const bool fixed = key && getcb_is_key_fixed(get2cb, key);
    unsigned id = !key ? 1 : static_cast<unsigned>(val_get_uint64(key)) + (fixed ? 0 : 1);
    const unsigned last = fixed ? id : std::min(id + 1, 5u);
    if (id > 5)
        return kNoInstance;
    for (; id <= last; ++id) {
        Status status = kOk;
        getcb_add_return_key(get2cb, agt_make_uint_leaf2(row, "toy", "id", id, &status));
        const std::string text = "row " + std::to_string(id);
        getcb_add_return_val(get2cb, agt_make_leaf(row, "text", text.c_str(), &status));
        getcb_finish_getbulk_entry(get2cb);
    }
    getcb_set_more_data(get2cb, !fixed);
    return kOk;
}

Status getDetail(Session *, MessageHeader *, GetBlock *get2cb)
{
    asked.push_back(describe(get2cb));
    Status status = kOk;
    const Value *id = getcb_find_key_lvl(get2cb, "toy", "id", 1);
    getcb_add_return_val(get2cb,
                         agt_make_leaf2(getcb_get_obj(get2cb), "toy", "more", val_get_string(id), &status));
    return kOk;
}

class Retrieval : public testing::Test {
protected:
    Retrieval()
    {
        asked.clear();
        answer = kOk;
        agt_cb_register_get_callback("toy", "/t:top/t:state", nullptr, getState);
        agt_cb_register_get_callback("toy", "/t:top/t:row", nullptr, getRows);
        agt_cb_register_get_callback("toy", "/t:top/t:row/t:detail", nullptr, getDetail);
    }

    ToyBench bench{R"({"toy:top":{"plain":"a"}})"};
};

TEST_F(Retrieval, AsksForTheWantedLeavesOnly)
{
    EXPECT_EQ(bench.read("toy:top/state", Content::all),
              R"({"toy:state":{"enabled":true,"count":42,"form":"toy:round"}})");
    EXPECT_EQ(bench.read("toy:top/state/count", Content::all), R"({"toy:count":42})");
    EXPECT_THAT(asked, ElementsAre("state: enabled count form", "state: count"));
}

TEST_F(Retrieval, MergesConfigurationAndState)
{
    const std::vector<FieldNode> fields{{"", "plain", {}}, {"", "state", {{"", "count", {}}}}};
    const auto text = bench.host().read(
        {bench.target("toy:top"), Content::all, 0, fields, WithDefaults::explicitOnly, Encoding::json});
    EXPECT_THAT(*text,
                testing::AllOf(testing::HasSubstr(R"("plain": "a")"), testing::HasSubstr(R"("count": 42)")));
    EXPECT_THAT(asked, ElementsAre("state: count"));
}

TEST_F(Retrieval, ConfigurationAloneAsksNobody)
{
    EXPECT_EQ(bench.read("toy:top"), R"({"toy:top":{"plain":"a"}})");
    EXPECT_THAT(asked, ElementsAre());
}

TEST_F(Retrieval, WalksAListToItsEndAndWhatHangsOnIt)
{
    std::string rows;
    for (const std::string id : {"1", "2", "3", "4", "5"})
        rows += R"({"id":)" + id + R"(,"text":"row )" + id + R"(","detail":{"more":")" + id + R"("}},)";
    rows.pop_back();
    EXPECT_EQ(bench.read("toy:top/row", Content::nonconfig), R"({"toy:row":[)" + rows + "]}");
    EXPECT_THAT(asked,
                ElementsAre("row: id text detail", "row next 2+: id text detail",
                            "row next 4+: id text detail", "row next 5+: id text detail", "detail 1: more",
                            "detail 2: more", "detail 3: more", "detail 4: more", "detail 5: more"));
}

TEST_F(Retrieval, OneEntryByItsKey)
{
    EXPECT_EQ(bench.read("toy:top/row=4", Content::all),
              R"({"toy:row":[{"id":4,"text":"row 4","detail":{"more":"4"}}]})");
    EXPECT_EQ(bench.read("toy:top/row=9", Content::all), "");
    EXPECT_EQ(bench.read("toy:top/row=3/detail/more", Content::all), R"({"toy:more":"3"})");
}

TEST_F(Retrieval, AListThatFailsFailsForWhoNamedIt)
{
    agt_cb_register_get_callback("toy", "/t:top/t:row", nullptr,
                                 [](Session *, MessageHeader *, GetBlock *) -> Status { return kInternal; });
    for (const char *path : {"toy:top/row", "toy:top/row=4"})
        EXPECT_THROW(bench.read(path, Content::all), Failure) << path;
    EXPECT_THAT(bench.read("toy:top", Content::all), testing::HasSubstr(R"("plain":"a")"));
}

// An answer for a key that the client gave, without the key's value.
Status getRowWithOpenKey(Session *, MessageHeader *, GetBlock *get2cb)
{
    const Object *row = getcb_get_obj(get2cb);
    Value *key = val_new_value();
    val_init_from_template(key, obj_find_child(row, "toy", "id"));
    getcb_add_return_key(get2cb, key);
    Status status = kOk;
    return getcb_add_return_val(get2cb, agt_make_leaf(row, "text", "a row", &status));
}

TEST_F(Retrieval, AKeyThatComesBackOpenIsTheOneAskedFor)
{
    agt_cb_register_get_callback("toy", "/t:top/t:row", nullptr, getRowWithOpenKey);
    EXPECT_EQ(bench.read("toy:top/row=4/text", Content::all), R"({"toy:text":"a row"})");
}

TEST_F(Retrieval, AFailureIsToldToWhoAskedForTheNode)
{
    answer = 274;
    try {
        bench.read("toy:top/state", Content::all);
        FAIL() << "no refusal";
    } catch (const Failure &failure) {
        EXPECT_EQ(failure.errors.at(0).appTag, "274");
        EXPECT_EQ(failure.errors.at(0).path, "/toy:top/state");
    }
    // Who reads everything still gets the rest.
    EXPECT_THAT(bench.read("", Content::all), testing::HasSubstr(R"("plain":"a")"));
}

TEST_F(Retrieval, AnUnregisteredPathIsAskedNoMore)
{
    agt_cb_unregister_callbacks("toy", "/t:top/t:state");
    EXPECT_EQ(bench.read("toy:top/state", Content::all), R"({"toy:state":{}})");
    EXPECT_THAT(asked, ElementsAre());
    agt_cb_unregister_callbacks("toy", "/t:top/t:state"); // harmless
}

TEST(TextsOfTheSwitch, GetThroughInWhateverStateTheyAre)
{
    const std::string no = "\uFFFD";
    const std::pair<std::string, std::string> cases[] = {
        {"a\tb\r\n~\x7f \u00e9 \u20ac \U0001F600", "a\tb\r\n~\x7f \u00e9 \u20ac \U0001F600"},
        {"a\x01\x1b[0m", "a" + no + no + "[0m"},
        {"\xff\xfe", no + no},
        {"cut\xe2\x82", "cut" + no + no},
        {"\xc3(", no + "("},
        {"\xc0\xaf", no + no},                   // "/" written too long
        {"\xe0\x80\xaf", no + no + no},          // the same
        {"\xed\xa0\x80", no + no + no},          // half of a pair
        {"\xef\xbf\xbe", no + no + no},          // no character
        {"\xf4\x90\x80\x80", no + no + no + no}, // beyond the last
    };
    for (const auto &[text, shown] : cases)
        EXPECT_EQ(legible(text), shown);
}

} // namespace
} // namespace test
