// Random edits of a host whose callbacks refuse at random moments, against a model: after each edit running
// is what the model says; what was applied was committed, or rolled back once and in the other direction; and
// what the callbacks were told adds up to running.
#include "tests/fuzz/toy_model.h"
#include "tests/unit/toolkit/toy.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

using namespace fuzz;
using nlohmann::json;

constexpr std::size_t kLongestInput = 4096;
constexpr Status kRefused = 274;

// A callback's call: "apply merge /toy:top/config enabled:create=true limit:delete".
struct Call {
    std::string phase, operation, path;
    std::vector<std::string> leaves;

    std::string what() const { return operation + " " + path; }
};

Call callOf(const std::string &line)
{
    std::istringstream in(line);
    Call call;
    in >> call.phase >> call.operation >> call.path;
    for (std::string leaf; in >> leaf;)
        call.leaves.push_back(leaf);
    return call;
}

struct Step {
    tk::Method method;
    Path path;
    json value;
    std::optional<Position> position;
    unsigned refusedCall; // the so many-th call of a callback is refused; 0: none is
};

// What the switch behind the callbacks would hold: own leaves by path, and what exists.
struct Device {
    Leaves leaves;
    std::set<std::string> instances;

    void take(const Call &call)
    {
        if (call.operation == "delete") {
            leaves.erase(call.path);
            instances.erase(call.path);
            return;
        }
        if (call.operation == "create" && !isContainer(call.path))
            instances.insert(call.path);
        for (const std::string &leaf : call.leaves)
            takeLeaf(leaves[call.path], leaf);
    }

    // Which has no existence of its own.
    static bool isContainer(const std::string &path)
    {
        const std::string name = path.substr(path.rfind('/') + 1);
        return name == "toy:top" || name == "toy:late" || name == "config" || name == "inside";
    }

    // "words:create=a", "limit:delete"
    static void takeLeaf(std::map<std::string, std::set<std::string>> &own, const std::string &leaf)
    {
        const std::string name = leaf.substr(0, leaf.find(':'));
        const std::string operation = leaf.substr(name.size() + 1, leaf.find('=') - name.size() - 1);
        const std::string value = leaf.find('=') == leaf.npos ? "" : leaf.substr(leaf.find('=') + 1);
        const bool isOneOfMany = name == "words";
        if (operation == "delete" && isOneOfMany)
            own[name].erase(value);
        else if (operation == "delete")
            own.erase(name);
        else if (isOneOfMany)
            own[name].insert(value);
        else
            own[name] = {value};
    }
};

// The leaves that hold something, and are no key and not told by themselves.
Leaves settled(Leaves leaves)
{
    for (auto &[path, own] : leaves)
        std::erase_if(own, [](const auto &leaf) {
            return leaf.second.empty() || leaf.first.empty() || leaf.first == "name" || leaf.first == "id";
        });
    std::erase_if(leaves, [](const auto &node) { return node.second.empty(); });
    return leaves;
}

class Arena {
public:
    void begin();
    void carryOut(const Step &step);

private:
    [[noreturn]] void fail(const std::string &what, const Step &step) const;
    void check(bool isRight, const char *what, const Step &step) const
    {
        if (!isRight)
            fail(what, step);
    }
    test::Outcome edit(const Step &step);
    void checkOrder(const Step &step, bool isDone);
    void checkRefusal(const Step &step, const std::vector<std::string> &applied) const;
    void follow();
    void checkDevice(const Step &step) const;
    std::vector<std::string> calls(const char *phase) const;
    json running() { return Model::sorted(json::parse(bench_.running()).at("ietf-restconf:data")); }

    test::ToyBench bench_{"{}"};
    Model model_;
    Device device_;
    std::vector<Call> told_;
    std::optional<Call> refused_;
};

void Arena::begin()
{
    bench_.failNowhere();
    bench_.watch = {};
    if (!bench_.put("", R"({"ietf-restconf:data": {}})").ok())
        std::abort();
    bench_.told();
    model_ = {};
    device_ = {};
}

void Arena::fail(const std::string &what, const Step &step) const
{
    std::fprintf(stderr, "%s\nmethod %d of %s with %s\n", what.c_str(), static_cast<int>(step.method),
                 uri(step.path).c_str(), step.value.dump().c_str());
    for (const Call &call : told_) {
        std::fprintf(stderr, "  %s %s", call.phase.c_str(), call.what().c_str());
        for (const std::string &leaf : call.leaves)
            std::fprintf(stderr, " %s", leaf.c_str());
        std::fprintf(stderr, "\n");
    }
    std::fprintf(stderr, "model: %s\ntold: %s\n", model_.data().dump().c_str(),
                 json(settled(device_.leaves)).dump().c_str());
    std::abort();
}

std::vector<std::string> Arena::calls(const char *phase) const
{
    std::vector<std::string> some;
    for (const Call &call : told_)
        if (call.phase == phase)
            some.push_back(call.what());
    return some;
}

test::Outcome Arena::edit(const Step &step)
{
    unsigned number = 0;
    refused_.reset();
    bench_.failNowhere();
    bench_.watch = [&](const std::string &line, tk::Value *, tk::Value *) {
        const Call call = callOf(line);
        if (++number != step.refusedCall)
            return;
        bench_.failAt(call.phase, call.path, kRefused);
        if (call.phase != "rollback")
            refused_ = call;
    };
    std::optional<tk::Insert> insert;
    if (step.position) {
        insert = tk::Insert{step.position->where, std::nullopt};
        Path point = step.path;
        point.back().key = step.position->point;
        if (!point.back().key.is_null())
            insert->point = bench_.target(uri(point));
    }
    Path target = step.path;
    if (step.method == tk::Method::post)
        target.pop_back();
    const std::string body = step.method == tk::Method::remove ? "" : bodyOf(step.path, step.value);
    const auto outcome = bench_.edit(step.method, uri(target), body, insert);
    told_.clear();
    for (const std::string &line : bench_.told())
        told_.push_back(callOf(line));
    return outcome;
}

