// From libyang's stored messages to error records.
#pragma once

#include "toolkit/host.h"

#include <libyang/libyang.h>

namespace tk {

// Forgets what libyang stored before, so that what comes next is this operation's.
void clearErrors(const ly_ctx *context);
// The records of the messages stored since; never empty. `fallback` stands where libyang stored none.
std::vector<Error> takeErrors(const ly_ctx *context, const std::string &fallback);
// The first of them as one line of text, with its path, for start-up messages and the log.
std::string takeErrorLine(const ly_ctx *context, const std::string &fallback);

// One function for each kind of refusal, so that no other code spells a tag.
Failure dataMissing(const std::string &path, const std::string &message);
Failure dataExists(const std::string &path);
Failure unknownElement(const std::string &path, const std::string &message);
Failure unknownNamespace(const std::string &path, const std::string &element, const std::string &nameSpace);
Failure unknownAttribute(const std::string &path, const std::string &element, const std::string &attribute);
Failure badAttribute(const std::string &path, const std::string &element, const std::string &attribute,
                     const std::string &message, const std::string &appTag = {});
Failure missingElement(const std::string &path, const std::string &message);
Failure badElement(const std::string &path, const std::string &message);
Failure invalidValue(const std::string &path, const std::string &message);
Failure malformed(const std::string &message);
Failure notSupported(const std::string &path, const std::string &message);
Failure operationFailed(const std::string &path, const std::string &message, const std::string &appTag = {});
Failure lockDenied(std::uint32_t holder, const std::string &message); // holder 0: no session
Failure inUse(const std::string &message);
// A status of a callback that recorded nothing, or a recorded text.
Error statusError(Status status, const std::string &path, const std::string &text = {});

} // namespace tk
