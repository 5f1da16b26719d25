// What a request is refused with.
#pragma once

#include "server/restconf/errors.h"

#include <string>

namespace agentd::test {

// The HTTP status with which the action is refused, 0 if it isn't.
template <typename Action>
unsigned statusOf(Action action)
{
    try {
        action();
    } catch (const restconf::RequestError &error) {
        return error.status;
    }
    return 0;
}

} // namespace agentd::test
