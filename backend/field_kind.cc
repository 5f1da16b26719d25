#include "backend/field_kind.h"

#include <algorithm>
#include <array>

namespace backend {
namespace {

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

bool isSecretName(std::string_view name)
{
    static constexpr std::array words = {"password", "passwd", "secret", "community", "authpass", "privpass"};
    // What a secret is labelled with on a web page is none itself.
    return !contains(name, "label") &&
        std::any_of(words.begin(), words.end(), [name](const char *word) { return contains(name, word); });
}

FieldKind kindOfBytes(std::string_view name)
{
    if (name == "name" || name.ends_with("_name"))
        return FieldKind::plain;
    if (contains(name, "mac"))
        return FieldKind::mac;
    if (contains(name, "mask"))
        return FieldKind::vlanMask;
    if (contains(name, "ip") || contains(name, "address"))
        return FieldKind::ipv6;
    return FieldKind::plain;
}

} // namespace

FieldKind kindOf(const ProtobufCFieldDescriptor &field)
{
    switch (field.type) {
    case PROTOBUF_C_TYPE_FIXED32:
        return FieldKind::ipv4;
    case PROTOBUF_C_TYPE_STRING:
        return isSecretName(field.name) ? FieldKind::secret : FieldKind::plain;
    case PROTOBUF_C_TYPE_BYTES:
        return isSecretName(field.name) ? FieldKind::secret : kindOfBytes(field.name);
    default:
        return FieldKind::plain;
    }
}

bool isSecretKey(std::string_view key)
{
    // "1" is the key of a password that is hashed already.
    return key == "1" || key == "key" || isSecretName(key);
}

std::string recordName(const ProtobufCMessageDescriptor &descriptor)
{
    std::string name;
    for (const char *c = descriptor.name; *c != '\0'; c++)
        name += *c == '.' ? std::string("__") : std::string(1, *c);
    return name;
}

std::size_t memberSize(ProtobufCType type)
{
    switch (type) {
    case PROTOBUF_C_TYPE_STRING:
    case PROTOBUF_C_TYPE_MESSAGE:
        return sizeof(void *);
    case PROTOBUF_C_TYPE_BYTES:
        return sizeof(ProtobufCBinaryData);
    case PROTOBUF_C_TYPE_BOOL:
        return sizeof(protobuf_c_boolean);
    case PROTOBUF_C_TYPE_INT64:
    case PROTOBUF_C_TYPE_SINT64:
    case PROTOBUF_C_TYPE_SFIXED64:
    case PROTOBUF_C_TYPE_UINT64:
    case PROTOBUF_C_TYPE_FIXED64:
    case PROTOBUF_C_TYPE_DOUBLE:
        return 8;
    default:
        return 4;
    }
}

} // namespace backend
