#include "frame/leaves.h"

namespace frame {

Status beginContainer(GetBlock *get2cb)
{
    switch (getcb_get_mode(get2cb)) {
    case getNext:
        return kNoInstance;
    case getValue:
        getcb_set_more_data(get2cb, false);
        return kOk;
    }
    return INTERNAL_ERROR();
}

} // namespace frame
