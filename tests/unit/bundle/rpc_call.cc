#include "tests/unit/bundle/rpc_call.h"

#include <stdexcept>

namespace test {

using namespace tk;

RpcAnswer callRpc(HostBench &bench, RpcCallback callback, const std::string &module, const std::string &rpc,
                  const std::optional<std::string> &input)
{
    const Target target = bench.target(module + ":" + rpc);
    const auto &context = bench.host().impl().context;
    const std::string text = "{\"" + module + ":" + rpc + "\":" + input.value_or("{}") + "}";
    ly_in *in = nullptr;
    lyd_node *tree = nullptr, *operation = nullptr;
    ly_in_new_memory(text.c_str(), &in);
    const LY_ERR parsed =
        lyd_parse_op(context.ly(), nullptr, in, LYD_JSON, LYD_TYPE_RPC_YANG, &tree, &operation);
    ly_in_free(in, 0);
    if (parsed)
        throw std::invalid_argument("the test's input is no input: " + text);
    RpcAnswer answer;
    {
        const ValueView view;
        const auto method = showNode(target.node().schema(), operation, &view, nullptr);
        RequestFrame frame;
        frame.request.method = context.objectOf(target.node().schema());
        frame.input = input ? method.get() : nullptr;
        answer.status = callback(&frame.session, &frame.request, method.get());
        for (const auto &record : frame.header.records)
            answer.texts.push_back(record.text);
        for (const auto &value : frame.output)
            answer.output.push_back(value->ownText);
    }
    lyd_free_all(tree);
    return answer;
}

} // namespace test
