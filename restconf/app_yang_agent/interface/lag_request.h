// The request that LAGs, their names and their members travel in.
//
//   lag::Request request;                 // the record with its buffers in place
//   lag_adapter_restconf_to_proto(5, nullptr, 0, 0, 0, "ethernet 1/1/1", 0, &request.record);
//   return lag::send(call, request);
#pragma once

#include "backend/lag.h"
#include "frame/call.h"

namespace lag {

struct Request {
    LagConfigReq record;

    Request();
    Request(const Request &) = delete;
    Request &operator=(const Request &) = delete;

private:
    char name_[LAG_NAME_BYTES] = {}, newName_[LAG_NAME_BYTES] = {};
};

// Copies a name into a buffer of LAG_NAME_BYTES, cut to fit.
void copyName(char *buffer, const char *name);

// Sends a request. kInternal when it was not delivered or turned down; what the client is told of it is
// recorded.
Status send(const frame::EditCall &call, Request &request, int line = __builtin_LINE());

} // namespace lag

extern "C" {

// The number in "lag N"; 0 for a null text and any other beginning.
long lag_get_id_from_name(const char *text);
// Writes the name that a LAG has by itself, "lgN", into LAG_NAME_BYTES; nothing for a null buffer.
void lag_autogenerate_name_from_id(long id, char *buffer);

// Fills a request in place. A name makes or, with `isDelete`, deletes the LAG; `dynamic` and `isStatic` tell
// its type; a port is added or, with `portDelete`, taken out. Name and port may be null.
void lag_adapter_restconf_to_proto(long id, const char *name, int dynamic, int isStatic, int isDelete,
                                   const char *port, int portDelete, LagConfigReq *request);

} // extern "C"
