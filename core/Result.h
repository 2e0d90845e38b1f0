// Result<T>: the value of a fallible operation, or one complete English sentence
// saying why it failed. Nothing in the model reports failure by exception.
#pragma once

#include <cassert>
#include <string>
#include <utility>
#include <variant>

namespace cad {

// Tag type so that an error can be told apart from a string value.
struct Error {
    std::string message;
};

inline Error fail(std::string message) { return Error{std::move(message)}; }

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
        assert(ok());
        return std::get<0>(data_);
    }
    const T& value() const& {
        assert(ok());
        return std::get<0>(data_);
    }
    T&& value() && {
        assert(ok());
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
