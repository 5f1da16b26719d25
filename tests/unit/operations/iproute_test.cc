// The routing table as a report: its lines, its pages, and what is left of it after a failure.
#include "network_instance/route_report.h"
#include "network_instance/u_lyn-openconfig-iproute.h"

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/bundle/log_capture.h"
#include "tests/unit/interfaces/cells.h"
#include "tests/unit/operations/rpc_call.h"

#include <algorithm>
#include <deque>

namespace test {
namespace {

using namespace tk;
using switchsim::FaultKind;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kModule = "lyn-openconfig-iproute", kCall = "ui_get_ip_route";
const std::string kAll = R"({"route-table":{"all":[null]}})";

// One answer of the routing daemon, put together by hand.
class Page {
public:
    explicit Page(std::uint32_t total)
    {
        ip_route_get_resp__init(&answer);
        answer.has_total_routes = answer.has_more = 1;
        answer.total_routes = total;
    }
    Page &entry(std::uint32_t address, std::uint32_t length)
    {
        ip_route_entry__init(&entries_.emplace_back());
        entries_.back().address = address;
        entries_.back().prefix_length = length;
        pathLists_.emplace_back();
        return *this;
    }
    Page &path(std::uint32_t gateway, const char *port, std::int32_t distance, std::uint32_t metric,
               std::uint32_t type, std::uint32_t subType, std::uint32_t uptime)
    {
        IpRoutePath &path = paths_.emplace_back();
        ip_route_path__init(&path);
        path = {path.base, 1, gateway, 1, metric, const_cast<char *>(port), 1, distance, 1,
                type,      1, subType, 1, uptime};
        pathLists_.back().push_back(&path);
        return *this;
    }
    const IpRouteGetResp *operator*()
    {
        list_.clear();
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            entries_[i].n_paths = pathLists_[i].size();
            entries_[i].paths = pathLists_[i].data();
            list_.push_back(&entries_[i]);
        }
        answer.n_entries = list_.size();
        answer.entries = list_.data();
        return &answer;
    }

    IpRouteGetResp answer;

private:
    std::deque<IpRouteEntry> entries_;
    std::deque<IpRoutePath> paths_;
    std::deque<std::vector<IpRoutePath *>> pathLists_;
    std::vector<IpRouteEntry *> list_;
};

// The report of a page in a buffer that begins with so many bytes.
std::string reportOf(Page &page, bool isFirst, std::size_t before, std::size_t size = 4096)
{
    auto *buffer = static_cast<char *>(sys_allocate_memory(size));
    std::size_t used = 0;
    EXPECT_EQ(save_resp_to_result_buf(isFirst, before, *page, &buffer, &used, &size), 1);
    EXPECT_LT(used, size);
    EXPECT_EQ(std::strlen(buffer), used);
    const std::string text = buffer;
    sys_free_memory(buffer);
    return text;
}

const std::string kHead = R"(show ip route
Total number of IP routes: 3
Type Codes - B:BGP D:Connected O:OSPF R:RIP S:Static; Cost - Dist/Metric
BGP  Codes - i:iBGP e:eBGP
OSPF Codes - i:Inter Area 1:External Type 1 2:External Type 2
STATIC Codes - v:Inter-VRF
        Destination        Gateway         Port          Cost          Type Uptime
)";

