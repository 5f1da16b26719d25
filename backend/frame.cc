#include "backend/frame.h"

#include "backend/big_endian.h"

#include <algorithm>

namespace backend {

void writeFrameHead(std::uint32_t id, std::size_t length, std::uint8_t *out)
{
    std::copy(kFrameMagic.begin(), kFrameMagic.end(), out);
    putU32(out + 4, id);
    putU32(out + 8, static_cast<std::uint32_t>(length));
}

bool FrameReader::feed(BytesView bytes)
{
    if (broken_)
        return false;
    pending_.insert(pending_.end(), bytes.begin(), bytes.end());
    broken_ = !isHeadGood();
    return !broken_;
}

// Judges as much of the head as is there: a wrong first byte needs no second one.
bool FrameReader::isHeadGood() const
{
    const auto known = std::min(pending_.size(), kFrameMagic.size());
    if (!std::equal(kFrameMagic.begin(), kFrameMagic.begin() + static_cast<std::ptrdiff_t>(known),
                    pending_.begin()))
        return false;
    return pending_.size() < kFrameHead || getU32(&pending_[8]) <= kMaxFrame;
}

std::optional<Frame> FrameReader::next()
{
    if (broken_ || pending_.size() < kFrameHead)
        return std::nullopt;
    const std::size_t length = getU32(&pending_[8]);
    if (pending_.size() - kFrameHead < length)
        return std::nullopt;
    const auto begin = pending_.begin() + kFrameHead;
    const auto end = begin + static_cast<std::ptrdiff_t>(length);
    Frame frame{getU32(&pending_[4]), Bytes(begin, end)};
    pending_.erase(pending_.begin(), end);
    broken_ = !isHeadGood();
    return frame;
}

} // namespace backend
