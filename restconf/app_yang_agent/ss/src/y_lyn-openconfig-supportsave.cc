#include "ss/src/u_lyn-openconfig-supportsave.h"

#include "frame/unit.h"

namespace {

constexpr frame::Row kRows[] = {
    // Who asks for another collection is told to delete the node first, also if all is as it was.
    EDIT("/lyn-openconfig-supportsave:invokeSS", u_lyn_supportsave_invokeSS_edit, tk::toldWhenSame),
};

} // namespace

DEFINE_UNIT(lyn_openconfig_supportsave, "lyn-openconfig-supportsave", "2022-02-22", kRows, "invokeSS");
