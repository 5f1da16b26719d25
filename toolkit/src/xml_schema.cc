#include "xml_schema.h"

#include "errors.h"

namespace tk {

namespace {

constexpr unsigned kDataNodes = LYS_CONTAINER | LYS_LIST | LYS_LEAF | LYS_LEAFLIST | LYS_ANYDATA | LYS_ANYXML;

} // namespace

std::string trimmed(std::string_view text)
{
    static constexpr char blanks[] = " \t\r\n";
    const auto first = text.find_first_not_of(blanks);
    if (first == text.npos)
        return {};
    return std::string(text.substr(first, text.find_last_not_of(blanks) - first + 1));
}

std::string withModuleName(const ly_ctx *context, const pugi::xml_node &element, const std::string &text)
{
    const std::string_view prefix = prefixOf(text);
    const auto nameSpace = prefix.empty() ? std::nullopt : namespaceOf(element, prefix);
    const lys_module *module =
        nameSpace ? ly_ctx_get_module_implemented_ns(context, nameSpace->c_str()) : nullptr;
    return module ? std::string(module->name) + ":" + std::string(localName(text)) : text;
}

std::optional<std::string> canonicalValue(const lysc_node *node, const std::string &value)
{
    const ly_ctx *context = node->module->ctx;
    const char *text = nullptr;
    const LY_ERR result =
        lyd_value_validate(context, node, value.c_str(), value.size(), nullptr, nullptr, &text);
    std::optional<std::string> canonical;
    if (!result || result == LY_EINCOMPLETE)
        canonical = text ? text : value;
    lydict_remove(context, text);
    clearErrors(context);
    return canonical;
}

std::string keyPredicate(const std::string &name, const std::string &value)
{
    const char quote = value.find('\'') == value.npos ? '\'' : '"';
    return "[" + name + "=" + quote + value + quote + "]";
}

const lysc_node *schemaOf(const ly_ctx *context, const lysc_node *parent, const pugi::xml_node &element,
                          const std::function<std::string()> &parentPath)
{
    const std::string name(localName(element.name()));
    const std::string nameSpace = namespaceOf(element);
    const lys_module *module = ly_ctx_get_module_implemented_ns(context, nameSpace.c_str());
    if (!module)
        throw unknownNamespace(parentPath(), name, nameSpace);
    const lysc_node *node = lys_find_child(parent, module, name.c_str(), 0, kDataNodes, 0);
    if (!node) {
        Failure failure = unknownElement(
            parentPath(), "\"" + name + "\" is no node of module \"" + module->name + "\" here.");
        failure.errors.front().badElement = name;
        throw failure;
    }
    return node;
}

} // namespace tk
