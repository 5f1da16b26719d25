#include "frame/call.h"

namespace frame {

namespace {

void logLeaf(const EditedLeaf &leaf)
{
    log_debug2("\nchild edit %s", op_editop_name(leaf.op));
    if (leaf.newval) {
        log_debug2_append("\nnew");
        val_dump_value(leaf.newval, 0, kDebugDump);
    }
    if (leaf.curval) {
        log_debug2_append("\ncur");
        val_dump_value(leaf.curval, 0, kDebugDump);
    }
}

} // namespace

bool nextEditedLeaf(const EditCall &call, ChildEdit *&edit, EditedLeaf &leaf)
{
    edit = edit ? agt_cfg_next_child_edit(edit)
                : agt_cfg_first_child_edit(call.msg->rpc_txcb, call.newval, call.curval);
    if (!edit)
        return false;
    std::uint8_t op = 0;
    leaf = {};
    agt_cfg_child_edit_fields(edit, &op, &leaf.newval, &leaf.curval);
    leaf.op = static_cast<EditOp>(op);
    leaf.name = obj_get_name(val_get_obj(leaf.newval ? leaf.newval : leaf.curval));
    if (logsDebug2())
        logLeaf(leaf);
    return true;
}

void walkChildEdits(const EditCall &call)
{
    walkChildEdits(call, [](const EditedLeaf &) { return kOk; });
}

void locationLines(const EditCall &call, int line)
{
    if (!logsErrors())
        return;
    log_error("[%s] [%d] cbtype [%s] editop [%s]", call.function, line, agt_cbtype_name(call.phase),
              op_editop_name(call.op));
    if (call.newval) {
        log_error("\nnew");
        val_dump_value(call.newval, 0, kErrorDump);
    }
    if (call.curval) {
        log_error("\ncur");
        val_dump_value(call.curval, 0, kErrorDump);
    }
}

Status recordText(const EditCall &call, Status status, const char *text)
{
    agt_record_error(call.scb, call.msg->mhdr, kContentLayer, status, nullptr, infoString, text, infoNone,
                     nullptr);
    return status;
}

Status refuseOperation(const EditCall &call, const char *format)
{
    if (logsErrors()) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        log_error(format, agt_cbtype_name(call.phase), call.op);
#pragma GCC diagnostic pop
    }
    return kNotSupported;
}

} // namespace frame
