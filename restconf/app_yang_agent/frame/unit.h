// A module unit: which paths of a YANG module are served, by which functions.
//
// y_<module>.cc is a table of rows and one DEFINE_UNIT; u_<module>.cc holds the functions and one
// USER_UNIT. Everything else that the two layers do is written here once. The key arguments of a
// function are read off its signature, so a wrong key type or a missing function does not build.
#pragma once

#include "frame/call.h"

#include <array>
#include <span>
#include <tuple>
#include <utility>

namespace frame {

enum class RowKind { edit, get, rpc, action };

struct Row;

// What a wrapper needs to know of its row; filled when the unit initialises.
struct Binding {
    const Row *row = nullptr;
    Value **cache = nullptr; // of a top-level node
};

struct Row {
    RowKind kind;
    const char *path;     // of an RPC its name
    const char *function; // name of the user function, "u_..."
    Binding *binding;
    unsigned options = optNone; // of EditOption
    EditCallback edit = nullptr;
    GetCallback get = nullptr;
    RpcCallback rpc[2] = {};
    ActionCallback action[2] = {};
};

// A top-level data node and the pointer that follows its value. No user function reads it.
struct TopLevel {
    const char *name;
    Value *cache = nullptr;
};

template <class... Names>
std::array<TopLevel, sizeof...(Names)> topLevels(Names... names)
{
    return {TopLevel{names}...};
}

struct Unit {
    const char *name; // of the YANG module
    const char *revision;
    const char *function; // the module's name as it stands in function names
    std::span<const Row> rows;
    std::span<TopLevel> tops;
    Status (*userInit)(const char *, const char *);
    Status (*userInit2)();
    void (*userCleanup)();
    bool (*isHere)() = nullptr; // a unit of some platforms only: cleanup does nothing elsewhere
    ModuleHandle *module = nullptr;
};

Status initUnit(Unit &unit, const char *module, const char *revision);
Status init2Unit(Unit &unit);
void cleanupUnit(const Unit &unit);

// The user layer's part of a start without anything of its own.
Status userInit(const char *function, const char *module, const char *revision);
Status userInit2(const char *function);
void userCleanup(const char *function);

// The last key argument of a retrieval of a list: the list's own key, whether the request has it, and
// whether the client fixed it (else a walk over the list goes on behind it).
template <class Key>
struct OwnKey {
    Key value;
    bool present;
    bool fixed;
};
template <class>
inline constexpr bool isOwnKey = false;
template <class Key>
inline constexpr bool isOwnKey<OwnKey<Key>> = true;

// Reads the keys of a callback one after the other, outermost first.
class KeyReader {
public:
    explicit KeyReader(Value *value)
        : value_(value)
    {
    }
    explicit KeyReader(const GetBlock *block)
        : block_(block)
    {
    }

    template <class Key>
    Key next()
    {
        const Value *value = nextValue();
        if constexpr (isOwnKey<Key>)
            return {as<decltype(Key::value)>(value), value != nullptr,
                    value && getcb_is_key_fixed(block_, value)};
        else
            return as<Key>(value);
    }

private:
    template <class Key>
    static Key as(const Value *value)
    {
        if constexpr (std::is_same_v<Key, const char *>)
            return value ? val_get_string(value) : nullptr;
        else
            return value ? static_cast<Key>(val_get_uint64(value)) : Key{};
    }

    const Value *nextValue();

