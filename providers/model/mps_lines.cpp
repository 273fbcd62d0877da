#include "providers/model/mps_lines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <system_error>

#include "providers/model/file_bounds.h"
#include "providers/model/file_signs.h"
#include "providers/model/lp_tokens.h"

namespace lomu {

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16U;
constexpr std::size_t kMaxLine = std::size_t{1} << 20U;

// The number of all of the text, old spellings such as 1.5D+3 included.
bool parseNumber(std::string_view text, double& number, std::errc& error) {
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const char* const end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number);
  error = result.ec;
  if (result.ptr == end) return error != std::errc::invalid_argument;
  if (*result.ptr != 'D' && *result.ptr != 'd') return false;
  std::string spelled(text);
  spelled[static_cast<std::size_t>(result.ptr - text.data())] = 'e';
  const auto again = std::from_chars(spelled.data(), spelled.data() + spelled.size(), number);
  error = again.ec;
  return again.ptr == spelled.data() + spelled.size() && error != std::errc::invalid_argument;
}

}  // namespace

MpsLines::MpsLines(const std::string& file, MpsFormat format)
    : source_(file),
      format_(format),
      size_(kBlock),
      buffer_(std::make_unique_for_overwrite<char[]>(kBlock)) {}

bool MpsLines::readLine() {
  std::size_t looked = begin_;
  for (;;) {
    const void* const found = std::memchr(buffer_.get() + looked, '\n', end_ - looked);
    if (found != nullptr || over_) {
      if (found == nullptr && begin_ == end_) return false;
      const std::size_t lineEnd =
          found == nullptr
              ? end_
              : static_cast<std::size_t>(static_cast<const char*>(found) - buffer_.get());
      lineBegin_ = buffer_.get() + begin_;
      lineLength_ = lineEnd - begin_;
      begin_ = std::min(lineEnd + 1, end_);
      if (lineLength_ > kMaxLine) failLength();
      ++lineNumber_;
      return true;
    }
    std::copy(buffer_.get() + begin_, buffer_.get() + end_, buffer_.get());
    looked = end_ - begin_;
    end_ = looked;
    begin_ = 0;
    if (end_ > kMaxLine) failLength();
    if (end_ == size_) makeRoom();
    const std::size_t got = source_.read(buffer_.get() + end_, size_ - end_);
    over_ = got == 0;
    end_ += got;
  }
}

void MpsLines::makeRoom() {
  auto larger = std::make_unique_for_overwrite<char[]>(2 * size_);
  std::copy(buffer_.get(), buffer_.get() + end_, larger.get());
  buffer_ = std::move(larger);
  size_ *= 2;
}

void MpsLines::failLength() const {
  throw MpsError(file() + ":" + std::to_string(lineNumber_ + 1) + ":1: a line of more than " +
                     std::to_string(kMaxLine) + " bytes, expected a shorter one",
                 lineNumber_ + 1);
}

bool MpsLines::skipToText() {
  count_ = 0;
  while (readLine()) {
    if (lineNumber_ == 1 && std::string_view(lineBegin_, lineLength_).starts_with(kByteOrderMark)) {
      lineBegin_ += kByteOrderMark.size();
      lineLength_ -= kByteOrderMark.size();
    }
    while (lineLength_ > 0 && isBlank(lineBegin_[lineLength_ - 1])) --lineLength_;
    if (lineLength_ > 0 && *lineBegin_ != '*') return true;
  }
  return false;
}

bool MpsLines::next() {
  if (!skipToText()) return false;
  isHeader_ = !isBlank(*lineBegin_);
  if (format_ == MpsFormat::free || isHeader_) {
    splitFree();
  } else {
    splitFixed();
  }
  return true;
}

void MpsLines::splitFree() {
  count_ = 0;
  const char* at = lineBegin_;
  const char* const end = lineBegin_ + lineLength_;
  for (;;) {
    while (at < end && isBlank(*at)) ++at;
    if (at == end) return;
    const char* const begin = at;
    while (at < end && !isBlank(*at)) {
      if (isControl(*at)) {
        fields_.at(0) = {at, 1};
        fail(0, "a byte of value " + std::to_string(+*at) + ", expected text");
      }
      ++at;
    }
    if (count_ == kMaxFields) {
      // What a header has behind its first word is free text, and so is a comment.
      if (isHeader_ || hasComment()) return;
      fields_.at(0) = {begin, static_cast<std::size_t>(at - begin)};
      failExpecting(0, "the end of the line");
    }
    fields_.at(count_++) = {begin, static_cast<std::size_t>(at - begin)};
    if (fields_.at(count_ - 1).size() > kMaxFileName && !isHeader_) {
      fail(count_ - 1, "a field of " + std::to_string(fields_.at(count_ - 1).size()) +
                           " characters, expected at most " + std::to_string(kMaxFileName));
    }
  }
}

