#include "tests/unit/bundle/callback_test.h"

#include "toolkit/src/retrieval.h"

#include <algorithm>

namespace test {

Cell in(EditPhase phase, Cell cell)
{
    cell.phase = phase;
    return cell;
}

Cell under(switchsim::Fault fault, Cell cell)
{
    cell.fault = std::move(fault);
    return cell;
}

Cell loud(Cell cell)
{
    cell.log.reset();
    return cell;
}

std::string internalError(const std::string &file, Status status)
{
    return "\n" + file + ":n: error " + std::to_string(status) + ": " + statusInfo(status).text + "\n";
}

switchsim::Fault noAnswer(const std::string &call, unsigned after)
{
    switchsim::Fault fault;
    fault.call = call;
    fault.after = after;
    return fault;
}

switchsim::Fault refusal(const std::string &call, MaybeText text, std::int32_t uiErr, std::int32_t appErr)
{
    return {call, switchsim::FaultKind::refuse, "", uiErr, appErr, std::move(text), 0, 0, 0};
}

void strike(SwitchBench &bench, switchsim::Fault fault)
{
    bench.device().clearFaults();
    bench.device().addFault(fault);
}

namespace {

void addQuiet(std::vector<Cell> &cells, const Quiet &quiet)
{
    const std::vector<Cell> given = cells;
    for (const EditPhase phase : {validate, apply, commit, rollback})
        for (const Cell &cell :
             {merged("quiet", quiet.before, quiet.after), replaced("quiet", quiet.before, quiet.after),
              created("quiet", quiet.after), loaded("quiet", quiet.after), deleted("quiet", quiet.before)})
            if (std::none_of(given.begin(), given.end(),
                             [&](const Cell &has) { return has.phase == phase && has.op == cell.op; }))
                cells.push_back(in(phase, cell));
}

} // namespace

void check(SwitchBench &bench, const std::string &path, std::vector<Cell> cells,
           const std::optional<Quiet> &elsewhere, const std::function<void()> &prepare)
{
    if (elsewhere)
        addQuiet(cells, *elsewhere);
    for (const Cell &c : cells) {
        SCOPED_TRACE(c.name + ": " + agt_cbtype_name(c.phase) + " of " + op_editop_name(c.op));
        bench.device().clearFaults();
        if (prepare)
            prepare();
        if (c.fault)
            bench.device().addFault(*c.fault);
        bench.sent();
        const LogCapture log;
        const Callback done = bench.call(c.phase, c.op, path, c.before, c.after);
        EXPECT_EQ(bench.sent(), c.requests);
        EXPECT_EQ(ended(done), Ended(c.status, c.status ? Texts{c.text} : Texts{}));
        for (const ErrorRecord &record : done.records)
            EXPECT_EQ(record.status, c.status);
        if (c.log && (!c.status || !c.log->empty())) {
            EXPECT_EQ(log.errors(), c.log);
        }
    }
    bench.device().clearFaults();
}

void check(const std::string &path, const std::vector<Cell> &cells, const std::optional<Quiet> &elsewhere)
{
    SwitchBench bench;
    check(bench, path, cells, elsewhere);
}

Ended ended(const Callback &done)
{
    Ended end{done.status, {}};
    for (const ErrorRecord &record : done.records)
        end.second.push_back(record.text);
    return end;
}

void PrintTo(const Got &got, std::ostream *out)
{
    *out << got.status << " " << testing::PrintToString(got.keys) << (got.more ? " and more" : "");
}

Got getByHand(SwitchBench &bench, const std::string &registeredPath, const std::string &path, GetMode mode)
{
    const Registration *registration = bench.host().impl().registry.find(registeredPath);
    if (!registration || !registration->get)
        throw std::logic_error("nobody serves " + registeredPath);
    const Target target = bench.target(path);
    const Selection everything;
    GetBlock block;
    block.node = target.node().schema();
    block.selection = &everything;
    block.mode = mode;
    unsigned level = 0;
    for (const auto &step : target.node().steps) {
        if (step.schema->nodetype != LYS_LIST)
            continue;
        ++level;
        const lysc_node *key = lysc_node_child(step.schema);
        for (const std::string &text : step.keys) {
            Status status = kOk;
            const Object *leaf = bench.host().impl().context.objectOf(key);
            block.keys.push_back(
                {std::unique_ptr<Value>(val_make_simval_obj(leaf, text.c_str(), &status)), level, true});
            key = key->next;
        }
    }
    Got got;
    got.status = registration->get(nullptr, nullptr, &block);
    for (const auto &key : block.current.keys)
        got.keys.push_back(key->text);
    got.more = block.more;
    return got;
}

Status readFailure(SwitchBench &bench, const std::string &path)
{
    try {
        bench.read(path, Content::all);
    } catch (const Failure &failure) {
        return failure.errors.at(0).status;
    }
    return kOk;
}

} // namespace test
