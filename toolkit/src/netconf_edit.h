// Edits as NETCONF writes them: data nodes that say by attributes what is asked of them.
#pragma once

#include "edit_tree.h"
#include "xml_schema.h"

#include <vector>

namespace tk {

class NetconfEdit {
public:
    // strict: what a client asked for. lenient: an edit that was carried out before and is applied to similar
    // data; what is asked of nodes that are not there is passed over, and what cannot be placed goes to the
    // end.
    enum class Manner { strict, lenient };

    // The children of the document's root are the top-level nodes. Throws Failure for what is wrong with the
    // document whatever it is applied to.
    NetconfEdit(const ly_ctx *context, const std::string &document, Ask defaultAsk, Manner manner);

    // Applies it, once. `root` is the tree that the editor edits.
    void apply(Editor &editor, lyd_node *root);

private:
    // A node of the document.
    struct Wish {
        const lysc_node *schema = nullptr;
        pugi::xml_node element;
        std::optional<Ask> ask;
        bool isBare = false; // a leaf that goes: its value is not looked at
        std::string path;    // of such a leaf
        std::optional<InsertWhere> place;
        std::vector<std::string> anchor; // keys or value of the instance that it is placed at
        std::vector<Wish> children;
        lyd_node *node = nullptr; // once it is parsed
    };
    using Wishes = std::vector<Wish>;

    void collect(const pugi::xml_node &parent, const lysc_node *schema, Wishes &wishes, Ask around);
    void takeAttributes(Wish &wish) const;
    void takeOperation(Wish &wish, const std::string &value) const;
    void takeDefault(Wish &wish, const std::string &value) const;
    void takePlacement(Wish &wish, const std::string &where, const pugi::xml_attribute &anchor) const;
    void reduceDeleted(Wish &wish);
    void checkKeys(const Wish &wish) const;
    static void checkNested(const Wish &wish, Ask around);
    void dropBare(pugi::xml_node parent, Wishes &wishes);
    void parse(const pugi::xml_node &root);
    Placement placementOf(const Wish &wish) const;
    void bind(Wishes &wishes, lyd_node *first, bool inside);
    void addBare(Wish &wish, lyd_node *parent, lyd_node *existing);
    void addBares(Wishes &wishes, lyd_node *parent, lyd_node *existingFirst);
    void leaveOutMissing(Wishes &wishes, lyd_node *existingFirst);
    void leaveOut(Wish &wish);
    static bool onlyRemoves(const Wish &wish);

    const ly_ctx *context_;
    const Manner manner_;
    pugi::xml_document document_;
    Wishes wishes_;
    bool hasBares_ = false;
    EditTree edit_;
};

// What an edit did, as a document that does the same: its size is that of the difference. `root` has the
// records of an edit that was applied and checked, and `tree` is what it made. An edit that replaced the
// whole datastore is described by the whole datastore.
std::string describeEdit(const ChangeNode &root, const lyd_node *tree);

// Applies such a document to data like those that it was made of.
void replayEdit(const ly_ctx *context, const std::string &description, Editor &editor, lyd_node *root);

} // namespace tk
