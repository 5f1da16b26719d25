#include "frame/wait.h"

#include <chrono>
#include <thread>

namespace frame {

namespace {

void (*replacement)(unsigned) = nullptr;

} // namespace

void waitSeconds(unsigned seconds)
{
    if (replacement)
        replacement(seconds);
    else
        std::this_thread::sleep_for(std::chrono::seconds(seconds));
}

void setWait(void (*wait)(unsigned seconds))
{
    replacement = wait;
}

} // namespace frame
