// Candidate, locks, commits and startup, with RESTCONF edits beside them.
#include "tests/unit/netconf/stores_bench.h"

#include <gmock/gmock.h>
#include <random>
#include <thread>

namespace test {
namespace {

using namespace tk;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr SessionId kMine = 1, kOther = 2;

std::string plain(const std::string &value)
{
    return top("<plain>" + value + "</plain>");
}

class Candidate : public testing::Test {
protected:
    Outcome commit(CommitRequest request = {}, SessionId session = kMine)
    {
        return bench.attempt([&] { bench.stores().commit(session, request); });
    }

    StoresBench bench{R"({"plain":"a","config":{"limit":3}})"};
    const std::string before = bench.running();
};

TEST_F(Candidate, ReachesCallbacksOnlyWhenItIsCommitted)
{
    EXPECT_TRUE(bench.edit(Datastore::candidate, plain("b")).ok());
    EXPECT_TRUE(bench
                    .edit(Datastore::candidate,
                          top("<config nc:operation='replace'><enabled>true</enabled></config>"))
                    .ok());
    EXPECT_EQ(bench.read(Datastore::candidate),
              top("<plain>b</plain><config><enabled>true</enabled></config>"));
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.toy().told(), IsEmpty());
    EXPECT_TRUE(commit().ok());
    EXPECT_EQ(bench.running(), top("<plain>b</plain><config><enabled>true</enabled></config>"));
    // The difference is told, whatever the edits of the candidate asked for.
    EXPECT_THAT(bench.toy().told("apply"),
                ElementsAre("merge /toy:top plain:merge=b",
                            "merge /toy:top/config enabled:create=true limit:delete"));
}

TEST_F(Candidate, OfWhichACallbackRefusesAPartLeavesRunningAndItself)
{
    bench.edit(Datastore::candidate, top("<plain>b</plain><entry><name>x</name></entry>"));
    bench.toy().failAt("apply", "/toy:top/entry[name='x']", kDeviceText, "no room");
    EXPECT_EQ(commit().message(), "no room");
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.read(Datastore::candidate), HasSubstr("<plain>b</plain>"));
    bench.toy().failNowhere();
    EXPECT_TRUE(commit().ok());
}

TEST_F(Candidate, IsCheckedByValidateAlsoByCallbacks)
{
    bench.edit(Datastore::candidate, plain("b"));
    bench.toy().failAt("validate", "/toy:top", kInvalidValue, "not b");
    EXPECT_EQ(bench.attempt([&] { bench.stores().validate(Datastore::candidate); }).message(), "not b");
    EXPECT_EQ(bench.running(), before);
    EXPECT_TRUE(bench.attempt([&] { bench.stores().validate(Datastore::running); }).ok());
}

TEST_F(Candidate, FollowsRunningUntilItIsEditedAndAfterItWasDiscarded)
{
    EXPECT_TRUE(bench.toy().put("toy:top/plain", R"({"toy:plain":"r"})").ok());
    EXPECT_THAT(bench.read(Datastore::candidate), HasSubstr("<plain>r</plain>"));
    bench.edit(Datastore::candidate, top("<number>1</number>"));
    bench.toy().put("toy:top/plain", R"({"toy:plain":"s"})");
    EXPECT_THAT(bench.read(Datastore::candidate), HasSubstr("<plain>r</plain>"));
    bench.stores().discardChanges(kMine);
    EXPECT_EQ(bench.read(Datastore::candidate), bench.running());
    EXPECT_TRUE(commit().ok());
    EXPECT_THAT(bench.running(), HasSubstr("<plain>s</plain>"));
}

TEST_F(Candidate, KeepsNothingOfAnEditThatFails)
{
    bench.edit(Datastore::candidate, top("<number>1</number>"));
    EXPECT_EQ(bench.edit(Datastore::candidate, top("<plain>b</plain><marked nc:operation='delete'/>")).tag(),
              "data-missing");
    EXPECT_THAT(bench.read(Datastore::candidate), HasSubstr("<plain>a</plain>"));
    EXPECT_THAT(bench.read(Datastore::candidate), HasSubstr("<number>1</number>"));
}

