#include "switchsim/ports.h"

#include <charconv>

namespace switchsim {
namespace {

constexpr std::string_view kPrefix = "ethernet 1/1/";

} // namespace

void Ports::resize(unsigned count)
{
    ports_.resize(count);
    for (unsigned number = 1; number <= count; number++) {
        Port &port = ports_[number - 1];
        port.name = std::string(kPrefix) + std::to_string(number);
        port.ifindex = number;
    }
}

Port *Ports::find(std::string_view name)
{
    std::size_t number = 0;
    if (!name.starts_with(kPrefix))
        return nullptr;
    std::from_chars(name.data() + kPrefix.size(), name.data() + name.size(), number);
    Port *port = number >= 1 && number <= ports_.size() ? &ports_[number - 1] : nullptr;
    return port && port->name == name ? port : nullptr;
}

std::string unknownPort(std::string_view name)
{
    return "Error: port " + std::string(name) + " does not exist\n";
}

} // namespace switchsim
