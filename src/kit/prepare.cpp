#include "measure.h"
#include "scratch_file.h"
#include "string_stream.h"
#include "text_reader.h"
#include "tree_place.h"
#include <algorithm>
#include <fmt/format.h>
#include <pm/code_page.h>
#include <pm/error_number.h>
#include <pm/exception.h>
#include <pm/inspect.h>
#include <pm/kit/encoding.h>
#include <pm/kit/error.h>
#include <pm/kit/loss.h>
#include <pm/kit/stored.h>
#include <sstream>
#include <unordered_map>

namespace pm::kit {

namespace {

constexpr unsigned utf8_code_page = 65001;

const Section* section_of(const WriteOptions& options, std::string_view node) {
    const auto found = std::ranges::find(options.sections, node, &Section::node);
    return found != options.sections.end() ? &*found : nullptr;
}

// ---- bytes of a tree

// The tree that a save of DPIA takes: of each section \NAME\info and \NAME\data.
Tree with_data_nodes(const Node& top, const WriteOptions& options) {
    Tree shaped;
    const TreeBuilder builder(shaped.object());
    for (const Node node : top.children()) {
        const PM_Node& section = builder.child(builder.root(), node.name16());
        const Section* const told = section_of(options, node.name());
        put_stored(builder, section, u"info",
                   make_stored(Value(told != nullptr ? told->info : std::string())));
        copy_node(node, builder, builder.child(section, u"data"));
    }
    return shaped;
}

std::string saved_to_stream(const Tree& tree, const SaveOptions& options) {
    std::stringstream stream;
    tree.save(stream, options);
    require_memory(stream);
    return std::move(stream).str();
}

// Gives what a tree is saved as.
class Saver {
public:
    explicit Saver(const WriteOptions& options) : m_options(options) {}

    std::string bytes(const Tree& tree, const std::string& subtree) {
        const SaveOptions save{m_options.type, m_options.tag, subtree, m_options.utf8};
        if (m_options.type == PM_Object::FILE_DOC) return saved_to_file(tree, save);
        if (m_options.type == PM_Object::FILE_PIA) return saved_to_stream(tree, save);
        const SaveOptions whole{m_options.type, m_options.tag};
        return saved_to_stream(with_data_nodes(*tree.node(subtree), m_options), whole);
    }

private:
    // One file for all saves: that the disk forgets one costs more than the save.
    std::string saved_to_file(const Tree& tree, const SaveOptions& options) {
        if (!m_file) m_file.emplace();
        tree.save(m_file->name(), options);
        return m_file->content();
    }

    const WriteOptions& m_options;
    std::optional<ScratchFile> m_file;
};

// ---- what can't be written at all

// Something of a tree that may be left out: a property, or a node in which there is nothing.
struct Item {
    Node node;
    std::optional<Property> property;
};

std::vector<Item> items_of(const Node& top) {
    std::vector<Item> items;
    for (const auto& [node, depth] : top.walk()) {
        for (const Property property : node.properties()) {
            items.push_back({node, property});
        }
        const bool empty = node.properties().empty() && node.children().empty();
        if (empty && depth > 0) items.push_back({node, std::nullopt});
    }
    return items;
}

// Finds the items that keep a tree from being written, by halves, and writes the others.
class Salvage {
public:
    Salvage(const Node& top, PM_Object::FileType type, Saver& saver)
        : m_top(top), m_type(type), m_saver(saver), m_items(items_of(top)) {}

    std::string run(std::vector<Loss>& losses) {
        // What fails for nothing, fails for another reason than the tree.
        static_cast<void>(m_saver.bytes(Tree(), "\\"));
        sift(0, m_items.size(), losses);
        return m_saver.bytes(tree_of(m_left), "\\");
    }

private:
    void sift(std::size_t begin, std::size_t end, std::vector<Loss>& losses) {
        const std::vector<Item> items(m_items.begin() + static_cast<std::ptrdiff_t>(begin),
                                      m_items.begin() + static_cast<std::ptrdiff_t>(end));
        try {
            static_cast<void>(m_saver.bytes(tree_of(items), "\\"));
            m_left.insert(m_left.end(), items.begin(), items.end());
        } catch (const PM_Memory_Exception&) {
            throw;
        } catch (const ZT_Exception& e) {
            if (items.size() == 1) {
                losses.push_back(loss_of(items.front(), e));
                return;
            }
            sift(begin, begin + items.size() / 2, losses);
            sift(begin + items.size() / 2, end, losses);
        }
    }

    [[nodiscard]] Tree tree_of(const std::vector<Item>& items) const {
        Tree tree;
        const TreeBuilder builder(tree.object());
        std::unordered_map<const PM_Node*, const PM_Node*> made{{m_top.handle(), &builder.root()}};
        for (const Item& item : items) {
            const PM_Node& node = made_node(builder, item.node, made);
            if (!item.property) continue;
            const PM_Property_View view = item.property->view();
            builder.put(node, view.name, {view.type, view.strict, view.data, view.size});
        }
        return tree;
    }

    static const PM_Node& made_node(const TreeBuilder& builder, const Node& node,
                                    std::unordered_map<const PM_Node*, const PM_Node*>& made) {
        if (const auto found = made.find(node.handle()); found != made.end()) return *found->second;
        const PM_Node& copy = builder.child(made_node(builder, *node.parent(), made), node.name16());
        made.emplace(node.handle(), &copy);
        return copy;
    }

