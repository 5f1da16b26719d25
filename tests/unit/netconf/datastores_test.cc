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
constexpr auto kRunning = Datastore::running, kCandidate = Datastore::candidate,
               kStartup = Datastore::startup;

const auto plain = [](const std::string &value) { return top("<plain>" + value + "</plain>"); };

class Stores : public testing::Test {
protected:
    explicit Stores(const std::string &factory = R"({"plain":"a","config":{"limit":3}})")
        : bench(factory)
    {
    }

    Outcome commit(CommitRequest request = {}, SessionId session = kMine)
    {
        return bench.attempt([&] { stores().commit(session, request); });
    }
    Outcome cancel(SessionId session, const std::optional<std::string> &persistId = std::nullopt)
    {
        return bench.attempt([&] { stores().cancelCommit(session, persistId); });
    }
    Outcome lock(SessionId session, Datastore store)
    {
        return bench.attempt([&] { stores().lock(session, store); });
    }
    Outcome unlock(SessionId session)
    {
        return bench.attempt([&] { stores().unlock(session, kRunning); });
    }
    Outcome put(const std::string &path, const std::string &body) { return bench.toy().put(path, body); }
    Datastores &stores() { return bench.stores(); }

    StoresBench bench;
    const std::string before = bench.running();
};

class Candidate : public Stores { };

TEST_F(Candidate, ReachesCallbacksOnlyWhenItIsCommitted)
{
    const std::string after = top("<plain>b</plain><config><enabled>true</enabled></config>");
    EXPECT_TRUE(bench.edit(kCandidate, plain("b")).ok());
    bench.edit(kCandidate, top("<config nc:operation='replace'><enabled>true</enabled></config>"));
    EXPECT_EQ(bench.read(kCandidate), after);
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.toy().told(), IsEmpty());
    EXPECT_TRUE(commit().ok());
    EXPECT_EQ(bench.running(), after);
    // The difference is told, whatever the edits of the candidate asked for.
    EXPECT_THAT(bench.toy().told("apply"),
                ElementsAre("merge /toy:top plain:merge=b",
                            "merge /toy:top/config enabled:create=true limit:delete"));
}

TEST_F(Candidate, OfWhichACallbackRefusesAPartLeavesRunningAndItself)
{
    bench.edit(kCandidate, top("<plain>b</plain><entry><name>x</name></entry>"));
    bench.toy().failAt("apply", "/toy:top/entry[name='x']", kDeviceText, "no room");
    EXPECT_EQ(commit().message(), "no room");
    EXPECT_EQ(bench.running(), before);
    EXPECT_THAT(bench.read(kCandidate), HasSubstr("<plain>b</plain>"));
    bench.toy().failNowhere();
    EXPECT_TRUE(commit().ok());
}

TEST_F(Candidate, IsCheckedByValidateAlsoByCallbacks)
{
    bench.edit(kCandidate, plain("b"));
    bench.toy().failAt("validate", "/toy:top", kInvalidValue, "not b");
    EXPECT_EQ(bench.attempt([&] { stores().validate(kCandidate); }).message(), "not b");
    EXPECT_EQ(bench.running(), before);
    EXPECT_TRUE(bench.attempt([&] { stores().validate(kRunning); }).ok());
}

TEST_F(Candidate, FollowsRunningUntilItIsEditedAndAfterItWasDiscarded)
{
    EXPECT_TRUE(put("toy:top/plain", R"({"toy:plain":"r"})").ok());
    EXPECT_EQ(bench.read(kCandidate), bench.running());
    bench.edit(kCandidate, top("<number>1</number>"));
    put("toy:top/plain", R"({"toy:plain":"s"})");
    EXPECT_THAT(bench.read(kCandidate), HasSubstr("<plain>r</plain>"));
    stores().discardChanges(kMine);
    EXPECT_EQ(bench.read(kCandidate), bench.running());
    EXPECT_TRUE(commit().ok());
    EXPECT_THAT(bench.running(), HasSubstr("<plain>s</plain>"));
}

