// What was asked of the switch and what it said: the newest lines, bounded in number and in memory.
#pragma once

#include "backend/bytes.h"
#include "backend/envelope.h"
#include "switchsim/calls.h"
#include "switchsim/json_text.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace switchsim {

// A line keeps the bytes as they travelled; it is turned into JSON only when somebody reads it.
struct JournalLine {
    std::uint64_t seq = 0;
    const Call *call = nullptr;
    std::int32_t argument = 0;
    std::uint32_t subType = 0;
    backend::Bytes request;               // the packed message
    std::optional<backend::Bytes> answer; // the packed message; nothing: a delivery failure
    bool isFinished = false;              // the answer is decided
};

// {"seq", "call", "request", "answer"}
Json asJson(const JournalLine &line);

class Journal {
public:
    static constexpr std::size_t kMaxLines = 10'000;
    static constexpr std::size_t kMaxBytes = 16U << 20;

    // A request has come. Its line is read by nobody before finish(), and neither are later ones, so
    // that lines come in the order of the requests. Returns its number, counted from 1.
    std::uint64_t begin(const Call &call, const backend::Request &request);
    void finish(std::uint64_t seq, std::optional<backend::Bytes> answer);

    // At most `limit` lines with a number above `seq`, oldest first.
    std::vector<JournalLine> readAfter(std::uint64_t seq, std::size_t limit) const;

    // Waits until there is a line above `seq`. False: the time is over.
    bool waitAfter(std::uint64_t seq, std::chrono::milliseconds time) const;

private:
    bool hasAfter(std::uint64_t seq) const;
    void dropOldest();

    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::deque<JournalLine> lines_; // numbers without gaps
    std::uint64_t last_ = 0;
    std::size_t bytes_ = 0;
};

} // namespace switchsim
