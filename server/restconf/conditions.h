// Conditional requests (RFC 9110, section 13; RFC 8040, sections 3.4.1 and 3.5): entity tags and dates.
//
// One version of running serves every resource: its tag is new after each commit. What a GET answers from the
// configuration alone carries that tag as it is. Where state may be in the answer, the tag is followed by "."
// and a digest of the answer, so that a client is never told "not modified" about a state that did change;
// for an edit only the version before the dot counts.
#pragma once

#include "toolkit/host.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace agentd::restconf {

using Seconds = std::chrono::sys_seconds;

// The tags of an If-Match or If-None-Match header.
struct TagList {
    bool any = false; // "*"
    struct Tag {
        std::string value; // without quotes
        bool isWeak = false;
    };
    std::vector<Tag> tags;
};

// The raw headers of a request; what it did not send is absent.
struct ConditionHeaders {
    std::optional<std::string_view> ifMatch, ifNoneMatch, ifModifiedSince, ifUnmodifiedSince;
};

struct Conditions {
    std::optional<TagList> ifMatch, ifNoneMatch;
    std::optional<Seconds> ifModifiedSince, ifUnmodifiedSince;
    bool isEmpty() const { return !ifMatch && !ifNoneMatch && !ifModifiedSince && !ifUnmodifiedSince; }
    bool askForExistence() const { return (ifMatch && ifMatch->any) || (ifNoneMatch && ifNoneMatch->any); }
};

// Bad tags are refused with a RequestError (400), bad dates are ignored, as HTTP wants it.
Conditions parseConditions(const ConditionHeaders &headers);

// Before an edit, under its lock: throws RequestError (412) unless it may go on.
// `exists`: the target is there; counts only if the conditions ask for it.
void checkEdit(const Conditions &conditions, const tk::Stamp &stamp, bool exists);

// What a GET is about to answer.
struct Representation {
    const tk::Stamp &stamp;
    std::string tag;   // entityTag() of it
    bool mayHoldState; // the time stamp then tells nothing about its age
};

// Throws RequestError (412), or returns whether the answer is "not modified" (304).
bool isNotModified(const Conditions &conditions, const Representation &representation);

// The tag of an answer: the version alone, or with the digest of a body that may hold state. No quotes.
std::string entityTag(const tk::Stamp &stamp, std::optional<std::string_view> body);

// "Sun, 06 Nov 1994 08:49:37 GMT" and back; the two obsolete forms are not read.
std::string httpDate(std::chrono::system_clock::time_point when);
std::optional<Seconds> parseHttpDate(std::string_view text);

} // namespace agentd::restconf
