#include "tests/unit/bundle/log_capture.h"

#include <regex>

namespace test {
namespace {

std::string errorText, debugText;

void keep(tk::LogKind kind, const char *text)
{
    (kind == tk::LogKind::error ? errorText : debugText) += text;
}

std::string withoutPlaces(const std::string &text)
{
    const std::string lines = std::regex_replace(text, std::regex(R"(\] \[\d+\])"), "] [n]");
    return std::regex_replace(lines, std::regex(R"(\n[^\n ]*/([^\n /]+):\d+:)"), "\n$1:n:");
}

} // namespace

LogCapture::LogCapture(int level)
    : levelBefore_(log_get_system_log_level())
{
    errorText.clear();
    debugText.clear();
    tk::setLogSink(keep);
    log_set_system_log_level(level);
}

LogCapture::~LogCapture()
{
    log_set_system_log_level(levelBefore_);
    tk::setLogSink(nullptr);
}

std::string LogCapture::errors() const
{
    return withoutPlaces(errorText);
}

std::string LogCapture::debug() const
{
    return withoutPlaces(debugText);
}

} // namespace test
