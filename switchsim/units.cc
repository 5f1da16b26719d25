#include "switchsim/family.h"

#include <cstdio>

namespace switchsim {

std::string StackUnit::mac() const
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0200.5e10.%02x00", static_cast<unsigned>(id) & 0xffU);
    return text.data();
}

StackUnits::StackUnits()
{
    constexpr const char *ok = "status ok", *bad = "status bad", *none = "status nonexist";
    for (std::int32_t id = 1; id <= kMost; id++) {
        StackUnit unit;
        unit.id = id;
        unit.name = "unit" + std::to_string(id);
        // A half degree above 35 in the first unit, and warmer further up.
        unit.halfDegrees = 71 + 5 * (static_cast<std::uint32_t>(id) - 1);
        unit.powerSupplies = {ok, id == 2 ? none : id == 3 ? bad : ok};
        unit.fans = {"ok, speed auto", "ok, speed 1"};
        if (id == 3) // the model with six of them
            unit.fans = {"ok, speed 2", "ok, speed 2", "failed", "ok, speed 2", "ok, speed 2", "ok, speed 3"};
        all.push_back(unit);
    }
}

std::vector<const StackUnit *> Device::presentUnits() const
{
    std::vector<const StackUnit *> present;
    for (const StackUnit &unit : units.all)
        if (unit.id <= values.get("stack-units"))
            present.push_back(&unit);
    return present;
}

StackUnit *Device::findUnit(std::int32_t id)
{
    const bool isPresent = id >= 1 && id <= values.get("stack-units");
    return isPresent ? &units.all[static_cast<std::size_t>(id) - 1] : nullptr;
}

} // namespace switchsim
