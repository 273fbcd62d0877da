// The labels of a record or slice whose number is known at run time only.
#ifndef ZTB_KEYS_HPP_
#define ZTB_KEYS_HPP_

#include <array>
#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <ranges>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/label_check.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// Any label, as one of the keys of a slice.
inline constexpr const char* anyLabel = " ";

class Keys;

namespace detail {

template <class Range>
concept PointerRange =
    std::ranges::contiguous_range<const Range&> && std::ranges::sized_range<const Range&> &&
    std::same_as < std::ranges::range_value_t<const Range&>,
const char* > ;

template <class Range>
concept LabelRange =
    !std::same_as<Range, Keys> && !PointerRange<Range> &&
    !std::convertible_to<const Range&, ZString> && std::ranges::forward_range<const Range&> &&
    std::convertible_to<std::ranges::range_reference_t<const Range&>, std::string_view>;

}  // namespace detail

// One label for each position, for the length of a call: made from a list in braces, or a vector,
// array or span of std::string_view, std::string, Text or const char*. Pointers are used where they
// stand and all else is copied, without an allocation for labels of 200 chars together. One with a
// zero byte within throws.
class Keys {
 public:
  // None, for a scalar.
  Keys() noexcept : labels_(pointers_.data(), 0) {}

  template <detail::PointerRange Range>
  Keys(const Range& labels) noexcept
      : labels_(std::ranges::data(labels), std::ranges::size(labels)) {}

  template <detail::LabelRange Range>
  Keys(const Range& labels) {
    copy(labels);
  }
  Keys(std::initializer_list<std::string_view> labels) { copy(labels); }

  Keys(const Keys&) = delete;
  Keys& operator=(const Keys&) = delete;
  ~Keys() = default;

  [[nodiscard]] std::size_t size() const noexcept { return labels_.size(); }
  // Zero-terminated; valid as long as this object and what it was made from.
  [[nodiscard]] detail::KeyLabels labels() const noexcept { return labels_; }

 private:
  static constexpr std::size_t roomSize = 200 + ZTB_MAX_DIMENSION;

  template <class Range>
  void copy(const Range& labels) {
    std::size_t needed = 0;
    std::size_t count = 0;
    for (const std::string_view label : labels) {
      detail::requireWhole(label);
      needed += label.size() + 1;
      ++count;
    }
    char* to = room_.data();
    if (needed > room_.size()) {
      longer_.resize(needed);
      to = longer_.data();
    }
    const char** pointers = pointers_.data();
    if (count > pointers_.size()) {
      more_.resize(count);
      pointers = more_.data();
    }
    labels_ = {pointers, count};
    for (const std::string_view label : labels) {
      *pointers++ = to;
      to += label.copy(to, label.size());
      *to++ = '\0';
    }
  }

  std::array<const char*, ZTB_MAX_DIMENSION> pointers_;
  std::span<const char* const> labels_;
  std::vector<const char*> more_;
  std::array<char, roomSize> room_;
  std::string longer_;
};

namespace detail {

// The labels of a call, one argument each; a scalar's has one unused place.
template <std::size_t count>
class KeyArguments {
 public:
  template <class... Labels>
  explicit KeyArguments(const Labels&... labels) : strings_{ZString(labels)...}, pointers_{} {
    for (std::size_t position = 0; position < count; ++position) {
      pointers_[position] = strings_[position].c_str();
    }
  }
  operator KeyLabels() const noexcept { return {pointers_.data(), count}; }

 private:
  std::array<ZString, count> strings_;
  std::array<const char*, count> pointers_;
};
template <>
class KeyArguments<0> {
 public:
  operator KeyLabels() const noexcept { return {&unused_, 0}; }

 private:
  const char* unused_ = nullptr;
};

}  // namespace detail

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_KEYS_HPP_
