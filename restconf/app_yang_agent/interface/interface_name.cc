#include "interface/interface_name.h"

#include "backend/net_text.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace interfaces {

const NameTexts kBindingTexts = {
    "Multiple interfaces Not allowded in a interface key",
    "Should have single space between ethernet and STACKID/SLOT/PORT",
    "Should have single space between lag and DECIMAL",
    "Should have single space between vlan and DECIMAL",
};
const NameTexts kEgressTexts = {
    kBindingTexts.several,
    kBindingTexts.ethernet,
    kBindingTexts.lag,
    kBindingTexts.vlan,
    "Space should not present at the end of interface key",
    "No Space in starting of interface key",
};
const NameTexts kVlanListTexts = {
    "Multiple interfaces Not allowded in a name key",
    "Single space between ethernet and STACKID/SLOT/PORT",
    "Single space present between lag and DECIMAL",
    nullptr,
};

std::optional<long> numberInName(const char *name)
{
    std::string copy(name ? name : "");
    const char *at = trim_whitespace(copy.data());
    at += std::strspn(at, " ");
    at += std::strcspn(at, " ");
    at += std::strspn(at, " ");
    if (!*at)
        return std::nullopt;
    return std::strtol(at, nullptr, 10);
}

namespace {

// The word stands first with a blank behind it, and what follows is no blank.
Status checkWord(const frame::EditCall &call, std::string_view name, std::string_view word,
                 const char *single, const char *noStart)
{
    Status status = kOk;
    const std::string start = std::string(word) + " ";
    if (name.substr(0, start.size()) != start)
        status = recordText(call, kInternal, noStart);
    if (name.size() > start.size() && name[start.size()] == ' ')
        status = recordText(call, kInternal, single);
    return status;
}

} // namespace

Status checkName(const frame::EditCall &call, const char *name, const NameTexts &texts)
{
    const std::string_view key = name;
    const auto holds = [key](const char *word) { return key.find(word) != key.npos; };
    if (holds("to"))
        return recordText(call, kInternal, texts.several);
    if (!key.empty() && key.back() == ' ')
        return recordText(call, kInternal, texts.end);
    if (holds("ethernet"))
        return checkWord(call, key, "ethernet", texts.ethernet, texts.start);
    if (holds("lag"))
        return checkWord(call, key, "lag", texts.lag, texts.start);
    if (texts.vlan && holds("vlan"))
        return checkWord(call, key, "vlan", texts.vlan, texts.start);
    return kOk;
}

} // namespace interfaces
