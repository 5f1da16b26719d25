#include "switchsim/faults.h"

#include <algorithm>
#include <array>
#include <utility>

namespace switchsim {
namespace {

constexpr std::array<std::pair<std::string_view, FaultKind>, 4> kKinds = {{
    {"null", FaultKind::null},
    {"refuse", FaultKind::refuse},
    {"delay", FaultKind::delay},
    {"exit", FaultKind::exit},
}};

bool fits(const Fault &fault, std::string_view call, const std::vector<std::string> &messages)
{
    return fault.call == call &&
        (fault.message.empty() ||
         std::find(messages.begin(), messages.end(), fault.message) != messages.end());
}

} // namespace

std::optional<FaultKind> asFaultKind(std::string_view word)
{
    for (const auto &[name, kind] : kKinds) {
        if (name == word)
            return kind;
    }
    return std::nullopt;
}

Json asJson(const Fault &fault)
{
    const auto *kind =
        std::find_if(kKinds.begin(), kKinds.end(), [&](const auto &row) { return row.second == fault.kind; });
    Json json = {{"call", fault.call}, {"kind", kind->first}};
    if (!fault.message.empty())
        json["message"] = fault.message;
    if (fault.uiErr)
        json["ui_err"] = *fault.uiErr;
    if (fault.appErr)
        json["app_err"] = *fault.appErr;
    if (fault.text)
        json["text"] = *fault.text;
    if (fault.kind == FaultKind::delay)
        json["ms"] = fault.ms;
    if (fault.count > 0)
        json["count"] = fault.count;
    if (fault.after > 0)
        json["after"] = fault.after;
    return json;
}

std::optional<Fault> Faults::strike(std::string_view call, const std::vector<std::string> &messages)
{
    for (auto it = faults_.begin(); it != faults_.end(); ++it) {
        if (!fits(*it, call, messages))
            continue;
        if (it->after > 0) {
            it->after--;
            continue;
        }
        Fault struck = *it;
        if (it->count > 0 && --it->count == 0)
            faults_.erase(it);
        return struck;
    }
    return std::nullopt;
}

} // namespace switchsim
