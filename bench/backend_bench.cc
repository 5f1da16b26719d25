// What a call to the device costs beside what cannot be saved: packing and unpacking, and, over a socket, the
// way there and back.
#include "backend/proto/qos.pb-c.h"
#include "backend/qos.h"
#include "backend/transport.h"
#include "backend/unix_socket.h"
#include "bench/collector.h"
#include "switchsim/simulator.h"
#include "switchsim/socket_server.h"
#include "switchsim/switch.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr double kInProcessAim = 5;   // microseconds more than packing and unpacking twice
constexpr double kSocketAim = 60;     // microseconds more than a bare echo
constexpr std::size_t kEchoSize = 35; // bytes of the request's frame

template <class Message, class Unpack, class Free>
void packAndUnpack(const Message &message, Unpack unpack, Free release)
{
    std::vector<std::uint8_t> bytes(protobuf_c_message_get_packed_size(&message.base));
    protobuf_c_message_pack(&message.base, bytes.data());
    auto *unpacked = unpack(nullptr, bytes.size(), bytes.data());
    benchmark::DoNotOptimize(unpacked);
    release(unpacked, nullptr);
}

// A request and an answer, which is what every call has to do.
void packUnpackTwice(benchmark::State &state)
{
    QosJumboRequest request = QOS_JUMBO_REQUEST__INIT;
    request.opcode = 10;
    CommonResp reply = COMMON_RESP__INIT;
    QosJumboAnswer answer = QOS_JUMBO_ANSWER__INIT;
    answer.reply = &reply;
    answer.has_jumbo_enabled = 1;
    for (auto _ : state) {
        packAndUnpack(request, qos_jumbo_request__unpack, qos_jumbo_request__free_unpacked);
        packAndUnpack(answer, qos_jumbo_answer__unpack, qos_jumbo_answer__free_unpacked);
    }
}

void callJumbo(benchmark::State &state)
{
    for (auto _ : state) {
        QosJumboAnswer *answer = ui_fe_qos_jumbo(10, 0);
        if (answer == nullptr)
            throw std::runtime_error("the switch does not answer");
        ui_fe_qos_jumbo_post_op(answer);
    }
}

void inProcessCall(benchmark::State &state)
{
    const auto device = switchsim::startInProcessSwitch({});
    backend::setTransport(device->transport());
    callJumbo(state);
    backend::setTransport(nullptr);
}

void socketCall(benchmark::State &state)
{
    const std::string path =
        std::filesystem::temp_directory_path() / ("backend_bench_" + std::to_string(getpid()));
    switchsim::Simulator device;
    const switchsim::SocketServer server(device, path, switchsim::Serves::controlAndMessages);
    backend::setTransport(backend::makeSocketTransport(path));
    callJumbo(state);
    backend::setTransport(nullptr);
}

// The same number of bytes there and back between two threads, and nothing done with them.
void socketEcho(benchmark::State &state)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throw std::runtime_error("no sockets to be had");
    const backend::Descriptor near(ends[0]);
    std::thread echo([fd = backend::Descriptor(ends[1])] {
        std::array<char, kEchoSize> bytes{};
        while (recv(fd.get(), bytes.data(), bytes.size(), MSG_WAITALL) == static_cast<ssize_t>(bytes.size()))
            send(fd.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
    });
    std::array<char, kEchoSize> bytes{};
    for (auto _ : state) {
        send(near.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        recv(near.get(), bytes.data(), bytes.size(), MSG_WAITALL);
    }
    shutdown(near.get(), SHUT_RDWR);
    echo.join();
}

void compare(Collector &collector, const char *name, const char *base, double aim)
{
    const double mine = 1e6 * collector.median(name), bare = 1e6 * collector.median(base);
    std::printf("%-14s %8.2f us = %6.2f x %-15s (%7.2f us): %+7.2f us, aim %+.0f us: %s\n", name, mine,
                mine / bare, base, bare, mine - bare, aim, mine - bare <= aim ? "met" : "missed");
}

} // namespace

int main(int argc, char **argv)
{
    const std::pair<const char *, void (*)(benchmark::State &)> measured[] = {
        {"packUnpackTwice", packUnpackTwice},
        {"inProcessCall", inProcessCall},
        {"socketEcho", socketEcho},
        {"socketCall", socketCall},
    };
    for (const auto &[name, run] : measured) {
        auto *benchmark = benchmark::RegisterBenchmark(name, run);
        benchmark->Unit(benchmark::kMicrosecond)->UseRealTime()->MinTime(0.2)->Repetitions(5);
    }
    benchmark::Initialize(&argc, argv);
    Collector collector;
    if (benchmark::RunSpecifiedBenchmarks(&collector) < 4)
        return 1; // a filter left some out
    compare(collector, "inProcessCall", "packUnpackTwice", kInProcessAim);
    compare(collector, "socketCall", "socketEcho", kSocketAim);
    return 0;
}
