#include "switchsim/journal.h"

#include "backend/proto/plugin.pb-c.h"
#include "backend/proto/qos.pb-c.h"

#include <gtest/gtest.h>

#include <thread>

namespace switchsim {
namespace {

using namespace std::chrono_literals;

class JournalTest : public ::testing::Test {
protected:
    JournalTest()
    {
        call.name = "ui_fe_qos_jumbo";
        call.request = &qos_jumbo_request__descriptor;
        call.answer = &qos_jumbo_answer__descriptor;
    }

    std::uint64_t begin(std::size_t size = 0)
    {
        bytes.assign(size, 0);
        backend::Request request;
        request.message = bytes;
        return journal.begin(call, request);
    }
    void add() { journal.finish(begin(), std::nullopt); }

    std::vector<std::uint64_t> numbersAfter(std::uint64_t seq, std::size_t limit = 1000)
    {
        std::vector<std::uint64_t> numbers;
        for (const auto &line : journal.readAfter(seq, limit))
            numbers.push_back(line.seq);
        return numbers;
    }

    Call call;
    backend::Bytes bytes;
    Journal journal;
};

using Numbers = std::vector<std::uint64_t>;

TEST_F(JournalTest, ShowsLinesInTheOrderOfTheRequests)
{
    const auto first = begin(), second = begin();
    journal.finish(second, std::nullopt);
    EXPECT_EQ(numbersAfter(0), Numbers{}) << "the first is not decided";
    EXPECT_FALSE(journal.waitAfter(0, 0ms));
    journal.finish(first, std::nullopt);
    EXPECT_EQ(numbersAfter(0), (Numbers{1, 2}));
}

TEST_F(JournalTest, IsBoundedInNumberAndReadBehindANumber)
{
    for (std::size_t i = 0; i < Journal::kMaxLines + 5; i++)
        add();
    EXPECT_EQ(numbersAfter(0, 2 * Journal::kMaxLines).size(), Journal::kMaxLines);
    EXPECT_EQ(numbersAfter(2, 1), Numbers{6}) << "what is dropped is passed over";
    EXPECT_EQ(numbersAfter(Journal::kMaxLines + 4), Numbers{Journal::kMaxLines + 5});
    EXPECT_EQ(numbersAfter(UINT64_MAX), Numbers{});
}

TEST_F(JournalTest, IsBoundedInMemory)
{
    for (int i = 0; i < 20; i++)
        journal.finish(begin(1U << 20), backend::Bytes(1U << 20));
    const auto lines = journal.readAfter(0, 100);
    std::size_t kept = 0;
    for (const auto &line : lines)
        kept += line.request.size() + line.answer->size();
    EXPECT_LE(kept, Journal::kMaxBytes);
    EXPECT_GE(kept, Journal::kMaxBytes / 2);
    EXPECT_EQ(lines.back().seq, 20U);
    journal.finish(1, std::nullopt); // dropped meanwhile: no harm
}

TEST(JsonText, ShowsBytesThatAreNoText)
{
    std::uint8_t raw[] = {0, 0xff};
    PluginSubEntry sub = PLUGIN_SUB_ENTRY__INIT;
    sub.key = const_cast<char *>("bad utf-8 \xff");
    EXPECT_EQ(asLine(asJson(sub.base)), "{\"key\":\"bad utf-8 \xef\xbf\xbd\"}");
    QosPortId port = QOS_PORT_ID__INIT;
    port.has_name = 1;
    port.name = {2, raw};
    EXPECT_EQ(asJson(port.base), Json::parse(R"({"name": "00ff"})"));
}

} // namespace
} // namespace switchsim
