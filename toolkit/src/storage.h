// Startup on disk: a file with the whole datastore and a log of the edits since.
//
//   startup.json          the datastore as it was last written as a whole; absent: what the factory gives
//   startup.log           records, the first of which says to which file the edits belong
//   *.1                   the two that were in use before
//   *.new                 those that are being written
//   startup.*.damaged     a damaged one as it was found
#pragma once

#include "storage_log.h"

#include <condition_variable>
#include <filesystem>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

namespace tk {

// Something cannot be written or read; what() names the file and the reason.
class StorageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What startup consists of.
struct StoredData {
    std::optional<std::string> base;  // the file; nothing: what the factory gives
    std::vector<std::string> records; // edits to be applied to it, in order
};

class Storage {
public:
    explicit Storage(std::filesystem::path folder);
    ~Storage(); // what was appended is synced before
    Storage(const Storage &) = delete;
    Storage &operator=(const Storage &) = delete;

    // At start, once, before everything else: the newest data that are intact. What is damaged is told in
    // `complaints`, a line each with what is used instead.
    StoredData open(std::vector<std::string> &complaints);

    StoredData read() const; // as it is now

    // Writes a record behind the others and returns its number; it is not yet safe. If it cannot be written,
    // the log is as it was.
    std::uint64_t append(std::string_view payload);
    // Takes back the record that was appended last.
    void takeBack(std::uint64_t record) noexcept;

    // Calls `done` once the record is safely on disk, with null, or with the reason why it never will be. A
    // caller that may wait syncs it itself if nobody else is about to.
    using Saved = std::function<void(const std::string *)>;
    void whenSaved(std::uint64_t record, Saved done, bool mayWait = false);
    // Waits until nothing is left to be synced and everybody was told.
    void finishSaving();

    // Replaces the file (nothing: removes it) and begins a new log; all is safe when this returns.
    // `sameData`: the new file holds what the old one and its log hold, so that they can stand in for it.
    void rewrite(const std::optional<std::string> &base, bool sameData);

    bool hasBase() const;
    // Whether the log outweighs the file and `least` bytes.
    bool wantsRewrite(std::size_t least) const;
    // After a failure to sync, nothing that was appended can be relied on: only rewrite() helps.
    bool isBroken() const;

private:
    StoredData openPrevious(const std::optional<LogContent> &current, std::vector<std::string> &complaints);
    void keepDamaged(const std::filesystem::path &file, std::vector<std::string> &complaints) const;
    void establish(const StoredData &data, bool sameData);
    void keepPrevious() const;
    void openLog();
    void run();
    void sync(std::unique_lock<std::mutex> &lock);
    void finish(std::unique_lock<std::mutex> &lock);
    void awaitSyncer(std::unique_lock<std::mutex> &lock);

    const std::filesystem::path folder_, base_, log_;
    mutable std::mutex mutex_;
    std::condition_variable changed_; // for the syncer
    std::condition_variable synced_;  // for those who wait for it
    int descriptor_ = -1;
    std::size_t logSize_ = 0, baseSize_ = 0, beforeLast_ = 0;
    std::uint64_t written_ = 0, saved_ = 0; // numbers of records
    std::uint64_t wanted_ = 0;              // up to which somebody waits for all to be saved
    std::optional<std::string> broken_;
    bool hasBase_ = false, isSyncing_ = false, isTelling_ = false, isStopping_ = false;
    std::multimap<std::uint64_t, Saved> waiting_;
    std::thread syncer_; // last: it uses everything above
};

} // namespace tk
