#include "backend/wire_check.h"

#include "backend/envelope.h"

#include <optional>
#include <vector>

namespace backend {
namespace {

enum WireType : unsigned { varint = 0, fixed64 = 1, delimited = 2, fixed32 = 5 };

// Reads forward; every step says whether the bytes sufficed.
class Cursor {
public:
    explicit Cursor(BytesView bytes)
        : rest_(bytes)
    {
    }
    bool atEnd() const { return rest_.empty(); }

    std::optional<std::uint64_t> number()
    {
        std::uint64_t value = 0;
        for (unsigned i = 0; i < 10 && i < rest_.size(); i++) {
            value |= static_cast<std::uint64_t>(rest_[i] & 0x7fU) << (7 * i);
            if ((rest_[i] & 0x80U) == 0) {
                rest_ = rest_.subspan(i + 1);
                return value;
            }
        }
        return std::nullopt;
    }

    std::optional<BytesView> take(std::uint64_t length)
    {
        if (length > rest_.size())
            return std::nullopt;
        const auto taken = rest_.first(static_cast<std::size_t>(length));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

private:
    BytesView rest_;
};

class Checker {
public:
    bool message(const ProtobufCMessageDescriptor &descriptor, BytesView bytes, unsigned depth)
    {
        if (depth > kMaxDepth || !spend(descriptor.sizeof_message))
            return false;
        std::vector<bool> seen(descriptor.n_fields);
        for (Cursor cursor(bytes); !cursor.atEnd();) {
            if (!field(descriptor, cursor, seen, depth))
                return false;
        }
        return true;
    }

private:
    bool field(const ProtobufCMessageDescriptor &descriptor, Cursor &cursor, std::vector<bool> &seen,
               unsigned depth)
    {
        const auto tag = cursor.number();
        // Field numbers have 29 bits, 0 is none.
        if (!tag || *tag >> 3 == 0 || *tag >> 32 != 0)
            return false;
        const auto *known =
            protobuf_c_message_descriptor_get_field(&descriptor, static_cast<unsigned>(*tag >> 3));
        if (known != nullptr && known->label != PROTOBUF_C_LABEL_REPEATED) {
            const auto index = static_cast<std::size_t>(known - descriptor.fields);
            if (seen[index])
                return false;
            seen[index] = true;
        }
        return value(known, static_cast<unsigned>(*tag & 7U), cursor, depth);
    }

    bool value(const ProtobufCFieldDescriptor *known, unsigned wireType, Cursor &cursor, unsigned depth)
    {
        if (!spend(sizeof(ProtobufCMessageUnknownField))) // also covers a repeated field's slot
            return false;
        switch (wireType) {
        case varint:
            return cursor.number().has_value();
        case fixed64:
            return cursor.take(8).has_value();
        case fixed32:
            return cursor.take(4).has_value();
        case delimited:
            break;
        default: // groups are not used
            return false;
        }
        const auto length = cursor.number();
        const auto content = length ? cursor.take(*length) : std::nullopt;
        if (!content)
            return false;
        if (known == nullptr)
            return spend(content->size());
        if (known->type == PROTOBUF_C_TYPE_MESSAGE)
            return message(*static_cast<const ProtobufCMessageDescriptor *>(known->descriptor), *content,
                           depth + 1);
        const bool isText = known->type == PROTOBUF_C_TYPE_STRING || known->type == PROTOBUF_C_TYPE_BYTES;
        // A packed number may take eight bytes for one on the wire.
        return spend(isText ? content->size() + 1 : 8 * content->size());
    }

    bool spend(std::size_t bytes)
    {
        if (bytes > budget_)
            return false;
        budget_ -= bytes;
        return true;
    }

    std::size_t budget_ = kMaxUnpacked;
};

} // namespace

bool isSafeToUnpack(const ProtobufCMessageDescriptor &descriptor, BytesView bytes)
{
    return bytes.size() <= kMaxMessage && Checker().message(descriptor, bytes, 1);
}

ProtobufCMessage *unpackChecked(const ProtobufCMessageDescriptor &descriptor, BytesView bytes)
{
    if (!isSafeToUnpack(descriptor, bytes))
        return nullptr;
    return protobuf_c_message_unpack(&descriptor, nullptr, bytes.size(), bytes.data());
}

} // namespace backend
