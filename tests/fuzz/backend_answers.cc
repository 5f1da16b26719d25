// What a daemon may answer: the client functions take it apart, and a caller reads every member.
#include "backend/envelope.h"
#include "backend/forwarding_profile.h"
#include "backend/plugin.h"
#include "backend/poe.h"
#include "backend/qos.h"
#include "backend/transport.h"

#include <cstdlib>
#include <cstring>

namespace {

class OneAnswer : public backend::Transport {
public:
    std::optional<backend::Bytes> call(backend::BytesView, backend::Deadline) override { return answer; }
    backend::Bytes answer;
};

std::size_t touch(const CommonResp *reply)
{
    if (reply == nullptr)
        return 0;
    return (reply->ui_err != 0 ? 1 : 0) + (reply->reply_buf == nullptr ? 0 : std::strlen(reply->reply_buf));
}

std::size_t touch(const PluginProcessResponse &answer)
{
    std::size_t sum = touch(answer.reply);
    for (std::size_t i = 0; i < answer.n_entries; i++) {
        const PluginEntry &entry = *answer.entries[i];
        sum += (entry.value == nullptr ? 0 : std::strlen(entry.value)) + entry.n_sub;
        for (std::size_t k = 0; k < entry.n_sub; k++)
            sum += entry.sub[k]->key == nullptr ? 0 : std::strlen(entry.sub[k]->key);
    }
    return sum;
}

std::size_t askForCommonResp()
{
    FwdConfigInfo request = FWD_CONFIG_INFO__INIT;
    CommonResp *answer = nullptr;
    const bool isDelivered = ui_forwarding_profile_config_apply(&request, &answer) == 0;
    if (isDelivered != (answer != nullptr))
        std::abort();
    const auto sum = touch(answer);
    common_resp__free_unpacked(answer, nullptr);
    return sum;
}

std::size_t askForNestedRecords()
{
    std::size_t sum = 0;
    if (QosJumboAnswer *jumbo = ui_fe_qos_jumbo(10, 0)) {
        sum += touch(jumbo->reply);
        ui_fe_qos_jumbo_post_op(jumbo);
    }
    PoeConfig poe = POE_CONFIG__INIT;
    if (PoeInfo *info = ui_fe_poe_config_cmd_send(&poe, 5)) {
        sum += touch(info->reply) + (info->port_info == nullptr ? 0 : info->port_info->power_used);
        ui_fe_poe_config_post_oper(info);
    }
    PluginConfig plugin = PLUGIN_CONFIG__INIT;
    if (PluginProcessResponse *lines = ui_fe_plugin_config_send(&plugin, 2)) {
        sum += touch(*lines);
        plugin_process_response__free_unpacked(lines, nullptr);
    }
    return sum;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const auto transport = std::make_shared<OneAnswer>();
    backend::setTransport(transport);
    // The envelope is given, so that most inputs reach the message.
    const auto at = backend::beginAnswer(true, size, transport->answer);
    std::copy(data, data + size, transport->answer.begin() + static_cast<std::ptrdiff_t>(at));
    volatile std::size_t sum = askForCommonResp() + askForNestedRecords();
    static_cast<void>(sum);
    transport->answer.assign(data, data + size);
    askForCommonResp();
    return 0;
}
