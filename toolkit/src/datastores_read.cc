// Answering get and get-config.
#include "datastores_impl.h"
#include "errors.h"

#include <algorithm>

namespace tk {

namespace {

bool addsDefaults(WithDefaults mode)
{
    return mode == WithDefaults::reportAll || mode == WithDefaults::reportAllTagged;
}

// Marked are the values that nobody set (RFC 6243, section 3.4, for a server whose own way is explicit).
std::uint32_t optionsOf(WithDefaults mode)
{
    const std::uint32_t values = mode == WithDefaults::reportAllTagged ? LYD_PRINT_WD_IMPL_TAG
        : mode == WithDefaults::reportAll                              ? LYD_PRINT_WD_ALL
                                                                       : LYD_PRINT_WD_EXPLICIT;
    return values | LYD_PRINT_WITHSIBLINGS | LYD_PRINT_SHRINK;
}

// libyang marks defaults by an attribute in the namespace of the YANG module, the standard has one of its
// own.
std::string withStandardMarks(const std::string &text)
{
    const std::string module = kDefaultsModuleNamespace, mark = " xmlns:ncwd=\"" + module + "\"";
    std::string result;
    std::size_t at = 0;
    for (auto found = text.find(mark); found != text.npos; found = text.find(mark, at)) {
        // Only inside a tag: elsewhere it would be somebody's data.
        const auto before = text.find_last_of("<>", found);
        const bool isTag = before != text.npos && text[before] == '<';
        result.append(text, at, found - at);
        result += isTag ? std::string(" xmlns:ncwd=\"") + kDefaultsNamespace + "\"" : mark;
        at = found + mark.size();
    }
    return result.append(text, at);
}

std::string print(const lyd_node *root, WithDefaults mode)
{
    if (!root)
        return {};
    const std::string text = printNodes(root, Encoding::xml, optionsOf(mode));
    return mode == WithDefaults::reportAllTagged ? withStandardMarks(text) : text;
}

// Takes out the containers that hold nothing, and on request the leaves whose value is the default, set or
// not.
void dropIdle(lyd_node **root, bool dropsDefaults)
{
    for (lyd_node *node = *root, *next = nullptr; node; node = next) {
        next = node->next;
        lyd_node *first = lyd_child(node);
        dropIdle(&first, dropsDefaults);
        const bool isLeaf = (node->schema->nodetype & LYD_NODE_TERM) && !isKey(node->schema);
        const bool goes = isLeaf ? dropsDefaults && lyd_is_default(node)
                                 : isPlainContainer(node->schema) && !lyd_child(node);
        if (!goes)
            continue;
        if (*root == node)
            *root = next;
        lyd_free_tree(node);
    }
}

} // namespace

std::string Datastores::Impl::read(const GetRequest &request)
{
    const auto filter = makeFilter(host_.context, request.filter);
    const bool isPlain = !filter && !request.withState && request.withDefaults == WithDefaults::explicitOnly;
    if (isPlain && request.source == Datastore::running) {
        // The common case needs no copy, unless an edit is on its way.
        const auto reading = host_.engine.read();
        if (!reading.before)
            return reading.root ? printNodes(reading.root, Encoding::xml, optionsOf(request.withDefaults))
                                : "";
    }
    return readTree(request, filter.get());
}

std::string Datastores::Impl::readTree(const GetRequest &request, const DataFilter *filter)
{
    const auto pieces = filter ? filter->pieces() : std::vector<Piece>{{wholeDatastore(host_.context), {}}};
    if (pieces.empty())
        return {};
    Answer answer;
    collect(request, pieces, answer);
    // Before the defaults are added: libyang takes containers without explicit data for complete.
    dropIdle(&answer.root, request.withDefaults == WithDefaults::trim);
    if (addsDefaults(request.withDefaults)) {
        lyd_new_implicit_all(&answer.root, context(), LYD_IMPLICIT_NO_STATE, nullptr);
        dropIdle(&answer.root, false);
    }
    if (filter)
        keepSelected(&answer.root, filter->select(answer.root));
    return print(answer.root, request.withDefaults);
}

void Datastores::Impl::collect(const GetRequest &request, const std::vector<Piece> &pieces, Answer &answer)
{
    const auto turn = request.withState ? host_.engine.takeTurn() : std::unique_lock<std::mutex>();
    const auto copyPieces = [&](const Engine::Reading &reading) {
        // A default can depend on data that the filter leaves out.
        if (addsDefaults(request.withDefaults))
            return Host::Impl::copyConfig(reading, wholeDatastore(host_.context).node(), {}, kUnlimited,
                                          answer);
        for (const Piece &piece : pieces)
            Host::Impl::copyConfig(reading, piece.target.node(), piece.selection, kUnlimited, answer);
    };
    if (request.source == Datastore::startup) {
        const Tree tree = startupTree();
        copyPieces({{}, tree.get(), nullptr});
    } else {
        const std::shared_lock lock(candidateLock_);
        const bool isOwn = request.source == Datastore::candidate && candidate_.differs;
        copyPieces(isOwn ? Engine::Reading{{}, candidate_.tree, nullptr} : host_.engine.read());
    }
    if (request.withState)
        for (const Piece &piece : pieces)
            host_.addState(piece.target.node(), piece.selection, answer);
}

} // namespace tk
