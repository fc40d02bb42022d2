// A value, or an error that says why there is none. Callers decide by the error's code; its words
// are a sentence for the user, written where the cause is known, and nobody compares them.
#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace quillmarch {

enum class ErrorCode {
  kFailed,       // nothing more precise is known
  kBadArgument,  // the caller asked for something that cannot be
  kNotFound,     // no such file, part, slide, shape
  kExists,       // it is there already and must not be replaced
  kDenied,       // the system or a server refused
  kDamaged,      // the data is broken or contradicts itself
  kUnsupported,  // sound data of a kind that is not handled
  kTooLarge,     // above one of our limits
  kInputOutput,  // reading or writing failed
  kUnavailable,  // the other side does not answer, a later try may succeed
  kChanged,      // it is no longer what it was when the work began
  kStopped,      // by the user
  kNoMemory,
};

struct Error {
  ErrorCode code = ErrorCode::kFailed;
  std::string words;
  friend bool operator==(const Error&, const Error&) = default;
};

// Either a T or an Error. Reading the one that is not there is a mistake of the caller, which debug
// builds catch.
template <class T>
class [[nodiscard]] Result {
 public:
  // Implicit, so that a function returns its value or its error as it is.
  Result(T value) : held_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : held_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return held_.index() == 0; }
  explicit operator bool() const { return ok(); }

  T& value() & { return *Held(); }
  const T& value() const& { return *Held(); }
  T&& value() && { return std::move(*Held()); }
  T& operator*() & { return *Held(); }
  const T& operator*() const& { return *Held(); }
  T&& operator*() && { return std::move(*Held()); }
  T* operator->() { return Held(); }
  const T* operator->() const { return Held(); }

  const Error& error() const& {
    assert(!ok());
    return *std::get_if<1>(&held_);
  }
  Error&& error() && {
    assert(!ok());
    return std::move(*std::get_if<1>(&held_));
  }

 private:
  T* Held() {
    assert(ok());
    return std::get_if<0>(&held_);
  }
  const T* Held() const {
    assert(ok());
    return std::get_if<0>(&held_);
  }
  std::variant<T, Error> held_;
};

// Success without a value, or an error: `return {};` succeeds.
template <>
class [[nodiscard]] Result<void> {
 public:
  Result() = default;
  Result(Error error) : error_(std::move(error)) {}

  bool ok() const { return !error_.has_value(); }
  explicit operator bool() const { return ok(); }

  const Error& error() const& {
    assert(!ok());
    return *error_;
  }
  Error&& error() && {
    assert(!ok());
    return std::move(*error_);
  }

 private:
  std::optional<Error> error_;
};

}  // namespace quillmarch
