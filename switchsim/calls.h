// The calls that the switch knows: which record asks, which one answers, and who handles it.
#pragma once

#include "backend/envelope.h"
#include "backend/proto/common.pb-c.h"

#include <protobuf-c/protobuf-c.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace switchsim {

// What a handler has at hand besides its request and its answer. Lives until the answer is packed.
class Answering {
public:
    Answering(const backend::RequestHead &head, CommonResp *reply)
        : head_(head)
        , reply_(reply)
    {
    }

    std::int32_t argument() const { return head_.argument; } // the number beside the record
    std::uint32_t subType() const { return head_.subType; }  // of a security message

    // Turns the request down in the switch's own words. Only for calls whose answer has a reply.
    void refuse(std::string_view text, std::int32_t uiErr = 1, std::int32_t appErr = 0);

    // Memory for what the answer points to.
    char *keep(std::string_view text);
    template <class Record>
    Record *make(void (*init)(Record *))
    {
        auto record = std::make_shared<Record>();
        init(record.get());
        kept_.push_back(record);
        return record.get();
    }
    std::vector<std::uint32_t> *keepNumbers(std::vector<std::uint32_t> numbers);
    template <class Record>
    Record **makeList(const std::vector<Record *> &records)
    {
        auto list = std::make_shared<std::vector<Record *>>(records);
        kept_.push_back(list);
        return list->data();
    }

private:
    const backend::RequestHead &head_;
    CommonResp *reply_;
    std::vector<std::shared_ptr<void>> kept_;
};

using Handler = std::function<void(const ProtobufCMessage &, ProtobufCMessage &, Answering &)>;

struct Call {
    std::string name;       // the client function's
    std::uint32_t code = 0; // of a security message, else 0
    const ProtobufCMessageDescriptor *request = nullptr;
    const ProtobufCMessageDescriptor *answer = nullptr;
    Handler handle;
    std::string argumentName; // of the number beside the record; empty: it has no name and isn't shown
    bool isQuiet = false;     // a look at a value, not a request to a daemon: not in the journal
    bool isSlow = false;      // takes its time and touches no state: carried out without the simulator's lock

    // Fluent options for registration.
    Call &withArgument(std::string name);
    Call &quiet();
    Call &slow();
};

// The reply inside of an answer: the answer itself, or its `reply`, which is hung in; null if it has none.
CommonResp *attachReply(ProtobufCMessage &answer, CommonResp &reply);
bool hasReply(const Call &call);

class CallTable {
public:
    // Registers a call. `handle` takes (const Request &, Answer &, Answering &); its answer is
    // initialised, with a reply of success hung in.
    template <class Request, class Answer, class Function>
    Call &on(std::string_view name, const ProtobufCMessageDescriptor &request,
             const ProtobufCMessageDescriptor &answer, Function handle, std::uint32_t code = 0)
    {
        return add(
            {std::string(name),
             code,
             &request,
             &answer,
             [handle](const ProtobufCMessage &asked, ProtobufCMessage &answered, Answering &answering) {
                 handle(reinterpret_cast<const Request &>(asked), reinterpret_cast<Answer &>(answered),
                        answering);
             },
             {},
             false,
             false});
    }

    // A number that can be asked for by a function without arguments.
    void onValue(std::string_view name, std::function<std::int32_t()> value);

    const Call *find(std::string_view name, std::uint32_t code) const;
    bool knows(std::string_view name) const { return calls_.find(name) != calls_.end(); }
    // True if some call of that name has a reply in its answer.
    bool canRefuse(std::string_view name) const;

private:
    Call &add(Call call);

    std::multimap<std::string, Call, std::less<>> calls_; // several codes may share a name
};

} // namespace switchsim
