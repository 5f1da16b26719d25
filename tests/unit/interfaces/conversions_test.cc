// The words and numbers of interfaces, and the texts about bad names.
#include "interface/conversions.h"
#include "interface/interface_name.h"
#include "tests/unit/bundle/callback_test.h"
#include "toolkit/src/request.h"

namespace test {
namespace {

using namespace interfaces;

struct Words {
    int (*codeOf)(const char *);
    char *(*textOf)(int);
    std::vector<std::pair<int, const char *>> both; // the same both ways
    const char *unknown;                            // what a number without a word reads as
};

TEST(Conversions, GoBothWays)
{
    const Words all[] = {
        {get_interface_type_from_string,
         get_interface_type_string,
         {{1, "ethernetCsmacd"}, {2, "softwareLoopback"}, {4, "l3ipvlan"}, {9, "ieee8023adLag"}},
         "other"},
        {get_port_speed,
         get_port_speed_string,
         {{1, "SPEED_AUTO"}, {4, "SPEED_1GB"}, {5, "SPEED_40GB"}, {7, "SPEED_10GB"}, {12, "SPEED_OPTIC"}},
         "SPEED_UNKNOWN"},
        {get_port_dupex, get_port_dupex_string, {{1, "HALF"}, {2, "FULL"}}, "FULL"},
        {get_port_clock, get_port_clock_string, {{1, "master"}, {2, "slave"}}, "none"},
    };
    for (const Words &words : all) {
        for (const auto &[code, text] : words.both) {
            EXPECT_STREQ(words.textOf(code), text);
            EXPECT_EQ(words.codeOf(text), code);
        }
        for (const int code : {-1, 0, 13})
            EXPECT_STREQ(words.textOf(code), words.unknown) << code;
        EXPECT_EQ(words.codeOf("none of these"), 0);
        EXPECT_EQ(words.codeOf(nullptr), 0);
    }
    // Auto is read and never written.
    EXPECT_EQ(get_port_clock("auto"), 3);
    EXPECT_STREQ(get_port_clock_string(3), "slave");
    EXPECT_STREQ(get_state_string(0), "DOWN");
    EXPECT_STREQ(get_state_string(-1), "UP");
}

TEST(InterfaceName, HasANumberBehindItsWord)
{
    EXPECT_EQ(numberInName("ve 20"), 20);
    EXPECT_EQ(numberInName("  anything   7 more "), 7);
    EXPECT_EQ(numberInName("loopback 70000"), 70000);
    EXPECT_EQ(numberInName("ve x"), 0);
    for (const char *bad : {"ve", "ve ", " ve20 ", "", "   "})
        EXPECT_FALSE(numberInName(bad)) << '"' << bad << '"';
    EXPECT_FALSE(numberInName(nullptr));
}

Texts refusals(const char *name, const NameTexts &texts)
{
    RequestFrame frame;
    const frame::EditCall call{&frame.session, &frame.request, validate, create, nullptr, nullptr};
    const Status status = checkName(call, name, texts);
    Texts said;
    for (const auto &record : frame.header.records) {
        EXPECT_EQ(record.status, kInternal);
        said.push_back(record.text);
    }
    EXPECT_EQ(status, said.empty() ? kOk : kInternal);
    return said;
}

TEST(InterfaceName, IsCheckedWhereItIsAKey)
{
    const std::string start = "No Space in starting of key",
                      end = "Space should not present at the end of name key",
                      port = "Should have single space between ethernet and STACKID/SLOT/PORT",
                      listPort = "Single space between ethernet and STACKID/SLOT/PORT",
                      lag = "Should have single space between lag and DECIMAL",
                      listLag = "Single space present between lag and DECIMAL",
                      vlan = "Should have single space between vlan and DECIMAL";
    struct {
        const char *name;
        Texts binding, vlanList;
    } cases[] = {
        {"ethernet 1/1/1", {}, {}},
        {"lag 5", {}, {}},
        {"", {}, {}},
        {"ethernet 1/1/1 to 1/1/4",
         {"Multiple interfaces Not allowded in a interface key"},
         {"Multiple interfaces Not allowded in a name key"}},
        {"ethernet 1/1/1 ", {end}, {end}},
        {" ethernet 1/1/1", {start, port}, {start, listPort}},
        {"ethernet1/1/1", {start}, {start}},
        {"ethernet  1/1/1", {port}, {listPort}},
        {"xlag 5", {start, lag}, {start, listLag}},
        {"vlan  7", {vlan}, {}},
        {"vlan7", {start}, {}},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(refusals(c.name, kBindingTexts), c.binding) << c.name;
        EXPECT_EQ(refusals(c.name, kVlanListTexts), c.vlanList) << c.name;
    }
}

} // namespace
} // namespace test
