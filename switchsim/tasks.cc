#include "backend/proto/platform.pb-c.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

constexpr std::size_t kKept = 100;

// Takes messages for the tasks of the device.
class Tasks : public Family {
public:
    std::string_view word() const override { return "tasks"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<TaskMessage, ValueAnswer>("itc_send_request", task_message__descriptor,
                                           value_answer__descriptor,
                                           [this](const auto &request, auto &, auto &) { take(request); });
    }

    Json show() const override { return {{"messages", messages_}}; }

private:
    void take(const TaskMessage &request)
    {
        messages_.push_back(
            {{"destination", request.destination}, {"code", request.code}, {"length", request.payload.len}});
        if (messages_.size() > kKept)
            messages_.erase(0);
    }

    Json messages_ = Json::array(); // the newest ones
};

} // namespace

std::unique_ptr<Family> makeTasks(Device &)
{
    return std::make_unique<Tasks>();
}

} // namespace switchsim
