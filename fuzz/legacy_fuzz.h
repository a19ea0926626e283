#pragma once

#include "cost.h"
#include "fuzz_support.h"
#include <memory>
#include <pm/error_handler.h>
#include <pm/exception.h>
#include <pm/iterator.h>
#include <pm/object.h>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace pm::fuzz {

// Answers each report alike and keeps the numbers. A load reports warnings and errors only.
class CountingHandler : public ReportHandler {
public:
    explicit CountingHandler(bool goes_on) : m_answer(goes_on ? Answer::go_on : Answer::stop) {}

    Answer on_report(int kind, std::uint32_t number, std::u16string_view, std::u16string_view) override {
        require(kind == 1 || kind == 2);
        numbers.push_back(number);
        return m_answer;
    }
    void set_arguments(const std::uint64_t*, std::int32_t count) override { require(count == 0); }

    std::vector<std::uint32_t> numbers;

private:
    Answer m_answer;
};

// Walks all nodes and properties.
inline void walk(const PM_Object& object) {
    const std::unique_ptr<PM_Iterator> steps(object.newIterator(u"\\", 0));
    require(steps != nullptr);
    char* value = nullptr;
    std::size_t size = 0;
    PropType type = PROP_NONE;
    PM_Object::NodeType step = PM_Object::NODE_SIBLING;
    do {
        while (steps->nextProp(value, size, type) != nullptr) {
            require(type != PROP_NONE && value != nullptr);
        }
    } while (steps->nextNode(step) != nullptr);
}

template<class Load>
void load_new_object(ZT_Error_Handler* handler, std::size_t size, Load load) {
    const CostBound bound(load_cost(size));
    PM_Object object(handler);
    try {
        load(object, handler);
    } catch (const ZT_Exception& e) {
        require(e.m_number != 0);
    }
    walk(object);
    bound.require_held();
}

// Runs `load` of a file of that size, given an object and its handler: nothing but an exception of the family
// comes out, and the tree is whole. If there were reports, then without a handler, and with one that doesn't
// go on, the first of them ends the load.
template<class Load>
void load_with_each_answer(std::size_t size, Load load) {
    CountingHandler goes_on(true);
    load_new_object(&goes_on, size, load);
    if (goes_on.numbers.empty()) return;
    CountingHandler stops(false);
    load_new_object(&stops, size, load);
    require(stops.numbers.size() == 1 && stops.numbers[0] == goes_on.numbers[0]);
    load_new_object(nullptr, size, load);
}

} // namespace pm::fuzz
