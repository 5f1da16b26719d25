// Vocabulary and record types that all families of toolkit operations share.
#pragma once

#include "toolkit/status.h"

#include <cstdint>

namespace tk {

// Phase of an edit callback (`cbtyp`). The four come in this order; rollback only after a failure.
enum EditPhase : int { validate = 0, apply = 1, commit = 2, rollback = 3 };

// What an edit does to a node (`editop`). The numbers are part of the callback interface.
enum EditOp : int { noOperation = 0, merge = 1, replace = 2, create = 3, del = 4, load = 5 };

enum GetMode : int { getValue = 1, getNext = 2 };

// Phases of an RPC or action callback.
enum OperationPhase : int { operationValidate = 0, operationInvoke = 1 };

// Kind of the error-info and error-node arguments of agt_record_error.
enum ErrorInfoKind : int { infoNone = 0, infoValue = 3, infoString = 6 };
inline constexpr int kContentLayer = 4;

// Detail of val_dump_value.
inline constexpr int kDebugDump = 9;
inline constexpr int kErrorDump = 4;

// Base type of a value node. list and none have fixed numbers, the others are the toolkit's own.
enum BaseType : int {
    btNone = 0,
    btBits = 3,
    btEnum = 4,
    btEmpty = 5,
    btBoolean = 6,
    btInt8 = 7,
    btInt16 = 8,
    btInt32 = 9,
    btInt64 = 10,
    btUint8 = 11,
    btUint16 = 12,
    btUint32 = 13,
    btUint64 = 14,
    btDecimal64 = 15,
    btString = 17,
    btBinary = 18,
    btInstanceId = 19,
    btUnion = 20,
    btLeafref = 21,
    btIdentityref = 22,
    btAny = 24,
    btContainer = 25,
    btList = 26,
    btChoice = 28,
    btCase = 29,
    btRpc = 30,
};

struct Value;             // a node of a value tree, see val.h
struct Object;            // a node of the schema tree, see obj.h
struct ModuleHandle;      // a loaded module
struct DeviationQueue;    // the server's deviations
struct ChildEdit;         // an edit of one descendant, see edit.h
struct TransactionRecord; // the transaction that an edit belongs to

// Whose request it is. The bundle only passes it on.
struct Session {
    unsigned id = 0;
};

// Where error records of a request are kept.
struct MessageHeader;

// A request under way. Lives as long as the callback.
struct Request {
    TransactionRecord *rpc_txcb = nullptr; // what agt_cfg_first_child_edit needs
    MessageHeader *mhdr = nullptr;         // what agt_record_error needs
    Object *method = nullptr;              // the RPC's or action's schema node
};

struct GetBlock; // a retrieval under way, see getcb.h

using EditCallback = Status (*)(Session *scb, Request *msg, EditPhase cbtyp, EditOp editop, Value *newval,
                                Value *curval);
using GetCallback = Status (*)(Session *scb, MessageHeader *msg, GetBlock *get2cb);
// methodnode is the method's own node of the input (for an action the instance that it was called on is
// above).
using RpcCallback = Status (*)(Session *scb, Request *msg, Value *methodnode);
using ActionCallback = Status (*)(Session *scb, Request *msg, Value *methodnode, Value *actionnode);

} // namespace tk
