// Everything that a module unit needs of the toolkit.
#pragma once

#include "toolkit/agt.h"
#include "toolkit/edit.h"
#include "toolkit/getcb.h"
#include "toolkit/log.h"
#include "toolkit/memory.h"
#include "toolkit/obj.h"
#include "toolkit/rpc.h"
#include "toolkit/status.h"
#include "toolkit/types.h"
#include "toolkit/val.h"