TEST_F(Candidate, KeepsNothingOfAnEditThatFails)
{
    bench.edit(kCandidate, top("<number>1</number>"));
    EXPECT_EQ(bench.edit(kCandidate, top("<plain>b</plain><marked nc:operation='delete'/>")).tag(),
              "data-missing");
    EXPECT_EQ(bench.read(kCandidate),
              top("<plain>a</plain><number>1</number><config><limit>3</limit></config>"));
}

TEST_F(Candidate, CanBeCopiedFromAndTo)
{
    stores().copy(kMine, configElement(plain("c")), kCandidate);
    EXPECT_EQ(bench.read(kCandidate), plain("c"));
    stores().copy(kMine, kCandidate, kStartup);
    stores().copy(kMine, kRunning, kCandidate);
    EXPECT_EQ(bench.read(kCandidate), before);
    stores().copy(kMine, kStartup, kRunning);
    EXPECT_EQ(bench.running(), plain("c"));
    EXPECT_THAT(bench.toy().told("apply"),
                ElementsAre("replace /toy:top plain:merge=c", "replace /toy:top/config limit:delete"));
}

// Commits that have to be confirmed

class Unconfirmed : public Stores {
protected:
    void begin(CommitRequest request = {})
    {
        request.confirmed = true;
        bench.edit(kCandidate, plain("b"));
        ASSERT_TRUE(commit(request).ok());
    }
    bool isApplied() { return bench.running() != before; }
};

TEST_F(Unconfirmed, InTimeIsTakenBackThroughTheCallbacks)
{
    begin({.timeout = std::chrono::seconds(0)});
    EXPECT_TRUE(isApplied());
    ASSERT_TRUE(stores().confirmDeadline());
    bench.toy().told();
    stores().takeBackUnconfirmed();
    EXPECT_FALSE(isApplied());
    EXPECT_THAT(bench.toy().told("apply"), ElementsAre("merge /toy:top plain:merge=a"));
    EXPECT_FALSE(stores().confirmDeadline());
}

TEST_F(Unconfirmed, StaysOnceItIsConfirmed)
{
    begin();
    stores().takeBackUnconfirmed(); // it is not time
    EXPECT_TRUE(commit().ok());
    EXPECT_FALSE(stores().confirmDeadline());
    stores().sessionEnded(kMine);
    EXPECT_TRUE(isApplied());
}

TEST_F(Unconfirmed, AndFollowedUpIsTakenBackToWhereItBegan)
{
    begin();
    bench.edit(kCandidate, plain("c"));
    EXPECT_TRUE(commit({.confirmed = true}).ok());
    EXPECT_THAT(bench.running(), HasSubstr("<plain>c</plain>"));
    stores().sessionEnded(kMine); // nobody can confirm it any more
    EXPECT_FALSE(isApplied());
}

TEST_F(Unconfirmed, IsNotForOthers)
{
    begin();
    EXPECT_EQ(commit({}, kOther).tag(), "in-use");
    EXPECT_EQ(lock(kOther, kRunning).tag(), "lock-denied");
    EXPECT_EQ(cancel(kOther).tag(), "in-use");
    EXPECT_TRUE(cancel(kMine).ok());
    EXPECT_FALSE(isApplied());
    EXPECT_EQ(cancel(kMine).tag(), "operation-failed");
}

TEST_F(Unconfirmed, AndPersistentOutlivesItsSessionAndWantsItsToken)
{
    begin({.persist = "token"});
    stores().sessionEnded(kMine);
    EXPECT_TRUE(isApplied());
    EXPECT_EQ(commit({}, kOther).tag(), "invalid-value");
    EXPECT_EQ(commit({.persistId = "other"}, kOther).tag(), "invalid-value");
    EXPECT_EQ(cancel(kOther, "other").tag(), "invalid-value");
    EXPECT_TRUE(commit({.persistId = "token"}, kOther).ok());
    EXPECT_FALSE(stores().confirmDeadline());
    EXPECT_EQ(commit({.persistId = "token"}, kOther).tag(), "invalid-value");
}

// Locks

class Locks : public Stores { };

