#include "operation.h"

#include "body.h"
#include "errors.h"
#include "toolkit/rpc.h"

namespace tk {

namespace {

bool isBlank(const std::string &text)
{
    return text.find_first_not_of(" \t\r\n") == text.npos;
}

// The operation as libyang parses it: its own name around the input.
std::string named(const lysc_node *schema, const std::string &input, Encoding encoding)
{
    const std::string module = schema->module->name, name = schema->name;
    const std::string inner = isBlank(input) ? "" : unwrap(input, encoding, "input");
    if (encoding == Encoding::json)
        return "{\"" + module + ":" + name + "\":" + (isBlank(inner) ? "{}" : inner) + "}";
    return "<" + name + " xmlns=\"" + schema->module->ns + "\">" + inner + "</" + name + ">";
}

// The operation's node under its ancestors, with the input's leaves in it.
Tree parseInput(const Context &context, const Target::Node &target, const std::string &input,
                Encoding encoding, lyd_node **operation)
{
    lyd_node *parent = nullptr, *parsed = nullptr;
    Tree tree = buildSteps(target, target.steps.size() - 1, &parent);
    const std::string text = named(target.schema(), input, encoding);
    scanBody(context.ly(), text, encoding, parent ? parent->schema : nullptr);
    ly_in *in = nullptr;
    if (ly_in_new_memory(text.c_str(), &in))
        throw malformed("The input cannot be read.");
    clearErrors(context.ly());
    const LYD_FORMAT format = encoding == Encoding::json ? LYD_JSON : LYD_XML;
    const LY_ERR result = lyd_parse_op(context.ly(), parent, in, format, LYD_TYPE_RPC_YANG,
                                       parent ? nullptr : &parsed, operation);
    ly_in_free(in, 0);
    if (!tree)
        tree.reset(parsed);
    if (result || !*operation)
        throw Failure(takeErrors(context.ly(), "The input cannot be read."));
    return tree;
}

void checkInput(Engine &engine, const Context &context, lyd_node *tree)
{
    const auto reading = engine.read();
    clearErrors(context.ly());
    if (lyd_validate_op(tree, reading.root, LYD_TYPE_RPC_YANG, nullptr)) {
        auto errors = takeErrors(context.ly(), "The input is not valid.");
        for (Error &error : errors)
            if (error.tag == "data-missing")
                error.tag = "missing-element";
        throw Failure(std::move(errors));
    }
}

std::string operationPath(const void *schema)
{
    return schemaPath(static_cast<const lysc_node *>(schema));
}

void callPhase(const OperationCallbacks &callbacks, OperationPhase phase, RequestFrame &frame, Value *method)
{
    const std::size_t before = frame.header.records.size();
    Status status = kOk;
    if (callbacks.action[phase])
        status = callbacks.action[phase](&frame.session, &frame.request, method, frame.input);
    else if (callbacks.rpc[phase])
        status = callbacks.rpc[phase](&frame.session, &frame.request, method);
    if (status)
        throw Failure(frame.header.errors(before, status));
}

} // namespace

Tree runOperation(Engine &engine, const Context &context, const Target::Node &target,
                  const std::string &input, Encoding encoding, lyd_node **operation)
{
    const lysc_node *schema = target.schema();
    const NodeInfo &info = infoOf(schema);
    if (!info.operation)
        throw notSupported(target.path, "The switch does not serve this operation.");
    lyd_node *node = nullptr;
    Tree tree = parseInput(context, target, input, encoding, &node);
    const auto turn = engine.takeTurn();
    checkInput(engine, context, tree.get());

    const ValueView view;
    const auto method = showNode(schema, node, &view, nullptr);
    RequestFrame frame;
    frame.header.pathOf = operationPath;
    frame.header.subject = schema;
    frame.request.method = context.objectOf(schema);
    frame.input = lyd_child(node) ? method.get() : nullptr;
    callPhase(*info.operation, operationValidate, frame, method.get());
    callPhase(*info.operation, operationInvoke, frame, method.get());
    if (frame.output.empty())
        return nullptr;

    Tree output = buildSteps(target, target.steps.size() - 1, operation);
    lyd_node *reply = nullptr;
    if (lyd_new_inner(*operation, schema->module, schema->name, 0, &reply))
        throw Failure(takeErrors(context.ly(), "The output cannot be made."));
    if (!output)
        output.reset(reply);
    *operation = reply;
    for (const auto &value : frame.output)
        if (!buildTree(*value, makeParents(reply, value->schema, true), true))
            throw Failure(takeErrors(context.ly(), "The output cannot be made."));
    return output;
}

} // namespace tk

using namespace tk;

extern "C" Value *agt_get_rpc_input(Request *msg)
{
    return msg ? RequestFrame::of(msg).input : nullptr;
}

extern "C" void agt_rpc_add_return_val(Value *value, Request *msg)
{
    RequestFrame::of(msg).output.emplace_back(value);
}
