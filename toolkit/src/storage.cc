#include "storage.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tk {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLargestFile = std::size_t{1} << 30;

[[noreturn]] void fail(const fs::path &file)
{
    throw StorageError(file.string() + ": " + std::strerror(errno));
}

// A descriptor that closes itself.
class Opened {
public:
    Opened(const fs::path &file, int flags)
        : descriptor_(::open(file.c_str(), flags | O_CLOEXEC, 0600))
    {
        if (descriptor_ < 0)
            fail(file);
    }
    ~Opened() { ::close(descriptor_); }
    Opened(const Opened &) = delete;
    Opened &operator=(const Opened &) = delete;
    int get() const { return descriptor_; }

private:
    int descriptor_;
};

bool writeAll(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

void writeSynced(const fs::path &file, std::string_view bytes)
{
    const Opened opened(file, O_WRONLY | O_CREAT | O_TRUNC);
    if (!writeAll(opened.get(), bytes) || ::fsync(opened.get()) != 0)
        fail(file);
}

std::optional<std::string> readIfThere(const fs::path &file)
{
    std::error_code error;
    if (!fs::exists(file, error))
        return std::nullopt;
    const Opened opened(file, O_RDONLY);
    std::string content;
    char chunk[65536];
    for (;;) {
        const ssize_t count = ::read(opened.get(), chunk, sizeof chunk);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(file);
        if (count == 0)
            return content;
        content.append(chunk, static_cast<std::size_t>(count));
        if (content.size() > kLargestFile)
            throw StorageError(file.string() + ": too long");
    }
}

std::optional<LogContent> readLog(const fs::path &file)
{
    const auto bytes = readIfThere(file);
    return bytes ? parseLog(*bytes) : std::nullopt;
}

void renameOrFail(const fs::path &from, const fs::path &to)
{
    if (::rename(from.c_str(), to.c_str()) != 0)
        fail(to);
}

void removeOrFail(const fs::path &file)
{
    if (::unlink(file.c_str()) != 0 && errno != ENOENT)
        fail(file);
}

void syncFolder(const fs::path &folder)
{
    const Opened opened(folder, O_RDONLY | O_DIRECTORY);
    if (::fsync(opened.get()) != 0)
        fail(folder);
}

fs::path withSuffix(const fs::path &file, const char *suffix)
{
    return file.string() + suffix;
}

std::string nameOf(const fs::path &file)
{
    return file.filename().string();
}

} // namespace

Storage::Storage(fs::path folder)
    : folder_(std::move(folder))
    , base_(folder_ / "startup.json")
    , log_(folder_ / "startup.log")
    , syncer_([this] { run(); })
{
}

Storage::~Storage()
{
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
    }
    changed_.notify_one();
    syncer_.join();
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

StoredData Storage::open(std::vector<std::string> &complaints)
{
    const std::lock_guard lock(mutex_);
    const auto base = readIfThere(base_);
    const auto bytes = readIfThere(log_);
    const auto log = bytes ? parseLog(*bytes) : std::nullopt;
    StoredData data{base, {}};
    if (log && log->base.matches(base)) {
        data.records = log->records;
        written_ = saved_ = log->last;
        if (log->isMended)
            complaints.push_back(nameOf(log_) +
                                 ": one of its first two records is damaged; the other is used");
        if (!log->fault.empty())
            complaints.push_back(nameOf(log_) + ": record " + std::to_string(log->records.size() + 1) + " " +
                                 log->fault + "; the state before it is used");
        if (log->isMended || !log->fault.empty()) {
            keepDamaged(log_, complaints);
            establish(data, log->base.sameData);
        }
    } else if (const auto fresh = readLog(withSuffix(log_, ".new")); fresh && fresh->base.matches(base)) {
        // The file was replaced and its log not yet: nothing is lost.
        renameOrFail(withSuffix(log_, ".new"), log_);
        syncFolder(folder_);
        written_ = saved_ = fresh->last;
    } else if (!bytes || (log && !log->base.exists && log->records.empty() && log->fault.empty())) {
        establish(data, false); // new, or put there by somebody
    } else {
        data = openPrevious(log, complaints);
    }
    hasBase_ = data.base.has_value();
    baseSize_ = hasBase_ ? data.base->size() : 0;
    openLog();
    return data;
}