    [[nodiscard]] Loss loss_of(const Item& item, const ZT_Exception& e) const {
        Loss loss;
        std::string top = m_top.path();
        if (top == "\\") top.clear();
        const std::string path = item.node.is_root() ? std::string() : item.node.path();
        loss.path = fmt::format("{}\\", path.substr(std::min(top.size(), path.size())));
        if (item.property) {
            loss.path += item.property->name();
            loss.before = stored(*item.property);
        }
        loss.reason = fmt::format("it can't be written to a {} file: {} ({})", format_name(m_type),
                                  error_text(e.m_number), e.m_number);
        return loss;
    }

    Node m_top;
    PM_Object::FileType m_type;
    Saver& m_saver;
    std::vector<Item> m_items;
    std::vector<Item> m_left;
};

// ---- reading back

struct Back {
    FileContent content;
    unsigned code_page = 0; // 0: the one that is set
    bool guessed = false;
    std::string failure; // what ended it before anything could be read
};

Back read_as(unsigned code_page, const std::string& bytes, const WriteOptions& options) {
    Back back;
    back.code_page = code_page;
    const Input input{.file = "what would be written",
                      .type = options.type,
                      .section = {},
                      .code_page = code_page,
                      .on_report = {},
                      .keep_going = true};
    try {
        read_content_into(back.content, bytes, input);
    } catch (const PM_Memory_Exception&) {
        throw;
    } catch (const ZT_Exception& e) {
        back.failure = fmt::format("{} ({})", error_text(e.m_number), e.m_number);
    }
    return back;
}

Back as_a_reader(const std::string& bytes, const WriteOptions& options) {
    const bool is_pia = options.type == PM_Object::FILE_PIA;
    Back back = read_as(options.utf8 && is_pia ? utf8_code_page : 0, bytes, options);
    if (!options.guessed || options.utf8 || !is_pia) return back;
    if (text_encoding(back.content.tree) != TextEncoding::utf8) return back;
    back = read_as(utf8_code_page, bytes, options);
    back.guessed = true;
    return back;
}

// Names and info texts of sections, and properties beside them.
void measure_sections(const Node& top, const FileContent& back, const WriteOptions& options,
                      std::vector<Loss>& losses) {
    for (const Node node : top.children()) {
        const std::string name = node.name();
        const Section* const told = section_of(options, name);
        if (told == nullptr) continue;
        const std::string path = fmt::format("\\{}\\", name);
        if (told->name != name) {
            losses.push_back(
                {LossKind::renamed,
                 path,
                 path,
                 fmt::format("a section can't be written under its name, {}", quoted_text(told->name)),
                 {},
                 {}});
        }
        const auto found = std::ranges::find(back.sections, name, &Section::node);
        if (found != back.sections.end() && found->info != told->info) {
            losses.push_back({LossKind::changed,
                              path,
                              {},
                              "the section's info text isn't kept",
                              make_stored(Value(told->info)),
                              make_stored(Value(found->info))});
        }
    }
}

void measure_tag(const FileContent& back, const WriteOptions& options, std::vector<Loss>& losses) {
    if (options.type != PM_Object::FILE_PIA || back.tag == options.tag) return;
    // The header comes first.
    Loss loss;
    loss.kind = LossKind::changed;
    loss.reason = "the header's tag isn't kept";
    loss.before = make_stored(Value(options.tag));
    loss.after = make_stored(Value(back.tag));
    losses.insert(losses.begin(), std::move(loss));
}

// What couldn't be written is told with its own reason.
void give_reasons(std::vector<Loss>& losses, const std::vector<Loss>& unwritten) {
    std::unordered_map<std::string_view, const Loss*> by_path;
    for (const Loss& loss : unwritten) {
        by_path.emplace(loss.path, &loss);
    }
    for (Loss& loss : losses) {
        const auto found = by_path.find(loss.path);
        if (loss.kind == LossKind::lost && found != by_path.end()) loss.reason = found->second->reason;
    }
}

} // namespace

Prepared prepare(const Tree& intended, const WriteOptions& options) {
    if (!is_written(options.type)) {
        throw Error(
            fmt::format("{} files are read only; pia, dpia and doc are written", format_name(options.type)));
    }
    const std::optional<Node> top = intended.node(options.subtree);
    if (!top) throw Error(fmt::format("{}: there is no such node", printable_text(options.subtree)));
    const ScopedCodePage code_page(options.code_page);
    Prepared prepared;
    Saver saver(options);
    std::vector<Loss> unwritten;
    try {
        prepared.bytes = saver.bytes(intended, options.subtree);
    } catch (const PM_Memory_Exception&) {
        throw;
    } catch (const ZT_Exception&) {
        prepared.bytes = Salvage(*top, options.type, saver).run(unwritten);
    }
    const Back back = as_a_reader(prepared.bytes, options);
    const ReadBack read{back.content.tree.root(), options.type,
                        back.code_page != 0 ? back.code_page : pm_system_code_page(), back.content.stopped,
                        back.guessed};
    Measured measured = measure(*top, read);
    prepared.notes = std::move(measured.notes);
    prepared.losses = std::move(measured.losses);
    give_reasons(prepared.losses, unwritten);
    if (!back.failure.empty()) {
        for (Loss& loss : prepared.losses) {
            loss.reason = "nothing of the file can be read back: " + back.failure;
        }
    } else if (options.type == PM_Object::FILE_DPIA) {
        measure_sections(*top, back.content, options, prepared.losses);
    } else {
        measure_tag(back.content, options, prepared.losses);
    }
    return prepared;
}

FileContent read_back(const std::string& bytes, const WriteOptions& options) {
    const ScopedCodePage code_page(options.code_page);
    return as_a_reader(bytes, options).content;
}

} // namespace pm::kit
