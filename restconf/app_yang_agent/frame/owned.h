// Answers of the device: heap records that belong to whoever asked.
#pragma once

#include <type_traits>
#include <utility>

namespace frame {

// Frees an answer with the record's own function at the end of the scope.
//
//   const Owned<QosJumboAnswer, ui_fe_qos_jumbo_post_op> answer(ui_fe_qos_jumbo(10, 0));
//
//   Owned<CommonResp, common_resp__free_unpacked> answer;
//   const int result = ui_forwarding_profile_config_apply(&request, answer.slot());
template <class Answer, auto freeAnswer>
class Owned {
public:
    explicit Owned(Answer *answer = nullptr)
        : answer_(answer)
    {
    }
    Owned(Owned &&other) noexcept
        : answer_(other.release())
    {
    }
    Owned &operator=(Owned &&) = delete;
    ~Owned()
    {
        if (!answer_)
            return;
        if constexpr (std::is_invocable_v<decltype(freeAnswer), Answer *>)
            freeAnswer(answer_);
        else
            freeAnswer(answer_, nullptr);
    }

    explicit operator bool() const { return answer_ != nullptr; }
    Answer *get() const { return answer_; }
    Answer *operator->() const { return answer_; }
    Answer &operator*() const { return *answer_; }

    // Where a call puts its answer. Only while there is none.
    Answer **slot() { return &answer_; }
    // Hands the answer over to the caller.
    Answer *release() { return std::exchange(answer_, nullptr); }

private:
    Answer *answer_;
};

} // namespace frame
