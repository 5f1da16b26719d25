// Authentication and authorization methods, the admin user, and local users: all kept by plug-ins.
#include "system/u_openconfig-system.h"

#include "backend/net_text.h"
#include "frame/answer.h"
#include "frame/plugin.h"
#include "frame/rules.h"
#include "frame/stub.h"

#include <cstring>

using namespace frame;

STUB_EDIT(u_openconfig_system_system_aaa_edit);
STUB_EDIT(u_openconfig_system_system_aaa_config_edit);
STUB_EDIT(u_openconfig_system_system_aaa_authentication_edit);
STUB_EDIT(u_openconfig_system_system_aaa_authentication_users_edit);
STUB_EDIT(u_openconfig_system_system_aaa_authentication_users_user_edit, const char *);
STUB_EDIT(u_openconfig_system_system_aaa_authorization_events_event_edit, const char *);
STUB_GET(u_openconfig_system_system_aaa_authorization_events_event_state_get, const char *);
STUB_EDIT(u_openconfig_system_system_aaa_accounting_edit);
STUB_EDIT(u_openconfig_system_system_aaa_accounting_config_edit);
STUB_EDIT(u_openconfig_system_system_aaa_accounting_events_edit);
STUB_EDIT(u_openconfig_system_system_aaa_accounting_events_event_edit, const char *);
STUB_EDIT(u_openconfig_system_system_aaa_accounting_events_event_config_edit, const char *);
STUB_GET(u_openconfig_system_system_aaa_accounting_events_event_state_get, const char *);

namespace {

constexpr const char *kModule = "openconfig-system";
constexpr const char *kAugModule = "lyn-openconfig-aaa-aug";
constexpr const char *kAaa = "AAA", *kUsers = "USERDB"; // plug-ins
constexpr const char *kUserKey = "username";
constexpr const char *kAdmin = "admin-user";

// One request to the AAA plug-in. Without an answer kInternal in apply; in rollback that is only logged.
Status sendAaa(const EditCall &call, const char *word, const char *key, const char *value,
               int line = __builtin_LINE())
{
    if (askPlugin(kAaa, word, key, value))
        return kOk;
    if (logsErrors() && call.phase == rollback)
        log_error("\n[%s] ROLL Error RPC", call.function);
    else if (logsErrors())
        log_error("\n[%s] Error RPC", call.function);
    locationLines(call, line);
    return call.phase == rollback ? kOk : kInternal;
}

// authentication-method

constexpr const char *kMethod = "authentication-method";

// The methods as the plug-in takes them: each behind a blank, the first one too.
class MethodText {
public:
    MethodText() = default;
    explicit MethodText(const Value *config)
    {
        for (Value *method = val_find_child(config, kModule, kMethod); method;
             method = val_next_child_same(method))
            append(val_get_string(method));
    }

