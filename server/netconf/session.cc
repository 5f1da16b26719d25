#include "server/netconf/session.h"

#include "toolkit/log.h"

#include <utility>

namespace agentd::netconf {

Session::Session(Dispatcher &dispatcher, std::weak_ptr<Transport> transport, SessionPointer record,
                 std::size_t longestMessage)
    : dispatcher_(dispatcher)
    , transport_(std::move(transport))
    , record_(std::move(record))
    , decoder_(longestMessage)
{
}

void Session::start()
{
    send(helloMessage(dispatcher_.capabilities(), record_->id));
}

void Session::send(std::string_view message)
{
    if (const auto transport = transport_.lock())
        transport->send(framed(message, framing_));
}

void Session::receive(std::string_view bytes)
{
    if (isClosing_)
        return;
    decoder_.append(bytes);
    handleMessages();
}

// Bytes that are no messages end the session: where the next message begins is not known (RFC 6242,
// section 4.1).
void Session::handleMessages()
{
    try {
        while (wantsInput()) {
            const auto message = decoder_.next();
            if (!message)
                return;
            if (hasHello_)
                handle(*message);
            else
                takeHello(*message);
        }
    } catch (const FramingError &error) {
        log_info("agentd: session %u is ended: %s\n", record_->id, error.what());
        close(false);
    }
}

void Session::takeHello(const std::string &message)
{
    try {
        framing_ = readHello(message) ? Framing::chunked : Framing::endOfMessage;
        decoder_.use(framing_);
        hasHello_ = true;
    } catch (const RpcFailure &failure) {
        log_info("agentd: session %u is ended: bad hello: %s\n", record_->id, failure.what());
        ++dispatcher_.sessions().inBadHellos;
        close(false);
    }
}

void Session::handle(const std::string &message)
{
    isBusy_ = true;
    dispatcher_.handle(record_, message,
                       [weak = weak_from_this(), carrier = transport_](Dispatcher::Answer answer) {
                           const auto transport = carrier.lock();
                           if (!transport)
                               return;
                           transport->post([weak, answer = std::move(answer)]() mutable {
                               if (const auto self = weak.lock())
                                   self->onAnswer(std::move(answer));
                           });
                       });
}

void Session::onAnswer(Dispatcher::Answer answer)
{
    isBusy_ = false;
    if (isClosing_)
        return;
    send(answer.reply);
    if (answer.closes)
        return close(true);
    handleMessages();
}

void Session::close(bool orderly)
{
    isClosing_ = true;
    endsOrderly_ = orderly;
    if (const auto transport = transport_.lock())
        transport->endSession();
}

void Session::end()
{
    isClosing_ = true;
    transport_.reset();
}

} // namespace agentd::netconf