// The file or the first record of its log is damaged.
StoredData Storage::openPrevious(const std::optional<LogContent> &current,
                                 std::vector<std::string> &complaints)
{
    const auto base = readIfThere(withSuffix(base_, ".1"));
    const auto log = readLog(withSuffix(log_, ".1"));
    const char *what = current ? " is not what was written there" : " does not belong to it";
    std::string complaint = nameOf(base_) + (current ? "" : " is there, but " + nameOf(log_)) + what;
    StoredData data;
    if (log && log->base.matches(base)) {
        data = {base, log->records};
        const bool goesOn = current && current->base.sameData;
        if (goesOn)
            data.records.insert(data.records.end(), current->records.begin(), current->records.end());
        complaint += goesOn ? "; it is made anew from " : "; the state before it is used, from ";
        complaint += nameOf(base_) + ".1 and its log";
        written_ = saved_ = std::max(log->last, current ? current->last : 0);
    } else {
        complaint += ", and neither is the one before; what the factory gives is used";
    }
    complaints.push_back(complaint + " (to use it as it is, remove " + nameOf(log_) + ")");
    keepDamaged(base_, complaints);
    keepDamaged(log_, complaints);
    establish(data, false);
    return data;
}

void Storage::keepDamaged(const fs::path &file, std::vector<std::string> &complaints) const
{
    std::error_code error;
    if (!fs::exists(file, error))
        return;
    fs::copy_file(file, withSuffix(file, ".damaged"), fs::copy_options::overwrite_existing, error);
    complaints.push_back(nameOf(file) +
                         (error ? ": no copy of it can be kept: " + error.message()
                                : ": as it was it is kept in " + nameOf(file) + ".damaged"));
}

// Makes the files hold the data. The order of the renames is what makes it safe: a file without its log is
// found with the log beside it under its other name.
void Storage::establish(const StoredData &data, bool sameData)
{
    std::string log = firstLogRecords(written_, LogBase::of(data.base, sameData));
    for (const std::string &record : data.records)
        log += logRecord(++written_, record);
    writeSynced(withSuffix(log_, ".new"), log);
    if (data.base)
        writeSynced(withSuffix(base_, ".new"), *data.base);
    syncFolder(folder_);
    if (data.base)
        renameOrFail(withSuffix(base_, ".new"), base_);
    else
        removeOrFail(base_);
    renameOrFail(withSuffix(log_, ".new"), log_);
    syncFolder(folder_);
    saved_ = written_;
}

void Storage::openLog()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = ::open(log_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    struct stat status { };
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0)
        fail(log_);
    logSize_ = beforeLast_ = static_cast<std::size_t>(status.st_size);
    broken_.reset();
}

StoredData Storage::read() const
{
    const std::lock_guard lock(mutex_);
    StoredData data{readIfThere(base_), {}};
    const auto log = readLog(log_);
    if (!log || !log->base.matches(data.base) || !log->fault.empty())
        throw StorageError(base_.string() + ": not what was written there");
    data.records = log->records;
    return data;
}

std::uint64_t Storage::append(std::string_view payload)
{
    const std::lock_guard lock(mutex_);
    if (broken_)
        throw StorageError(*broken_);
    const std::string record = logRecord(written_ + 1, payload);
    if (!writeAll(descriptor_, record)) {
        const std::string reason = log_.string() + ": " + std::strerror(errno);
        if (::ftruncate(descriptor_, static_cast<off_t>(logSize_)) != 0)
            broken_ = reason;
        throw StorageError(reason);
    }
    beforeLast_ = logSize_;
    logSize_ += record.size();
    return ++written_;
}

void Storage::takeBack(std::uint64_t record) noexcept
{
    const std::lock_guard lock(mutex_);
    if (record != written_ || broken_ || beforeLast_ == logSize_)
        return;
    // Numbers are not used again: the record may be on its way to the disk.
    if (::ftruncate(descriptor_, static_cast<off_t>(beforeLast_)) != 0)
        broken_ = log_.string() + ": " + std::strerror(errno);
    else
        logSize_ = beforeLast_;
}

