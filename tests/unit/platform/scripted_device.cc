#include "tests/unit/platform/scripted_device.h"

#include "toolkit/src/retrieval.h"
#include "toolkit/toolkit.h"

namespace test {

using namespace tk;

void PrintTo(const Got &got, std::ostream *out)
{
    *out << got.status;
    for (const std::string &key : got.keys)
        *out << " " << key;
    *out << (got.more ? " and more" : "");
}

Got getByHand(SwitchBench &bench, const std::string &registeredPath, const std::string &path, GetMode mode)
{
    const Registration *registration = bench.host().impl().registry.find(registeredPath);
    if (!registration || !registration->get)
        throw std::logic_error("nobody serves " + registeredPath);
    const Target target = bench.target(path);
    const Selection everything;
    GetBlock block;
    block.node = target.node().schema();
    block.selection = &everything;
    block.mode = mode;
    unsigned level = 0;
    for (const auto &step : target.node().steps) {
        if (step.schema->nodetype != LYS_LIST)
            continue;
        ++level;
        const lysc_node *key = lysc_node_child(step.schema);
        for (const std::string &text : step.keys) {
            Status status = kOk;
            const Object *leaf = bench.host().impl().context.objectOf(key);
            block.keys.push_back(
                {std::unique_ptr<Value>(val_make_simval_obj(leaf, text.c_str(), &status)), level, true});
            key = key->next;
        }
    }
    Got got;
    got.status = registration->get(nullptr, nullptr, &block);
    for (const auto &key : block.current.keys)
        got.keys.push_back(key->text);
    got.more = block.more;
    return got;
}

} // namespace test
