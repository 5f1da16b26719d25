#include "switchsim/simulator.h"

#include "backend/envelope.h"
#include "backend/field_kind.h"
#include "backend/pack.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/wire_check.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace switchsim {
namespace {

struct FreeMessage {
    void operator()(ProtobufCMessage *message) const { protobuf_c_message_free_unpacked(message, nullptr); }
};

backend::Bytes packAnswer(ProtobufCMessage &answer)
{
    const backend::PackScope scope(answer);
    backend::Bytes packed(protobuf_c_message_get_packed_size(&answer));
    protobuf_c_message_pack(&answer, packed.data());
    return packed;
}

// The names that a fault may choose a request by.
std::vector<std::string> namesOf(const ProtobufCMessage &message)
{
    std::vector<std::string> names = {backend::recordName(*message.descriptor)};
    if (message.descriptor == &plugin_config__descriptor) {
        const char *plugin = reinterpret_cast<const PluginConfig &>(message).plugin;
        names.emplace_back(plugin == nullptr ? "" : plugin);
    }
    return names;
}

void refuseAs(const Fault &fault, Answering &answering, CommonResp &reply)
{
    const bool hasCodes = fault.uiErr || fault.appErr;
    reply.ui_err = hasCodes ? fault.uiErr.value_or(0) : 1;
    reply.app_err = fault.appErr.value_or(0);
    reply.reply_buf = fault.text ? answering.keep(*fault.text) : nullptr;
}

backend::Bytes envelopeOf(const std::optional<backend::Bytes> &message)
{
    backend::Bytes envelope;
    const auto at = backend::beginAnswer(message.has_value(), message ? message->size() : 0, envelope);
    if (message)
        std::copy(message->begin(), message->end(), envelope.begin() + static_cast<std::ptrdiff_t>(at));
    return envelope;
}

} // namespace

Simulator::Simulator(std::function<void()> die)
    : die_(std::move(die))
{
    families_.push_back(makePlatform(device_));
    families_.push_back(makeSystem(device_));
    families_.push_back(makeAaa(device_));
    families_.push_back(makeInterfaces(device_));
    families_.push_back(makeRoutedInterfaces(device_));
    families_.push_back(makeLags(device_));
    families_.push_back(makeVlans(device_));
    families_.push_back(makeSpanningTrees(device_));
    families_.push_back(makeLldp(device_));
    families_.push_back(makeMcastSnooping(device_));
    families_.push_back(makeStaticMacs(device_));
    families_.push_back(makeDhcpClient(device_));
    families_.push_back(makeDhcpServer(device_));
    families_.push_back(makeRoutes(device_));
    families_.push_back(makeReachability(device_));
    families_.push_back(makeJumbo(device_));
    families_.push_back(makeTrustDscp(device_));
    families_.push_back(makeStormControl(device_));
    families_.push_back(makeAccessLists(device_));
    families_.push_back(makeProtectedPorts(device_));
    families_.push_back(makeForwardingProfile(device_));
    families_.push_back(makePoe(device_));
    families_.push_back(makePlugins(device_));
    families_.push_back(makeTasks(device_));
    families_.push_back(makeChassis(device_));
    families_.push_back(makeStack(device_));
    families_.push_back(makeFlash(device_));
    families_.push_back(makeConfigFiles(device_));
    families_.push_back(makeSupportData(device_));
    device_.runningConfig = [this] { return runningConfig(); };
    for (const auto &family : families_)
        family->registerCalls(calls_);
}

Simulator::~Simulator() = default;

std::string Simulator::runningConfig() const
{
    std::string text = "!\nver 09.0.10T211\n!\n";
    for (const auto &family : families_)
        for (const std::string &line : family->configLines())
            text += line + "\n";
    return text + "!\nend\n";
}