TEST(RouteReport, LineByLine)
{
    Page page(3);
    page.entry(0x0a000000, 24).path(0, "ve 10", 0, 0, 1, 0, 200);
    page.entry(0x0a010000, 16)
        .path(0x0a000001, "ve 10", 110, 20, 4, 2, 18'060)
        .path(0x0a000002, "lag 3", 110, 20, 4, 2, 18'000);
    page.entry(0, 0).path(0xc0a80a01, "management1", 1, 4'294'967'295U, 2, 1, 8'564'400);
    EXPECT_EQ(reportOf(page, true, 0),
              kHead + R"(1       10.0.0.0/24        DIRECT          ve 10         0/0           D    3m20s 
2       10.1.0.0/16        10.0.0.1        ve 10         110/20        O1   5h1m  
        10.1.0.0/16        10.0.0.2        lag 3         110/20        O1   5h0m  
3       0.0.0.0/0          192.168.10.1    management1   1/4294967295  Sv   99d3h 
)");
    const std::string later = reportOf(page, false, 100);
    EXPECT_THAT(later, testing::StartsWith("101     10.0.0.0/24"));
    EXPECT_THAT(later, HasSubstr("\n103     0.0.0.0/0"));
}

TEST(RouteReport, AnEntryWithoutPathsHasNoLineButANumber)
{
    Page page(2);
    page.entry(0x0a000000, 24).entry(0x0a010000, 24).path(0, nullptr, -1, 0, 77, 0, 0);
    EXPECT_EQ(reportOf(page, false, 0),
              "2       10.1.0.0/24        DIRECT                        -1/0          ?    0m0s  \n");
}

// Whatever the buffer's size is at first, the text is the same, and nothing is written behind its end.
TEST(RouteReport, GrowsWhereTheRoomDoesNotDo)
{
    const std::string longPort(3000, 'p');
    Page page(1);
    page.entry(0xffffffff, 32);
    for (std::uint32_t i = 0; i < 40; ++i)
        page.path(i, i == 7 ? longPort.c_str() : "ve 1", 255, i, 6, i, i);
    const std::string whole = reportOf(page, true, 0, 100'000);
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 7 + 40);
    for (std::size_t size = 1; size < 1700; ++size)
        ASSERT_EQ(reportOf(page, true, 0, size), whole) << size;
}

TEST(RouteReport, TypeLetters)
{
    struct Case {
        std::uint32_t type, subType;
        const char *letters;
    };
    for (const Case &c : {Case{0, 0, "L"},
                          {1, 0, "D"},
                          {2, 0, "S"},
                          {2, 1, "Sv"},
                          {2, 2, "S"},
                          {3, 1, "R"},
                          {5, 1, "I"},
                          {7, 1, "L"},
                          {8, 0, "M"},
                          {9, 0, "F"},
                          {6, 0, "Be"},
                          {6, 1, "Bi"},
                          {6, 2, "Be"},
                          {6, 3, "Bi"},
                          {4, 0, "O "},
                          {4, 1, "Oi"},
                          {4, 2, "O1"},
                          {4, 3, "O2"},
                          {4, 4, "Oe"},
                          {4, 5, "O s"},
                          {4, 6, "Ois"},
                          {4, 7, "O1s"},
                          {4, 8, "O?s"},
                          {4, 9, "O?"},
                          {4, 4'000'000'000U, "O?"},
                          {10, 0, "?"},
                          {4'294'967'295U, 1, "?"}}) {
        char text[route::kTypeBytes];
        get_route_type_to_string(c.type, c.subType, text);
        EXPECT_STREQ(text, c.letters) << c.type << " " << c.subType;
    }
}

TEST(RouteReport, Uptimes)
{
    struct Case {
        std::uint32_t seconds;
        const char *text;
    };
    for (const Case &c : {Case{0, "0m0s"},
                          {59, "0m59s"},
                          {60, "1m0s"},
                          {3599, "59m59s"},
                          {3600, "1h0m"},
                          {86'399, "23h59m"},
                          {86'400, "1d0h"},
                          {99 * 86'400 + 3 * 3600 + 59, "99d3h"},
                          {100 * 86'400 - 1, "99d23h"},
                          {100 * 86'400, "100d\n"},
                          {4'294'967'295U, "49710d\n"}}) {
        char text[route::kUptimeBytes];
        format_route_uptime_to_string(text, c.seconds);
        EXPECT_STREQ(text, c.text) << c.seconds;
    }
}

RpcAnswer invoke(HostBench &bench, const std::optional<std::string> &input = kAll)
{
    return callRpc(bench, u_lyn_openconfig_iproute_iproute_invoke, kModule, "iproute", input);
}

struct Table {
    std::string name;
    int routes;
    std::size_t pages;
};
class RouteTable : public testing::TestWithParam<Table> { };

TEST_P(RouteTable, IsReadToItsLastPage)
{
    const Table &c = GetParam();
    SwitchBench bench;
    bench.device().setValue("routes", c.routes);
    const auto output = bench.host().invoke(bench.target(kModule + ":iproute"),
                                            "{\"lyn-openconfig-iproute:input\":" + kAll + "}", Encoding::json,
                                            Encoding::json);
    ASSERT_TRUE(output);
    const RpcAnswer answer = invoke(bench);
    EXPECT_EQ(answer.status, kOk);
    ASSERT_THAT(answer.output, SizeIs(1));
    const std::string &text = answer.output[0];
    EXPECT_THAT(text, HasSubstr("\nTotal number of IP routes: " + std::to_string(c.routes) + "\n"));
    EXPECT_EQ(text.find("show ip route"), text.rfind("show ip route")); // one head
    // Every number once, in order, and one behind the last.
    std::size_t at = 0;
    for (int number = 1; number <= c.routes; ++number)
        ASSERT_NE(at = text.find("\n" + std::to_string(number) + " ", at), text.npos) << number;
    EXPECT_EQ(text.find("\n" + std::to_string(c.routes + 1) + " "), text.npos);
    EXPECT_THAT(bench.sent(), SizeIs(2 * c.pages));
}
const Table kTables[] = {
    {"no_routes", 0, 1}, {"three", 3, 1}, {"a_full_page", 100, 1}, {"five_thousand", 5000, 50}};
INSTANTIATE_TEST_SUITE_P(Table, RouteTable, testing::ValuesIn(kTables), CaseName());

TEST(RouteTablePages, GoOnBehindTheLastEntry)
{
    SwitchBench bench;
    bench.device().setValue("routes", 201);
    EXPECT_EQ(invoke(bench).status, kOk);
    EXPECT_THAT(
        bench.sent(),
        ElementsAre(
            kCall + R"( {"flag":1,"request_kind":8,"all_routes":1,"first_page":1})",
            kCall +
                R"( {"flag":1,"request_kind":8,"next_address":"10.0.99.0","next_prefix_length":24,"all_routes":1,"first_page":0})",
            kCall +
                R"( {"flag":1,"request_kind":8,"next_address":"10.0.199.0","next_prefix_length":24,"all_routes":1,"first_page":0})"));
}

TEST(RouteTablePages, AFailureOnTheThirdKeepsTheTextOfTheFirstTwo)
{
    struct Case {
        FaultKind kind;
        std::string words;
        Status status;
        std::vector<std::string> texts;
        std::string logged;
    };
    for (const Case &c : {Case{FaultKind::null, "", 4, {}, "\nResponse timedout\n"},
                          Case{FaultKind::refuse, "Error: busy\n", 274, {"Error: busy\n"}, ""}}) {
        SwitchBench bench;
        bench.device().setValue("routes", 1000);
        auto fault = faultOf(kCall, c.kind, c.words);
        fault.after = 2;
        bench.device().addFault(fault);
        const LogCapture log;
        const RpcAnswer answer = invoke(bench);
        EXPECT_EQ(answer.status, c.status);
        EXPECT_EQ(answer.texts, c.texts);
        EXPECT_THAT(log.errors(), HasSubstr(c.logged));
        ASSERT_THAT(answer.output, SizeIs(1));
        EXPECT_THAT(answer.output[0], HasSubstr("\n200     10.0.199.0/24 "));
        EXPECT_THAT(answer.output[0], testing::Not(HasSubstr("\n201 ")));
        EXPECT_THAT(bench.sent(), SizeIs(3));
    }
}

TEST(RouteTablePages, AFailureOnTheFirstLeavesNoText)
{
    SwitchBench bench;
    bench.device().addFault(faultOf(kCall, FaultKind::null));
    const RpcAnswer answer = invoke(bench);
    EXPECT_EQ(answer.status, 4);
    EXPECT_THAT(answer.output, IsEmpty());
}

TEST(RouteTablePages, ADaemonThatStaysWhereItIsIsNotAskedForever)
{
    SwitchBench bench;
    Page page(5);
    page.answer.more = IP_ROUTE_MORE;
    page.entry(0x0a000000, 24).path(0, "ve 1", 0, 0, 1, 0, 0);
    const auto transport = std::make_shared<backend::ScriptedTransport>();
    transport->answer = backend::envelopeAround(backend::packed((*page)->base));
    const backend::UseTransport use(transport);
    EXPECT_EQ(invoke(bench).status, kOk);
    EXPECT_THAT(transport->requests, SizeIs(2));

    Page empty(5);
    empty.answer.more = IP_ROUTE_MORE;
    transport->answer = backend::envelopeAround(backend::packed((*empty)->base));
    EXPECT_EQ(invoke(bench).status, kOk);
    EXPECT_THAT(transport->requests, SizeIs(3));
}

TEST(RouteTablePages, NothingStaysBehindBetweenTwoCalls)
{
    SwitchBench bench;
    const RpcAnswer before = invoke(bench);
    ASSERT_EQ(before.status, kOk);
    EXPECT_EQ(invoke(bench).output, before.output);
}

struct Input {
    std::string name;
    std::optional<std::string> input;
    Status status;
    std::vector<std::string> texts;
};
void PrintTo(const Input &c, std::ostream *out)
{
    *out << c.name;
}
class RouteInput : public testing::TestWithParam<Input> { };
TEST_P(RouteInput, IsRefused)
{
    const Input &c = GetParam();
    SwitchBench bench;
    const RpcAnswer answer = invoke(bench, c.input);
    EXPECT_EQ(answer.status, c.status);
    EXPECT_EQ(answer.texts, c.texts);
    EXPECT_THAT(answer.output, IsEmpty());
    EXPECT_THAT(bench.sent(), IsEmpty());
    const auto validated =
        callRpc(bench, u_lyn_openconfig_iproute_iproute_validate, kModule, "iproute", c.input);
    EXPECT_EQ(validated.status, c.input ? 0 : 274); // what is in it is not looked at
}
const Input kInputs[] = {
    {"no_input", std::nullopt, 274, {}},
    {"no_table", "{}", 269, {"Invalid Json for route-table parsed"}},
    {"not_all", R"({"route-table":{}})", 263, {"IP route with ALL option is only supported currently"}},
};
INSTANTIATE_TEST_SUITE_P(Table, RouteInput, testing::ValuesIn(kInputs), CaseName());

} // namespace
} // namespace test
