#include "switchsim/ports.h"

#include <algorithm>

namespace switchsim {

Ports::Ports()
{
    for (unsigned number = 1; number <= kPortsOfUnit; number++)
        ports_.push_back({{"ethernet 1/1/" + std::to_string(number), number, true, {}}, {}});
}

Port *Ports::find(std::string_view name)
{
    const auto found =
        std::find_if(ports_.begin(), ports_.end(), [name](const Port &port) { return port.name == name; });
    return found == ports_.end() ? nullptr : &*found;
}

std::string unknownPort(std::string_view name)
{
    return "Error: port " + std::string(name) + " does not exist\n";
}

} // namespace switchsim
