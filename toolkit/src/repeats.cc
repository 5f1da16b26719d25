#include "repeats.h"

#include "errors.h"
#include "schema.h"
#include "xml_schema.h"

#include <nlohmann/json.hpp>

#include <set>

namespace tk {

namespace {

// The walk through a document, front to back, whatever it is written in.
class Walk {
public:
    explicit Walk(const lysc_node *parent) { levels_.push_back({parent, {}, {}}); }

    const lysc_node *schema() const { return levels_.back().schema; }

    void open(const lysc_node *node)
    {
        levels_.push_back({node, {}, {}});
        if (node && node->nodetype == LYS_CONTAINER)
            note(levels_[levels_.size() - 2], node, {});
    }

    void close()
    {
        if (const lysc_node *node = schema(); node && node->nodetype == LYS_LIST && hasAllKeys())
            note(levels_[levels_.size() - 2], node, levels_.back().keys);
        levels_.pop_back();
    }

    void value(const lysc_node *node, const std::string &text)
    {
        if (!node || !(node->nodetype & (LYS_LEAF | LYS_LEAFLIST)))
            return;
        Level &level = levels_.back();
        if (node->nodetype == LYS_LEAFLIST)
            return note(level, node, {{node, canonical(node, text)}});
        if (isKey(node))
            level.keys.emplace(node, canonical(node, text));
        note(level, node, {});
    }

private:
    using Keys = std::map<const lysc_node *, std::string>;
    struct Level {
        const lysc_node *schema; // null: something unknown
        Keys keys;
        std::set<std::pair<const lysc_node *, Keys>> seen;
    };

    static std::string canonical(const lysc_node *node, const std::string &text)
    {
        return canonicalValue(node, text).value_or(text);
    }

    bool hasAllKeys() const
    {
        for (const lysc_node *key = lysc_node_child(schema()); key && isKey(key); key = key->next)
            if (!levels_.back().keys.count(key))
                return false;
        return !levels_.back().keys.empty();
    }

    void note(Level &level, const lysc_node *node, Keys keys)
    {
        if (!isConfigNode(node) && node->nodetype & (LYS_LIST | LYS_LEAFLIST))
            return;
        if (!level.seen.emplace(node, keys).second)
            throw badElement(pathBelow(level, node, keys), "The same node stands twice in the body.");
    }

    std::string pathBelow(const Level &level, const lysc_node *node, const Keys &keys) const
    {
        std::string path = schemaPath(levels_.front().schema);
        const lys_module *module = levels_.front().schema ? levels_.front().schema->module : nullptr;
        const auto add = [&](const lysc_node *step, const Keys &keysOfStep) {
            path += "/" + (step->module == module ? "" : std::string(step->module->name) + ":") + step->name;
            module = step->module;
            for (const auto &[key, value] : keysOfStep)
                path += keyPredicate(key == step ? "." : key->name, value);
        };
        for (std::size_t i = 1; &levels_[i - 1] != &level; ++i)
            add(levels_[i].schema, levels_[i].keys);
        add(node, keys);
        return path;
    }

    std::vector<Level> levels_; // the first holds the whole document
};

class JsonWalk : public nlohmann::json_sax<nlohmann::json> {
public:
    JsonWalk(const ly_ctx *context, const lysc_node *parent)
        : context_(context)
        , walk_(parent)
        , members_{nullptr}
    {
    }

    bool null() override { return value({}); }
    bool boolean(bool is) override { return value(is ? "true" : "false"); }
    bool number_integer(number_integer_t number) override { return value(std::to_string(number)); }
    bool number_unsigned(number_unsigned_t number) override { return value(std::to_string(number)); }
    bool number_float(number_float_t, const string_t &text) override { return value(text); }
    bool string(string_t &text) override { return value(text); }
    bool binary(binary_t &) override { return true; }
    bool start_object(std::size_t) override
    {
        // The first brace opens the document and no node.
        if (isOpen_)
            walk_.open(members_.back());
        isOpen_ = true;
        members_.push_back(nullptr);
        return true;
    }
    bool end_object() override
    {
        members_.pop_back();
        if (members_.size() > 1)
            walk_.close();
        return true;
    }
    bool key(string_t &name) override
    {
        members_.back() = find(name);
        return true;
    }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override
    {
        return false;
    }

private:
    bool value(const std::string &text)
    {
        walk_.value(members_.back(), text);
        return true;
    }

    const lysc_node *find(const std::string &name) const
    {
        const lysc_node *parent = walk_.schema();
        const std::string prefix(prefixOf(name)), local(localName(name));
        const lys_module *module = parent ? parent->module : nullptr;
        if (!prefix.empty())
            module = ly_ctx_get_module_implemented(context_, prefix.c_str());
        const bool isKnown = module && (parent || members_.size() == 2);
        return isKnown ? lys_find_child(parent, module, local.c_str(), 0, 0, 0) : nullptr;
    }

    const ly_ctx *context_;
    Walk walk_;
    std::vector<const lysc_node *> members_; // of each open object the member that is being read
    bool isOpen_ = false;
};

class XmlWalk {
public:
    XmlWalk(const ly_ctx *context, const lysc_node *parent)
        : context_(context)
        , walk_(parent)
    {
    }

    void children(const pugi::xml_node &element, const lysc_node *schema, bool isTop)
    {
        for (const pugi::xml_node child : element.children()) {
            if (child.type() != pugi::node_element)
                continue;
            const lysc_node *node = isTop || schema ? find(schema, child) : nullptr;
            if (node && isLeafKind(node)) {
                walk_.value(node, valueOf(node, child));
                continue;
            }
            walk_.open(node);
            children(child, node, false);
            walk_.close();
        }
    }

private:
    std::string valueOf(const lysc_node *node, const pugi::xml_node &element) const
    {
        const lysc_type *type = node->nodetype & (LYS_LEAF | LYS_LEAFLIST)
            ? reinterpret_cast<const lysc_node_leaf *>(node)->type
            : nullptr;
        const std::string text = element.child_value();
        return type && type->basetype == LY_TYPE_IDENT ? withModuleName(context_, element, text) : text;
    }

    const lysc_node *find(const lysc_node *parent, const pugi::xml_node &element) const
    {
        const lys_module *module = ly_ctx_get_module_implemented_ns(context_, namespaceOf(element).c_str());
        const std::string name(localName(element));
        return module ? lys_find_child(parent, module, name.c_str(), 0, 0, 0) : nullptr;
    }

    const ly_ctx *context_;
    Walk walk_;
};

} // namespace

void refuseRepeats(const ly_ctx *context, const std::string &text, Encoding encoding, const lysc_node *parent)
{
    if (encoding == Encoding::json) {
        JsonWalk walk(context, parent);
        nlohmann::json::sax_parse(text, &walk);
        return;
    }
    pugi::xml_document document;
    if (document.load_buffer(text.data(), text.size()))
        XmlWalk(context, parent).children(document, parent, true);
}

} // namespace tk
