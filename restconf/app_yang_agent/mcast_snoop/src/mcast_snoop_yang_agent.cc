#include "mcast_snoop/src/mcast_snoop_yang_agent.h"

using namespace frame;

extern "C" const char string_mode_active[] = "active";
extern "C" const char string_mode_passive[] = "passive";

namespace {

constexpr const char *kModule = "lyn-igmp-mld-snooping";
constexpr std::uint64_t kVersionBits = 0xff;

// How the records of the whole switch and of a VLAN are filled and sent.
template <class Record>
struct Scope {
    const char *function; // for the log
    bool isNameTested;    // another container than `config` says nothing
    void (*setMode)(Record *, int32_t, int32_t);
    void (*setVersion)(Record *, int32_t, uint32_t);
    int (*apply)(Record *, int32_t);

    // False: the leaf is none of the two.
    bool set(Record *record, int32_t oper, const char *leaf, const Value *value) const
    {
        if (!value)
            return false;
        if (xml_strcmp(leaf, "querier-mode") == 0)
            setMode(record, oper, get_mode(val_get_string(value)));
        else if (xml_strcmp(leaf, "version") == 0)
            setVersion(record, oper, static_cast<uint32_t>(val_get_uint64(value) & kVersionBits));
        else
            return false;
        return true;
    }

    bool setAll(Record *record, int32_t oper, const char *container, const Value *value) const
    {
        if (!value || (isNameTested && xml_strcmp(container, "config") != 0))
            return false;
        const bool hasMode =
            set(record, oper, "querier-mode", val_find_child(value, kModule, "querier-mode"));
        const bool hasVersion = set(record, oper, "version", val_find_child(value, kModule, "version"));
        return hasMode || hasVersion;
    }

    Status parse(bool isChild, EditOp editop, const Value *curval, const Value *newval, Record *record) const
    {
        const Value *named = newval ? newval : curval;
        const char *name = named ? val_get_name(named) : "";
        if (*name == '\0')
            return cannotOccur("RESTConf-Msnoop: [%s] node name NULL!\n");
        if (editop == del && !curval)
            return cannotOccur("RESTConf-Msnoop: [%s] curval NULL!\n");
        const int32_t oper = editop == del ? MCAST_SNOOP_REMOVE : MCAST_SNOOP_SET;
        const Value *value = editop == del ? curval : newval;
        if (!(isChild ? set(record, oper, name, value) : setAll(record, oper, name, value)))
            return kOk;
        if (apply(record, 0) == 0)
            return kOk;
        if (logsErrors())
            log_error("RESTConf-Msnoop: [%s]: config apply failed", function);
        return kInternal;
    }

private:
    Status cannotOccur(const char *format) const
    {
        if (logsErrors()) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
            log_error(format, function);
#pragma GCC diagnostic pop
        }
        return INTERNAL_ERROR();
    }
};

constexpr Scope<McastSnoopGlobalConfig> kGlobal{"msnoop_rconf_parse_global_params", true,
                                                mcast_snoop_global_mode_set, mcast_snoop_global_version_set,
                                                mcast_snoop_global_config_apply};
constexpr Scope<McastSnoopVlanConfig> kVlan{"msnoop_rconf_parse_vlan_params", false,
                                            mcast_snoop_vlan_mode_set, mcast_snoop_vlan_version_set,
                                            mcast_snoop_vlan_config_apply};

} // namespace

extern "C" int get_mode(const char *text)
{
    return xml_strcmp(text, string_mode_active) == 0 ? 1 : xml_strcmp(text, string_mode_passive) == 0 ? 2 : 0;
}

extern "C" Status msnoop_rconf_parse_global_params(int is_child, EditOp editop, Value *curval, Value *newval,
                                                   McastSnoopGlobalConfig *record)
{
    return kGlobal.parse(is_child != 0, editop, curval, newval, record);
}

extern "C" Status msnoop_rconf_parse_vlan_params(int is_child, EditOp editop, Value *curval, Value *newval,
                                                 McastSnoopVlanConfig *record)
{
    return kVlan.parse(is_child != 0, editop, curval, newval, record);
}
