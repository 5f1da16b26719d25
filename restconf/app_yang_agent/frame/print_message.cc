#include "frame/print_message.h"

#include "backend/field_kind.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/vlan_mask.h"
#include "toolkit/log.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

using backend::FieldKind;

constexpr const char *kHidden = "*****";
constexpr std::size_t kMaskText = 1000;

template <class T>
T read(const void *member)
{
    T value{};
    std::memcpy(&value, member, sizeof value);
    return value;
}

std::string hexText(const ProtobufCBinaryData &bytes)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.len; ++i) {
        text += digits[bytes.data[i] >> 4];
        text += digits[bytes.data[i] & 0xf];
    }
    return text;
}

std::string bytesText(const ProtobufCBinaryData &bytes, FieldKind kind)
{
    if (kind == FieldKind::secret)
        return kHidden;
    if (kind == FieldKind::vlanMask && bytes.len == VLAN_MASK_BYTES) {
        char text[kMaskText];
        vlanmask_to_string(bytes.data, text, sizeof text);
        return text;
    }
    const bool isText =
        std::all_of(bytes.data, bytes.data + bytes.len, [](std::uint8_t c) { return c >= ' ' && c <= '~'; });
    return isText ? std::string(bytes.data, bytes.data + bytes.len) : hexText(bytes);
}

std::string stringText(const char *text, FieldKind kind)
{
    return kind == FieldKind::secret ? kHidden : text;
}

// One value of a field that is no record; `member` points at it, wherever it stands.
std::string valueText(const ProtobufCFieldDescriptor &field, const void *member)
{
    switch (field.type) {
    case PROTOBUF_C_TYPE_UINT32:
    case PROTOBUF_C_TYPE_FIXED32:
        return std::to_string(read<std::uint32_t>(member));
    case PROTOBUF_C_TYPE_INT64:
    case PROTOBUF_C_TYPE_SINT64:
    case PROTOBUF_C_TYPE_SFIXED64:
        return std::to_string(read<std::int64_t>(member));
    case PROTOBUF_C_TYPE_UINT64:
    case PROTOBUF_C_TYPE_FIXED64:
        return std::to_string(read<std::uint64_t>(member));
    case PROTOBUF_C_TYPE_FLOAT:
        return std::to_string(read<float>(member));
    case PROTOBUF_C_TYPE_DOUBLE:
        return std::to_string(read<double>(member));
    case PROTOBUF_C_TYPE_BOOL:
        return read<protobuf_c_boolean>(member) ? "TRUE" : "FALSE";
    case PROTOBUF_C_TYPE_STRING:
        return stringText(read<const char *>(member), backend::kindOf(field));
    case PROTOBUF_C_TYPE_BYTES:
        return bytesText(read<ProtobufCBinaryData>(member), backend::kindOf(field));
    default:
        return std::to_string(read<std::int32_t>(member));
    }
}

// A number other than zero goes out even if its presence word is not set, so it is shown as well.
bool isPresent(const ProtobufCFieldDescriptor &field, const unsigned char *record)
{
    const unsigned char *member = record + field.offset;
    if (field.type == PROTOBUF_C_TYPE_STRING || field.type == PROTOBUF_C_TYPE_MESSAGE)
        return read<const void *>(member) != nullptr;
    if (field.label != PROTOBUF_C_LABEL_OPTIONAL ||
        read<protobuf_c_boolean>(record + field.quantifier_offset))
        return true;
    if (field.type == PROTOBUF_C_TYPE_BYTES)
        return read<ProtobufCBinaryData>(member).len != 0;
    return std::any_of(member, member + backend::memberSize(field.type),
                       [](unsigned char byte) { return byte != 0; });
}

// The value of a plug-in's sub-entry is a secret by its key.
bool isSecretOf(const ProtobufCMessage &message, const ProtobufCFieldDescriptor &field)
{
    if (message.descriptor != &plugin_sub_entry__descriptor || std::strcmp(field.name, "value") != 0)
        return false;
    const char *key = reinterpret_cast<const PluginSubEntry &>(message).key;
    return key && backend::isSecretKey(key);
}

void printValue(const ProtobufCMessage &message, const ProtobufCFieldDescriptor &field, const void *member)
{
    if (field.type == PROTOBUF_C_TYPE_MESSAGE)
        return restconf_print_unpacked_protobuf(read<const ProtobufCMessage *>(member));
    const std::string text = isSecretOf(message, field) ? kHidden : valueText(field, member);
    log_debug(" Attr#%u %s::%s\n", field.id, field.name, text.c_str());
}

void printField(const ProtobufCMessage &message, const ProtobufCFieldDescriptor &field)
{
    const auto *record = reinterpret_cast<const unsigned char *>(&message);
    if (field.label != PROTOBUF_C_LABEL_REPEATED) {
        if (isPresent(field, record))
            printValue(message, field, record + field.offset);
        return;
    }
    const auto count = read<std::size_t>(record + field.quantifier_offset);
    const auto *elements = read<const unsigned char *>(record + field.offset);
    for (std::size_t i = 0; i < count; ++i)
        printValue(message, field, elements + i * backend::memberSize(field.type));
}

} // namespace

extern "C" void restconf_print_unpacked_protobuf(const ProtobufCMessage *message)
{
    if (!message)
        return;
    for (unsigned i = 0; i < message->descriptor->n_fields; ++i)
        printField(*message, message->descriptor->fields[i]);
}
