// A value or the RPCError that explains why there is none; shaped like std::expected.
#pragma once

#include <cassert>
#include <type_traits>
#include <utility>
#include <variant>

#include "protocol/RPCError.h"

namespace orvo {

template <class T>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(RPCError error) : state_(std::in_place_index<1>, std::move(error)) {}

    // Lets a Result<json> be returned where a Result<ToolOutput> is expected.
    template <class U>
    requires(!std::is_same_v<U, T> && std::is_constructible_v<T, U&&>) Result(Result<U>&& other)
        : state_(other ? State(std::in_place_index<0>, T(std::move(*other)))
                       : State(std::in_place_index<1>, std::move(other).error())) {}

    // NOLINTNEXTLINE(readability-identifier-naming): std::expected's name, for the later rename
    bool has_value() const { return state_.index() == 0; }
    explicit operator bool() const { return has_value(); }

    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }
    T&& operator*() && { return std::move(value()); }
    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }

    T& value() & {
        assert(has_value());
        return std::get<0>(state_);
    }
    const T& value() const& {
        assert(has_value());
        return std::get<0>(state_);
    }
    const RPCError& error() const& {
        assert(!has_value());
        return std::get<1>(state_);
    }
    RPCError&& error() && {
        assert(!has_value());
        return std::get<1>(std::move(state_));
    }

private:
    using State = std::variant<T, RPCError>;
    State state_;
};

// For operations that produce nothing but may fail.
struct Done {};
using Status = Result<Done>;
inline Status ok() {
    return Done{};
}

}  // namespace orvo
