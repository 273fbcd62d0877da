// The code of {fmt} that is no template, compiled once here and linked in, so that the files that
// use it compile fast and an installed tool needs no library of it.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {

template FMT_API auto dragonbox::to_decimal(float x) noexcept -> dragonbox::decimal_fp<float>;
template FMT_API auto dragonbox::to_decimal(double x) noexcept -> dragonbox::decimal_fp<double>;

#ifndef FMT_STATIC_THOUSANDS_SEPARATOR
template FMT_API locale_ref::locale_ref(const std::locale& locale);
template FMT_API auto locale_ref::get<std::locale>() const -> std::locale;
#endif

template FMT_API auto thousands_sep_impl(locale_ref locale) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref locale) -> char;
template FMT_API void buffer<char>::append(const char* begin, const char* end);
template FMT_API void vformat_to(buffer<char>& buffer, string_view format,
                                 basic_format_args<FMT_BUFFER_CONTEXT(char)> arguments,
                                 locale_ref locale);

}  // namespace detail
FMT_END_NAMESPACE
