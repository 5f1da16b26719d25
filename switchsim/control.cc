#include "switchsim/control.h"

#include <array>
#include <limits>
#include <stdexcept>

namespace switchsim {
namespace {

using Send = std::function<bool(const std::string &)>;

constexpr std::size_t kBatch = 100;             // journal lines that are copied at a time
constexpr std::chrono::milliseconds kLook{100}; // how often a follower is looked after

struct Session {
    Simulator &simulator;
    const Json &request;
    const Send &send;
    const std::function<bool()> &isAlive;
};

std::string textOf(const Json &request, const char *name)
{
    return request.contains(name) ? request.at(name).get<std::string>() : std::string();
}

template <class Number>
std::optional<Number> numberOf(const Json &request, const char *name)
{
    if (!request.contains(name))
        return std::nullopt;
    const auto &given = request.at(name);
    if (!given.is_number_integer())
        throw std::invalid_argument(std::string(name) + " must be a whole number");
    const auto value = given.get<std::int64_t>();
    if (value < std::numeric_limits<Number>::min() ||
        value > std::int64_t{std::numeric_limits<Number>::max()})
        throw std::invalid_argument(std::string(name) + " is out of range");
    return static_cast<Number>(value);
}

bool sendResult(const Session &session, Json result)
{
    return session.send(asLine({{"result", std::move(result)}}));
}

bool journal(const Session &session)
{
    std::uint64_t seq = numberOf<std::uint32_t>(session.request, "since").value_or(0);
    const bool follow = session.request.value("follow", false);
    for (;;) {
        const auto lines = session.simulator.journal().readAfter(seq, kBatch);
        for (const auto &line : lines) {
            if (!session.send(asLine({{"line", asJson(line)}})))
                return false;
            seq = line.seq;
        }
        if (lines.empty() && !follow)
            return true;
        if (lines.empty() && !session.simulator.journal().waitAfter(seq, kLook) && !session.isAlive())
            return false;
    }
}

bool show(const Session &session)
{
    return sendResult(session, session.simulator.show(textOf(session.request, "word")));
}

bool values(const Session &session)
{
    return sendResult(session, session.simulator.values());
}

bool setValue(const Session &session)
{
    const auto value = numberOf<std::int32_t>(session.request, "value");
    session.simulator.setValue(textOf(session.request, "name"), value.value_or(-1));
    return true;
}

bool addFault(const Session &session)
{
    const Json &request = session.request;
    const auto kind = asFaultKind(textOf(request, "kind"));
    if (!kind)
        throw std::invalid_argument("there is no fault " + textOf(request, "kind") +
                                    "; there is null, refuse, delay, exit");
    Fault fault;
    fault.call = textOf(request, "call");
    fault.kind = *kind;
    fault.message = textOf(request, "message");
    fault.uiErr = numberOf<std::int32_t>(request, "ui_err");
    fault.appErr = numberOf<std::int32_t>(request, "app_err");
    if (request.contains("text"))
        fault.text = textOf(request, "text");
    fault.ms = numberOf<std::uint32_t>(request, "ms").value_or(0);
    fault.count = numberOf<std::uint32_t>(request, "count").value_or(0);
    fault.after = numberOf<std::uint32_t>(request, "after").value_or(0);
    session.simulator.addFault(std::move(fault));
    return true;
}

bool listFaults(const Session &session)
{
    Json list = Json::array();
    for (const Fault &fault : session.simulator.faults())
        list.push_back(asJson(fault));
    return sendResult(session, std::move(list));
}

bool clearFaults(const Session &session)
{
    session.simulator.clearFaults();
    return true;
}

struct Verb {
    std::string_view name;
    bool (*run)(const Session &);
};
constexpr std::array<Verb, 7> kVerbs = {{
    {"journal", journal},
    {"show", show},
    {"values", values},
    {"set", setValue},
    {"fault-add", addFault},
    {"fault-list", listFaults},
    {"fault-clear", clearFaults},
}};

bool runVerb(const Session &session)
{
    const auto name = textOf(session.request, "do");
    for (const Verb &verb : kVerbs) {
        if (verb.name == name)
            return verb.run(session);
    }
    throw std::invalid_argument("the switch cannot do " + (name.empty() ? "nothing" : name));
}

} // namespace

bool runControl(Simulator &simulator, const std::string &line, const Send &send,
                const std::function<bool()> &isAlive)
try {
    const Json request = Json::parse(line);
    if (!request.is_object())
        throw std::invalid_argument("a request must be a JSON object");
    return runVerb({simulator, request, send, isAlive}) && send(asLine({{"done", true}}));
} catch (const nlohmann::json::exception &error) {
    return send(asLine({{"error", std::string("not a request: ") + error.what()}}));
} catch (const std::invalid_argument &error) {
    return send(asLine({{"error", error.what()}}));
}

} // namespace switchsim
