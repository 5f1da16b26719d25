#include "server/device.h"

#include "backend/device_files.h"
#include "backend/transport.h"
#include "server/paths.h"
#include "switchsim/switch.h"
#include "toolkit/host.h"

#include <string_view>

namespace agentd {
namespace {

constexpr std::string_view kInProcess = "inproc", kSocketPrefix = "unix:";

// The device's files lie in the state folder, but for a switch whose own agentd this is.
void placeFiles(const DeviceOptions &options, bool isSimulated)
{
    std::filesystem::path root;
    if (isSimulated || !isInstalled())
        root = std::filesystem::absolute(options.stateDir) / "device";
    backend_set_file_root(root.c_str());
}

// The transport is the process's own; this takes it away again.
class TransportDevice : public Device {
public:
    explicit TransportDevice(std::shared_ptr<backend::Transport> transport)
    {
        backend::setTransport(std::move(transport));
    }
    ~TransportDevice() override { backend::setTransport(nullptr); }
    void interrupt() override { backend::setTransport(nullptr); }
};

class SimulatedDevice : public Device {
public:
    explicit SimulatedDevice(const DeviceOptions &options)
    {
        switchsim::SwitchOptions settings;
        settings.stateDir = options.stateDir;
        settings.platformType = options.platform.value_or(settings.platformType);
        simulation_ = switchsim::startInProcessSwitch(settings);
        backend::setTransport(simulation_->transport());
    }
    ~SimulatedDevice() override { backend::setTransport(nullptr); }
    void interrupt() override
    {
        backend::setTransport(nullptr);
        simulation_.reset(); // cuts short what still waits in it
    }

private:
    std::unique_ptr<switchsim::InProcessSwitch> simulation_;
};

std::unique_ptr<Device> socketDevice(const DeviceOptions &options)
{
    const std::string path = options.where.substr(kSocketPrefix.size());
    if (path.empty())
        throw tk::StartFailure("--device unix: needs the path of a socket");
    if (options.platform)
        throw tk::StartFailure("--platform is for the switch in this process; a switchsim has its own");
    return std::make_unique<TransportDevice>(backend::makeSocketTransport(path));
}

} // namespace

std::unique_ptr<Device> setUpDevice(const DeviceOptions &options)
{
    if (options.timeout.count() > 0)
        backend::setTimeout(options.timeout);
    const bool isSimulated = options.where == kInProcess;
    placeFiles(options, isSimulated);
    if (isSimulated)
        return std::make_unique<SimulatedDevice>(options);
    if (options.where.starts_with(kSocketPrefix))
        return socketDevice(options);
    throw tk::StartFailure("--device is neither 'inproc' nor 'unix:PATH': " + options.where);
}

} // namespace agentd
