#include "interface/lag_request.h"

#include "backend/net_text.h"
#include "frame/answer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using namespace frame;

namespace {

constexpr std::int32_t kAdd = 1, kRemove = 3;
constexpr char kPrefix[] = "lag ";
constexpr std::size_t kWord = sizeof kPrefix - 2; // the number is read from the blank on

std::int32_t operationOf(int isDelete)
{
    return isDelete ? kRemove : kAdd;
}

} // namespace

namespace lag {

Request::Request()
{
    ui_lag_config_req_init(&record);
    record.name = name_;
    record.new_name = newName_;
}

void copyName(char *buffer, const char *name)
{
    const std::size_t length = std::min<std::size_t>(std::strlen(name), LAG_NAME_BYTES - 1);
    std::memcpy(buffer, name, length);
    buffer[length] = '\0';
}

Status send(const EditCall &call, Request &request, int line)
{
    CommonResp *answer = nullptr;
    Status status = kOk;
    if (ui_lag_config_apply(&request.record, &answer)) {
        locationLines(call, line);
        status = recordText(call, kInternal, "Error: Clam Call failure\n");
    } else if (isRefused(answer)) {
        locationLines(call, line);
        status = kInternal;
        if (answer->reply_buf && *answer->reply_buf)
            recordText(call, kInternal, answer->reply_buf);
    }
    ui_lag_config_resp_free_unpacked(answer);
    return status;
}

} // namespace lag

extern "C" {

long lag_get_id_from_name(const char *text)
{
    const bool isLag = text && std::strncmp(text, kPrefix, sizeof kPrefix - 1) == 0;
    return isLag ? std::strtol(text + kWord, nullptr, 10) : 0;
}

void lag_autogenerate_name_from_id(long id, char *buffer)
{
    if (buffer)
        ksnprintf(buffer, LAG_NAME_BYTES, "lg%d", static_cast<int>(id));
}

void lag_adapter_restconf_to_proto(long id, const char *name, int dynamic, int isStatic, int isDelete,
                                   const char *port, int portDelete, LagConfigReq *request)
{
    if (name) {
        lag::copyName(request->name, name);
        request->operation = operationOf(isDelete);
    }
    if (id) {
        request->has_lag_id = 1;
        request->lag_id = static_cast<std::uint32_t>(id);
        request->id_valid = 1;
    }
    if (isDelete && !portDelete)
        request->operation = kRemove;
    if (dynamic || isStatic) {
        request->has_lag_mode = 1;
        request->lag_mode = dynamic && !isStatic;
    }
    if (port) {
        // Records have no const members; nothing writes to what they borrow.
        request->ports = const_cast<char *>(port);
        request->ports_op = operationOf(portDelete);
    }
}

} // extern "C"
