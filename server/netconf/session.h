// One NETCONF session behind its connection: hello, framing, one request after the other.
#pragma once

#include "server/netconf/dispatcher.h"
#include "server/netconf/framing.h"

namespace agentd::netconf {

// What carries a session, and owns it. Both are used on one thread at a time; only post() comes from any.
class Transport {
public:
    virtual ~Transport() = default;
    virtual void send(std::string bytes) = 0;
    virtual void endSession() = 0; // behind what was sent
    // Runs the action later, among the transport's other work.
    virtual void post(std::function<void()> action) = 0;
};

class Session : public std::enable_shared_from_this<Session> {
public:
    Session(Dispatcher &dispatcher, std::weak_ptr<Transport> transport, SessionPointer record,
            std::size_t longestMessage);

    void start(); // says hello
    void receive(std::string_view bytes);
    // Whether bytes may come: not while a request is carried out, so that a client cannot pile them up.
    bool wantsInput() const { return !isBusy_ && !isClosing_; }
    bool isBusy() const { return isBusy_; }
    bool hasSaidHello() const { return hasHello_; }
    // The connection goes: nothing is sent any more.
    void end();

    const SessionPointer &record() const { return record_; }
    bool endsOrderly() const { return endsOrderly_; }

private:
    void handleMessages();
    void takeHello(const std::string &message);
    void handle(const std::string &message);
    void onAnswer(Dispatcher::Answer answer);
    void send(std::string_view message);
    void close(bool orderly);

    Dispatcher &dispatcher_;
    std::weak_ptr<Transport> transport_;
    const SessionPointer record_;
    FrameDecoder decoder_;
    Framing framing_ = Framing::endOfMessage;
    bool hasHello_ = false, isBusy_ = false, isClosing_ = false, endsOrderly_ = false;
};

} // namespace agentd::netconf