    Value *value_ = nullptr;
    Value *lastKey_ = nullptr;
    const GetBlock *block_ = nullptr;
    const Value *lastGiven_ = nullptr;
};

Status runEdit(const Binding &binding, const EditCall &call, Status (*invoke)(const EditCall &, KeyReader &));
void logGet(const Binding &binding);
void logAction(const Binding &binding, const char *phase);

template <auto user>
struct EditThunk;
template <class... Keys, Status (*user)(Session *, Request *, EditPhase, EditOp, Value *, Value *, Keys...)>
struct EditThunk<user> {
    static inline Binding binding;
    static Status invoke(const EditCall &call, [[maybe_unused]] KeyReader &reader)
    {
        // Braces fix the order of evaluation: outermost key first.
        std::tuple<Keys...> keys{reader.next<Keys>()...};
        return std::apply(
            [&](Keys... key) {
                return user(call.scb, call.msg, call.phase, call.op, call.newval, call.curval, key...);
            },
            keys);
    }
    static Status wrapper(EDIT_ARGS) { return runEdit(binding, EDIT_CALL, invoke); }
};

template <auto user>
struct GetThunk;
template <class... Keys, Status (*user)(GetBlock *, Keys...)>
struct GetThunk<user> {
    static inline Binding binding;
    static Status wrapper(Session *, MessageHeader *, GetBlock *get2cb)
    {
        logGet(binding);
        [[maybe_unused]] KeyReader reader(get2cb);
        std::tuple<Keys...> keys{reader.next<Keys>()...};
        return std::apply([&](Keys... key) { return user(get2cb, key...); }, keys);
    }
};

template <ActionCallback user, bool isInvoke>
struct ActionThunk {
    static inline Binding binding;
    static Status wrapper(Session *scb, Request *msg, Value *method, Value *action)
    {
        logAction(binding, isInvoke ? "inv" : "val");
        return user(scb, msg, method, action);
    }
};

template <auto user>
constexpr Row editRow(const char *path, const char *function, unsigned options = optNone)
{
    return {RowKind::edit, path, function, &EditThunk<user>::binding, options, EditThunk<user>::wrapper,
            nullptr,       {},   {}};
}

template <auto user>
constexpr Row getRow(const char *path, const char *function)
{
    return {RowKind::get, path, function, &GetThunk<user>::binding, optNone, nullptr, GetThunk<user>::wrapper,
            {},           {}};
}

template <RpcCallback check, RpcCallback carryOut>
constexpr Row rpcRow(const char *name, const char *function)
{
    return {RowKind::rpc, name, function, nullptr, optNone, nullptr, nullptr, {check, carryOut}, {}};
}

template <ActionCallback check, ActionCallback carryOut>
constexpr Row actionRow(const char *path, const char *function)
{
    return {RowKind::action,
            path,
            function,
            &ActionThunk<check, false>::binding,
            optNone,
            nullptr,
            nullptr,
            {},
            {ActionThunk<check, false>::wrapper, ActionThunk<carryOut, true>::wrapper}};
}

} // namespace frame

// Rows. EDIT takes options of EditOption behind the function.
#define EDIT(path, user, ...) frame::editRow<user>(path, #user __VA_OPT__(, ) __VA_ARGS__)
#define GET(path, user) frame::getRow<user>(path, #user)
#define RPC(name, check, carryOut) frame::rpcRow<check, carryOut>(name, #check)
#define ACTION(path, check, carryOut) frame::actionRow<check, carryOut>(path, #check)

// The three entry points of a unit. Behind the rows stand the names of the top-level data nodes.
#define DEFINE_UNIT(function, module, revision, rows, ...)                                                   \
    DEFINE_UNIT_WHERE(nullptr, function, module, revision, rows __VA_OPT__(, ) __VA_ARGS__)
// The same for a unit of some platforms only.
#define DEFINE_UNIT_WHERE(isHere, function, module, revision, rows, ...)                                     \
    extern "C" Status u_##function##_init(const char *, const char *);                                       \
    extern "C" Status u_##function##_init2();                                                                \
    extern "C" void u_##function##_cleanup();                                                                \
    namespace {                                                                                              \
    auto unitTops = frame::topLevels(__VA_ARGS__);                                                           \
    frame::Unit unit{module,                                                                                 \
                     revision,                                                                               \
                     #function,                                                                              \
                     rows,                                                                                   \
                     unitTops,                                                                               \
                     u_##function##_init,                                                                    \
                     u_##function##_init2,                                                                   \
                     u_##function##_cleanup,                                                                 \
                     isHere,                                                                                 \
                     nullptr};                                                                               \
    }                                                                                                        \
    extern "C" Status y_##function##_init(const char *modname, const char *wanted)                           \
    {                                                                                                        \
        return frame::initUnit(unit, modname, wanted);                                                       \
    }                                                                                                        \
    extern "C" Status y_##function##_init2()                                                                 \
    {                                                                                                        \
        return frame::init2Unit(unit);                                                                       \
    }                                                                                                        \
    extern "C" void y_##function##_cleanup()                                                                 \
    {                                                                                                        \
        frame::cleanupUnit(unit);                                                                            \
    }                                                                                                        \
    static_assert(true)

// The user layer's init, init2 and cleanup.
#define USER_UNIT(function)                                                                                  \
    extern "C" Status u_##function##_init(const char *modname, const char *revision)                         \
    {                                                                                                        \
        return frame::userInit(#function, modname, revision);                                                \
    }                                                                                                        \
    extern "C" Status u_##function##_init2()                                                                 \
    {                                                                                                        \
        return frame::userInit2(#function);                                                                  \
    }                                                                                                        \
    extern "C" void u_##function##_cleanup()                                                                 \
    {                                                                                                        \
        frame::userCleanup(#function);                                                                       \
    }                                                                                                        \
    static_assert(true)