void Arena::carryOut(const Step &step)
{
    const json before = model_.data();
    Model after = model_;
    const auto refusal = after.edit(step.method, step.path, step.value, step.position);
    const test::Outcome outcome = edit(step);
    const bool isDone = !refusal && !refused_;
    if (outcome.ok() != isDone)
        fail("expected: " + refusal.value_or(refused_ ? "refusal of " + refused_->what() : "success") +
                 ", got: " + outcome.tag() + " " + outcome.message(),
             step);
    check(!refusal || outcome.tag() == *refusal, "another refusal", step);
    check(!refused_ || outcome.status() == kRefused, "another status", step);
    check(!refusal || told_.empty(), "a refused edit is told", step);
    if (isDone)
        model_ = after;
    check(running() == model_.data(), "running is not the model", step);
    check(outcome.changed == (isDone && before != model_.data()), "changed or not", step);
    check(!isDone || told_.empty() == (before == model_.data()), "told, or not told, of a difference", step);
    checkOrder(step, isDone);
    follow();
    checkDevice(step);
}

void Arena::checkOrder(const Step &step, bool isDone)
{
    auto validated = calls("validate"), applied = calls("apply"), committed = calls("commit");
    check(std::is_sorted(told_.begin(), told_.end(),
                         [](const Call &a, const Call &b) {
                             const auto rank = [](const Call &call) {
                                 return call.phase == "validate" ? 0
                                     : call.phase == "apply"     ? 1
                                     : call.phase == "commit"    ? 2
                                                                 : 3;
                             };
                             return rank(a) < rank(b);
                         }),
          "a phase begins before the one before it ends", step);
    if (!isDone)
        return checkRefusal(step, applied);
    for (auto *phase : {&validated, &applied, &committed})
        std::sort(phase->begin(), phase->end());
    check(std::adjacent_find(applied.begin(), applied.end()) == applied.end(), "applied twice", step);
    check(validated == applied && applied == committed, "not everything is validated, applied and committed",
          step);
    check(calls("rollback").empty(), "a success is rolled back", step);
}

// Rolled back is what was applied and did not refuse, newest first.
void Arena::checkRefusal(const Step &step, const std::vector<std::string> &applied) const
{
    const auto refused = refused_ ? refused_->what() : "";
    std::vector<std::string> expected;
    for (const std::string &one : applied)
        if (one != refused)
            expected.insert(expected.begin(), one);
    if (!refused_ || refused_->phase == "validate")
        check(applied.empty(), "applied after a refusal", step);
    check(calls("rollback") == expected, "what was applied is not what is rolled back", step);
    if (refused_ && refused_->phase == "apply")
        check(calls("commit").empty() && applied.back() == refused, "the edit goes on after a refusal", step);
}

void Arena::follow()
{
    const Device before = device_;
    Device &now = device_;
    for (const Call &call : told_) {
        const bool isRefused = refused_ && call.what() == refused_->what();
        if (call.phase == "apply" && !isRefused)
            now.take(call);
        if (call.phase != "rollback")
            continue;
        now.leaves.erase(call.path);
        if (const auto old = before.leaves.find(call.path); old != before.leaves.end())
            now.leaves.insert(*old);
        now.instances.erase(call.path);
        if (before.instances.contains(call.path))
            now.instances.insert(call.path);
    }
}

void Arena::checkDevice(const Step &step) const
{
    check(settled(device_.leaves) == settled(leavesOf(model_.data())), "the callbacks hold other leaves",
          step);
    check(device_.instances == instancesOf(model_.data()), "the callbacks hold other instances", step);
}

std::optional<Position> somePosition(const Path &path, tk::Method method, fuzz::Choices &choose)
{
    using tk::InsertWhere;
    if (path.empty() || !path.back().schema->isOrdered || !choose.yes() ||
        (method != tk::Method::put && method != tk::Method::post))
        return std::nullopt;
    Position position{
        choose.oneOf({InsertWhere::first, InsertWhere::last, InsertWhere::before, InsertWhere::after}),
        nullptr};
    if (position.where == InsertWhere::before || position.where == InsertWhere::after)
        position.point = choose.oneOf({"a", "b", "c"});
    return position;
}

Step someStep(fuzz::Choices &choose)
{
    using tk::Method;
    Step step;
    step.method = choose.oneOf({Method::put, Method::patch, Method::post, Method::remove});
    step.path = somePath(choose);
    if (step.path.empty() && (step.method == Method::post || step.method == Method::remove))
        step.method = Method::patch;
    step.position = somePosition(step.path, step.method, choose);
    const json key = step.path.empty() ? json() : step.path.back().key;
    if (step.method != Method::remove)
        step.value = someValue(step.path.empty() ? datastore() : *step.path.back().schema, choose, key);
    step.refusedCall = choose.yes() ? choose.number(1U, 12U) : 0;
    return step;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static Arena arena;
    if (size > kLongestInput)
        return 0;
    arena.begin();
    fuzz::Choices choose(data, size);
    while (!choose.isUsedUp())
        arena.carryOut(someStep(choose));
    return 0;
}
