#include "platform/code_page.h"

#include "platform/double_byte_page.h"
#include "platform/native_code_page.h"
#include "platform/single_byte_page.h"
#include "platform/utf8.h"
#include <algorithm>
#include <atomic>
#include <type_traits>
#include <utility>

namespace pm {

namespace {

constexpr unsigned initial_code_page = 1252;

std::atomic<unsigned> current_code_page{initial_code_page};
thread_local constinit unsigned thread_code_page = default_code_page; // none of the thread's own

class Utf8Page final : public CodePage {
public:
    constexpr Utf8Page() : CodePage(utf8_code_page) {}

    std::size_t character_length(const char* text) const override {
        const auto lead = static_cast<unsigned char>(text[0]);
        const std::size_t told = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
        std::size_t length = 1;
        while (length < told && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) {
            ++length;
        }
        return length;
    }

private:
    void decode_rest(std::string_view narrow, std::u16string& wide) const override {
        decode_utf8(narrow, wide);
    }
    void encode_rest(std::u16string_view wide, std::string& narrow) const override {
        encode_utf8(wide, narrow);
    }
};

constexpr Utf8Page utf8_page;
static_assert(std::is_trivially_destructible_v<Utf8Page>);

const CodePage* find_code_page(unsigned number) {
    if (number == utf8_code_page) return &utf8_page;
    const CodePage* page = find_single_byte_page(number);
    return page != nullptr ? page : find_double_byte_page(number);
}

template<class Text>
std::size_t ascii_prefix(Text text) {
    const auto end = std::find_if(text.begin(), text.end(), [](auto unit) {
        return static_cast<std::make_unsigned_t<decltype(unit)>>(unit) >= 0x80;
    });
    return static_cast<std::size_t>(end - text.begin());
}

} // namespace

void CodePage::decode(std::string_view narrow, std::u16string& wide) const {
    const std::size_t ascii = ascii_prefix(narrow);
    wide.append(narrow.begin(), narrow.begin() + static_cast<std::ptrdiff_t>(ascii));
    if (ascii < narrow.size()) decode_rest(narrow.substr(ascii), wide);
}

void CodePage::encode(std::u16string_view wide, std::string& narrow) const {
    const std::size_t ascii = ascii_prefix(wide);
    const std::size_t start = narrow.size();
    narrow.resize(start + ascii);
    std::transform(wide.begin(), wide.begin() + static_cast<std::ptrdiff_t>(ascii),
                   narrow.begin() + static_cast<std::ptrdiff_t>(start),
                   [](char16_t unit) { return static_cast<char>(unit); });
    if (ascii < wide.size()) encode_rest(wide.substr(ascii), narrow);
}

const CodePage& code_page(unsigned number) {
    const unsigned wanted = number == default_code_page ? system_code_page() : number;
    const CodePage* page = find_code_page(wanted);
    return page != nullptr ? *page : *find_code_page(system_code_page());
}

bool code_page_known(unsigned number) {
    return number == default_code_page || find_code_page(number) != nullptr;
}

unsigned system_code_page() {
    return thread_code_page != default_code_page ? thread_code_page : current_code_page.load();
}

unsigned set_thread_code_page(unsigned number) noexcept {
    return std::exchange(thread_code_page, number);
}

void set_system_code_page(unsigned number) {
    if (number != default_code_page) {
        current_code_page = number;
        return;
    }
    const unsigned native = native_code_page();
    current_code_page = native != 0 && code_page_known(native) ? native : initial_code_page;
}

std::u16string to_wide(std::string_view narrow, unsigned code_page_number) {
    std::u16string wide;
    code_page(code_page_number).decode(narrow, wide);
    return wide;
}

std::string to_narrow(std::u16string_view wide, unsigned code_page_number) {
    std::string narrow;
    code_page(code_page_number).encode(wide, narrow);
    return narrow;
}

} // namespace pm
