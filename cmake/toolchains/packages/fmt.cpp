// The parts of {fmt} that aren't templates, and the instances of those that programs share, compiled once.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

template auto dragonbox::to_decimal(float number) noexcept -> dragonbox::decimal_fp<float>;
template auto dragonbox::to_decimal(double number) noexcept -> dragonbox::decimal_fp<double>;
template locale_ref::locale_ref(const std::locale& locale);
template auto locale_ref::get<std::locale>() const -> std::locale;
template auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template auto decimal_point_impl(locale_ref) -> char;
template void buffer<char>::append(const char*, const char*);
template void vformat_to(buffer<char>&, string_view, basic_format_args<FMT_BUFFER_CONTEXT(char)>, locale_ref);

} // namespace detail
FMT_END_NAMESPACE
