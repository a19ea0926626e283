// First byte: the base, and what the handler does. The rest: a PIA file. It is loaded three times: with lines
// taken straight from their bytes, with all lines as wide text, and with each property set by its path.
// Nobody can tell these apart.

#include "filers/plain_lines.h"
#include "fuzz_support.h"
#include "store/tree_cursor.h"
#include <pm/pm.h>
#include <pm/view.h>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr const char16_t* bases[] = {u"\\", u"base", u"x", u"\\x\\y\\", u"*", u"n\\m"};

// A text with its bounds.
void add(std::u16string& seen, std::u16string_view text) {
    seen += static_cast<char16_t>(text.size());
    seen += text;
}

// Keeps all that is reported; takes a node away at each second report if it meddles, and ends the load at the
// fourth if it gives up.
class KeepingHandler : public pm::ReportHandler {
public:
    KeepingHandler(std::u16string& seen, bool meddles, bool gives_up)
        : m_seen(seen), m_meddles(meddles), m_gives_up(gives_up) {}

    pm::Answer on_report(int kind, std::uint32_t number, std::u16string_view place,
                         std::u16string_view detail) override {
        m_seen += static_cast<char16_t>(kind);
        m_seen += static_cast<char16_t>(number);
        add(m_seen, place);
        add(m_seen, detail);
        ++m_count;
        if (m_meddles && m_count % 2 == 0) take_node_away();
        return m_gives_up && m_count == 4 ? pm::Answer::stop : pm::Answer::go_on;
    }

    PM_Object* object = nullptr;

private:
    void take_node_away() {
        try {
            object->deletePath(u"x");
        } catch (const ZT_Exception& e) {
            m_seen += static_cast<char16_t>(e.m_number);
        }
    }

    std::u16string& m_seen;
    bool m_meddles;
    bool m_gives_up;
    int m_count = 0;
};

// A node with all that it holds, in its order.
void add_node(std::u16string& seen, const PM_Node& node) {
    const PM_Node_View of_node = pm_view(node);
    add(seen, of_node.name);
    for (const PM_Property* each = of_node.first_property; each != nullptr;) {
        const PM_Property_View property = pm_view(*each);
        add(seen, property.name);
        seen += static_cast<char16_t>(property.type);
        seen += static_cast<char16_t>(property.strict);
        const std::string_view bytes(static_cast<const char*>(property.data), property.size);
        add(seen, std::u16string(bytes.begin(), bytes.end()));
        each = property.next;
    }
    for (const PM_Node* child = of_node.first_child; child != nullptr; child = pm_view(*child).next_sibling) {
        add_node(seen, *child);
    }
    seen += u'.';
}

enum class Way { plain, wide, by_path };

// All that can be seen of a load.
std::u16string seen_of(const std::string& file, unsigned how, Way way) {
    std::u16string seen;
    KeepingHandler handler(seen, how / 8 % 2 != 0, how / 16 % 2 != 0);
    PM_Object object(&handler);
    handler.object = &object;
    std::stringstream stream(file);
    pm::TreeCursor::always_by_path = way == Way::by_path;
    pm::PlainLines::none_is_plain = way != Way::plain;
    try {
        object.load(stream, PM_Object::FILE_PIA, bases[how % 8 % std::size(bases)]);
    } catch (const ZT_Exception& e) {
        seen += static_cast<char16_t>(e.m_number);
        if (e.m_place != nullptr) add(seen, e.m_place);
        add(seen, e.m_detail);
    }
    pm::TreeCursor::always_by_path = pm::PlainLines::none_is_plain = false;
    if (const PM_Node* const root = pm_find_node(object, u"\\")) add_node(seen, *root);
    return seen;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string file(data + 1, data + size);
    const std::u16string plain = seen_of(file, data[0], Way::plain);
    pm::fuzz::require(plain == seen_of(file, data[0], Way::wide));
    pm::fuzz::require(plain == seen_of(file, data[0], Way::by_path));
    return 0;
}
