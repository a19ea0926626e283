#pragma once

#include "base/simple_list.h"
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace pm {

// The records of a section, which stay as they are once they are appended. Of many, one is found in their
// order by name, which stands beside the list; no choice of names makes that slow.
template<class Record>
class RecordList : public SimpleListWithSearch<Record> {
public:
    using List = SimpleListWithSearch<Record>;

    RecordList() = default;
    RecordList(const RecordList&) = delete;
    RecordList& operator=(const RecordList&) = delete;
    ~RecordList() override = default;

    // As that of any list: the first record of that name, or null.
    const Record* find_by_name(std::u16string_view name) const {
        if (this->count() < searched_below) return List::find_by_name(name);
        if (m_by_name.size() != static_cast<std::size_t>(this->count())) sort();
        const auto at = std::lower_bound(
            m_by_name.begin(), m_by_name.end(), name,
            [](const Record* record, std::u16string_view wanted) { return List::name_of(*record) < wanted; });
        return at != m_by_name.end() && List::name_of(**at) == name ? *at : nullptr;
    }

private:
    static constexpr std::int32_t searched_below = 16;

    void sort() const {
        m_by_name.clear();
        m_by_name.reserve(static_cast<std::size_t>(this->count()));
        for (const Record& record : *this) {
            m_by_name.push_back(&record);
        }
        std::stable_sort(m_by_name.begin(), m_by_name.end(), [](const Record* a, const Record* b) {
            return List::name_of(*a) < List::name_of(*b);
        });
    }

    mutable std::vector<const Record*> m_by_name; // those of one name in the list's order
};

} // namespace pm
