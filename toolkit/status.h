// Statuses of the toolkit: the 16-bit numbers that callbacks return and clients see as error-app-tag.
#pragma once

#include <cstdint>

using Status = std::uint16_t;

inline constexpr Status kOk = 0;
inline constexpr Status kInternal = 4;           // what cannot occur; also a failed back-end request
inline constexpr Status kBadData = 111;          // a value that is there but unusable, such as an empty name
inline constexpr Status kMissingValue = 209;     // a leaf that the operation needs is absent
inline constexpr Status kMissingParameter = 233; // a node that the operation needs is absent
inline constexpr Status kNotFound = 250;         // a definition that the module should have is not there
inline constexpr Status kInvalidValue = 261;
inline constexpr Status kMissingInput = 272; // a parameter that the operation needs is absent
inline constexpr Status kNotSupported = 273; // this node or this mode does not allow the operation
inline constexpr Status kFailed = 274;
inline constexpr Status kWrongRevision = 314;
inline constexpr Status kWrongName = 356;
inline constexpr Status kNoInstance = 1009; // the end of a get-next walk
inline constexpr Status kDeviceText = 1042; // the device's own words were recorded for the client

// What a client is told about a status. Never null: a number without a row of its own gets the row of
// a plain failure.
struct StatusInfo {
    Status status;
    const char *tag;  // the standard's error-tag
    const char *text; // used as error-message when the callback recorded none
};
const StatusInfo &statusInfo(Status status);
