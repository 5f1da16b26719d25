// Returning state: the leaves that a request wants, out of one answer of the device.
#pragma once

#include "frame/call.h"

#include <cstddef>

namespace frame {

// A leaf to be made. Each maker returns the new leaf, or null with the status kept here. A null without a
// status means that the answer has nothing for the leaf.
struct LeafMaker {
    const Object *object; // the leaf's own
    const char *module;
    Status status = kOk;

    Value *boolean(bool value)
    {
        return agt_make_boolean_leaf(object, module, obj_get_name(object), value, &status);
    }
    Value *number(std::uint32_t value)
    {
        return agt_make_uint_leaf2(object, module, obj_get_name(object), value, &status);
    }
    Value *integer(std::int32_t value)
    {
        return agt_make_int_leaf2(object, module, obj_get_name(object), value, &status);
    }
    Value *wide(std::int64_t value)
    {
        return agt_make_int64_leaf2(object, module, obj_get_name(object), value, &status);
    }
    Value *text(const char *value)
    {
        return agt_make_leaf2(object, module, obj_get_name(object), value, &status);
    }
};

template <class Answer>
struct Leaf {
    const char *name;
    Value *(*make)(LeafMaker &leaf, const Answer &answer);
};

// Makes each requested leaf that the table knows and hands it over; a leaf that cannot be made ends the
// walk with its status, and its name in *failed.
template <class Answer, std::size_t N>
Status returnLeaves(GetBlock *get2cb, const char *module, const Answer &answer,
                    const Leaf<Answer> (&leaves)[N], const char **failed = nullptr)
{
    const Object *parent = getcb_get_obj(get2cb);
    for (Object *child = getcb_first_requested_child(get2cb, parent); child;
         child = getcb_next_requested_child(get2cb, child))
        for (const auto &leaf : leaves) {
            if (xml_strcmp(obj_get_name(child), leaf.name) != 0)
                continue;
            LeafMaker maker{child, module};
            Value *value = leaf.make(maker, answer);
            if (failed)
                *failed = leaf.name;
            if (!value && maker.status == kOk)
                continue;
            if (!value)
                return maker.status;
            if (const Status status = getcb_add_return_val(get2cb, value))
                return status;
        }
    return kOk;
}

// How a container's retrieval begins: a container has no next instance. 0 to go on, with the more-data flag
// cleared.
Status beginContainer(GetBlock *get2cb);

} // namespace frame
