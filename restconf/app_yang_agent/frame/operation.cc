#include "frame/operation.h"

namespace frame {

namespace {

const Object *childOf(const Object *parent, const char *name)
{
    const Object *child = parent ? obj_first_child(parent) : nullptr;
    while (child && xml_strcmp(obj_get_name(child), name) != 0)
        child = obj_next_child(child);
    return child;
}

} // namespace

Status refuseRequest(Session *scb, Request *msg, Status status, const char *text)
{
    agt_record_error(scb, msg->mhdr, kContentLayer, status, nullptr, infoString, text, infoNone, nullptr);
    return status;
}

const Object *outputOf(const Request *msg, const char *module)
{
    return obj_find_child(msg->method, module, "output");
}

Status returnResult(Request *msg, const Object *output, const char *module, const char *text)
{
    const Object *result = childOf(childOf(output, "response"), "result");
    if (!result)
        return kNotFound;
    Status status = kOk;
    Value *leaf = agt_make_leaf2(result, module, "result", text, &status);
    if (leaf)
        agt_rpc_add_return_val(leaf, msg);
    return status;
}

} // namespace frame
