// The control language: one JSON object a line, asked by switchctl.
//
//   {"do": "journal", "since": N, "follow": BOOL}   -> {"line": {...}} for each line
//   {"do": "show", "word": "jumbo"}                 -> {"result": {...}}
//   {"do": "values"}                                -> {"result": [...]}
//   {"do": "set", "name": NAME, "value": NUMBER}    -> {"result": null}
//   {"do": "fault-add", "call": CALL, "kind": KIND, "message", "ui_err", "app_err", "text", "ms", "count",
//   "after"}
//   {"do": "fault-list"}                            -> {"result": [...]}
//   {"do": "fault-clear"}
//
// Every request ends with {"done": true} or {"error": TEXT}; a journal that is followed never ends by itself.
#pragma once

#include "switchsim/simulator.h"

#include <functional>
#include <string>

namespace switchsim {

// Longer lines are refused.
inline constexpr std::size_t kMaxControlLine = 64U << 10;

// Carries out one line. `send` takes a line without its end and says whether the client is still there;
// `isAlive` says the same without sending. Returns false when the client is gone.
bool runControl(Simulator &simulator, const std::string &line,
                const std::function<bool(const std::string &)> &send, const std::function<bool()> &isAlive);

} // namespace switchsim
