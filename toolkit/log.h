// The server's log. Levels: 0 off, 1 error, 2 warning, 3 info, 4 and above debug; log_debug lines of the
// callbacks appear above 7, log_debug2 lines above 8.
//
// A caller tests the level before the call, so that no argument is formatted below it.
#pragma once

extern "C" {

int log_get_system_log_level();
void log_set_system_log_level(int level);

void log_debug(const char *format, ...) __attribute__((format(printf, 1, 2)));
void log_debug2(const char *format, ...) __attribute__((format(printf, 1, 2)));
// Goes on with the line that log_debug2 began.
void log_debug2_append(const char *format, ...) __attribute__((format(printf, 1, 2)));
void log_info(const char *format, ...) __attribute__((format(printf, 1, 2)));
void log_error(const char *format, ...) __attribute__((format(printf, 1, 2)));

} // extern "C"

namespace tk {

enum class LogKind { error, info, debug };
// Receives every line that passes the level instead of standard error; null restores that. The text comes
// as it was logged, newlines included. Used by tests and by the server's own log.
using LogSink = void (*)(LogKind kind, const char *text);
void setLogSink(LogSink sink);

} // namespace tk
