#include "errors.h"
#include "host_impl.h"

namespace tk {

namespace {

// The nodes that parsing added below a parent: everything but its keys.
lyd_node *onlyNewChild(lyd_node *parent)
{
    lyd_node *found = nullptr;
    for (lyd_node *child = lyd_child(parent); child; child = child->next) {
        if (isKey(child->schema))
            continue;
        if (found)
            throw malformed("The body must hold exactly one resource.");
        found = child;
    }
    if (!found)
        throw malformed("The body must hold exactly one resource.");
    return found;
}

PathStep stepOf(const lyd_node *node)
{
    PathStep step{node->schema->module->name, node->schema->name, {}, false};
    if (node->schema->nodetype == LYS_LEAFLIST)
        step.keys.emplace_back(lyd_get_value(node));
    for (const lyd_node *key = lyd_child(node); key && isKey(key->schema); key = key->next)
        step.keys.emplace_back(lyd_get_value(key));
    step.hasKeys = !step.keys.empty();
    return step;
}

void requireWritable(const Target::Node &target)
{
    if (!target.config)
        throw notSupported(target.path, "Only configuration can be edited.");
    if (target.kind == NodeKind::list || target.kind == NodeKind::leafList)
        throw missingElement(target.path, "The path must name one entry by its keys.");
}

} // namespace

RestEdit::RestEdit(const ly_ctx *context, const EditRequest &request)
    : context_(context)
    , request_(request)
    , target_(request.target.node())
{
    requireWritable(target_);
    if (request.method == Method::remove)
        return;
    if (request.method == Method::post)
        parseChild();
    else if (target_.steps.empty())
        parseWhole();
    else
        parseTarget();
}

void RestEdit::parseWhole()
{
    edit_.rootAsk = request_.method == Method::put ? Ask::replace : Ask::merge;
    const std::string inner = unwrap(request_.body, request_.encoding, "data");
    if (inner.find_first_not_of(" \t\r\n{}") != inner.npos)
        parseConfig(context_, inner, request_.encoding, nullptr, edit_.tree);
}

void RestEdit::parseTarget()
{
    lyd_node *parent = nullptr;
    edit_.tree = buildSteps(target_, target_.steps.size() - 1, &parent);
    parseConfig(context_, request_.body, request_.encoding, parent, edit_.tree);
    lyd_node *first = parent ? lyd_child(parent) : edit_.tree.get();
    if (!parent && (!first || first->next))
        throw malformed("The body must hold exactly one resource.");
    node_ = parent ? onlyNewChild(parent) : first;
    if (node_->schema != target_.schema())
        throw badElement(target_.path,
                         std::string("The body holds \"") + node_->schema->name + "\", the path names \"" +
                             target_.schema()->name + "\".");
    if (!findStep(std::vector<lyd_node *>{node_}, target_.steps.back()))
        throw invalidValue(target_.path, "The keys in the body differ from those in the path.");
    edit_.asks[node_] = request_.method == Method::put ? Ask::replace : Ask::merge;
}

void RestEdit::parseChild()
{
    if (!target_.steps.empty() && isLeafKind(target_.schema()))
        throw notSupported(target_.path, "Nothing can be created below a leaf.");
    lyd_node *parent = nullptr;
    edit_.tree = buildSteps(target_, target_.steps.size(), &parent);
    parseConfig(context_, request_.body, request_.encoding, parent, edit_.tree);
    if (!parent && (!edit_.tree || edit_.tree->next))
        throw malformed("The body must hold exactly one resource.");
    node_ = parent ? onlyNewChild(parent) : edit_.tree.get();
    edit_.asks[node_] = Ask::create;
    createdSteps_ = request_.target.steps();
    createdSteps_.push_back(stepOf(node_));
}

void RestEdit::place(const lyd_node *node, lyd_node *root)
{
    if (!request_.insert)
        return;
    if (!isUserOrdered(node->schema))
        throw badElement(target_.path, "Only entries that the user orders can be placed.");
    Placement placement{request_.insert->where, nullptr};
    if (request_.insert->point) {
        const Target::Node &point = request_.insert->point->node();
        placement.point = point.schema() == node->schema ? findTarget(root, point) : nullptr;
        if (!placement.point)
            throw Failure(Error{kOk, "bad-attribute", "missing-instance", point.path,
                                "The point is no instance of the same list."});
    }
    edit_.placements[node] = placement;
}

void RestEdit::apply(Editor &editor, lyd_node *root)
{
    if (request_.precondition)
        request_.precondition();
    const bool whole = target_.steps.empty();
    lyd_node *existing = whole ? root : findTarget(root, target_);
    if (request_.method == Method::remove) {
        if (whole)
            throw notSupported("/", "The datastore cannot be deleted.");
        if (!holdsAnything(existing))
            throw dataMissing(target_.path, "There is no such data.");
        return editor.removeExisting(existing, Ask::del);
    }
    const bool always = whole || isPlainContainer(target_.schema());
    if (request_.method == Method::patch && !existing && !always)
        throw dataMissing(target_.path, "There is no such data.");
    created_ = request_.method == Method::post || (!existing && !always);
    if (node_)
        place(node_, root);
    editor.apply(edit_);
}

std::optional<Target> RestEdit::resource(const Context &context) const
{
    if (createdSteps_.empty())
        return std::nullopt;
    return resolveTarget(context, createdSteps_);
}

} // namespace tk
