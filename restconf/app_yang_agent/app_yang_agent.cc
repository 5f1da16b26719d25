// Entry points of the two bundles. They hold no state: they call the units in the orders of the load
// table and bring up the two logging facilities.
#include "load_table.h"

#include "backend/platform.h"
#include "frame/call.h"

#include <cstring>

using namespace bundle;

namespace {

constexpr const char *kAaaUnits[] = {"openconfig-system", "openconfig-aaa", "lyn-openconfig-aaa-aug"};

bool isBuilt(const UnitRow &row)
{
    if (!row.init && frame::logsDebug())
        log_debug("\n%s: not part of this build", row.module);
    return row.init != nullptr;
}

bool isServedHere(const UnitRow &row)
{
    return isBuilt(row) && (!row.onlyWithProfiles || hasForwardingProfiles());
}

void logFailure(const UnitRow &row, Status status)
{
    constexpr const char *plain = "\ny_app_yang_agent_init(%d): Failed, res:%d\n";
    switch (row.text) {
    case FailureText::plain:
        if (frame::logsDebug())
            log_debug(plain, row.line, status);
        break;
    case FailureText::plainAsError:
        if (frame::logsErrors())
            log_error(plain, row.line, status);
        break;
    case FailureText::named:
        if (frame::logsDebug())
            log_debug("y_app_yang_agent_init:%s: failed : %d\n", row.word, status);
        break;
    }
}

Status initRow(const UnitRow &row)
{
    if (!isServedHere(row))
        return kOk;
    const Status status = row.init(row.module, row.revision);
    if (status)
        logFailure(row, status);
    return status;
}

Status init2Row(const char *module)
{
    const UnitRow *row = findUnit(module);
    return row && isServedHere(*row) ? row->init2() : kOk;
}

void cleanupRow(const char *module)
{
    const UnitRow *row = findUnit(module);
    if (row && isBuilt(*row))
        row->cleanup();
}

// Tells the log manager that the start is under way.
void restconf_logging_init_inprogress()
{
    cu_logging_record record;
    static_assert(sizeof record == 848);
    std::memset(&record, 0, sizeof record);
    record.module = 67;
    record.kind = 32;
    record.event = 737;
    cu_logging_write(&record);
}

Status initBundle(const char *bundle, const char *expected, const char *deviation)
{
    if (xml_strcmp(bundle, expected) != 0)
        return kWrongName;
    return ncxmod_load_deviation(deviation, agt_get_savedevQ());
}

} // namespace

extern "C" Status y_app_yang_agent_init(const char *bundle, const char *)
{
    if (const Status status = initBundle(bundle, "app_yang_agent", "lyn-openconfig-system-dev"))
        return status;
    for (const UnitRow &row : loadTable())
        if (const Status status = initRow(row))
            return status;
    return kOk;
}

extern "C" Status y_app_yang_agent_init2()
{
    for (const char *module : init2Order())
        if (const Status status = init2Row(module))
            return status;
    syslog_lib_init();
    restconf_logging_init_inprogress();
    for (const char *module :
         {"lyn-openconfig-forwarding-profile", "lyn-openconfig-ippm", "lyn-openconfig-watcher"})
        if (const Status status = init2Row(module))
            return status;
    return kOk;
}

extern "C" void y_app_yang_agent_cleanup()
{
    for (const char *module : cleanupOrder())
        cleanupRow(module);
}

extern "C" Status y_app_yang_agent_aaa_init(const char *bundle, const char *)
{
    if (const Status status = initBundle(bundle, "app_yang_agent_aaa", "lyn-openconfig-aaa-dev"))
        return status;
    for (const char *module : kAaaUnits)
        if (const Status status = initRow(*findUnit(module)))
            return status;
    return kOk;
}

extern "C" Status y_app_yang_agent_aaa_init2()
{
    for (const char *module : kAaaUnits)
        if (const Status status = init2Row(module))
            return status;
    return kOk;
}

extern "C" void y_app_yang_agent_aaa_cleanup()
{
    for (const char *module : kAaaUnits)
        cleanupRow(module);
}
