// Fixed waits: the device needs a moment before the next request.
#pragma once

namespace frame {

// Blocks the callback, and the server with it.
void waitSeconds(unsigned seconds);

// Waits are carried out by this function instead; null restores the real wait. For tests.
void setWait(void (*wait)(unsigned seconds));

} // namespace frame
