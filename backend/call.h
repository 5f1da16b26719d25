// The one way from a client function to the device and back. For the files of this room only.
//
// A client function fills a record and says which call it is and which record answers it:
//
//   QosJumboAnswer *ui_fe_qos_jumbo(int32_t opcode, int32_t value)
//   {
//       QosJumboRequest request = QOS_JUMBO_REQUEST__INIT;
//       request.opcode = opcode;
//       request.value = value;
//       return ask<QosJumboAnswer>("ui_fe_qos_jumbo", request, qos_jumbo_answer__descriptor);
//   }
#pragma once

#include "backend/envelope.h"
#include "backend/proto/common.pb-c.h"

#include <protobuf-c/protobuf-c.h>

namespace backend {

// Packs the request, sends it, waits, and unpacks the answer. The caller frees it. Null: a delivery
// failure, whatever its reason.
ProtobufCMessage *exchange(const RequestHead &head, ProtobufCMessage &request,
                           const ProtobufCMessageDescriptor &answer);

// For functions that return the answer.
template <class Answer, class Record>
Answer *ask(const RequestHead &head, Record &request, const ProtobufCMessageDescriptor &answer)
{
    return reinterpret_cast<Answer *>(exchange(head, request.base, answer));
}

template <class Answer, class Record>
Answer *ask(const char *call, Record &request, const ProtobufCMessageDescriptor &answer)
{
    return ask<Answer>(RequestHead{call}, request, answer);
}

// For functions with a result and a slot for the answer. The slot is always written. 0: the request was
// delivered and there is an answer, 1: it was not.
template <class Answer, class Record>
int apply(const char *call, Record *request, const ProtobufCMessageDescriptor &descriptor, Answer **answer)
{
    Answer *got = request == nullptr ? nullptr : ask<Answer>(call, *request, descriptor);
    const int result = got == nullptr ? 1 : 0;
    if (answer != nullptr)
        *answer = got;
    else if (got != nullptr)
        protobuf_c_message_free_unpacked(&got->base, nullptr);
    return result;
}

// The same for functions that also tell a refusal by their result: the answer's ui_err, with the answer
// there.
template <class Record>
int applyAndRead(const char *call, Record *request, CommonResp **answer)
{
    CommonResp *got = nullptr;
    const int result = apply(call, request, common_resp__descriptor, &got);
    const int refusal = got == nullptr ? 0 : got->ui_err;
    if (answer != nullptr)
        *answer = got;
    else if (got != nullptr)
        common_resp__free_unpacked(got, nullptr);
    return result != 0 ? result : refusal;
}

// For services that return a number. `failure` is what a delivery failure yields.
int askValue(const char *call, ProtobufCMessage &request, int failure);
int askValue(const char *call, int failure);

} // namespace backend
