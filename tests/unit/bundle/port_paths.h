// The port that the tests of port features are about.
#pragma once

#include <string>

namespace test {

inline const std::string kPort = "openconfig-interfaces:interfaces/interface=ethernet%201%2F1%2F1",
                         kEthernet = kPort + "/openconfig-if-ethernet:ethernet";

// A startup datastore with two ports; `more` are further members of the first one.
inline std::string portsWith(const std::string &more = {})
{
    return R"({"openconfig-interfaces:interfaces":{"interface":[{"name":"ethernet 1/1/1")" + more +
        R"(},{"name":"ethernet 1/1/2"}]}})";
}

} // namespace test
