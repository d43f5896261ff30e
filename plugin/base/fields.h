// Lists of the members of a plain struct, as a constexpr tuple beside it: one list from which all is made that
// goes over them. memberCount tells at compile time that no member is missing in the list.
#pragma once

#include <cstddef>
#include <tuple>

namespace banddesk {

struct AnyValue {
  template <class T>
  operator T() const;  // NOLINT(google-explicit-constructor): it only stands for a value of each type
};

// How many members an aggregate has. Bases and arrays count as their elements do.
template <class Struct, class... Values>
consteval std::size_t memberCount() {
  if constexpr (requires { Struct{Values{}..., AnyValue{}}; })
    return memberCount<Struct, Values..., AnyValue>();
  else
    return sizeof...(Values);
}

template <class Fields, class Action>
constexpr void eachField(const Fields& fields, Action action) {
  std::apply([&](const auto&... field) { (action(field), ...); }, fields);
}

}  // namespace banddesk
