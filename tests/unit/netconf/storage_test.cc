// What is read back when the files of startup are damaged or cannot be written.
#include "server/files.h"
#include "tests/unit/netconf/stores_bench.h"
#include "toolkit/src/storage.h"

#include <atomic>
#include <csignal>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <thread>

namespace test {
namespace {

using namespace tk;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

void writeAll(const std::filesystem::path &file, const std::string &bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

// Two edits copied to startup, then one, then startup written anew with the same data, then two more.
class Damage : public testing::Test {
protected:
    Damage()
    {
        put(1);
        bench.stores().copy(1, Datastore::running, Datastore::startup);
        put(2);
        bench.stores().copy(1, Datastore::running, Datastore::startup);
        put(3);
        put(4);
    }

    void put(int number)
    {
        const auto body = R"({"toy:number":)" + std::to_string(number) + "}";
        ASSERT_TRUE(bench.toy().put("toy:top/number", body).ok());
    }

    void change(const std::string &name, const std::function<void(std::string &)> &action)
    {
        const auto file = bench.folder.path() / name;
        std::string bytes = agentd::readFile(file);
        action(bytes);
        writeAll(file, bytes);
    }

    static std::string number(int value) { return top("<number>" + std::to_string(value) + "</number>"); }

    // It also goes on from there.
    void expectAfterRestart(int value, const std::string &complaint)
    {
        bench.restart();
        EXPECT_EQ(bench.running(), number(value));
        EXPECT_THAT(testing::PrintToString(bench.complaints), HasSubstr(complaint));
        put(77);
        bench.restart();
        EXPECT_EQ(bench.running(), number(77));
        EXPECT_THAT(bench.complaints, IsEmpty());
    }

    StoresBench bench;
};

void flip(std::string &bytes, std::size_t at)
{
    bytes.at(at) = static_cast<char>(bytes.at(at) ^ 0x20);
}
void flipMiddle(std::string &bytes)
{
    flip(bytes, bytes.size() / 2);
}
void flipLast(std::string &bytes)
{
    flip(bytes, bytes.size() - 1);
}

TEST_F(Damage, ATornLastRecordIsLeftOut)
{
    change("startup.log", [](std::string &bytes) { bytes.resize(bytes.size() - 3); });
    expectAfterRestart(3, "startup.log: record 2 is incomplete");
}

TEST_F(Damage, OfTheLastByteTellsTheChecksum)
{
    change("startup.log", flipLast);
    expectAfterRestart(3, "startup.log: record 2 has a wrong checksum; the state before it is used");
    EXPECT_TRUE(std::filesystem::exists(bench.folder.path() / "startup.log.damaged"));
}

TEST_F(Damage, OfOneOfTheFirstRecordsIsMended)
{
    change("startup.log", [](std::string &bytes) { flip(bytes, 5); });
    expectAfterRestart(4, "one of its first two records is damaged");
}

TEST_F(Damage, OfTheFileFallsBackToTheOneBefore)
{
    change("startup.json", flipMiddle);
    expectAfterRestart(2, "startup.json is not what was written there; the state before it is used");
    EXPECT_TRUE(std::filesystem::exists(bench.folder.path() / "startup.json.damaged"));
}

TEST_F(Damage, OfAllFilesFallsBackToTheFactory)
{
    change("startup.json", flipMiddle);
    change("startup.json.1", flipMiddle);
    bench.restart();
    EXPECT_EQ(bench.running(), "");
    EXPECT_THAT(testing::PrintToString(bench.complaints), HasSubstr("what the factory gives is used"));
}

TEST_F(Damage, ACrashWhileTheFileIsReplacedLosesNothing)
{
    // The new file is there under its name and the new log not yet.
    const auto folder = bench.folder.path();
    const std::string oldLog = agentd::readFile(folder / "startup.log");
    bench.stores().copy(1, Datastore::running, Datastore::startup);
    std::filesystem::rename(folder / "startup.log", folder / "startup.log.new");
    writeAll(folder / "startup.log", oldLog);
    bench.restart();
    EXPECT_EQ(bench.running(), number(4));
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST_F(Damage, AFilePutThereByHandIsUsedAndOneThatIsNoStartupStopsTheStart)
{
    const auto folder = bench.folder.path();
    writeAll(folder / "startup.json", R"({"toy:top":{"number":9}})");
    std::filesystem::remove(folder / "startup.log");
    bench.restart();
    EXPECT_EQ(bench.running(), number(9));
    EXPECT_THAT(bench.complaints, IsEmpty());
    writeAll(folder / "startup.json", "{ nothing");
    std::filesystem::remove(folder / "startup.log");
    EXPECT_THROW(bench.restart(), StartFailure);
}

// A log that grows beyond the file is turned into a new file, which a damaged one can be made of again.
TEST(Compaction, KeepsTheDataAlsoWhenTheNewFileIsDamaged)
{
    StoresBench bench("{}", 500);
    const auto file = bench.folder.path() / "startup.json";
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(bench.toy().put("toy:top/number", R"({"toy:number":)" + std::to_string(i) + "}").ok());
    ASSERT_TRUE(std::filesystem::exists(file));
    EXPECT_LT(std::filesystem::file_size(bench.folder.path() / "startup.log"), 1500U);
    std::string bytes = agentd::readFile(file);
    flipMiddle(bytes);
    writeAll(file, bytes);
    bench.restart();
    EXPECT_EQ(bench.running(), top("<number>39</number>"));
    EXPECT_THAT(testing::PrintToString(bench.complaints), HasSubstr("it is made anew"));
}

// Files may not grow any more, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(std::uintmax_t size)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now{size, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit before_{};
};

TEST(FullDiskRefuses, AnEditBeforeAnyCallbackHearsOfIt)
{
    StoresBench bench;
    const auto log = bench.folder.path() / "startup.log";
    ASSERT_TRUE(bench.toy().put("toy:top/number", R"({"toy:number":1})").ok());
    bench.toy().told();
    {
        // A part of the next record still fits.
        const FullDisk full(std::filesystem::file_size(log) + 10);
        const Outcome refused = bench.toy().put("toy:top/number", R"({"toy:number":2})");
        EXPECT_EQ(refused.tag(), "operation-failed");
        EXPECT_THAT(refused.message(),
                    AllOf(HasSubstr("Startup cannot be written"), HasSubstr("startup.log")));
        EXPECT_THAT(bench.toy().told(), IsEmpty());
        EXPECT_TRUE(
            bench.attempt([&] { bench.stores().copy(1, Datastore::running, Datastore::startup); }).ok());
    }
    EXPECT_TRUE(bench.toy().put("toy:top/plain", R"({"toy:plain":"x"})").ok());
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>x</plain><number>1</number>"));
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST(Storage, TellsEverybodyWhoeverSyncs)
{
    const agentd::test::TemporaryFolder folder;
    tk::Storage storage(folder.path());
    std::vector<std::string> complaints;
    storage.open(complaints);
    std::atomic<int> told = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread)
        threads.emplace_back([&] {
            for (int i = 0; i < 100; ++i)
                storage.whenSaved(
                    storage.append("an edit"), [&](const std::string *reason) { told += reason ? 0 : 1; },
                    i % 2 == 0);
        });
    for (std::thread &thread : threads)
        thread.join();
    storage.finishSaving();
    EXPECT_EQ(told, 400);
}

} // namespace
} // namespace test
