#include "tests/unit/bundle/callback_test.h"

#include "tests/unit/bundle/log_capture.h"
#include "toolkit/toolkit.h"

#include <algorithm>

namespace test {

using namespace tk;

std::unique_ptr<SwitchBench> CallbackTest::bench_;

std::ostream &operator<<(std::ostream &out, const Deed &deed)
{
    for (const std::string &request : deed.sent)
        out << "\n    sent " << request;
    out << "\n    status " << deed.status;
    for (const std::string &record : deed.records)
        out << "\n    recorded " << testing::PrintToString(record);
    return out << "\n    logged " << testing::PrintToString(deed.errors);
}

void PrintTo(const Step &step, std::ostream *out)
{
    *out << step.name;
}

Step merged(std::string name, std::optional<std::string> before, std::optional<std::string> after, Deed deed,
            std::optional<switchsim::Fault> fault)
{
    return {std::move(name),  apply,           merge,           std::move(before),
            std::move(after), std::move(deed), std::move(fault)};
}

Deed failure(Status status, std::vector<std::string> sent, std::string errors)
{
    return {std::move(sent), status, {std::to_string(status) + " "}, std::move(errors)};
}

std::string internalError(const std::string &file, Status status)
{
    return "\n" + file + ":n: error " + std::to_string(status) + ": " + statusInfo(status).text + "\n";
}

switchsim::Fault noAnswer(const std::string &call, unsigned after)
{
    switchsim::Fault fault;
    fault.call = call;
    fault.kind = switchsim::FaultKind::null;
    fault.after = after;
    return fault;
}

switchsim::Fault refusal(const std::string &call, std::optional<std::string> text, std::int32_t uiErr,
                         std::int32_t appErr)
{
    switchsim::Fault fault;
    fault.call = call;
    fault.kind = switchsim::FaultKind::refuse;
    fault.text = std::move(text);
    fault.uiErr = uiErr;
    fault.appErr = appErr;
    return fault;
}

std::vector<Step> andNothingElse(std::vector<Step> steps, const std::string &before, const std::string &after)
{
    const auto isThere = [&](EditPhase phase, EditOp op) {
        return std::any_of(steps.begin(), steps.end(),
                           [=](const Step &step) { return step.phase == phase && step.op == op; });
    };
    for (const EditPhase phase : {validate, apply, commit, rollback})
        for (const EditOp op : {merge, replace, create, del, load}) {
            if (isThere(phase, op))
                continue;
            Step quiet{std::string("nothing_in_") + agt_cbtype_name(phase) + "_of_" + op_editop_name(op),
                       phase,
                       op,
                       before,
                       after,
                       {}};
            if (op == create || op == load)
                quiet.before.reset();
            if (op == del)
                quiet.after.reset();
            steps.push_back(std::move(quiet));
        }
    return steps;
}

Deed CallbackTest::perform(const std::string &path, const Step &step)
{
    bench_->device().clearFaults();
    if (step.fault)
        bench_->device().addFault(*step.fault);
    bench_->sent();
    const LogCapture log;
    const Callback done = bench_->call(step.phase, step.op, path, step.before, step.after);
    Deed deed{bench_->sent(), done.status, {}, log.errors()};
    for (const ErrorRecord &record : done.records)
        deed.records.push_back(std::to_string(record.status) + " " + record.text);
    return deed;
}

Status getNextInstance(SwitchBench &bench, const std::string &registeredPath, const std::string &path,
                       const std::string &key)
{
    const Registration *registration = bench.host().impl().registry.find(registeredPath);
    const Target target = bench.target(path);
    GetBlock block;
    block.node = target.node().schema();
    block.mode = getNext;
    Status status = kOk;
    const lysc_node *list = target.node().steps.at(1).schema;
    const Object *keyLeaf = obj_find_child(bench.host().impl().context.objectOf(list), nullptr, "name");
    block.keys.push_back(
        {std::unique_ptr<Value>(val_make_simval_obj(keyLeaf, key.c_str(), &status)), 1, true});
    return registration->get(nullptr, nullptr, &block);
}

std::string portsWith(const std::string &more)
{
    return R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1")" + more +
        R"(},{"name":"ethernet 1/1/2"}]}})";
}

} // namespace test