    void append(const char *method)
    {
        const std::size_t length = std::strlen(text_);
        ksnprintf(text_ + length, sizeof text_ - length, " %s", method);
    }
    bool isEmpty() const { return text_[0] == '\0'; }
    const char *text() const { return text_; }

private:
    char text_[256] = "";
};

Status sendMethods(const EditCall &call, const char *word, const MethodText &methods)
{
    return sendAaa(call, word, kMethod, methods.text());
}

// Whether the list itself was edited. `removed`, if there is one, gets the values that went.
bool isListEdited(const EditCall &call, MethodText *removed)
{
    bool edited = false;
    walkChildEdits(call, [&](const EditedLeaf &leaf) {
        if (!leaf.is(kMethod))
            return kOk;
        edited = true;
        if (removed && leaf.op == del && leaf.newval)
            removed->append(val_get_string(leaf.newval));
        return kOk;
    });
    return edited;
}

// curval is the list as it will be; one that will be empty is taken away by the values that went.
Status mergeMethods(const EditCall &call)
{
    MethodText current(call.curval);
    const bool hasCurrent = !current.isEmpty();
    if (!isListEdited(call, hasCurrent ? nullptr : &current))
        return kOk;
    return sendMethods(call, hasCurrent ? PLUGIN_OP_SET : PLUGIN_OP_DELETE, current);
}

Status replaceMethods(const EditCall &call)
{
    const MethodText methods(call.newval);
    return methods.isEmpty() ? sendMethods(call, PLUGIN_OP_DELETE, MethodText(call.curval))
                             : sendMethods(call, PLUGIN_OP_SET, methods);
}

Status createMethods(const EditCall &call)
{
    const MethodText methods(call.newval);
    return methods.isEmpty() ? kOk : sendMethods(call, PLUGIN_OP_SET, methods);
}

Status refuseDelete(const EditCall &call)
{
    if (logsErrors())
        log_error("\n[%s] Delete container not supported", call.function);
    return kInternal;
}

Status undoReplacement(const EditCall &call)
{
    const MethodText before(call.curval);
    return before.isEmpty() ? sendMethods(call, PLUGIN_OP_DELETE, MethodText(call.newval))
                            : sendMethods(call, PLUGIN_OP_SET, before);
}

Status undoMerge(const EditCall &call)
{
    return isListEdited(call, nullptr) ? undoReplacement(call) : kOk;
}

Status undoCreation(const EditCall &call)
{
    return sendMethods(call, PLUGIN_OP_DELETE, MethodText(call.newval));
}

constexpr Rule<> kAuthenticationEdit[] = {
    {inApply, onMerge, mergeMethods},     {inApply, onReplace, replaceMethods},
    {inApply, onCreate, createMethods},   {inApply, onDelete, refuseDelete},
    {inRollback, onMerge, undoMerge},     {inRollback, onReplace, undoReplacement},
    {inRollback, onCreate, undoCreation},
};
static_assert(noneHidden(kAuthenticationEdit));

// Authorization

constexpr const char *kAuthorization = "authorization-method";
constexpr const char *kEventKey = "authorization-event-type";
constexpr int kLongestMethod = 31, kLongestEvent = 39;

// Sends a text under a key, cut at `longest` characters.
Status sendCut(const EditCall &call, const char *word, const char *key, const char *text, int longest)
{
    char value[kLongestEvent + 1];
    ksnprintf(value, sizeof value, "%.*s", longest, text);
    return sendAaa(call, word, key, value);
}

const char *wordFor(const EditCall &call)
{
    return call.op == del ? PLUGIN_OP_DELETE : PLUGIN_OP_SET;
}

// Only the first method of the list counts.
Status sendAuthorization(const EditCall &call)
{
    const Value *method = val_find_child(call.newval, kModule, kAuthorization);
    return method ? sendCut(call, wordFor(call), kAuthorization, val_get_string(method), kLongestMethod)
                  : kOk;
}

Status sendEvent(const EditCall &call, const char *eventType)
{
    return val_find_child(call.newval, kModule, "event-type")
        ? sendCut(call, wordFor(call), kEventKey, eventType, kLongestEvent)
        : kOk;
}

Status removeFirstEvent(const EditCall &call, const Value *events)
{
    const Value *event = val_find_child(events, kModule, "event");
    const Value *type = val_find_child(event, kModule, "event-type");
    return type ? sendCut(call, PLUGIN_OP_DELETE, kEventKey, val_get_string(type), kLongestEvent) : kOk;
}

Status removeEvents(const EditCall &call)
{
    return removeFirstEvent(call, call.curval);
}

Status removeAuthorization(const EditCall &call)
{
    const Value *config = val_find_child(call.curval, kModule, "config");
    const Value *method = val_find_child(config, kModule, kAuthorization);
    if (!method)
        return kOk;
    if (const Status status =
            sendCut(call, PLUGIN_OP_DELETE, kAuthorization, val_get_string(method), kLongestMethod))
        return status;
    return removeFirstEvent(call, val_find_child(call.curval, kModule, "events"));
}

constexpr Rule<> kAuthorizationConfigEdit[] = {{inApply | inRollback, anyOp, sendAuthorization}};
constexpr Rule<const char *> kEventConfigEdit[] = {{inApply | inRollback, anyOp, sendEvent}};
constexpr Rule<> kEventsEdit[] = {{inApply, onDelete, removeEvents}};
constexpr Rule<> kAuthorizationEdit[] = {{inApply, onDelete, removeAuthorization}};

// The admin user

constexpr const char *kClear = "admin-password", *kHashed = "admin-password-hashed";
constexpr const char *kAdminPrivilege = "0";
// Indexes of sub-entries.
constexpr std::size_t kClearSlot = 0, kHashedSlot = 1, kPrivilegeSlot = 2;
constexpr std::size_t kUserSubEntries = 7;

// Passwords to be set; null where there is none. The texts belong to the edit's values.
struct Passwords {
    const char *clear = nullptr;
    const char *hashed = nullptr;

