#include "backend/proto/config_files.pb-c.h"
#include "switchsim/device_files.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

constexpr const char *kStartup = "/grey_slab/startup-config.txt";
constexpr const char *kBackup = "/grey_slab/startup-config.backup";

// The running configuration as text, and the startup file.
class ConfigFiles : public Family {
public:
    explicit ConfigFiles(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "config-files"; }

    void registerCalls(CallTable &calls) override
    {
        for (const char *call :
             {"ui_rcm_get_running_config_file", "ui_rcm_get_running_config_file_not_wr_mem"})
            calls.on<RcmFileRequest, RcmFileAnswer>(
                call, rcm_file_request__descriptor, rcm_file_answer__descriptor,
                [this](const auto &, auto &answer, auto &answering) { writeRunning(answer, answering); });
        calls.on<ValueRequest, CommonResp>(
            "ui_execute_save_to_flash", value_request__descriptor, common_resp__descriptor,
            [this](const auto &, auto &, auto &answering) { save(answering); });
    }

    Json show() const override
    {
        const auto startup = readDeviceFile(kStartup);
        const auto running = device_.runningConfig();
        return {{"running", running}, {"startup", startup ? Json(*startup) : Json()}, {"saves", saves_}};
    }

    std::vector<std::string> configLines() const override
    {
        if (device_.values.get("running-config-dirty") == 0)
            return {};
        return {"banner motd ^C not saved yet ^C"};
    }

private:
    void writeRunning(RcmFileAnswer &answer, Answering &answering)
    {
        const std::string path = "/tmp/running-config." + std::to_string(++written_);
        if (!writeDeviceFile(path, device_.runningConfig()))
            return answering.refuse("Error: the running configuration cannot be written\n");
        answer.path = answering.keep(path);
    }

    // What was saved before becomes the backup.
    void save(Answering &answering)
    {
        const auto before = readDeviceFile(kStartup);
        device_.values.set("running-config-dirty", 0);
        const bool isDone = (!before || writeDeviceFile(kBackup, *before)) &&
            writeDeviceFile(kStartup, device_.runningConfig());
        if (!isDone)
            return answering.refuse("Error: flash cannot be written\n");
        saves_++;
    }

    Device &device_;
    std::uint32_t written_ = 0;
    std::uint32_t saves_ = 0;
};

} // namespace

std::unique_ptr<Family> makeConfigFiles(Device &device)
{
    return std::make_unique<ConfigFiles>(device);
}

} // namespace switchsim
