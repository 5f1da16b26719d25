#include "backend/pack.h"

#include "backend/field_kind.h"
#include "backend/wire_check.h"

#include <algorithm>

namespace backend {
namespace {

bool isZero(const void *member, const ProtobufCFieldDescriptor &field)
{
    if (field.type == PROTOBUF_C_TYPE_BYTES)
        return static_cast<const ProtobufCBinaryData *>(member)->len == 0;
    const auto *bytes = static_cast<const unsigned char *>(member);
    return std::all_of(bytes, bytes + memberSize(field.type), [](unsigned char byte) { return byte == 0; });
}

template <class T>
T *memberAt(ProtobufCMessage &message, unsigned offset)
{
    void *member = reinterpret_cast<unsigned char *>(&message) + offset;
    return static_cast<T *>(member);
}

} // namespace

PackScope::~PackScope()
{
    for (auto *has : raised_)
        *has = 0;
    for (auto *text : hidden_)
        *text = const_cast<char *>(protobuf_c_empty_string);
}

void PackScope::visit(ProtobufCMessage &message, unsigned depth)
{
    if (depth > kMaxDepth || message.descriptor == nullptr) {
        good_ = false;
        return;
    }
    for (unsigned i = 0; i < message.descriptor->n_fields; i++)
        visitField(message, message.descriptor->fields[i], depth);
}

void PackScope::visitField(ProtobufCMessage &message, const ProtobufCFieldDescriptor &field, unsigned depth)
{
    if ((field.flags & PROTOBUF_C_FIELD_FLAG_ONEOF) != 0)
        return;
    const bool isMessage = field.type == PROTOBUF_C_TYPE_MESSAGE;
    if (field.label == PROTOBUF_C_LABEL_REPEATED) {
        auto *const *elements = *memberAt<ProtobufCMessage **>(message, field.offset);
        for (std::size_t i = 0; isMessage && i < *memberAt<std::size_t>(message, field.quantifier_offset);
             i++)
            visit(*elements[i], depth + 1);
    } else if (isMessage) {
        if (auto *nested = *memberAt<ProtobufCMessage *>(message, field.offset))
            visit(*nested, depth + 1);
    } else if (field.type == PROTOBUF_C_TYPE_STRING) {
        auto **text = memberAt<char *>(message, field.offset);
        if (*text == protobuf_c_empty_string) {
            *text = nullptr;
            hidden_.push_back(text);
        }
    } else if (field.label == PROTOBUF_C_LABEL_OPTIONAL) {
        auto *has = memberAt<protobuf_c_boolean>(message, field.quantifier_offset);
        if (*has == 0 && !isZero(memberAt<void>(message, field.offset), field)) {
            *has = 1;
            raised_.push_back(has);
        }
    }
}

} // namespace backend
