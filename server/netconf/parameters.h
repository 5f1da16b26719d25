// The parameters of a NETCONF operation, read one by one with the standard's errors for what does not fit.
#pragma once

#include "toolkit/datastores.h"
#include "toolkit/xml_names.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace agentd::netconf {

// Every member throws RpcFailure. Parameters are in the namespace of the operation; one without any is taken
// as well, because common clients leave it out.
class Parameters {
public:
    explicit Parameters(const pugi::xml_node &operation);

    std::optional<pugi::xml_node> element(const char *name);
    std::optional<pugi::xml_node> element(const char *name, const char *nameSpace);
    pugi::xml_node requiredElement(const char *name);
    bool flag(const char *name); // whether the empty element is there
    std::optional<std::string> text(const char *name);
    std::string requiredText(const char *name);
    std::optional<std::uint32_t> number(const char *name); // from 1 on

    // The datastore inside the element <source> or <target>, or a <config> element where `takesConfig`.
    using Store = std::variant<tk::Datastore, std::string>;
    Store store(const char *name, bool takesConfig);
    tk::Datastore datastore(const char *name);

    tk::Filter filter();
    tk::WithDefaults withDefaults();

    // One of several words; the first of them where the parameter is not there.
    template <class Value>
    Value choice(const char *name, const std::vector<std::pair<const char *, Value>> &words)
    {
        const auto given = text(name);
        if (!given)
            return words.front().second;
        for (const auto &[word, value] : words)
            if (*given == word)
                return value;
        refuseWord(name, *given);
    }

    // Nothing else may be there.
    void done() const;

private:
    [[noreturn]] static void refuseWord(const char *name, const std::string &word);

    std::string nameSpace_;
    std::vector<pugi::xml_node> left_;
};

} // namespace agentd::netconf