void Storage::whenSaved(std::uint64_t record, Saved done, bool mayWait)
{
    std::optional<std::string> failure;
    {
        std::unique_lock lock(mutex_);
        if (mayWait && record > saved_ && !broken_ && !isSyncing_ && waiting_.empty())
            sync(lock);
        if (record > saved_ && !broken_) {
            waiting_.emplace(record, std::move(done));
            changed_.notify_one();
            return;
        }
        if (record > saved_)
            failure = broken_;
    }
    done(failure ? &*failure : nullptr);
}

void Storage::finishSaving()
{
    std::unique_lock lock(mutex_);
    wanted_ = written_;
    changed_.notify_one();
    synced_.wait(lock, [this] { return (written_ <= saved_ || broken_) && !isSyncing_ && !isTelling_; });
}

void Storage::rewrite(const std::optional<std::string> &base, bool sameData)
{
    std::unique_lock lock(mutex_);
    awaitSyncer(lock);
    keepPrevious();
    establish({base, {}}, sameData);
    hasBase_ = base.has_value();
    baseSize_ = hasBase_ ? base->size() : 0;
    openLog();
    finish(lock);
}

void Storage::keepPrevious() const
{
    for (const fs::path &file : {base_, log_}) {
        const fs::path link = withSuffix(file, ".1.new"), kept = withSuffix(file, ".1");
        removeOrFail(link);
        if (::link(file.c_str(), link.c_str()) == 0)
            renameOrFail(link, kept);
        else if (errno == ENOENT)
            removeOrFail(kept);
        else
            fail(kept);
    }
}

bool Storage::hasBase() const
{
    const std::lock_guard lock(mutex_);
    return hasBase_;
}

bool Storage::wantsRewrite(std::size_t least) const
{
    const std::lock_guard lock(mutex_);
    return broken_ || logSize_ > std::max(least, baseSize_);
}

bool Storage::isBroken() const
{
    const std::lock_guard lock(mutex_);
    return broken_.has_value();
}

void Storage::awaitSyncer(std::unique_lock<std::mutex> &lock)
{
    synced_.wait(lock, [this] { return !isSyncing_; });
}

void Storage::run()
{
    std::unique_lock lock(mutex_);
    const auto isUnsaved = [this] { return written_ > saved_ && !broken_; };
    const auto isAwaited = [&] { return !waiting_.empty() || (wanted_ > saved_ && !broken_); };
    while (!isStopping_ || isUnsaved()) {
        changed_.wait(lock, [&] { return !isSyncing_ && (isStopping_ || isAwaited()); });
        if (isUnsaved())
            sync(lock);
        finish(lock);
    }
}

// One sync serves all records that were written when it began.
void Storage::sync(std::unique_lock<std::mutex> &lock)
{
    const std::uint64_t upTo = written_;
    isSyncing_ = true;
    lock.unlock();
    const int result = ::fdatasync(descriptor_);
    const int reason = errno;
    lock.lock();
    isSyncing_ = false;
    if (result == 0)
        saved_ = std::max(saved_, upTo);
    else
        broken_ = log_.string() + ": " + std::strerror(reason);
    synced_.notify_all();
    if (!waiting_.empty())
        changed_.notify_one();
}

// Tells those who wait, without the lock: they may ask for more.
void Storage::finish(std::unique_lock<std::mutex> &lock)
{
    const auto end = broken_ ? waiting_.end() : waiting_.upper_bound(saved_);
    std::vector<Saved> done;
    for (auto entry = waiting_.begin(); entry != end; ++entry)
        done.push_back(std::move(entry->second));
    waiting_.erase(waiting_.begin(), end);
    const auto failure = broken_;
    isTelling_ = true;
    lock.unlock();
    for (const Saved &tell : done)
        tell(failure ? &*failure : nullptr);
    lock.lock();
    isTelling_ = false;
    synced_.notify_all();
}

} // namespace tk
