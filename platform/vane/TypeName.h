#pragma once

// Names of types in the registry.

#include <array>
#include <string_view>
#include <type_traits>

#include "platform/Mote.h"
#include "platform/vane/Enumeration.h"
#include "platform/vane/Scalars.h"

namespace Vane {

/// The name of a type in the registry. Classes define it as `vaneName`.
template <class T>
struct TypeName {
  static constexpr std::string_view value = T::vaneName;
};

template <Enumerated E>
struct TypeName<E> {
  static constexpr std::string_view value = Enumeration<E>::name;
};

// clang-format off
template <> struct TypeName<void> { static constexpr std::string_view value = "void"; };
template <> struct TypeName<bool> { static constexpr std::string_view value = "bool"; };
template <> struct TypeName<U8> { static constexpr std::string_view value = "U8"; };
template <> struct TypeName<U16> { static constexpr std::string_view value = "U16"; };
template <> struct TypeName<U32> { static constexpr std::string_view value = "U32"; };
template <> struct TypeName<U64> { static constexpr std::string_view value = "U64"; };
template <> struct TypeName<Mote::Node> { static constexpr std::string_view value = "Mote::Node"; };
template <> struct TypeName<Mote::String> { static constexpr std::string_view value = "Mote::String"; };
// clang-format on

/// Texts concatenated at compile time.
template <const std::string_view&... parts>
struct Joined {
  static constexpr auto text = [] {
    std::array<char, (parts.size() + ...)> out{};
    char* at = out.data();
    ((at = std::copy(parts.begin(), parts.end(), at)), ...);
    return out;
  }();
  static constexpr std::string_view value{text.data(), text.size()};
};

template <class T>
struct TypeName<Mote::Ptr<T>> {
  static constexpr std::string_view suffix = std::is_const_v<T> ? "::PtrConst" : "::Ptr";
  static constexpr std::string_view value = Joined<TypeName<std::remove_const_t<T>>::value, suffix>::value;
};

template <class T>
struct TypeName<Optional<T>> {
  static constexpr std::string_view open = "Vane::Optional<";
  static constexpr std::string_view close = ">";
  static constexpr std::string_view value = Joined<open, TypeName<T>::value, close>::value;
};

template <class T>
inline constexpr std::string_view typeName = TypeName<T>::value;

}  // namespace Vane