TEST_F(Candidate, CanBeCopiedFromAndTo)
{
    auto &stores = bench.stores();
    stores.copy(kMine, configElement(plain("c")), Datastore::candidate);
    EXPECT_EQ(bench.read(Datastore::candidate), plain("c"));
    stores.copy(kMine, Datastore::candidate, Datastore::startup);
    stores.copy(kMine, Datastore::running, Datastore::candidate);
    EXPECT_EQ(bench.read(Datastore::candidate), before);
    stores.copy(kMine, Datastore::startup, Datastore::running);
    EXPECT_EQ(bench.running(), plain("c"));
    EXPECT_THAT(bench.toy().told("apply"),
                ElementsAre("replace /toy:top plain:merge=c", "replace /toy:top/config limit:delete"));
}

// Commits that have to be confirmed

TEST_F(Candidate, ThatIsNotConfirmedInTimeIsTakenBackThroughTheCallbacks)
{
    bench.edit(Datastore::candidate, plain("b"));
    EXPECT_TRUE(commit({.confirmed = true, .timeout = std::chrono::seconds(0)}).ok());
    EXPECT_THAT(bench.running(), HasSubstr("<plain>b</plain>"));
    ASSERT_TRUE(bench.stores().confirmDeadline());
    bench.toy().told();
    bench.stores().takeBackUnconfirmed();
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.toy().told("apply"), ElementsAre("merge /toy:top plain:merge=a"));
    EXPECT_FALSE(bench.stores().confirmDeadline());
}

TEST_F(Candidate, ThatIsConfirmedStays)
{
    bench.edit(Datastore::candidate, plain("b"));
    commit({.confirmed = true});
    bench.stores().takeBackUnconfirmed(); // it is not time
    EXPECT_TRUE(commit().ok());
    EXPECT_FALSE(bench.stores().confirmDeadline());
    bench.stores().sessionEnded(kMine);
    EXPECT_THAT(bench.running(), HasSubstr("<plain>b</plain>"));
}

TEST_F(Candidate, ThatIsFollowedUpIsTakenBackToWhereItBegan)
{
    bench.edit(Datastore::candidate, plain("b"));
    commit({.confirmed = true});
    bench.edit(Datastore::candidate, plain("c"));
    EXPECT_TRUE(commit({.confirmed = true}).ok());
    EXPECT_THAT(bench.running(), HasSubstr("<plain>c</plain>"));
    bench.stores().sessionEnded(kMine); // nobody can confirm it any more
    EXPECT_EQ(bench.running(), before);
}

TEST_F(Candidate, ThatOthersHaveNotConfirmedIsTheirs)
{
    bench.edit(Datastore::candidate, plain("b"));
    commit({.confirmed = true});
    EXPECT_EQ(commit({}, kOther).tag(), "in-use");
    EXPECT_EQ(bench.attempt([&] { bench.stores().lock(kOther, Datastore::running); }).tag(), "lock-denied");
    EXPECT_EQ(bench.attempt([&] { bench.stores().cancelCommit(kOther, std::nullopt); }).tag(), "in-use");
    EXPECT_TRUE(bench.attempt([&] { bench.stores().cancelCommit(kMine, std::nullopt); }).ok());
    EXPECT_EQ(bench.running(), before);
    EXPECT_EQ(bench.attempt([&] { bench.stores().cancelCommit(kMine, std::nullopt); }).tag(),
              "operation-failed");
}

TEST_F(Candidate, ThatPersistsOutlivesItsSessionAndWantsItsToken)
{
    bench.edit(Datastore::candidate, plain("b"));
    commit({.confirmed = true, .persist = "token"});
    bench.stores().sessionEnded(kMine);
    EXPECT_THAT(bench.running(), HasSubstr("<plain>b</plain>"));
    EXPECT_EQ(commit({}, kOther).tag(), "invalid-value");
    EXPECT_EQ(commit({.persistId = "other"}, kOther).tag(), "invalid-value");
    EXPECT_EQ(bench.attempt([&] { bench.stores().cancelCommit(kOther, "other"); }).tag(), "invalid-value");
    EXPECT_TRUE(commit({.persistId = "token"}, kOther).ok());
    EXPECT_FALSE(bench.stores().confirmDeadline());
    EXPECT_EQ(commit({.persistId = "token"}, kOther).tag(), "invalid-value");
}

