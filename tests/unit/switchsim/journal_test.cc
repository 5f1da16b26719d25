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

TEST_F(JournalTest, NumbersFromOneAndReadsBehindANumber)
{
    for (int i = 0; i < 4; i++)
        add();
    EXPECT_EQ(numbersAfter(0), (Numbers{1, 2, 3, 4}));
    EXPECT_EQ(numbersAfter(2), (Numbers{3, 4}));
    EXPECT_EQ(numbersAfter(0, 2), (Numbers{1, 2}));
    EXPECT_EQ(numbersAfter(4), Numbers{});
    EXPECT_EQ(numbersAfter(UINT64_MAX), Numbers{});
}

TEST_F(JournalTest, ShowsLinesInTheOrderOfTheRequests)
{
    const auto first = begin(), second = begin();
    journal.finish(second, std::nullopt);
    EXPECT_EQ(numbersAfter(0), Numbers{}) << "the first is not decided";
    EXPECT_FALSE(journal.waitAfter(0, 0ms));
    journal.finish(first, std::nullopt);
    EXPECT_EQ(numbersAfter(0), (Numbers{1, 2}));
}

TEST_F(JournalTest, IsBoundedInNumber)
{
    for (std::size_t i = 0; i < Journal::kMaxLines + 5; i++)
        add();
    const auto numbers = numbersAfter(0, 2 * Journal::kMaxLines);
    ASSERT_EQ(numbers.size(), Journal::kMaxLines);
    EXPECT_EQ(numbers.front(), 6U);
    EXPECT_EQ(numbersAfter(2, 1), Numbers{6}) << "what is dropped is passed over";
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

TEST_F(JournalTest, WakesWhoWaits)
{
    std::thread writer([this] {
        std::this_thread::sleep_for(20ms);
        add();
    });
    EXPECT_TRUE(journal.waitAfter(0, 10s));
    writer.join();
    EXPECT_FALSE(journal.waitAfter(1, 1ms));
}

TEST(JsonText, ShowsEveryKindOfField)
{
    std::uint8_t raw[] = {0, 0xff};
    PluginSubEntry sub = PLUGIN_SUB_ENTRY__INIT;
    sub.key = const_cast<char *>("bad utf-8 \xff");
    EXPECT_EQ(asLine(asJson(sub.base)), "{\"key\":\"bad utf-8 \xef\xbf\xbd\"}");
    QosPortId port = QOS_PORT_ID__INIT;
    EXPECT_EQ(asJson(port.base), Json::object());
    port.has_name = 1;
    EXPECT_EQ(asJson(port.base), Json::parse(R"({"name": ""})"));
    port.name = {2, raw};
    EXPECT_EQ(asJson(port.base), Json::parse(R"({"name": "00ff"})"));
}

// No message of ours has all of these yet, so the record is made by hand.
struct Handmade {
    ProtobufCMessage base;
    protobuf_c_boolean hasMac;
    ProtobufCBinaryData mac;
    protobuf_c_boolean hasAddress;
    std::uint32_t address;
    protobuf_c_boolean hasIpv6;
    ProtobufCBinaryData ipv6;
    char *password;
    std::size_t nNumbers;
    std::int32_t *numbers;
};

ProtobufCFieldDescriptor fieldOf(const char *name, ProtobufCLabel label, ProtobufCType type,
                                 std::size_t quantifier, std::size_t offset)
{
    ProtobufCFieldDescriptor field{};
    field.name = name;
    field.label = label;
    field.type = type;
    field.quantifier_offset = static_cast<unsigned>(quantifier);
    field.offset = static_cast<unsigned>(offset);
    return field;
}

TEST(JsonText, ShowsAddressesAsTextAndSecretsAsLengths)
{
    constexpr auto optional = PROTOBUF_C_LABEL_OPTIONAL;
    const ProtobufCFieldDescriptor fields[] = {
        fieldOf("mac_address", optional, PROTOBUF_C_TYPE_BYTES, offsetof(Handmade, hasMac),
                offsetof(Handmade, mac)),
        fieldOf("address", optional, PROTOBUF_C_TYPE_FIXED32, offsetof(Handmade, hasAddress),
                offsetof(Handmade, address)),
        fieldOf("ipv6", optional, PROTOBUF_C_TYPE_BYTES, offsetof(Handmade, hasIpv6),
                offsetof(Handmade, ipv6)),
        fieldOf("password", optional, PROTOBUF_C_TYPE_STRING, 0, offsetof(Handmade, password)),
        fieldOf("numbers", PROTOBUF_C_LABEL_REPEATED, PROTOBUF_C_TYPE_INT32, offsetof(Handmade, nNumbers),
                offsetof(Handmade, numbers)),
    };
    ProtobufCMessageDescriptor descriptor{};
    descriptor.n_fields = std::size(fields);
    descriptor.fields = fields;
    std::uint8_t mac[] = {0, 0x1b, 0xff, 1, 2, 3};
    std::uint8_t ipv6[16] = {0x20, 1, 0x0d, 0xb8};
    char password[] = "hunter22";
    std::int32_t numbers[] = {1, -2};
    const Handmade record{
        {&descriptor, 0, nullptr}, 1, {6, mac}, 1, 0x0a000001, 1, {16, ipv6}, password, 2, numbers};
    EXPECT_EQ(asLine(asJson(record.base)),
              R"({"mac_address":"00:1b:ff:01:02:03","address":"10.0.0.1",)"
              R"("ipv6":"2001:db8::","password":"<8 bytes>","numbers":[1,-2]})");
}

} // namespace
} // namespace switchsim
