#include "tests/unit/toolkit/toy.h"

#include <utility>

namespace test {

using namespace tk;

namespace {

struct Failing {
    Status status;
    std::string text;
};

ToyBench *bench;
std::vector<std::string> calls;
std::map<std::string, Failing> failing; // by "phase path"

std::string childEdits(Request *msg, Value *newval, Value *curval)
{
    std::string text;
    for (ChildEdit *edit = agt_cfg_first_child_edit(msg->rpc_txcb, newval, curval); edit;
         edit = agt_cfg_next_child_edit(edit)) {
        std::uint8_t op = 0;
        Value *now = nullptr, *was = nullptr;
        agt_cfg_child_edit_fields(edit, &op, &now, &was);
        text +=
            std::string(" ") + val_get_name(now ? now : was) + ":" + op_editop_name(static_cast<EditOp>(op));
        if (now)
            text += std::string("=") + val_get_string(now);
    }
    return text;
}

Status record(Session *scb, Request *msg, EditPhase phase, EditOp op, Value *newval, Value *curval)
{
    const std::string path = RequestFrame::of(msg).header.path();
    const std::string line = std::string(agt_cbtype_name(phase)) + " " + op_editop_name(op) + " " + path +
        childEdits(msg, newval, curval);
    calls.push_back(line);
    if (bench->watch)
        bench->watch(line, newval, curval);
    const auto found = failing.find(std::string(agt_cbtype_name(phase)) + " " + path);
    if (found == failing.end())
        return kOk;
    if (!found->second.text.empty())
        agt_record_error(scb, msg->mhdr, kContentLayer, found->second.status, nullptr, infoString,
                         found->second.text.c_str(), infoNone, nullptr);
    return found->second.status;
}

constexpr const char *kPaths[] = {
    "/t:top",          "/t:top/t:config", "/t:top/t:marked",         "/t:top/t:marked/t:inside",
    "/t:top/t:lone",   "/t:top/t:entry",  "/t:top/t:entry/t:config", "/t:top/t:entry/t:sub",
    "/t:top/t:ranked", "/t:late",
};

} // namespace

SlowDevice::SlowDevice(ToyBench &toy)
{
    toy.watch = [this, isFirst = true](const std::string &line, Value *, Value *) mutable {
        if (line.rfind("apply", 0) != 0 || !std::exchange(isFirst, false))
            return;
        reached_.set_value();
        go_.get_future().wait();
    };
}

Status addUp(Session *, Request *msg, Value *)
{
    const Value *input = agt_get_rpc_input(msg), *b = val_find_child(input, "toy", "b");
    const auto a = val_get_int64(val_find_child(input, "toy", "a"));
    if (a < 0)
        return kInvalidValue;
    if (!b)
        return kOk;
    Object *response = obj_find_child(obj_find_child(msg->method, "toy", "output"), "toy", "response");
    Status status = kOk;
    const auto sum = static_cast<std::int32_t>(a + val_get_int64(b));
    agt_rpc_add_return_val(agt_make_int_leaf(obj_find_child(response, "toy", "sum"), "sum", sum, &status),
                           msg);
    return status;
}

std::string joined(const std::vector<std::string> &lines)
{
    std::string text;
    for (const std::string &line : lines)
        text += (text.empty() ? "" : "; ") + line;
    return text;
}

std::string textOf(Value *value)
{
    if (!value)
        return "-";
    if (val_get_btyp(value) != btContainer && val_get_btyp(value) != btList)
        return std::string("\"") + val_get_string(value) + "\"";
    std::string text = "{";
    for (Value *child = val_get_first_child(value); child; child = val_get_next_child(child))
        text +=
            (text.size() > 1 ? "," : "") + std::string("\"") + val_get_name(child) + "\":" + textOf(child);
    return text + "}";
}

ToyBench::ToyBench(const std::string &startup, const std::map<std::string, unsigned> &options,
                   const std::vector<std::string> &moreModules)
{
    bench = this;
    for (const std::string &name : moreModules)
        host_->loadServerModule(name);
    ModuleHandle *module = nullptr;
    if (ncxmod_load_module("toy", "2024-01-01", agt_get_savedevQ(), &module))
        throw std::runtime_error("the toy module does not load");
    for (const char *path : kPaths)
        agt_cb_register_edit2_callback("toy", path, "2024-01-01", record);
    for (const auto &[path, set] : options)
        agt_cb_set_edit_options("toy", path.c_str(), set);
    host_->seal();
    host_->loadStartup(startup, Encoding::json);
}

ToyBench::~ToyBench()
{
    failNowhere();
    calls.clear();
}

std::vector<std::string> ToyBench::told()
{
    return std::exchange(calls, {});
}

std::vector<std::string> ToyBench::told(const std::string &phase)
{
    std::vector<std::string> some;
    for (const std::string &line : told())
        if (line.rfind(phase + " ", 0) == 0)
            some.push_back(line.substr(phase.size() + 1));
    return some;
}

void ToyBench::failAt(const std::string &phase, const std::string &path, Status status,
                      const std::string &text)
{
    failing[phase + " " + path] = {status, text};
}

void ToyBench::failNowhere()
{
    failing.clear();
}

} // namespace test
