#include "backend/proto/plugin.pb-c.h"
#include "switchsim/family.h"

#include "backend/field_kind.h"

#include <algorithm>
#include <map>

namespace switchsim {
namespace {

std::string textOf(const char *text)
{
    return text == nullptr ? "" : text;
}

// One line of a plug-in's configuration, as the command line would show it.
struct Line {
    std::string key;
    std::string value;
    std::vector<std::pair<std::string, std::string>> sub;

    bool isFor(const PluginEntry &entry) const
    {
        return key == textOf(entry.key) && value == textOf(entry.value);
    }
};

Json asJson(const Line &line)
{
    Json json = {{"key", line.key}, {"value", line.value}};
    for (const auto &[key, value] : line.sub)
        json["sub"][key] = backend::isSecretKey(key) ? "<" + std::to_string(value.size()) + " bytes>" : value;
    return json;
}

// Keys of which the switch has one line: a new value takes the place of the old one.
constexpr std::pair<std::string_view, std::string_view> kSingle[] = {
    {"AAA", "authentication-method"},
    {"AAA", "authorization-method"},
    {"TACACS", "tacacs-server retransmit"},
};

bool isSingle(std::string_view plugin, std::string_view key)
{
    return std::find(std::begin(kSingle), std::end(kSingle), std::pair(plugin, key)) != std::end(kSingle);
}

// A user has a password, clear or hashed.
bool lacksPassword(std::string_view plugin, const Line &line)
{
    const auto isPassword = [](const auto &sub) {
        return (sub.first == "password" || sub.first == "1") && !sub.second.empty();
    };
    return plugin == "USERDB" && line.key == "username" &&
        std::none_of(line.sub.begin(), line.sub.end(), isPassword);
}

constexpr std::size_t kMostLines = 4096; // of a plug-in
constexpr std::size_t kMostPlugins = 64;

// Keeps what every plug-in was told; a plug-in is there as soon as somebody speaks to it.
class Plugins : public Family {
public:
    std::string_view word() const override { return "plugins"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<PluginConfig, PluginProcessResponse>(
            "ui_fe_plugin_config_send", plugin_config__descriptor, plugin_process_response__descriptor,
            [this](const auto &request, auto &answer, auto &answering) {
                config(request, answer, answering);
            });
    }

    Json show() const override
    {
        Json all = Json::object();
        for (const auto &[plugin, lines] : lines_) {
            Json &shown = all[plugin] = Json::array();
            for (const Line &line : lines)
                shown.push_back(asJson(line));
        }
        return all;
    }

private:
    void config(const PluginConfig &request, PluginProcessResponse &answer, Answering &answering)
    {
        const std::string plugin = textOf(request.plugin);
        for (std::size_t i = 0; i < request.n_entries; i++) {
            const PluginEntry &entry = *request.entries[i];
            if (const auto op = textOf(entry.op); op == "SET")
                set(plugin, entry, answering);
            else if (op == "DELETE")
                remove(plugin, entry);
            else if (op == "GET_NEXT")
                next(plugin, entry, answer, answering);
            else
                answering.refuse("Error: unknown operation " + op + "\n");
        }
    }

    void set(const std::string &plugin, const PluginEntry &entry, Answering &answering)
    {
        Line line{textOf(entry.key), textOf(entry.value), {}};
        for (std::size_t i = 0; i < entry.n_sub; i++)
            line.sub.emplace_back(textOf(entry.sub[i]->key), textOf(entry.sub[i]->value));
        if (lacksPassword(plugin, line))
            return answering.refuse("Error: user " + line.value + " needs a password\n");
        auto &lines = lines_[plugin];
        const auto same = std::find_if(lines.begin(), lines.end(), [&](const Line &old) {
            return old.isFor(entry) || (old.key == line.key && isSingle(plugin, line.key));
        });
        if (same != lines.end())
            *same = std::move(line);
        else if (lines.size() < kMostLines && lines_.size() <= kMostPlugins)
            lines.push_back(std::move(line));
        else
            answering.refuse("Error: the table is full\n");
    }

    // Without a value, all lines of the key go.
    void remove(const std::string &plugin, const PluginEntry &entry)
    {
        if (const auto known = lines_.find(plugin); known != lines_.end()) {
            std::erase_if(known->second, [&](const Line &line) {
                return textOf(entry.value).empty() ? line.key == textOf(entry.key) : line.isFor(entry);
            });
        }
    }

    // The line of the key behind the one with the given value, or the first one for an empty value.
    void next(const std::string &plugin, const PluginEntry &entry, PluginProcessResponse &answer,
              Answering &answering) const
    {
        const auto known = lines_.find(plugin);
        if (known == lines_.end())
            return;
        const auto &lines = known->second;
        const auto isOfKey = [&](const Line &line) { return line.key == textOf(entry.key); };
        auto from = lines.begin();
        if (!textOf(entry.value).empty()) {
            from =
                std::find_if(lines.begin(), lines.end(), [&](const Line &line) { return line.isFor(entry); });
            from += from == lines.end() ? 0 : 1;
        }
        const auto found = std::find_if(from, lines.end(), isOfKey);
        if (found == lines.end())
            return;
        auto *line = answering.make(plugin_entry__init);
        line->key = answering.keep(found->key);
        line->value = answering.keep(found->value);
        answer.n_entries = 1;
        answer.entries = answering.makeList<PluginEntry>({line});
    }

    std::map<std::string, std::vector<Line>> lines_; // by plug-in
};

} // namespace

std::unique_ptr<Family> makePlugins(Device &)
{
    return std::make_unique<Plugins>();
}

} // namespace switchsim
