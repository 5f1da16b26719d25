// The requests that plug-ins of the switch are told.
#pragma once

#include <string>

namespace test {

inline std::string plugin(const std::string &tag, const std::string &word, const std::string &key,
                          const std::string &value, const std::string &sub = "")
{
    return R"(ui_fe_plugin_config_send {"plugin":")" + tag + R"(","entries":[{"op":")" + word +
        R"(","key":")" + key + R"(","value":")" + value + "\"" +
        (sub.empty() ? "" : R"(,"sub":[)" + sub + "]") + "}]}";
}

} // namespace test
