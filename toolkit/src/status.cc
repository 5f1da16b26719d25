#include "toolkit/status.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr StatusInfo kStatuses[] = {
    // status        error-tag                  error-message
    {kOk, "operation-failed", "no error"},
    {kInternal, "operation-failed", "the device could not carry out the operation"},
    {kBadData, "operation-failed", "a value cannot be used as it is"},
    {kMissingValue, "operation-failed", "a value that the operation needs is missing"},
    {kMissingParameter, "missing-element", "a node that the operation needs is missing"},
    {kNotFound, "operation-failed", "a definition was not found"},
    {kInvalidValue, "invalid-value", "the value is not allowed here"},
    {kMissingInput, "missing-element", "a parameter that the operation needs is missing"},
    {kNotSupported, "operation-not-supported", "the operation is not supported for this node"},
    {kFailed, "operation-failed", "the operation failed"},
    {kWrongRevision, "operation-failed", "the module's revision is not the one expected"},
    {kWrongName, "operation-failed", "the module's name is not the one expected"},
    {kNoInstance, "data-missing", "there is no such instance"},
    {kDeviceText, "operation-failed", "the device refused the operation"},
};

} // namespace

const StatusInfo &statusInfo(Status status)
{
    const auto row = std::find_if(std::begin(kStatuses), std::end(kStatuses),
                                  [status](const StatusInfo &info) { return info.status == status; });
    static constexpr StatusInfo unknown{kFailed, "operation-failed", "the operation failed"};
    return row != std::end(kStatuses) ? *row : unknown;
}
