// The routing table as a report: its lines, its pages, and what is left of it after a failure.
#include "network_instance/route_report.h"
#include "network_instance/u_lyn-openconfig-iproute.h"

#include "tests/unit/backend/scripted_transport.h"
#include "tests/unit/bundle/callback_test.h"
#include "tests/unit/bundle/rpc_call.h"

#include <algorithm>
#include <deque>

namespace test {
namespace {

const std::string kModule = "lyn-openconfig-iproute", kCall = "ui_get_ip_route",
                  kAll = R"({"route-table":{"all":[null]}})";

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
    using Case = std::tuple<std::uint32_t, std::uint32_t, const char *>;
    for (const auto &[type, subType, letters] : {Case{0, 0, "L"}, {1, 0, "D"},   {2, 0, "S"},
                                                 {2, 1, "Sv"},    {2, 2, "S"},   {3, 1, "R"},
                                                 {5, 1, "I"},     {6, 2, "Be"},  {6, 3, "Bi"},
                                                 {7, 1, "L"},     {8, 0, "M"},   {9, 0, "F"},
                                                 {4, 0, "O "},    {4, 1, "Oi"},  {4, 4, "Oe"},
                                                 {4, 5, "O s"},   {4, 7, "O1s"}, {4, 8, "O?s"},
                                                 {4, 9, "O?"},    {10, 0, "?"},  {4'294'967'295U, 1, "?"}}) {
        char text[route::kTypeBytes];
        get_route_type_to_string(type, subType, text);
        EXPECT_STREQ(text, letters) << type << " " << subType;
    }
}

TEST(RouteReport, Uptimes)
{
    using Case = std::pair<std::uint32_t, const char *>;
    for (const auto &[seconds, expected] : {Case{59, "0m59s"},
                                            {60, "1m0s"},
                                            {3599, "59m59s"},
                                            {3600, "1h0m"},
                                            {86'399, "23h59m"},
                                            {86'400, "1d0h"},
                                            {100 * 86'400 - 1, "99d23h"},
                                            {100 * 86'400, "100d\n"},
                                            {4'294'967'295U, "49710d\n"}}) {
        char text[route::kUptimeBytes];
        format_route_uptime_to_string(text, seconds);
        EXPECT_STREQ(text, expected) << seconds;
    }
}

RpcAnswer invoke(HostBench &bench, const MaybeText &input = kAll)
{
    return callRpc(bench, u_lyn_openconfig_iproute_iproute_invoke, kModule, "iproute", input);
}

TEST(RouteTable, IsReadToItsLastPage)
{
    for (const auto &[routes, pages] : {std::pair<int, std::size_t>{0, 1}, {100, 1}, {5000, 50}}) {
        SwitchBench bench;
        bench.device().setValue("routes", routes);
        const RpcAnswer answer = invoke(bench);
        ASSERT_THAT(answer.output, SizeIs(1));
        const std::string &text = answer.output[0];
        EXPECT_THAT(text, HasSubstr("\nTotal number of IP routes: " + std::to_string(routes) + "\n"));
        EXPECT_EQ(text.find("show ip route"), text.rfind("show ip route")); // one head
        // Every number once, in order, and one behind the last.
        std::size_t at = 0;
        for (int number = 1; number <= routes; ++number)
            ASSERT_NE(at = text.find("\n" + std::to_string(number) + " ", at), text.npos) << number;
        EXPECT_EQ(text.find("\n" + std::to_string(routes + 1) + " "), text.npos);
        EXPECT_THAT(bench.sent(), SizeIs(pages));
        EXPECT_EQ(invoke(bench), answer); // nothing stays behind between two calls
    }
}

TEST(RouteTablePages, GoOnBehindTheLastEntry)
{
    SwitchBench bench;
    bench.device().setValue("routes", 201);
    EXPECT_EQ(invoke(bench).status, kOk);
    const auto asked = [](const std::string &next, int first) {
        return kCall + R"( {"flag":1,"request_kind":8,)" +
            (next.empty() ? "" : R"("next_address":")" + next + R"(","next_prefix_length":24,)") +
            R"("all_routes":1,"first_page":)" + std::to_string(first) + "}";
    };
    EXPECT_THAT(bench.sent(), ElementsAre(asked("", 1), asked("10.0.99.0", 0), asked("10.0.199.0", 0)));
}

TEST(RouteTablePages, AFailureOnTheThirdKeepsTheTextOfTheFirstTwo)
{
    for (const auto &[given, status, texts, logged] :
         {std::tuple<switchsim::Fault, Status, Texts, std::string>{
              noAnswer(kCall), 4, {}, "\nResponse timedout\n"},
          {refusal(kCall, "Error: busy\n"), 274, {"Error: busy\n"}, ""}}) {
        SwitchBench bench;
        bench.device().setValue("routes", 1000);
        auto fault = given;
        fault.after = 2;
        bench.device().addFault(fault);
        const LogCapture log;
        const RpcAnswer answer = invoke(bench);
        EXPECT_EQ(answer.status, status);
        EXPECT_EQ(answer.texts, texts);
        EXPECT_THAT(log.errors(), HasSubstr(logged));
        ASSERT_THAT(answer.output, SizeIs(1));
        EXPECT_THAT(answer.output[0], HasSubstr("\n200     10.0.199.0/24 "));
        EXPECT_THAT(answer.output[0], Not(HasSubstr("\n201 ")));
        EXPECT_THAT(bench.sent(), SizeIs(3));
        strike(bench, noAnswer(kCall));
        EXPECT_EQ(invoke(bench), RpcAnswer{4}); // on the first it leaves no text
    }
}

TEST(RouteTablePages, ADaemonThatStaysWhereItIsIsNotAskedForever)
{
    SwitchBench bench;
    Page page(5), empty(5);
    page.answer.more = empty.answer.more = IP_ROUTE_MORE;
    page.entry(0x0a000000, 24).path(0, "ve 1", 0, 0, 1, 0, 0);
    const auto transport = std::make_shared<backend::ScriptedTransport>();
    const backend::UseTransport use(transport);
    transport->answer = backend::envelopeAround(backend::packed((*page)->base));
    EXPECT_EQ(invoke(bench).status, kOk);
    EXPECT_THAT(transport->requests, SizeIs(2));
    transport->answer = backend::envelopeAround(backend::packed((*empty)->base));
    EXPECT_EQ(invoke(bench).status, kOk);
    EXPECT_THAT(transport->requests, SizeIs(3));
}

TEST(RouteInput, IsRefused)
{
    SwitchBench bench;
    for (const auto &[input, answer] :
         {std::pair<MaybeText, RpcAnswer>{std::nullopt, {274}},
          {"{}", {269, {"Invalid Json for route-table parsed"}}},
          {R"({"route-table":{}})", {263, {"IP route with ALL option is only supported currently"}}}}) {
        EXPECT_EQ(invoke(bench, input), answer);
        EXPECT_THAT(bench.sent(), SizeIs(0));
        // What is in it is not looked at before.
        EXPECT_EQ(callRpc(bench, u_lyn_openconfig_iproute_iproute_validate, kModule, "iproute", input).status,
                  input ? 0 : 274);
    }
}

} // namespace
} // namespace test
