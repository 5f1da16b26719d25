#include "body.h"

#include "errors.h"
#include "repeats.h"

#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <cstring>
#include <map>
#include <sstream>

namespace tk {

namespace {

class JsonEnvelope {
public:
    explicit JsonEnvelope(const std::string &text)
        : text_(text)
    {
    }

    std::string open(const std::string &name)
    {
        expect('{');
        const std::string member = string();
        expect(':');
        const auto colon = member.find(':');
        if ((colon == member.npos ? member : member.substr(colon + 1)) != name)
            throw unknownElement({},
                                 "The document's member must be \"" + name + "\", not \"" + member + "\".");
        const auto last = text_.find_last_not_of(" \t\r\n");
        if (last == text_.npos || text_[last] != '}' || last <= at_)
            throw malformed("The JSON document does not end with '}'.");
        return text_.substr(at_, last - at_);
    }

private:
    void skipBlanks()
    {
        at_ = text_.find_first_not_of(" \t\r\n", at_);
        if (at_ == text_.npos)
            throw malformed("The JSON document ends early.");
    }

    void expect(char wanted)
    {
        skipBlanks();
        if (text_[at_] != wanted)
            throw malformed(std::string("'") + wanted + "' expected in the JSON document, not '" +
                            text_[at_] + "'.");
        ++at_;
    }

    std::string string()
    {
        expect('"');
        const auto end = text_.find('"', at_);
        if (end == text_.npos)
            throw malformed("The JSON document has an unterminated string.");
        const std::string value = text_.substr(at_, end - at_);
        at_ = end + 1;
        return value;
    }

    const std::string &text_;
    std::size_t at_ = 0;
};

std::string unwrapXml(const std::string &body, const std::string &name)
{
    pugi::xml_document document;
    const auto result =
        document.load_buffer(body.data(), body.size(), pugi::parse_default | pugi::parse_ws_pcdata);
    if (!result)
        throw malformed(std::string("The XML document is malformed: ") + result.description() + ".");
    const pugi::xml_node root = document.document_element();
    const char *colon = std::strchr(root.name(), ':');
    if (name != (colon ? colon + 1 : root.name()))
        throw unknownElement({}, "The document's element must be <" + name + ">, not <" + root.name() + ">.");
    std::ostringstream inner;
    for (pugi::xml_node child : root.children()) {
        // Namespaces declared on the envelope go along.
        for (const pugi::xml_attribute attribute : root.attributes())
            if (child.type() == pugi::node_element && std::strncmp(attribute.name(), "xmlns", 5) == 0 &&
                !child.attribute(attribute.name()))
                child.append_copy(attribute);
        child.print(inner, "", pugi::format_raw);
    }
    return inner.str();
}

bool isBlank(const std::string &text)
{
    return text.find_first_not_of(" \t\r\n") == text.npos;
}

} // namespace

std::string unwrap(const std::string &body, Encoding encoding, const std::string &name)
{
    return encoding == Encoding::json ? JsonEnvelope(body).open(name) : unwrapXml(body, name);
}

namespace {

// The case that holds data, of each choice among siblings.
using Cases = std::map<const lysc_node *, const lysc_node *>;

void checkCases(const lyd_node *node, Cases &cases)
{
    const lysc_node *below = node->schema;
    for (const lysc_node *up = below->parent; up && (up->nodetype & (LYS_CHOICE | LYS_CASE));
         below = up, up = up->parent)
        if (up->nodetype == LYS_CHOICE && cases.emplace(up, below).first->second != below)
            throw badElement(instancePath(node), "Only one case of a choice can hold data.");
}

// What libyang lets pass when it only parses: the same node twice, two cases of one choice.
void checkShape(const lyd_node *firstSibling)
{
    Cases cases;
    for (const lyd_node *node = firstSibling; node; node = node->next) {
        if (!node->schema)
            throw malformed("The body holds something that is no data.");
        lyd_node *first = nullptr;
        const bool many = node->schema->nodetype & (LYS_LIST | LYS_LEAFLIST);
        if (many && !(node->schema->flags & LYS_KEYLESS))
            lyd_find_sibling_first(firstSibling, node, &first);
        else if (!many && node->next && node->next->schema == node->schema)
            first = node->next;
        if (first && first != node && isConfigNode(node->schema))
            throw badElement(instancePath(node), "The same node stands twice in the body.");
        checkCases(node, cases);
        checkShape(lyd_child(node));
    }
}

// Finds what must not reach libyang's parser: it makes nodes without a schema of metadata that belong to
// nothing, and does not survive a mistake behind them.
class JsonScan : public nlohmann::json_sax<nlohmann::json> {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t &name) override
    {
        if (!name.empty() && name.front() == '@')
            attribute = name;
        return attribute.empty();
    }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override
    {
        return false;
    }

    std::string attribute; // the first metadata member
};

void scanJson(const std::string &text)
{
    JsonScan scan;
    if (nlohmann::json::sax_parse(text, &scan))
        return;
    if (scan.attribute.empty())
        throw malformed("The body is not well-formed JSON.");
    throw unknownAttribute("", scan.attribute.substr(1), scan.attribute);
}

// Copies in a text of this size cost libyang no more than milliseconds.
constexpr std::size_t kSmallBody = 32 * 1024;

} // namespace

void scanBody(const ly_ctx *context, const std::string &text, Encoding encoding, const lysc_node *parent)
{
    if (encoding == Encoding::json)
        scanJson(text);
    if (text.size() > kSmallBody)
        refuseRepeats(context, text, encoding, parent);
}

namespace {

void parse(const ly_ctx *context, const std::string &text, Encoding encoding, std::uint32_t options,
           lyd_node *parent, Tree &tree)
{
    scanBody(context, text, encoding, parent ? parent->schema : nullptr);
    ly_in *in = nullptr;
    if (ly_in_new_memory(text.c_str(), &in))
        throw malformed("The body cannot be read.");
    clearErrors(context);
    lyd_node *parsed = nullptr;
    const LYD_FORMAT format = encoding == Encoding::json ? LYD_JSON : LYD_XML;
    const LY_ERR result =
        lyd_parse_data(context, parent, in, format, LYD_PARSE_ONLY | LYD_PARSE_STRICT | options, 0,
                       parent ? nullptr : &parsed);
    ly_in_free(in, 0);
    if (!parent)
        tree.reset(parsed);
    if (result)
        throw Failure(takeErrors(context, "The body cannot be read."));
    checkShape(parent ? lyd_child(parent) : parsed);
}

// Nothing that could be taken for an order is passed over in silence.
void refuseMetadata(const lyd_node *top)
{
    const lyd_node *node = nullptr;
    for (; top; top = top->next) {
        LYD_TREE_DFS_BEGIN(top, node)
        {
            if (node->meta)
                throw unknownAttribute(instancePath(node), node->schema->name, node->meta->name);
            LYD_TREE_DFS_END(top, node);
        }
    }
}

} // namespace

void parseConfig(const ly_ctx *context, const std::string &text, Encoding encoding, lyd_node *parent,
                 Tree &tree)
{
    if (isBlank(text))
        throw malformed("The request needs a body.");
    parse(context, text, encoding, LYD_PARSE_NO_STATE, parent, tree);
    refuseMetadata(parent ? parent : tree.get());
}

void parseData(const ly_ctx *context, const std::string &text, Encoding encoding, lyd_node *parent,
               Tree &tree)
{
    parse(context, text, encoding, 0, parent, tree);
}

} // namespace tk
