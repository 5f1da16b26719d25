#include "frame/unit.h"

#include <cstring>
#include <string>

namespace frame {

namespace {

// Callbacks are logged under the user function's name without its "u_".
const char *wrapperName(const Binding &binding)
{
    return binding.row->function + 2;
}

const char *lastStep(const char *path)
{
    const char *slash = std::strrchr(path, '/');
    const char *colon = std::strrchr(slash ? slash : path, ':');
    return colon ? colon + 1 : path;
}

// The cache pointer of a row whose path has one step.
Value **cacheOf(Unit &unit, const Row &row)
{
    if (std::strrchr(row.path, '/') != row.path)
        return nullptr;
    for (TopLevel &top : unit.tops)
        if (xml_strcmp(lastStep(row.path), top.name) == 0)
            return &top.cache;
    return nullptr;
}

Status findTopLevels(const Unit &unit)
{
    for (const TopLevel &top : unit.tops)
        if (!ncx_find_object(unit.module, top.name))
            return kNotFound;
    for (const Row &row : unit.rows)
        if (row.kind == RowKind::rpc && !ncx_find_object(unit.module, row.path))
            return kNotFound;
    return kOk;
}

Status registerPair(const Unit &unit, const Row &row, OperationPhase phase)
{
    return row.kind == RowKind::rpc ? agt_rpc_register_method(unit.name, row.path, phase, row.rpc[phase])
                                    : agt_action_register_action(row.path, phase, row.action[phase]);
}

Status registerEdit(const Unit &unit, const Row &row)
{
    const Status status = agt_cb_register_edit2_callback(unit.name, row.path, unit.revision, row.edit);
    if (status || row.options == optNone)
        return status;
    return agt_cb_set_edit_options(unit.name, row.path, row.options);
}

Status registerRow(Unit &unit, const Row &row)
{
    if (row.binding)
        *row.binding = {&row, cacheOf(unit, row)};
    switch (row.kind) {
    case RowKind::edit:
        return registerEdit(unit, row);
    case RowKind::get:
        return agt_cb_register_get_callback(unit.name, row.path, unit.revision, row.get);
    case RowKind::rpc:
    case RowKind::action:
        break;
    }
    const Status status = registerPair(unit, row, operationValidate);
    return status ? status : registerPair(unit, row, operationInvoke);
}

void unregisterRow(const Unit &unit, const Row &row)
{
    switch (row.kind) {
    case RowKind::edit:
    case RowKind::get:
        return agt_cb_unregister_callbacks(unit.name, row.path);
    case RowKind::rpc:
        return agt_rpc_unregister_method(unit.name, row.path);
    case RowKind::action:
        return agt_action_unregister_action(row.path);
    }
}

} // namespace

Status initUnit(Unit &unit, const char *module, const char *revision)
{
    if (logsDebug())
        log_debug("\nEnter y_%s_init", unit.function);
    unit.module = nullptr;
    for (TopLevel &top : unit.tops)
        top.cache = nullptr;
    if (xml_strcmp(module, unit.name) != 0)
        return kWrongName;
    if (revision && xml_strcmp(revision, unit.revision) != 0)
        return kWrongRevision;
    if (const Status status = ncxmod_load_module(unit.name, unit.revision, agt_get_savedevQ(), &unit.module))
        return status;
    if (const Status status = findTopLevels(unit))
        return status;
    for (const Row &row : unit.rows)
        if (const Status status = registerRow(unit, row))
            return status;
    return unit.userInit(module, revision);
}

Status init2Unit(Unit &unit)
{
    if (logsDebug())
        log_debug("\nEnter y_%s_init2", unit.function);
    for (TopLevel &top : unit.tops) {
        Status status = kOk;
        top.cache = agt_init_cache(unit.name, top.name, &status);
        if (status)
            return status;
    }
    return unit.userInit2();
}

void cleanupUnit(const Unit &unit)
{
    if (unit.isHere && !unit.isHere())
        return;
    if (logsDebug())
        log_debug("\nEnter y_%s_cleanup", unit.function);
    for (const Row &row : unit.rows)
        unregisterRow(unit, row);
    unit.userCleanup();
}

Status userInit(const char *function, const char *module, const char *revision)
{
    if (logsDebug())
        log_debug("\nEnter u_%s_init", function);
    return ncx_find_module(module, revision) ? kOk : kFailed;
}

Status userInit2(const char *function)
{
    if (logsDebug())
        log_debug("\nEnter u_%s_init2", function);
    return kOk;
}

void userCleanup(const char *function)
{
    if (logsDebug())
        log_debug("\nEnter u_%s_cleanup", function);
}

const Value *KeyReader::nextValue()
{
    if (value_)
        return agt_get_key_value(value_, &lastKey_);
    lastGiven_ = lastGiven_ ? getcb_next_key(block_, lastGiven_) : getcb_first_key(block_);
    return lastGiven_;
}

Status runEdit(const Binding &binding, const EditCall &call, Status (*invoke)(const EditCall &, KeyReader &))
{
    const unsigned errorsBefore = agt_get_error_count(call.msg);
    Value *errorValue = call.curval ? call.curval : call.newval;
    KeyReader keys(errorValue);
    if (logsDebug())
        log_debug("\nEnter %s callback for %s phase", wrapperName(binding), agt_cbtype_name(call.phase));
    Status status = invoke(call, keys);
    if (status == kOk && call.phase == commit && binding.cache)
        status = agt_check_cache(binding.cache, call.newval, call.curval, call.op);
    if (status != kOk && agt_get_error_count(call.msg) == errorsBefore) {
        const ErrorInfoKind kind = errorValue ? infoValue : infoNone;
        agt_record_error(call.scb, call.msg->mhdr, kContentLayer, status, nullptr, kind, errorValue, kind,
                         errorValue);
    }
    return status;
}

void logGet(const Binding &binding)
{
    if (logsDebug())
        log_debug("\nEnter %s", wrapperName(binding));
}

void logAction(const Binding &binding, const char *phase)
{
    if (!logsDebug() || !binding.row)
        return;
    const std::string function = wrapperName(binding);
    const std::string stem = function.substr(0, function.rfind('_'));
    log_debug("\nEnter %s_%s for action <%s>", stem.c_str(), phase, lastStep(binding.row->path));
}

} // namespace frame