    bool areBoth() const { return clear && hashed; }
    bool areNone() const { return !clear && !hashed; }
};

const char *textOf(const Value *config, const char *module, const char *leaf)
{
    const Value *value = val_find_child(config, module, leaf);
    return value ? val_get_string(value) : nullptr;
}

Passwords passwordsOf(const Value *config)
{
    return {textOf(config, kModule, kClear), textOf(config, kModule, kHashed)};
}

Status refuseBoth(const EditCall &call)
{
    return recordText(call, kInvalidValue,
                      "admin-password and admin-password-hashed cannot be configured at sametime");
}

Status removeAdmin(const EditCall &call)
{
    return changePlugin(call, kUsers, PLUGIN_OP_DELETE, kUserKey, kAdmin);
}

Status setAdmin(const EditCall &call, const Passwords &passwords)
{
    if (logsDebug())
        log_debug("password: *****");
    PluginChange change(kUsers, kUserSubEntries);
    if (passwords.clear)
        change.sub(kClearSlot, "password", passwords.clear);
    if (passwords.hashed)
        change.sub(kHashedSlot, "1", passwords.hashed);
    change.sub(kPrivilegeSlot, "privilege", kAdminPrivilege);
    if (change.send(PLUGIN_OP_SET, kUserKey, kAdmin))
        return kOk;
    locationLines(call);
    return kInternal;
}

// Notes a password that is set or removed. False for any other leaf.
Status notePassword(const EditCall &call, const EditedLeaf &leaf, Passwords &set, bool &isRemoval)
{
    const bool isClear = leaf.is(kClear);
    if (!isClear && !leaf.is(kHashed))
        return kOk;
    if (leaf.newval)
        (isClear ? set.clear : set.hashed) = val_get_string(leaf.newval);
    else
        isRemoval = true;
    return set.areBoth() ? refuseBoth(call) : kOk;
}

Status mergeAdmin(const EditCall &call)
{
    Passwords set;
    bool isRemoval = false;
    if (const Status status = walkChildEdits(
            call, [&](const EditedLeaf &leaf) { return notePassword(call, leaf, set, isRemoval); }))
        return status;
    if (isRemoval)
        if (const Status status = removeAdmin(call))
            return status;
    return set.areNone() ? kOk : setAdmin(call, set);
}

// One kind of password in the place of the other removes the user.
bool isOtherKind(const Passwords &wanted, const Passwords &current)
{
    return wanted.clear ? current.hashed && !current.clear : current.clear && !current.hashed;
}

Status replaceAdmin(const EditCall &call)
{
    const Passwords wanted = passwordsOf(call.newval), current = passwordsOf(call.curval);
    if (wanted.areBoth())
        return refuseBoth(call);
    if (wanted.areNone())
        return current.areNone() ? kOk : removeAdmin(call);
    return isOtherKind(wanted, current) ? removeAdmin(call) : setAdmin(call, wanted);
}

Status createAdmin(const EditCall &call)
{
    const Passwords wanted = passwordsOf(call.newval);
    if (wanted.areBoth())
        return refuseBoth(call);
    return wanted.areNone() ? kOk : setAdmin(call, wanted);
}

Status dropAdmin(const EditCall &call)
{
    removeAdmin(call); // no answer is only logged
    return kOk;
}

constexpr Rule<> kAdminConfigEdit[] = {
    {inApply, onMerge, mergeAdmin},
    {inApply, onReplace, replaceAdmin},
    {inApply, onCreate, createAdmin},
};
static_assert(noneHidden(kAdminConfigEdit));
constexpr Rule<> kAdminEdit[] = {{inApply, onDelete, dropAdmin}};

// Local users

constexpr int kLongestUser = 50;
constexpr std::size_t kRollbackPrivilegeSlot = 1;

PluginAnswer sendUser(const EditCall &call, const char *name)
{
    const char *password = textOf(call.newval, kModule, "password");
    const Value *privilege = val_find_child(call.newval, kAugModule, "privilege");
    char level[4] = "";
    if (privilege)
        ksnprintf(level, sizeof level, "%d", static_cast<int>(val_get_uint64(privilege)));
    if (logsDebug())
        log_debug("password: *****");
    PluginChange change(kUsers, kUserSubEntries);
    change.sub(kClearSlot, "password", password ? password : "");
    change.sub(call.phase == rollback ? kRollbackPrivilegeSlot : kPrivilegeSlot, "privilege", level);
    return change.send(PLUGIN_OP_SET, kUserKey, name);
}

Status editUser(const EditCall &call, const char *)
{
    const char *given = textOf(call.op == del ? call.curval : call.newval, kModule, "username");
    char name[kLongestUser + 1];
    ksnprintf(name, sizeof name, "%s", given ? given : "");
    const PluginAnswer answer =
        call.op == del ? askPlugin(kUsers, PLUGIN_OP_DELETE, kUserKey, name) : sendUser(call, name);
    if (answer && !isRefused(answer->reply))
        return kOk;
    locationLines(call);
    if (!answer)
        return call.phase == rollback ? kOk : kInternal;
    return recordText(call, kInternal, answer->reply->reply_buf);
}

// A rollback sends the edit's own change again.
constexpr Rule<const char *> kUserEdit[] = {{inApply | inRollback, anyOp, editUser}};

} // namespace

extern "C" Status u_openconfig_system_system_aaa_authentication_config_edit(EDIT_ARGS)
{
    return run(kAuthenticationEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_aaa_authentication_admin_user_edit(EDIT_ARGS)
{
    return run(kAdminEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_aaa_authentication_admin_user_config_edit(EDIT_ARGS)
{
    return run(kAdminConfigEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_aaa_authentication_users_user_config_edit(EDIT_ARGS,
                                                                                       const char *username)
{
    return run(kUserEdit, EDIT_CALL, username);
}

extern "C" Status u_openconfig_system_system_aaa_authorization_edit(EDIT_ARGS)
{
    return run(kAuthorizationEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_aaa_authorization_config_edit(EDIT_ARGS)
{
    return run(kAuthorizationConfigEdit, EDIT_CALL);
}

extern "C" Status u_openconfig_system_system_aaa_authorization_events_edit(EDIT_ARGS)
{
    return run(kEventsEdit, EDIT_CALL);
}

extern "C" Status
u_openconfig_system_system_aaa_authorization_events_event_config_edit(EDIT_ARGS, const char *event_type)
{
    return run(kEventConfigEdit, EDIT_CALL, event_type);
}
