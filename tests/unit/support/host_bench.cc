#include "tests/unit/support/host_bench.h"

#include "toolkit/src/plan.h"

#include <algorithm>
#include <sstream>

namespace test {

using namespace tk;

std::ostream &operator<<(std::ostream &out, const Refusal &refusal)
{
    return out << refusal.status << " " << refusal.tag << " at " << refusal.path << ": " << refusal.message;
}

namespace {

std::string decode(const std::string &text)
{
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            plain += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        parts.push_back(part);
    return parts;
}

std::string withoutBlanks(const std::string &json)
{
    std::string text;
    bool quoted = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        quoted ^= json[i] == '"' && (i == 0 || json[i - 1] != '\\');
        if (quoted || !std::isspace(static_cast<unsigned char>(json[i])))
            text += json[i];
    }
    return text;
}

Outcome outcomeOf(const Failure &failure)
{
    Outcome outcome;
    for (const Error &error : failure.errors)
        outcome.refusals.push_back({error.status, error.tag, error.path, error.message});
    return outcome;
}

} // namespace

std::vector<PathStep> pathSteps(const std::string &path)
{
    std::vector<PathStep> steps;
    for (const std::string &segment : split(path, '/')) {
        PathStep step;
        const auto equals = segment.find('=');
        std::string name = segment.substr(0, equals);
        if (equals != segment.npos) {
            step.hasKeys = true;
            for (const std::string &key : split(segment.substr(equals + 1), ','))
                step.keys.push_back(decode(key));
        }
        const auto colon = name.find(':');
        step.module = colon == name.npos ? "" : name.substr(0, colon);
        step.name = colon == name.npos ? name : name.substr(colon + 1);
        steps.push_back(std::move(step));
    }
    return steps;
}

std::string member(const std::string &path, const std::string &value)
{
    const std::string last = path.substr(path.rfind('/') + 1);
    const std::string name = last.substr(0, last.find('='));
    const bool qualified = name.find(':') != name.npos;
    return "{\"" + (qualified ? name : path.substr(0, path.find(':') + 1) + name) + "\":" + value + "}";
}

HostBench::HostBench(std::vector<std::string> moreModuleDirs)
{
    const std::string yang = YANG_DIR;
    std::vector<std::string> dirs{yang + "/lyn", yang + "/openconfig", yang + "/ietf", TEST_YANG_DIR};
    dirs.insert(dirs.end(), moreModuleDirs.begin(), moreModuleDirs.end());
    host_ = std::make_unique<Host>(HostOptions{dirs, 0});
}

Target HostBench::target(const std::string &path) const
{
    return host_->resolve(pathSteps(path));
}

Outcome HostBench::edit(Method method, const std::string &path, const std::string &body,
                        std::optional<Insert> insert)
{
    try {
        const EditOutcome done = host_->edit({method, target(path), body, Encoding::json, insert, {}});
        return {{}, done.created, done.changed};
    } catch (const Failure &failure) {
        return outcomeOf(failure);
    }
}

std::string HostBench::read(const std::string &path, Content content)
{
    const auto text = host_->read({target(path), content, 0, {}, WithDefaults::explicitOnly, Encoding::json});
    return text ? withoutBlanks(*text) : "";
}

namespace {

// The change node of the schema that lies deepest on the one way down, made if nothing differs.
ChangeNode &changeFor(ChangeNode &root, const Target::Node &target, lyd_node *tree)
{
    ChangeNode *at = &root;
    lyd_node *siblings = tree;
    for (const auto &step : target.steps) {
        lyd_node *node = findStep(siblings, step);
        siblings = node ? lyd_child(node) : nullptr;
        const auto found = std::find_if(at->children.begin(), at->children.end(),
                                        [&](const auto &child) { return child->schema == step.schema; });
        at = found != at->children.end() ? found->get() : &at->add(step.schema, node, node, Ask::none, false);
    }
    return *at;
}

} // namespace

Callback HostBench::call(EditPhase phase, EditOp op, const std::string &path,
                         const std::optional<std::string> &before, const std::optional<std::string> &after)
{
    const Target where = target(path);
    const Target::Node &node = where.node();
    const ly_ctx *context = host_->impl().context.ly();
    const lysc_node *schema = node.schema();
    const auto member = [&](const std::string &value) {
        const bool list = schema->nodetype == LYS_LIST;
        return std::string("{\"") + schema->module->name + ":" + schema->name + "\":" + (list ? "[" : "") +
            value + (list ? "]" : "") + "}";
    };
    const auto build = [&](const std::optional<std::string> &value) {
        lyd_node *parent = nullptr;
        Tree tree = buildSteps(node, node.steps.size() - 1, &parent);
        if (value)
            parseConfig(context, member(*value), Encoding::json, parent, tree);
        return tree;
    };
    Tree old = build(before);
    EditTree edit;
    edit.tree = build(after);
    if (lyd_node *wanted = findTarget(edit.tree.get(), node))
        edit.asks[wanted] = Ask::replace;

    lyd_node *root = old.release();
    Callback result;
    {
        Changes changes(&root);
        ChangeNode top;
        Editor editor(changes, top);
        if (after)
            editor.apply(edit);
        else if (lyd_node *existing = findTarget(root, node))
            editor.removeExisting(existing, Ask::del);
        const auto told = tellOne(changeFor(top, node, root), changes, op);
        RequestFrame frame;
        frame.transaction.told = told.get();
        result.status = told->info->edit(&frame.session, &frame.request, phase, op, told->newval.get(),
                                         told->currentIn(phase));
        result.records = frame.header.records;
    }
    lyd_free_all(root);
    return result;
}

} // namespace test
