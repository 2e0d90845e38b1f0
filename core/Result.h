// Result<T>: the value of a fallible operation, or one complete English sentence
// saying why it failed. Nothing in the model reports failure by exception.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>

namespace cad {

// Tag type so that an error can be told apart from a string value.
struct Error {
    std::string message;
};

inline Error fail(std::string message) { return Error{std::move(message)}; }

// Thrown when a failed Result is used as a value in a build without assertions: it
// carries the failure's own sentence, so the command boundary can still answer it.
class UncheckedResult : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

// A failed Result used as a value is a bug, never a quiet wrong value. With
// assertions on (debug, fuzzing, sanitizers) it stops the program with the
// sentence; otherwise it throws the sentence to the command boundary.
[[noreturn]] inline void uncheckedResult(const std::string& error) {
#ifndef NDEBUG
    // fputs, not a format: GCC's format check sees a null string in inlined copies.
    std::fputs("A failed Result was used as a value: ", stderr);
    std::fputs(error.c_str(), stderr);
    std::fputc('\n', stderr);
    std::abort();
#else
    throw UncheckedResult(error);
#endif
}

template <typename T> class [[nodiscard]] Result {
public:
    Result(const T& value) : data_(std::in_place_index<0>, value) {}
    Result(T&& value) : data_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : data_(std::in_place_index<1>, std::move(error.message)) {}

    // Builds a value in place (for types that are neither copyable nor movable cheaply).
    template <typename... Args> static Result success(Args&&... args) {
        Result r{Error{}};
        r.data_.template emplace<0>(std::forward<Args>(args)...);
        return r;
    }

    bool ok() const { return data_.index() == 0; }
    explicit operator bool() const { return ok(); }

    T& value() & {
        if (!ok()) uncheckedResult(std::get<1>(data_));
        return std::get<0>(data_);
    }
    const T& value() const& {
        if (!ok()) uncheckedResult(std::get<1>(data_));
        return std::get<0>(data_);
    }
    T&& value() && {
        if (!ok()) uncheckedResult(std::get<1>(data_));
        return std::get<0>(std::move(data_));
    }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }

    // The error sentence; empty on success.
    const std::string& error() const {
        static const std::string none;
        return ok() ? none : std::get<1>(data_);
    }

    // The error with a prefix ("extrude: ", "Extrude1: "), for passing a failure on.
    Error withPrefix(std::string_view prefix) const { return Error{std::string(prefix) + error()}; }
    operator Error() const& { return Error{error()}; }

private:
    std::variant<T, std::string> data_;
};

template <> class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : error_(std::move(error.message)), failed_(true) {}

    bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }
    const std::string& error() const { return error_; }
    Error withPrefix(std::string_view prefix) const { return Error{std::string(prefix) + error_}; }
    operator Error() const& { return Error{error_}; }

private:
    std::string error_;
    bool failed_ = false;
};

} // namespace cad