TEST_F(Locks, RefuseOthersAndNotTheHolder)
{
    using S = Datastores;
    const auto edit = [](S &s, SessionId id, Datastore store) {
        s.edit(id, {.target = store, .config = configElement(plain("x"))});
    };
    const struct {
        Datastore locked;
        std::function<void(S &, SessionId)> action;
    } table[] = {
        {kRunning, [&](S &s, SessionId id) { edit(s, id, kRunning); }},
        {kCandidate, [&](S &s, SessionId id) { edit(s, id, kCandidate); }},
        {kRunning, [](S &s, SessionId id) { s.commit(id, {}); }},
        {kCandidate, [](S &s, SessionId id) { s.commit(id, {}); }},
        {kCandidate, [](S &s, SessionId id) { s.discardChanges(id); }},
        {kRunning, [](S &s, SessionId id) { s.copy(id, kCandidate, kRunning); }},
        {kStartup, [](S &s, SessionId id) { s.copy(id, kRunning, kStartup); }},
        {kStartup, [](S &s, SessionId id) { s.removeStartup(id); }},
    };
    for (const auto &row : table) {
        const Datastore store = row.locked;
        SCOPED_TRACE(&row - table);
        const auto asSession = [&](SessionId session) {
            return bench.attempt([&] { row.action(stores(), session); });
        };
        stores().discardChanges(kMine);
        bench.toy().told();
        stores().lock(kMine, store);
        const Outcome refused = asSession(kOther);
        EXPECT_EQ(refused.tag(), "in-use");
        EXPECT_THAT(refused.message(), HasSubstr("ession 1 "));
        EXPECT_THAT(bench.toy().told(), IsEmpty());
        EXPECT_TRUE(asSession(kMine).ok());
        stores().unlock(kMine, store);
        EXPECT_TRUE(asSession(kOther).ok());
    }
}

TEST_F(Locks, OfRunningAndStartupRefuseRestconf)
{
    for (const Datastore store : {kRunning, kStartup}) {
        stores().lock(kMine, store);
        EXPECT_EQ(put("toy:top/plain", R"({"toy:plain":"x"})").tag(), "in-use");
        EXPECT_THAT(bench.toy().told(), IsEmpty());
        stores().sessionEnded(kMine);
    }
    EXPECT_TRUE(put("toy:top/plain", R"({"toy:plain":"x"})").ok());
}

TEST_F(Locks, AreGrantedOnceAndGivenBackByTheirHolder)
{
    EXPECT_EQ(unlock(kMine).tag(), "operation-failed");
    EXPECT_TRUE(lock(kMine, kRunning).ok());
    EXPECT_EQ(lock(kMine, kRunning).tag(), "lock-denied");
    EXPECT_EQ(lock(kOther, kRunning).tag(), "lock-denied");
    EXPECT_TRUE(lock(kOther, kStartup).ok());
    EXPECT_EQ(unlock(kOther).tag(), "operation-failed");
    EXPECT_EQ(stores().lockOf(kRunning)->session, kMine);
    stores().sessionEnded(kMine);
    EXPECT_TRUE(lock(kOther, kRunning).ok());
}

TEST_F(Locks, OfACandidateWithChangesAreDeniedAndThoseHeldDiscardThem)
{
    bench.edit(kCandidate, plain("x"), kOther);
    EXPECT_EQ(lock(kMine, kCandidate).tag(), "lock-denied");
    stores().discardChanges(kMine);
    for (const auto &giveBack : {std::function<void()>([&] { stores().unlock(kMine, kCandidate); }),
                                 std::function<void()>([&] { stores().sessionEnded(kMine); })}) {
        EXPECT_TRUE(lock(kMine, kCandidate).ok());
        bench.edit(kCandidate, plain("y"), kMine);
        giveBack();
        EXPECT_EQ(bench.read(kCandidate), before);
    }
}

// Startup

class Startup : public Stores {
protected:
    Startup()
        : Stores(R"({"plain":"factory"})")
    {
    }
};