std::optional<backend::Bytes> Simulator::serve(backend::BytesView bytes, Caller &caller)
{
    const auto request = backend::readRequest(bytes);
    const Call *call = request ? calls_.find(request->head.call, request->head.code) : nullptr;
    if (call == nullptr)
        return std::nullopt;
    const std::unique_ptr<ProtobufCMessage, FreeMessage> message(
        backend::unpackChecked(*call->request, request->message));
    if (!message)
        return std::nullopt;

    Outcome outcome;
    std::uint64_t seq = 0;
    {
        std::unique_lock lock(mutex_);
        const auto fault = faults_.isEmpty() ? std::nullopt : faults_.strike(call->name, namesOf(*message));
        if (fault && fault->kind == FaultKind::exit)
            die_();
        if (!call->isQuiet)
            seq = journal_.begin(*call, *request);
        if (call->isSlow)
            lock.unlock();
        outcome = carryOut(*call, *request, *message, fault);
    }
    // Waiting without the lock: others may ask meanwhile, and the user may look and clear the fault.
    const bool isAwaited = outcome.delay.count() == 0 || caller.wait(outcome.delay);
    std::optional<backend::Bytes> answer;
    if (isAwaited)
        answer = envelopeOf(outcome.message);
    if (!call->isQuiet)
        journal_.finish(seq, isAwaited ? std::move(outcome.message) : std::nullopt);
    return answer;
}

Simulator::Outcome Simulator::carryOut(const Call &call, const backend::Request &request,
                                       const ProtobufCMessage &message, const std::optional<Fault> &fault)
{
    if (fault && fault->kind == FaultKind::null)
        return {};
    std::vector<std::max_align_t> memory(call.answer->sizeof_message / sizeof(std::max_align_t) + 1);
    auto &answer = reinterpret_cast<ProtobufCMessage &>(memory.front());
    protobuf_c_message_init(call.answer, &answer);
    CommonResp spare = COMMON_RESP__INIT;
    CommonResp *reply = attachReply(answer, spare);
    Answering answering(request.head, reply);
    if (fault && fault->kind == FaultKind::refuse)
        refuseAs(*fault, answering, *reply);
    else
        call.handle(message, answer, answering);
    const bool isLate = fault && fault->kind == FaultKind::delay;
    return {packAnswer(answer), std::chrono::milliseconds(isLate ? fault->ms : 0)};
}

Json Simulator::show(std::string_view word) const
{
    const std::lock_guard lock(mutex_);
    Json all = Json::object();
    std::string words;
    for (const auto &family : families_) {
        if (family->word() == word)
            return family->show();
        all[std::string(family->word())] = family->show();
        words += (words.empty() ? "" : ", ") + std::string(family->word());
    }
    if (!word.empty())
        throw std::invalid_argument("there is nothing called " + std::string(word) + "; there is " + words);
    return all;
}

Json Simulator::values() const
{
    const std::lock_guard lock(mutex_);
    return device_.values.list();
}

void Simulator::setValue(std::string_view name, std::int64_t value)
{
    const std::lock_guard lock(mutex_);
    device_.values.set(name, value);
    for (const auto &family : families_)
        family->valueChanged(name);
}

void Simulator::addFault(Fault fault)
{
    if (!calls_.knows(fault.call))
        throw std::invalid_argument("the switch knows no call " + fault.call);
    if (fault.kind == FaultKind::refuse && !calls_.canRefuse(fault.call))
        throw std::invalid_argument(fault.call + " has no reply to refuse with; use null");
    if (fault.kind == FaultKind::exit && !die_)
        throw std::invalid_argument("exit is for a separate switchsim, not for the switch inside of agentd");
    const std::lock_guard lock(mutex_);
    faults_.add(std::move(fault));
}

std::vector<Fault> Simulator::faults() const
{
    const std::lock_guard lock(mutex_);
    return faults_.list();
}

void Simulator::clearFaults()
{
    const std::lock_guard lock(mutex_);
    faults_.clear();
}

} // namespace switchsim
