#include "toolkit/log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

std::atomic<int> currentLevel{2};
std::atomic<tk::LogSink> currentSink{nullptr};

constexpr int kError = 1, kInfo = 3, kDebug = 4, kDebug2 = 5;

void emit(tk::LogKind kind, const char *text)
{
    if (const auto sink = currentSink.load())
        sink(kind, text);
    else
        std::fputs(text, stderr);
}

[[gnu::format(printf, 3, 0)]] void write(int level, tk::LogKind kind, const char *format, va_list arguments)
{
    if (currentLevel < level)
        return;
    char shortText[512];
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(shortText, sizeof shortText, format, arguments);
    if (length >= 0 && static_cast<std::size_t>(length) < sizeof shortText) {
        emit(kind, shortText);
    } else if (length >= 0) {
        std::string text(static_cast<std::size_t>(length) + 1, '\0');
        std::vsnprintf(text.data(), text.size(), format, again);
        emit(kind, text.c_str());
    }
    va_end(again);
}

} // namespace

#define LOG_FUNCTION(name, level, kind)                                                                      \
    extern "C" void name(const char *format, ...)                                                            \
    {                                                                                                        \
        va_list arguments;                                                                                   \
        va_start(arguments, format);                                                                         \
        write(level, kind, format, arguments);                                                               \
        va_end(arguments);                                                                                   \
    }

LOG_FUNCTION(log_error, kError, tk::LogKind::error)
LOG_FUNCTION(log_info, kInfo, tk::LogKind::info)
LOG_FUNCTION(log_debug, kDebug, tk::LogKind::debug)
LOG_FUNCTION(log_debug2, kDebug2, tk::LogKind::debug)
LOG_FUNCTION(log_debug2_append, kDebug2, tk::LogKind::debug)

extern "C" int log_get_system_log_level()
{
    return currentLevel;
}

extern "C" void log_set_system_log_level(int level)
{
    currentLevel = level;
}

void tk::setLogSink(LogSink sink)
{
    currentSink = sink;
}