// Locks

struct Attempt {
    std::string name;
    Datastore locked;
    std::function<void(StoresBench &, SessionId)> action;
};

class Locked : public testing::TestWithParam<Attempt> { };

TEST_P(Locked, RefusesOthersAndNotTheHolder)
{
    StoresBench bench;
    bench.stores().lock(kMine, GetParam().locked);
    const auto asSession = [&](SessionId session) {
        return bench.attempt([&] { GetParam().action(bench, session); });
    };
    const Outcome refused = asSession(kOther);
    EXPECT_EQ(refused.tag(), "in-use");
    EXPECT_THAT(refused.message(), HasSubstr("ession 1 "));
    EXPECT_THAT(bench.toy().told(), IsEmpty());
    EXPECT_TRUE(asSession(kMine).ok());
    bench.stores().unlock(kMine, GetParam().locked);
    EXPECT_TRUE(asSession(kOther).ok());
}

void editOf(StoresBench &bench, Datastore store, SessionId session)
{
    bench.stores().edit(session, {.target = store, .config = configElement(plain("x"))});
}

const Attempt kAttempts[] = {
    {"edit_of_running", Datastore::running,
     [](auto &bench, auto session) { editOf(bench, Datastore::running, session); }},
    {"edit_of_the_candidate", Datastore::candidate,
     [](auto &bench, auto session) { editOf(bench, Datastore::candidate, session); }},
    {"commit_with_running_locked", Datastore::running,
     [](auto &bench, auto session) { bench.stores().commit(session, {}); }},
    {"commit_with_the_candidate_locked", Datastore::candidate,
     [](auto &bench, auto session) { bench.stores().commit(session, {}); }},
    {"discard", Datastore::candidate,
     [](auto &bench, auto session) { bench.stores().discardChanges(session); }},
    {"copy_to_running", Datastore::running,
     [](auto &bench, auto session) {
         bench.stores().copy(session, Datastore::candidate, Datastore::running);
     }},
    {"copy_to_startup", Datastore::startup,
     [](auto &bench, auto session) { bench.stores().copy(session, Datastore::running, Datastore::startup); }},
    {"removal_of_startup", Datastore::startup,
     [](auto &bench, auto session) { bench.stores().removeStartup(session); }},
};

INSTANTIATE_TEST_SUITE_P(Table, Locked, testing::ValuesIn(kAttempts), CaseName());

TEST(Locks, OfRunningAndStartupRefuseRestconf)
{
    StoresBench bench;
    for (const Datastore store : {Datastore::running, Datastore::startup}) {
        bench.stores().lock(kMine, store);
        const Outcome refused = bench.toy().put("toy:top/plain", R"({"toy:plain":"x"})");
        EXPECT_EQ(refused.tag(), "in-use");
        EXPECT_THAT(bench.toy().told(), IsEmpty());
        bench.stores().sessionEnded(kMine);
    }
    EXPECT_TRUE(bench.toy().put("toy:top/plain", R"({"toy:plain":"x"})").ok());
}

TEST(Locks, AreGrantedOnceAndGivenBackByTheirHolder)
{
    StoresBench bench;
    const auto lock = [&](SessionId session, Datastore store) {
        return bench.attempt([&] { bench.stores().lock(session, store); });
    };
    const auto unlock = [&](SessionId session) {
        return bench.attempt([&] { bench.stores().unlock(session, Datastore::running); });
    };
    EXPECT_EQ(unlock(kMine).tag(), "operation-failed");
    EXPECT_TRUE(lock(kMine, Datastore::running).ok());
    EXPECT_EQ(lock(kMine, Datastore::running).tag(), "lock-denied");
    EXPECT_EQ(lock(kOther, Datastore::running).tag(), "lock-denied");
    EXPECT_TRUE(lock(kOther, Datastore::startup).ok());
    EXPECT_EQ(unlock(kOther).tag(), "operation-failed");
    EXPECT_EQ(bench.stores().lockOf(Datastore::running)->session, kMine);
    bench.stores().sessionEnded(kMine);
    EXPECT_TRUE(lock(kOther, Datastore::running).ok());
}

