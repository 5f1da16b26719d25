#include "errors.h"
#include "legible.h"
#include "toolkit/edit.h"

#include "request.h"
#include "toolkit/log.h"
#include "toolkit/val.h"

#include <cstring>

namespace tk {

std::vector<Error> MessageHeader::errors(std::size_t first, Status status) const
{
    std::vector<Error> errors;
    for (std::size_t i = first; i < records.size(); ++i)
        errors.push_back(statusError(records[i].status, records[i].path, legible(records[i].text)));
    if (errors.empty())
        errors.push_back(statusError(status, path()));
    return errors;
}

namespace {

// The keys on the way to a value: those of the callback's own node, then those of entries inside it.
std::vector<Value *> keysTo(Value *value)
{
    std::vector<Value *> inside;
    Value *top = value;
    for (; top->parent; top = top->parent)
        if (top->schema->nodetype == LYS_LIST)
            inside.insert(inside.begin(), top);
    std::vector<Value *> keys;
    if (top->pathKeys)
        for (const auto &key : *top->pathKeys)
            keys.push_back(key.get());
    for (const Value *entry : inside)
        for (Value *key = val_get_first_key(entry); key; key = val_get_next_key(key))
            keys.push_back(key);
    return keys;
}

std::string pathWithin(const Value &value)
{
    if (!value.parent)
        return {};
    std::string step = "/";
    if (value.schema->module != value.parent->schema->module)
        step += std::string(value.schema->module->name) + ":";
    step += value.schema->name;
    for (const Value *key = val_get_first_key(&value); key; key = val_get_next_key(key))
        step += std::string("[") + key->schema->name + "='" + key->text + "']";
    return pathWithin(*value.parent) + step;
}

} // namespace

} // namespace tk

using namespace tk;

extern "C" ChildEdit *agt_cfg_first_child_edit(TransactionRecord *txcb, Value *, Value *)
{
    return txcb && txcb->told && !txcb->told->childEdits.empty() ? txcb->told->childEdits.front().get()
                                                                 : nullptr;
}

extern "C" ChildEdit *agt_cfg_next_child_edit(ChildEdit *edit)
{
    return edit ? edit->next : nullptr;
}

extern "C" void agt_cfg_child_edit_fields(ChildEdit *edit, std::uint8_t *op, Value **newval, Value **curval)
{
    *op = static_cast<std::uint8_t>(edit->op);
    *newval = edit->newval.get();
    *curval = edit->curval.get();
}

extern "C" Value *agt_get_key_value(Value *value, Value **lastkey)
{
    if (!value)
        return nullptr;
    const auto keys = keysTo(value);
    std::size_t next = 0;
    if (*lastkey)
        while (next < keys.size() && keys[next++] != *lastkey) { }
    *lastkey = next < keys.size() ? keys[next] : nullptr;
    return *lastkey;
}

extern "C" unsigned agt_get_error_count(Request *msg)
{
    return static_cast<unsigned>(msg->mhdr->records.size());
}

extern "C" void agt_record_error(Session *, MessageHeader *mhdr, int, Status status, void *,
                                 ErrorInfoKind infoKind, const void *errorInfo, ErrorInfoKind nodeKind,
                                 const Value *errorNode)
{
    ErrorRecord record{status, {}, mhdr->path()};
    if (infoKind == infoString && errorInfo)
        record.text = static_cast<const char *>(errorInfo);
    const Value *node = nodeKind == infoValue && errorNode ? errorNode
        : infoKind == infoValue                            ? static_cast<const Value *>(errorInfo)
                                                           : nullptr;
    if (node)
        record.path += pathWithin(*node);
    mhdr->records.push_back(std::move(record));
}

extern "C" const char *agt_cbtype_name(EditPhase phase)
{
    switch (phase) {
    case validate:
        return "validate";
    case apply:
        return "apply";
    case commit:
        return "commit";
    case rollback:
        return "rollback";
    }
    return "--";
}

extern "C" const char *op_editop_name(EditOp op)
{
    switch (op) {
    case merge:
        return "merge";
    case replace:
        return "replace";
    case create:
        return "create";
    case del:
        return "delete";
    case load:
        return "load";
    case noOperation:
        break;
    }
    return "--";
}

extern "C" Status set_error(const char *file, int line, Status status, int)
{
    if (log_get_system_log_level() >= 1)
        log_error("\n%s:%d: error %u: %s\n", file, line, status, statusInfo(status).text);
    return status;
}
