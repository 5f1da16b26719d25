#include "interface/conversions.h"

#include "toolkit/val.h"

#include <cstddef>

char string_up[] = "UP", string_down[] = "DOWN";
char string_duplex_half[] = "HALF", string_duplex_full[] = "FULL";
char string_clock_master[] = "master", string_clock_slave[] = "slave", string_clock_auto[] = "auto",
     string_clock_none[] = "none";

namespace {

using namespace interfaces;

struct Word {
    int code;
    char *text;
};

char typeEthernet[] = "ethernetCsmacd", typeLoopback[] = "softwareLoopback", typeVe[] = "l3ipvlan",
     typeLag[] = "ieee8023adLag", typeOther[] = "other";
constexpr Word kTypes[] = {
    {kindEthernet, typeEthernet},
    {kindLoopback, typeLoopback},
    {kindVe, typeVe},
    {kindLag, typeLag},
};

char speedAuto[] = "SPEED_AUTO", speed10M[] = "SPEED_10MB", speed100M[] = "SPEED_100MB",
     speed1G[] = "SPEED_1GB", speed40G[] = "SPEED_40GB", speed10G[] = "SPEED_10GB",
     speed2500M[] = "SPEED_2500MB", speed100G[] = "SPEED_100GB", speed5G[] = "SPEED_5GB",
     speed25G[] = "SPEED_25GB", speedOptic[] = "SPEED_OPTIC", speedUnknown[] = "SPEED_UNKNOWN";
constexpr Word kSpeeds[] = {
    {kSpeedAuto, speedAuto},
    {2, speed10M},
    {3, speed100M},
    {4, speed1G},
    {5, speed40G},
    {7, speed10G},
    {8, speed2500M},
    {9, speed100G},
    {10, speed5G},
    {11, speed25G},
    {kSpeedOptic, speedOptic},
};

constexpr Word kDuplexes[] = {{1, string_duplex_half}, {2, string_duplex_full}};
constexpr Word kClocks[] = {{1, string_clock_master}, {2, string_clock_slave}, {3, string_clock_auto}};

template <std::size_t N>
int codeOf(const Word (&words)[N], const char *text)
{
    for (const Word &word : words)
        if (xml_strcmp(word.text, text) == 0)
            return word.code;
    return 0;
}

template <std::size_t N>
char *textOf(const Word (&words)[N], int code, char *otherwise)
{
    for (const Word &word : words)
        if (word.code == code)
            return word.text;
    return otherwise;
}

} // namespace

extern "C" {

int get_interface_type_from_string(const char *type)
{
    return codeOf(kTypes, type);
}

char *get_interface_type_string(int kind)
{
    return textOf(kTypes, kind, typeOther);
}

char *get_state_string(int state)
{
    return state ? string_up : string_down;
}

int get_port_speed(const char *speed)
{
    return codeOf(kSpeeds, speed);
}

char *get_port_speed_string(int code)
{
    return textOf(kSpeeds, code, speedUnknown);
}

int get_port_dupex(const char *duplex)
{
    return codeOf(kDuplexes, duplex);
}

char *get_port_dupex_string(int code)
{
    return textOf(kDuplexes, code, string_duplex_full);
}

int get_port_clock(const char *clock)
{
    return codeOf(kClocks, clock);
}

char *get_port_clock_string(int code)
{
    return code == 3 ? string_clock_slave : textOf(kClocks, code, string_clock_none);
}

} // extern "C"
