#include "switchsim/json_text.h"

#include "backend/field_kind.h"
#include "backend/proto/plugin.pb-c.h"
#include "backend/vlan_mask.h"

#include <array>
#include <cstring>

#include <arpa/inet.h>

namespace switchsim {
namespace {

using backend::FieldKind;

template <class T>
T read(const void *member)
{
    T value{};
    std::memcpy(&value, member, sizeof(T));
    return value;
}

std::string secretText(std::size_t length)
{
    return "<" + std::to_string(length) + " bytes>";
}

std::string hexText(const ProtobufCBinaryData &bytes, const char *separator)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i < bytes.len; i++) {
        if (i > 0)
            text += separator;
        text += digits[bytes.data[i] >> 4];
        text += digits[bytes.data[i] & 0xf];
    }
    return text;
}

std::string plainText(const ProtobufCBinaryData &bytes)
{
    std::string text(reinterpret_cast<const char *>(bytes.data), bytes.len);
    for (const unsigned char c : text) {
        if (c < ' ' || c > '~')
            return hexText(bytes, "");
    }
    return text;
}

std::string maskText(const ProtobufCBinaryData &bytes)
{
    std::string text(std::size_t{5} * VLAN_MASK_BYTES * 8, '\0');
    text.resize(vlanmask_to_string(bytes.data, text.data(), text.size()));
    return text;
}

std::string ipv6Text(const ProtobufCBinaryData &bytes)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    return inet_ntop(AF_INET6, bytes.data, text.data(), text.size());
}

Json bytesAsJson(const ProtobufCBinaryData &bytes, FieldKind kind)
{
    if (kind == FieldKind::secret)
        return secretText(bytes.len);
    if (kind == FieldKind::mac && bytes.len == 6)
        return hexText(bytes, ":");
    if (kind == FieldKind::ipv6 && bytes.len == 16)
        return ipv6Text(bytes);
    if (kind == FieldKind::vlanMask && bytes.len == VLAN_MASK_BYTES)
        return maskText(bytes);
    return plainText(bytes);
}

std::string ipv4Text(std::uint32_t address)
{
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8)
        text += std::to_string(address >> shift & 0xffU) + (shift > 0 ? "." : "");
    return text;
}

Json enumAsJson(const ProtobufCFieldDescriptor &field, std::int32_t value)
{
    const auto *names = static_cast<const ProtobufCEnumDescriptor *>(field.descriptor);
    const auto *known = protobuf_c_enum_descriptor_get_value(names, value);
    return known == nullptr ? Json(value) : Json(known->name);
}

// One value of a field; `member` points at it, wherever it stands.
Json valueAsJson(const ProtobufCFieldDescriptor &field, const void *member)
{
    switch (field.type) {
    case PROTOBUF_C_TYPE_INT32:
    case PROTOBUF_C_TYPE_SINT32:
    case PROTOBUF_C_TYPE_SFIXED32:
        return read<std::int32_t>(member);
    case PROTOBUF_C_TYPE_UINT32:
        return read<std::uint32_t>(member);
    case PROTOBUF_C_TYPE_FIXED32:
        return ipv4Text(read<std::uint32_t>(member));
    case PROTOBUF_C_TYPE_INT64:
    case PROTOBUF_C_TYPE_SINT64:
    case PROTOBUF_C_TYPE_SFIXED64:
        return read<std::int64_t>(member);
    case PROTOBUF_C_TYPE_UINT64:
    case PROTOBUF_C_TYPE_FIXED64:
        return read<std::uint64_t>(member);
    case PROTOBUF_C_TYPE_FLOAT:
        return read<float>(member);
    case PROTOBUF_C_TYPE_DOUBLE:
        return read<double>(member);
    case PROTOBUF_C_TYPE_BOOL:
        return read<protobuf_c_boolean>(member) != 0;
    case PROTOBUF_C_TYPE_ENUM:
        return enumAsJson(field, read<std::int32_t>(member));
    case PROTOBUF_C_TYPE_STRING: {
        const auto *text = read<const char *>(member);
        return backend::kindOf(field) == FieldKind::secret ? secretText(std::strlen(text)) : text;
    }
    case PROTOBUF_C_TYPE_BYTES:
        return bytesAsJson(read<ProtobufCBinaryData>(member), backend::kindOf(field));
    case PROTOBUF_C_TYPE_MESSAGE:
        return asJson(*static_cast<const ProtobufCMessage *>(read<const void *>(member)));
    }
    return nullptr;
}

Json listAsJson(const ProtobufCFieldDescriptor &field, const unsigned char *elements, std::size_t count)
{
    Json list = Json::array();
    for (std::size_t i = 0; i < count; i++)
        list.push_back(valueAsJson(field, elements + i * backend::memberSize(field.type)));
    return list;
}

bool isPresent(const ProtobufCFieldDescriptor &field, const unsigned char *record)
{
    if (field.type == PROTOBUF_C_TYPE_STRING || field.type == PROTOBUF_C_TYPE_MESSAGE)
        return read<const void *>(record + field.offset) != nullptr;
    return field.label != PROTOBUF_C_LABEL_OPTIONAL ||
        read<protobuf_c_boolean>(record + field.quantifier_offset) != 0;
}

void hideSecretValue(const ProtobufCMessage &message, Json &json)
{
    if (message.descriptor != &plugin_sub_entry__descriptor)
        return;
    const auto &entry = reinterpret_cast<const PluginSubEntry &>(message);
    if (entry.key != nullptr && entry.value != nullptr && backend::isSecretKey(entry.key))
        json["value"] = secretText(std::strlen(entry.value));
}

} // namespace

Json asJson(const ProtobufCMessage &message)
{
    const auto *record = reinterpret_cast<const unsigned char *>(&message);
    Json json = Json::object();
    for (unsigned i = 0; i < message.descriptor->n_fields; i++) {
        const auto &field = message.descriptor->fields[i];
        if (field.label == PROTOBUF_C_LABEL_REPEATED) {
            if (const auto count = read<std::size_t>(record + field.quantifier_offset); count > 0)
                json[field.name] =
                    listAsJson(field, read<const unsigned char *>(record + field.offset), count);
        } else if (isPresent(field, record)) {
            json[field.name] = valueAsJson(field, record + field.offset);
        }
    }
    hideSecretValue(message, json);
    return json;
}

std::string asLine(const Json &json)
{
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace switchsim