TEST_F(Startup, KeepsWhatRestconfEditedAndWhatWasCopied)
{
    EXPECT_EQ(bench.read(kStartup), "");
    EXPECT_TRUE(put("toy:top/number", R"({"toy:number":1})").ok());
    EXPECT_EQ(bench.read(kStartup), top("<plain>factory</plain><number>1</number>"));
    bench.edit(kRunning, plain("netconf"));
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>factory</plain><number>1</number>"));
    bench.edit(kRunning, plain("netconf"));
    stores().copy(kMine, kRunning, kStartup);
    bench.edit(kCandidate, top("<number>9</number>"));
    bench.restart();
    EXPECT_EQ(bench.running(), top("<plain>netconf</plain><number>1</number>"));
    EXPECT_EQ(bench.read(kCandidate), bench.running());
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST_F(Startup, TakesAnEditByRestconfAndNotTheOthersOfRunning)
{
    put("toy:top/config", R"({"toy:config":{"limit":1}})");
    bench.edit(kRunning, top("<entry><name>unsaved</name><own>1</own></entry>"));
    EXPECT_TRUE(put("toy:top/config/enabled", R"({"toy:enabled":true})").ok());
    // What is not there in startup either way.
    EXPECT_TRUE(bench.toy().remove("toy:top/entry=unsaved").ok());
    // An entry that startup lacks comes with what the edit says of it.
    bench.edit(kRunning, top("<entry><name>unsaved</name><own>1</own></entry>"));
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
    stores().copy(kMine, kRunning, kStartup);
    stores().removeStartup(kMine);
    EXPECT_EQ(bench.read(kStartup), "");
    bench.restart();
    EXPECT_EQ(bench.running(), plain("factory"));
    EXPECT_THAT(bench.complaints, IsEmpty());
}

TEST_F(Startup, SaysWhenAnEditIsOnDisk)
{
    ToyBench &toy = bench.toy();
    const auto outcome = toy.host().edit(
        {Method::put, toy.target("toy:top/plain"), R"({"toy:plain":"x"})", Encoding::json, {}, {}, true});
    ASSERT_NE(outcome.record, 0U);
    std::atomic<int> saved{0};
    stores().whenSaved(outcome.record, [&](const Failure *failure) { saved = failure ? -1 : 1; });
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
    unsigned done = 0;
    for (int i = 0; i < 400; ++i) {
        const std::string n(1, static_cast<char>('a' + any(5))), v = std::to_string(any(200));
        const struct {
            Method method;
            std::string path, body;
        } edits[] = {
            {Method::put, "/number", R"({"toy:number":)" + v + "}"},
            {Method::patch, "", R"({"toy:top":{"config":{"limit":)" + v + R"(},"words":[")" + n + R"("]}})"},
            {Method::put, "/config", R"({"toy:config":{"enabled":true}})"},
            {Method::remove, "/config", ""},
            {Method::put, "/entry=" + n,
             R"({"toy:entry":[{"name":")" + n + R"(","sub":[{"id":)" + v + "}]}]}"},
            {Method::patch, "",
             R"({"toy:top":{"entry":[{"name":")" + n + R"(","config":{"value":")" + v + R"("}}]}})"},
            {Method::remove, "/entry=" + n, ""},
            {Method::put, "/ranked=" + n,
             R"({"toy:ranked":[{"name":")" + n + R"(","text":")" + v + R"("}]})"},
            {Method::remove, "/ranked=" + n, ""},
            {Method::put, "/first", R"({"toy:first":")" + v + R"("})"},
            {Method::put, "/second", R"({"toy:second":"<&>'\""})"},
            {Method::put, "",
             R"({"toy:top":{"form":"round","ranked":[{"name":"c"},{"name":"a"},{"name":")" + v + R"("}]}})"},
        };
        const auto &[method, path, body] = edits[any(std::size(edits))];
        std::optional<Insert> insert;
        if (path.rfind("/ranked", 0) == 0 && method == Method::put && any(2))
            insert = Insert{static_cast<InsertWhere>(any(2)), std::nullopt};
        done += bench.toy().edit(method, "toy:top" + path, body, insert).changed;
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
