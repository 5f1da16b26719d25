#include "acl/src/acl_request.h"

namespace acl {

namespace {

const char *orEmpty(const char *text)
{
    return text ? text : "";
}

Status configureList(const char *name, const char *type, const Value *set, EditOp op, auto filter)
{
    if (op != create)
        return kOk;
    if (const Status status = restconf_acl_process_create_delete_request(name, type, create, 0))
        return status;
    return forEachEntry(child(set, "acl-entries"), "acl-entry",
                        [&](const Value *entry) { return filter(create, name, entry); });
}

constexpr Kind kKinds[] = {
    {kIpv4, restconf_ipv4acl_filter_config, restconf_ipv4_config_acl_def_and_filters},
    {kIpv6, restconf_acl_ipv6_configure_acl_entry, restconf_ipv6_config_acl_def_and_filters},
    {kL2, restconf_l2acl_filter_config, restconf_l2_config_acl_def_and_filters},
};

} // namespace

bool isStandard(const Value *set)
{
    const Value *standard = val_find_child(set, kAugModule, "standard");
    return standard && val_get_status(standard) == kOk && val_get_boolean(standard);
}

const Kind *findKind(const char *type)
{
    const std::uint32_t code = get_acl_type(type);
    for (const Kind &kind : kKinds)
        if (kind.type == code)
            return &kind;
    return nullptr;
}

int exchange(ProtobufCMessage &message, std::uint32_t type, std::uint32_t messageCode, SecurityAnswer &answer,
             const char *function, int line)
{
    const int result = exchangeSecurityMessage(message, type, messageCode, answer);
    if (result && logsErrors()) {
        logPlace(function, line);
        log_error("ITC failed : %d \n", result);
    }
    return result;
}

} // namespace acl

using namespace acl;

extern "C" {

Status restconf_acl_process_create_delete_request(const char *name, const char *type, EditOp op, int standard)
{
    if (op != create && op != del) {
        if (logsDebug())
            log_debug("Operation not supported : %d \n", op);
        return kOk;
    }
    AclDefinitionRequest request = ACL_DEFINITION_REQUEST__INIT;
    request.operation = op == create ? kAdd : kRemove;
    request.acl_name = const_cast<char *>(name); // records have no const texts
    request.acl_type = get_acl_type(type);
    if (const auto number = numberOf(name, request.acl_type)) {
        request.acl_num = *number;
        request.has_acl_num = 1;
    }
    if (request.acl_type == kIpv4)
        (standard ? request.standard : request.extended) = 1;
    SecurityAnswer answer;
    const int result =
        exchangeSecurityMessage(request.base, request.acl_type, SEC_MSG_ACL_DEFINITION, answer);
    if (!result)
        return restconf_process_acl_config_common_response(reinterpret_cast<CommonResp *>(answer.release()));
    if (logsErrors())
        log_error("\n ITC failed %d", result);
    return kInternal;
}

Status restconf_acl_parse_acl_params(const Value *config, const char **name, const char **type)
{
    const Value *nameLeaf = child(config, "name"), *typeLeaf = child(config, "type");
    if (nameLeaf)
        *name = val_get_string(nameLeaf);
    if (typeLeaf)
        *type = val_get_string(typeLeaf);
    return nameLeaf && typeLeaf ? kOk : kMissing;
}

Status acl_delete_by_key(const Value *set)
{
    const char *name = nullptr, *type = nullptr;
    acl_get_name_and_type(set, &name, &type);
    return name ? restconf_acl_process_create_delete_request(name, type, del, isStandard(set)) : kMissing;
}

Status restconf_remove_all_acls_in_acl_sets(const Value *sets)
{
    return forEachEntry(sets, "acl-set", acl_delete_by_key);
}

Status restconf_ipv4_config_acl_def_and_filters(const char *name, const char *type, const Value *set,
                                                EditOp op)
{
    return configureList(name, type, set, op, restconf_ipv4acl_filter_config);
}

Status restconf_ipv6_config_acl_def_and_filters(const char *name, const char *type, const Value *set,
                                                EditOp op)
{
    return configureList(name, type, set, op, restconf_acl_ipv6_configure_acl_entry);
}

Status restconf_l2_config_acl_def_and_filters(const char *name, const char *type, const Value *set, EditOp op)
{
    return configureList(name, type, set, op, restconf_l2acl_filter_config);
}

Status restconf_process_acl_config_common_response(CommonResp *response)
{
    const Owned<CommonResp, common_resp__free_unpacked> answer(response);
    if (!answer) {
        logPlace();
        return kInternal;
    }
    if (logsDebug())
        log_debug("ACL-common response : status:%d Msg:%s \n", answer->app_err, orEmpty(answer->reply_buf));
    if (answer->app_err != kRefused)
        return kOk;
    logPlace();
    return kInternal;
}

} // extern "C"
