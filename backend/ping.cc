#include "backend/ping.h"

#include "backend/call.h"

void set_ping_data_mask(uint32_t *mask, uint32_t bit)
{
    if (bit < 32)
        *mask |= std::uint32_t{1} << bit;
}

int ui_execute_ping(PingEntry *entry, CommonResp **answer)
{
    return backend::applyAndRead("ui_execute_ping", entry, answer);
}

int ui_execute_trace_route(TraceRouteExecute *message, CommonResp **answer)
{
    return backend::applyAndRead("ui_execute_trace_route", message, answer);
}
