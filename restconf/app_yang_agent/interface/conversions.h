// Interface kinds, and the YANG words for what the device tells in numbers.
//
// Words come out of writable arrays of this unit and are never null.
#pragma once

extern "C" {

extern char string_up[], string_down[];
extern char string_duplex_half[], string_duplex_full[];
extern char string_clock_master[], string_clock_slave[], string_clock_auto[], string_clock_none[];

// The kind of an interface by the local name of its type; 0 for any other text or null.
int get_interface_type_from_string(const char *type);
// The type of a kind; "other" for a number that is none.
char *get_interface_type_string(int kind);

// "DOWN" for 0, else "UP".
char *get_state_string(int state);

// Speed: the device's number of a YANG identity, 0 for an unknown one or null; and the other way round,
// "SPEED_UNKNOWN" for a number that has no identity.
int get_port_speed(const char *speed);
char *get_port_speed_string(int code);

// Duplex: 1 "HALF", 2 "FULL", 0 for anything else. Every number but 1 reads as "FULL".
int get_port_dupex(const char *duplex);
char *get_port_dupex_string(int code);

// Clock: 1 "master", 2 "slave", 3 "auto", 0 for anything else. 2 and 3 both read as "slave", because a port
// that negotiates follows; every other number but 1 reads as "none".
int get_port_clock(const char *clock);
char *get_port_clock_string(int code);

} // extern "C"

namespace interfaces {

// Kinds, as the device numbers them.
enum Kind : int {
    kindOther = 0,
    kindEthernet = 1,
    kindLoopback = 2,
    kindVe = 4,
    kindLag = 9,
};

// Kinds that the device makes and deletes on request, with a number of their own.
constexpr bool isRouted(int kind)
{
    return kind == kindLoopback || kind == kindVe;
}

// Speeds of which the state tells no number of its own: the port or its optic decides.
inline constexpr int kSpeedAuto = 1, kSpeedOptic = 12;

} // namespace interfaces
