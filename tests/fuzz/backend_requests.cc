// What a client may send to the switch, and what the journal makes of it.
#include "switchsim/simulator.h"

#include <array>
#include <cstdlib>

namespace {

class Impatient : public switchsim::Caller {
public:
    bool wait(std::chrono::milliseconds) override { return false; }
};

struct Target {
    const char *call;
    std::uint32_t code;
};
constexpr std::array<Target, 10> kTargets = {{
    {"ui_fe_qos_jumbo", 0},
    {"ui_fe_qos_port_oper", 0},
    {"ui_fe_interface_config_msg", 0},
    {"ui_fe_poe_config_cmd_send", 0},
    {"ui_fe_plugin_config_send", 0},
    {"protected_port_config_apply", 0},
    {"sec_protobuf_fe_config_handler", 0x99005D},
    {"shm_object_get", 0},
    {"cu_logging_write", 0},
    {"itc_send_request", 0},
}};

} // namespace

// The first byte chooses the call, the second its number beside the record; the rest is the message.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static switchsim::Simulator device;
    static std::uint64_t seen = 0;
    Impatient caller;
    bool isServed = device.serve({data, size}, caller).has_value(); // as it is, envelope included
    if (size < 2)
        return 0;
    const Target &target = kTargets.at(data[0] % kTargets.size());
    backend::Bytes request;
    const auto at = backend::beginRequest({target.call, data[1], target.code, 0}, size - 2, request);
    std::copy(data + 2, data + size, request.begin() + static_cast<std::ptrdiff_t>(at));
    isServed = device.serve(request, caller).has_value() || isServed;
    for (const auto &line : device.journal().readAfter(seen, 10)) {
        seen = line.seq;
        if (switchsim::asLine(asJson(line)).empty() || !isServed)
            std::abort();
    }
    return 0;
}