// Whether one of the fields may begin a comment; who reads them knows whether it is a name.
bool MpsLines::hasComment() const {
  return std::any_of(fields_.begin() + 1, fields_.end(),
                     [](std::string_view field) { return field.starts_with('$'); });
}

std::string_view MpsLines::fixedField(std::size_t begin, std::size_t end) {
  end = std::min(end, lineLength_);
  if (begin >= end) return {};
  char* first = lineBegin_ + begin;
  char* last = lineBegin_ + end;
  while (first < last && *first == ' ') ++first;
  while (first < last && last[-1] == ' ') --last;
  return {first, static_cast<std::size_t>(last - first)};
}

void MpsLines::squeeze(std::size_t field) {
  std::string_view& name = fields_.at(field);
  if (name.empty()) return;
  const std::string spelled(name);
  std::string squeezed(name);
  std::erase(squeezed, ' ');
  const std::string& first = spelled_.try_emplace(squeezed, spelled).first->second;
  if (first != spelled) {
    failExpecting(field, "a name that differs from " + shown(first) + " by more than blanks");
  }
  std::copy(squeezed.begin(), squeezed.end(), lineBegin_ + (name.data() - lineBegin_));
  name = name.substr(0, squeezed.size());
}

void MpsLines::splitFixed() {
  struct Place {
    std::size_t begin;
    std::size_t end;
  };
  constexpr std::array<Place, 6> kPlaces{{{1, 3}, {4, 12}, {14, 22}, {24, 36}, {39, 47}, {49, 61}}};
  // Once names are squeezed, the blanks between the fields cannot be told any more.
  std::size_t at = 0;
  for (const Place& place : kPlaces) {
    for (; at < std::min(place.begin, lineLength_); ++at) {
      if (lineBegin_[at] == ' ') continue;
      fields_.at(0) = {lineBegin_ + at, lineLength_ - at};
      failExpecting(0, "a blank in this column of fixed format");
    }
    at = place.end;
  }
  for (std::size_t i = 0; i < lineLength_; ++i) {
    if (!isControl(lineBegin_[i]) && i < kPlaces.back().end) continue;
    fields_.at(0) = {lineBegin_ + i, lineLength_ - i};
    failExpecting(0, "no such byte in this column of fixed format");
  }
  count_ = 0;
  for (std::size_t i = typesExpected_ ? 0 : 1; i < kPlaces.size(); ++i) {
    const bool isName = i == 1 || i == 2 || i == 4;
    fields_.at(count_) = fixedField(kPlaces.at(i).begin, kPlaces.at(i).end);
    if (isName) squeeze(count_);
    ++count_;
  }
  while (count_ > 0 && fields_.at(count_ - 1).empty()) --count_;
}

double MpsLines::number(std::size_t field) const {
  const std::string_view text = fields_.at(field);
  double value = 0;
  std::errc error{};
  if (!parseNumber(text, value, error) || std::isnan(value)) failExpecting(field, "a number");
  if (error == std::errc::result_out_of_range) {
    fail(field, "the number " + shown(text) +
                    " is out of range, expected a size from 2.3e-308 to 1.7e308");
  }
  return fromFile(value);
}

std::size_t MpsLines::columnOf(std::size_t field) const {
  if (field >= count_ && field > 0) return lineLength_ + 1;
  const std::string_view text = fields_.at(field);
  return text.data() == nullptr ? 1 : static_cast<std::size_t>(text.data() - lineBegin_) + 1;
}

void MpsLines::fail(std::size_t field, const std::string& text) const {
  throw MpsError(file() + ":" + std::to_string(lineNumber_) + ":" +
                     std::to_string(columnOf(field)) + ": " + text,
                 lineNumber_);
}

void MpsLines::failExpecting(std::size_t field, const std::string& what) const {
  const bool isThere = field == 0 || field < count_;
  fail(field, "found " + (isThere ? shown(fields_.at(field)) : "the end of the line") +
                  ", expected " + what);
}

}  // namespace lomu
