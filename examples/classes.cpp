// The same tree through the classes below pm/tree.h: text is UTF-16, values go to variables and buffers of
// the caller's, and a walk gives each value as text.

#include <cstdio>
#include <memory>
#include <pm/pm.h>

namespace {

// Hears of what loads pass over; the answer tells whether they go on.
class Counter : public pm::ReportHandler {
public:
    pm::Answer on_report(int, std::uint32_t, std::u16string_view, std::u16string_view) override {
        ++count;
        return pm::Answer::go_on;
    }
    int count = 0;
};

int count_properties(const PM_Object& object) {
    int count = 0;
    const std::unique_ptr<PM_Iterator> walk(object.newIterator(u"\\", 0));
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    do {
        // Each node with children is met again on the way up.
        if (step == PM_Object::NODE_PARENT) continue;
        char* value = nullptr; // the iterator's until the last call, which gives null
        std::size_t size = 0;
        PropType type = PROP_NONE;
        while (walk->nextProp(value, size, type) != nullptr) {
            ++count;
        }
    } while (walk->nextNode(step) != nullptr);
    return count;
}

} // namespace

int main() {
    Counter counter;
    PM_Object object(&counter);
    object.SetProperty(u"\\media\\copies", 2);
    object.SetProperty(u"\\media\\default_size", u"ISO_A1_landscape");
    object.SetProperty(u"\\media\\size\\*\\name", u"ISO_A0", 0);

    int copies = 0;
    char16_t name[32] = {};
    const bool found = object.GetProperty(u"\\media\\copies", copies) &&
                       object.GetProperty(u"\\media\\default_size", name, sizeof name) &&
                       !object.GetProperty(u"\\media\\never_set", copies);
    std::printf("%d copies of %s, %d properties, %d reports\n", copies, pm::to_utf8(name).c_str(),
                count_properties(object), counter.count);
    return found ? 0 : 1;
}