TEST(Locks, OfACandidateWithChangesAreDeniedAndThoseHeldDiscardThem)
{
    StoresBench bench;
    bench.edit(Datastore::candidate, plain("x"), kOther);
    EXPECT_EQ(bench.attempt([&] { bench.stores().lock(kMine, Datastore::candidate); }).tag(), "lock-denied");
    bench.stores().discardChanges(kMine);
    bench.stores().lock(kMine, Datastore::candidate);
    bench.edit(Datastore::candidate, plain("y"), kMine);
    bench.stores().unlock(kMine, Datastore::candidate);
    EXPECT_EQ(bench.read(Datastore::candidate), "");
    bench.stores().lock(kMine, Datastore::candidate);
    bench.edit(Datastore::candidate, plain("z"), kMine);
    bench.stores().sessionEnded(kMine);
    EXPECT_EQ(bench.read(Datastore::candidate), "");
}

// Startup

class Startup : public testing::Test {
protected:
    Outcome put(const std::string &path, const std::string &body) { return bench.toy().put(path, body); }

    StoresBench bench{R"({"plain":"factory"})"};
};

TEST_F(Startup, KeepsWhatRestconfEditedAndWhatWasCopied)
{
    EXPECT_EQ(bench.read(Datastore::startup), "");
    EXPECT_TRUE(put("toy:top/number", R"({"toy:number":1})").ok());
    EXPECT_EQ(bench.read(Datastore::startup), top("<plain>factory</plain><number>1</number>"));
    bench.edit(Datastore::running, plain("netconf"));
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>factory</plain><number>1</number>"));
    bench.edit(Datastore::running, plain("netconf"));
    bench.stores().copy(kMine, Datastore::running, Datastore::startup);
    bench.edit(Datastore::candidate, top("<number>9</number>"));
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>netconf</plain><number>1</number>"));
    EXPECT_EQ(bench.read(Datastore::candidate), bench.running());
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST_F(Startup, TakesAnEditByRestconfAndNotTheOthersOfRunning)
{
    put("toy:top/config", R"({"toy:config":{"limit":1}})");
    bench.edit(Datastore::running, top("<entry><name>unsaved</name><own>1</own></entry>"));
    EXPECT_TRUE(put("toy:top/config/enabled", R"({"toy:enabled":true})").ok());
    // What is not there in startup either way.
    EXPECT_TRUE(bench.toy().remove("toy:top/entry=unsaved").ok());
    // An entry that startup lacks comes with what the edit says of it.
    bench.edit(Datastore::running, top("<entry><name>unsaved</name><own>1</own></entry>"));
    EXPECT_TRUE(put("toy:top/entry=unsaved/config", R"({"toy:config":{"value":"v"}})").ok());
    EXPECT_TRUE(bench.toy().remove("toy:top/entry=unsaved/own").ok());
    bench.restart();
    EXPECT_EQ(bench.running(),
              top("<plain>factory</plain><config><enabled>true</enabled><limit>1</limit></config>"
                  "<entry><name>unsaved</name><config><value>v</value></config></entry>"));
}

TEST_F(Startup, ThatIsRemovedBeginsWithTheFactoryAgain)
{
    put("toy:top/number", R"({"toy:number":1})");
    bench.stores().copy(kMine, Datastore::running, Datastore::startup);
    bench.stores().removeStartup(kMine);
    EXPECT_EQ(bench.read(Datastore::startup), "");
    bench.restart();
    EXPECT_EQ(bench.running(), plain("factory"));
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST_F(Startup, KeepsNothingOfAnEditThatFailed)
{
    bench.toy().failAt("apply", "/toy:top", kFailed);
    EXPECT_FALSE(put("toy:top/plain", R"({"toy:plain":"x"})").ok());
    bench.toy().failNowhere();
    EXPECT_TRUE(put("toy:top/number", R"({"toy:number":1})").ok());
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>factory</plain><number>1</number>"));
}

TEST_F(Startup, SaysWhenAnEditIsOnDisk)
{
    const auto outcome = bench.toy().host().edit({.method = Method::put,
                                                  .target = bench.toy().target("toy:top/plain"),
                                                  .body = R"({"toy:plain":"x"})",
                                                  .insert = {},
                                                  .precondition = {},
                                                  .saveLater = true});
    ASSERT_NE(outcome.record, 0U);
    std::atomic<int> saved{0};
    bench.stores().whenSaved(outcome.record, [&](const Failure *failure) { saved = failure ? -1 : 1; });
    for (int i = 0; i < 500 && saved == 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(saved, 1);
}

// Whatever RESTCONF edits do, the log gives the same running after a restart, with and without rewriting the
// file.
class RandomEdits : public testing::TestWithParam<std::size_t> { };

TEST_P(RandomEdits, AreThereAfterARestart)
{
    StoresBench bench("{}", GetParam());
    std::mt19937 random(4711);
    const auto any = [&](unsigned below) { return static_cast<unsigned>(random() % below); };
    const auto name = [&] { return std::string(1, static_cast<char>('a' + any(5))); };
    unsigned done = 0;
    for (int i = 0; i < 400; ++i) {
        auto &toy = bench.toy();
        const std::string n = name(), v = std::to_string(any(200));
        const std::string ranked = R"({"toy:ranked":[{"name":")" + n + R"(","text":")" + v + R"("}]})";
        std::optional<Insert> insert;
        if (any(2))
            insert = Insert{static_cast<InsertWhere>(any(2)), std::nullopt};
        Outcome outcome;
        switch (any(11)) {
        case 0:
            outcome = toy.put("toy:top/number", R"({"toy:number":)" + v + "}");
            break;
        case 1:
            outcome = toy.patch("toy:top",
                                R"({"toy:top":{"config":{"limit":)" + v + R"(},"words":[")" + n + R"("]}})");
            break;
        case 2:
            outcome = toy.put("toy:top/config", R"({"toy:config":{"enabled":true}})");
            break;
        case 3:
            outcome = toy.remove("toy:top/config");
            break;
        case 4:
            outcome = toy.put("toy:top/entry=" + n,
                              R"({"toy:entry":[{"name":")" + n + R"(","sub":[{"id":)" + v + "}]}]}");
            break;
        case 5:
            outcome = toy.patch("toy:top",
                                R"({"toy:top":{"entry":[{"name":")" + n + R"(","config":{"value":")" + v +
                                    R"("}}]}})");
            break;
        case 6:
            outcome = toy.remove("toy:top/entry=" + n);
            break;
        case 7:
            outcome = toy.edit(Method::put, "toy:top/ranked=" + n, ranked, insert);
            break;
        case 8:
            outcome = toy.remove("toy:top/ranked=" + n);
            break;
        case 9:
            outcome = any(2) ? toy.put("toy:top/first", R"({"toy:first":")" + v + R"("})")
                             : toy.put("toy:top/second", R"({"toy:second":"<&>'\""})");
            break;
        default:
            outcome = toy.put("toy:top",
                              R"({"toy:top":{"form":"round","ranked":[{"name":"c"},{"name":"a"},{"name":")" +
                                  v + R"("}]}})");
            break;
        }
        done += outcome.changed;
        if (i % 80 == 79) {
            const std::string before = bench.running();
            bench.restart();
            ASSERT_EQ(bench.running(), before) << "after edit " << i;
            ASSERT_THAT(bench.complaints, IsEmpty());
        }
    }
    EXPECT_GT(done, 200U);
}

INSTANTIATE_TEST_SUITE_P(Log, RandomEdits, testing::Values(std::size_t{1} << 20, std::size_t{2000}));

} // namespace
} // namespace test
