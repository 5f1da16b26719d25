#include "backend/call.h"

#include "backend/pack.h"
#include "backend/proto/common.pb-c.h"
#include "backend/transport.h"
#include "backend/wire_check.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <mutex>
#include <new>

namespace backend {
namespace {

std::mutex transportMutex;
std::shared_ptr<Transport> transportInUse; // guarded by transportMutex
std::atomic<std::int64_t> timeoutMs{kDefaultTimeout.count()};

std::shared_ptr<Transport> currentTransport()
{
    const std::lock_guard lock(transportMutex);
    return transportInUse;
}

// A request may hold a secret, which does not stay behind in memory.
struct Wipe {
    Bytes &bytes;
    ~Wipe()
    {
        if (!bytes.empty())
            explicit_bzero(bytes.data(), bytes.size());
    }
};

bool packRequest(const RequestHead &head, ProtobufCMessage &request, Bytes &out)
{
    const PackScope scope(request);
    if (!scope.isGood())
        return false;
    const std::size_t length = protobuf_c_message_get_packed_size(&request);
    if (length > kMaxMessage)
        return false;
    const std::size_t at = beginRequest(head, length, out);
    protobuf_c_message_pack(&request, out.data() + at);
    return true;
}

} // namespace

void setTransport(std::shared_ptr<Transport> transport)
{
    const std::lock_guard lock(transportMutex);
    transportInUse.swap(transport);
}

void setTimeout(std::chrono::milliseconds timeout)
{
    timeoutMs = std::max<std::int64_t>(timeout.count(), 1);
}

ProtobufCMessage *exchange(const RequestHead &head, ProtobufCMessage &request,
                           const ProtobufCMessageDescriptor &answer)
try {
    Bytes bytes;
    const Wipe wipe{bytes};
    const auto transport = currentTransport();
    if (!transport || !packRequest(head, request, bytes))
        return nullptr;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    const auto got = transport->call(bytes, deadline);
    const auto read = got ? readAnswer(*got) : std::nullopt;
    if (!read || !read->present)
        return nullptr;
    return unpackChecked(answer, read->message);
} catch (const std::bad_alloc &) {
    return nullptr; // the callers are C functions
}

int askValue(const char *call, ProtobufCMessage &request, int failure)
{
    auto *answer =
        reinterpret_cast<ValueAnswer *>(exchange(RequestHead{call}, request, value_answer__descriptor));
    if (answer == nullptr)
        return failure;
    const int value = answer->value;
    value_answer__free_unpacked(answer, nullptr);
    return value;
}

int askValue(const char *call, int failure)
{
    ValueRequest request = VALUE_REQUEST__INIT;
    return askValue(call, request.base, failure);
}

} // namespace backend
